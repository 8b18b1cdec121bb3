#include "primitives.h"

#include <gmock/gmock.h>

#include <cmath>

#include "recording_gl.h"

namespace {

using recording::Drawing;
using recording::Point;
using recording::Vertex;
using testing::FloatNear;
using testing::Pointwise;

constexpr float NEAR = 1e-5F;

Point minus(const Point &a, const Point &b) {
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}

float dot(const Point &a, const Point &b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

// Twice the area, towards the side from which the corners run counter-clockwise.
Point area(const Vertex *corners) {
    const Point a = minus(corners[1].position, corners[0].position);
    const Point b = minus(corners[2].position, corners[0].position);
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

// What the call draws; it must keep the frame.
template <typename Call>
std::vector<Drawing> drawn(const Call &call) {
    recording::reset();
    call();
    EXPECT_EQ(recording::state().modelview, recording::IDENTITY);
    EXPECT_TRUE(recording::stacksBalanced());
    EXPECT_TRUE(recording::faults().empty());
    return recording::drawings();
}

TEST(Primitives, EllipsoidIsASphereScaledToItsAxes) {
    const auto spheres = drawn([] { drawEllipsoid(2, 3, 5, 7); });
    ASSERT_EQ(spheres.size(), 1U);
    EXPECT_EQ(spheres[0].name, "solid sphere");
    EXPECT_EQ(spheres[0].slices, 7);
    EXPECT_EQ(spheres[0].stacks, 7);
    const auto r = static_cast<float>(spheres[0].size);
    EXPECT_EQ(recording::transform(spheres[0].state.modelview, {r, r, r}), (Point{2, 3, 5}));
}

TEST(Primitives, BoxFacesLookOutwards) {
    const auto vertices = drawn([] { drawBox(2, 4, 6); })[0].vertices;
    ASSERT_EQ(vertices.size(), 24U);
    Point sum = {};
    for (std::size_t i = 0; i < 24; ++i) {
        const auto &[p, n, colour, texCoord] = vertices[i];
        EXPECT_GT(dot(area(&vertices[i / 4 * 4]), n), 0) << "face " << i / 4 << " is clockwise";
        EXPECT_EQ(dot(n, p), std::fabs(n[0] + 2 * n[1] + 3 * n[2])) << "corner " << i;
        EXPECT_EQ(std::fabs(p[0]) + 10 * std::fabs(p[1]) + 100 * std::fabs(p[2]), 321);
        sum = minus(sum, n);
    }
    EXPECT_EQ(sum, Point{}) << "not one face to each side";
}

TEST(Primitives, DiscIsWoundTheSameWayForBothFacings) {
    for (const NORMAL side : {UP, DOWN}) {
        for (const int segments : {3, 16}) {
            const auto fan = drawn([=] { drawCircle(2, segments, side); });
            ASSERT_EQ(fan.size(), static_cast<std::size_t>(segments));
            EXPECT_EQ(fan[0].vertices[0].position, (Point{2, 0, 0}));
            EXPECT_GT(fan[0].vertices[1].position[2], 0) << "turns from +x towards +z";
            for (std::size_t k = 0; k < fan.size(); ++k) {
                const auto &v = fan[k].vertices;
                const auto &next = fan[(k + 1) % fan.size()].vertices;
                EXPECT_THAT(v[1].position, Pointwise(FloatNear(NEAR), next[0].position));
                EXPECT_EQ(v[2].position, Point{});
                EXPECT_EQ(v[2].normal, (Point{0, side == UP ? 1.0F : -1.0F, 0}));
                EXPECT_NEAR(area(v.data())[1], -4 * std::sin(2 * M_PI / segments), NEAR);
            }
        }
    }
}

TEST(Primitives, CylinderSidesMeetAndShadeContinuously) {
    const float radii[][2] = {{1, 1}, {2, 0.5F}, {1, 0}, {0.4F, 1}};
    for (const auto &[r0, r1] : radii) {
        const auto faces = drawn([r0 = r0, r1 = r1] { drawCylinder(r0, r1, 3, 12); });
        ASSERT_EQ(faces.size(), 36U);
        for (std::size_t k = 0; k < 24; ++k) {
            const auto &v = faces[k].vertices;
            const float end = k < 12 ? -1 : 1;
            EXPECT_EQ(v[0].normal, (Point{0, end, 0}));
            EXPECT_EQ(v[2].position, (Point{0, end * 1.5F, 0}));
            EXPECT_NEAR(std::hypot(v[0].position[0], v[0].position[2]), k < 12 ? r0 : r1, NEAR);
        }
        for (std::size_t k = 24; k < 36; ++k) {
            const auto &v = faces[k].vertices;
            const auto &before = faces[k == 24 ? 35 : k - 1].vertices;
            const Point &n = v[1].normal;
            EXPECT_EQ(v[2].normal, n);
            EXPECT_NEAR(dot(n, minus(v[1].position, v[0].position)), 0, NEAR) << "side " << k;
            EXPECT_NEAR(dot(n, minus(v[2].position, v[1].position)), 0, NEAR) << "side " << k;
            EXPECT_GT(dot(n, minus(v[1].position, {0, -1.5F, 0})), 0) << "side " << k;
            EXPECT_LT(dot(n, area(v.data())), 0) << "clockwise from outside";
            for (const auto &[mine, shared] : {std::pair{v[0], before[1]}, {v[3], before[2]}}) {
                EXPECT_THAT(mine.position, Pointwise(FloatNear(NEAR), shared.position)) << k;
                EXPECT_THAT(mine.normal, Pointwise(FloatNear(1e-4F), shared.normal)) << k;
            }
        }
    }
}

TEST(Primitives, NoSegmentsDrawNoFaces) {
    EXPECT_EQ(drawn([] { drawCircle(1, 0, UP); }).size(), 0U);
    EXPECT_EQ(drawn([] { drawCylinder(1, 1, 1, -3); }).size(), 0U);
}

}  // namespace

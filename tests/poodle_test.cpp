#include "poodle.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>

#include "recording_gl.h"

namespace {

using recording::Colour;
using recording::Drawing;
using recording::Point;
using testing::FloatNear;
using testing::Pointwise;

constexpr std::size_t CYLINDER_FACES = 48;  // 16 for each cap and for the side

struct Part {
    Point place;  // centre of an ellipsoid, lower end of a cylinder
    double rise;  // from there to the top
    Colour colour;
};

Part part(const Drawing &d) {
    const auto &m = d.state.modelview;
    if (d.kind == recording::PRIMITIVE) {
        return {d.vertices[2].position, 0, d.vertices[2].colour};
    }
    return {recording::transform(m, {}), std::hypot(m[1], m[5], m[9]), d.state.colour};
}

// The 47 parts in the given pose, in order, with red for the caller's colour.
std::vector<Part> draw(const Params &pose) {
    recording::reset();
    glColor3f(1, 0, 0);
    Poodle dog;
    dog.update(pose);
    dog.draw();
    EXPECT_EQ(recording::state().modelview, recording::IDENTITY);
    EXPECT_EQ(recording::state().colour, (Colour{1, 1, 1, 1}));
    EXPECT_TRUE(recording::stacksBalanced());
    EXPECT_TRUE(recording::faults().empty());
    EXPECT_EQ(recording::drawings(recording::SHAPE).size(), 37U);
    EXPECT_EQ(recording::drawings(recording::PRIMITIVE).size(), 10 * CYLINDER_FACES);
    std::vector<Part> parts;
    const auto &all = recording::drawings();
    for (std::size_t i = 0; i < all.size();) {
        parts.push_back(part(all[i]));
        i += all[i].kind == recording::SHAPE ? 1 : CYLINDER_FACES;
    }
    return parts;
}

TEST(Poodle, StandsOnItsToesAtRest) {
    double lowest = 1;
    double highest = 1;
    for (const Part &p : draw({})) {
        lowest = std::min(lowest, p.place[1] - p.rise);
        highest = std::max(highest, p.place[1] + p.rise);
    }
    EXPECT_NEAR(lowest, -0.007, 0.0005);
    EXPECT_NEAR(highest, 2.6, 0.05);
}

TEST(Poodle, PartsStandWhereABentPosePutsThem) {
    Params pose;  // every joint bent by another angle
    for (int i = 0; i < POSE_VALUES; ++i) {
        (&pose.pos_x)[i] = static_cast<float>(i < 3 ? i + 1 : 2 * i + 2);
    }
    struct Row {
        std::size_t index;
        const char *name;
        std::array<double, 3> place;
    };
    // clang-format off
    const Row rows[] = {
        {0, "torso", {0.635, 3.129, 3.064}},          {3, "tail pompom", {0.982, 3.858, 3.471}},
        {6, "left hind toe", {2.288, 3.629, 3.399}},  {9, "left bracelet", {2.026, 3.611, 3.32}},
        {12, "right hind toe", {2.066, 3.691, 2.188}},{20, "left toe", {1.521, 3.11, 3.514}},
        {25, "right bracelet", {1.091, 3.091, 2.503}},{26, "right toe", {1.236, 3.248, 2.374}},
        {35, "right pupil", {-0.354, 2.107, 3.137}},  {36, "snout", {0.029, 2.161, 3.171}},
        {37, "nose", {0.068, 2.099, 3.164}},          {38, "tongue", {0.051, 2.257, 3.167}},
        {39, "lower jaw", {0.128, 2.245, 3.154}},     {40, "chin", {0.123, 2.247, 3.155}},
        {42, "left ear", {-0.183, 2.414, 3.387}},     {44, "right ear", {-0.245, 2.414, 3.046}},
        {45, "top-knot", {-0.606, 2.487, 3.283}},     {46, "mane", {-0.259, 2.71, 3.222}},
    };
    // clang-format on
    const auto parts = draw(pose);
    for (const Row &row : rows) {
        EXPECT_THAT(parts[row.index].place, Pointwise(FloatNear(0.001F), row.place)) << row.name;
    }
    // Sums over a point of every ellipsoid and of both rims of every cylinder.
    std::array<double, 3> sums = {};
    std::size_t faces = 0;
    for (const Drawing &d : recording::drawings()) {
        const bool round = d.kind == recording::SHAPE;
        const bool rim = !round && faces++ % CYLINDER_FACES % 16 == 0 && d.mode == GL_TRIANGLES;
        for (std::size_t axis = 0; (round || rim) && axis < 3; ++axis) {
            sums[axis] += round
                              ? recording::transform(d.state.modelview, {0.48F, 0.6F, 0.64F})[axis]
                              : d.vertices[0].position[axis];
        }
    }
    EXPECT_THAT(sums, Pointwise(testing::DoubleNear(0.001), {41.0841, 172.1280, 178.2422}))
        << "a part has another size or is turned otherwise";
}

TEST(Poodle, WearsTheCallersColourUpToTheLeftEye) {
    const auto parts = draw({});
    for (std::size_t i = 0; i < parts.size(); ++i) {
        const Colour expected = i == 33 || i == 35 ? Colour{0.1F, 0.1F, 0.1F, 1}  // pupils
                                : i == 37          ? Colour{0.2F, 0.2F, 0.2F, 1}  // nose
                                : i == 38          ? Colour{0.5F, 0, 0, 1}        // tongue
                                : i < 33           ? Colour{1, 0, 0, 1}
                                                   : Colour{1, 1, 1, 1};
        EXPECT_EQ(parts[i].colour, expected) << "part " << i;
    }
}

}  // namespace

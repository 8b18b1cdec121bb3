#include "collision.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <tuple>

#include "game_test.h"

namespace {

using testing::FloatNear;
using testing::Pointwise;

Collision_Object circle(float x, float z, float radius, int code = SOLID) {
    return {CIRCLE, code, x, z, radius, 0, 0, 0, 0};
}

Collision_Object box(float minX, float maxX, float minZ, float maxZ, int code = SOLID) {
    return {RECTANGLE, code, 0, 0, 0, minX, maxX, minZ, maxZ};
}

// Of no kind, and everywhere.
const Collision_Object ODD = {2, ENEMY, 0, 0, 9, -9, 9, -9, 9};

TEST(Collision, AnswersTheSecondFootprintsCodeWhereTheyMeet) {
    const std::tuple<Collision_Object, Collision_Object, int> pairs[] = {
        {circle(0, 0, 1), circle(2, 0, 1, ENEMY), 0},  // circles must overlap
        {circle(0, 0, 1), circle(1.999F, 0, 1, ENEMY), 2},
        {circle(3, 4, 4.5F), circle(0, 0, 0.6F, TOWNSPERSON), 3},
        {circle(0, 0, 1), box(1, 3, -1, 1, TOWNSPERSON), 3},  // rectangles may only touch
        {circle(0, 0, 1), box(1.001F, 3, -1, 1), 0},
        {circle(0, 0, 1), box(-3, 3, -3, -1.001F), 0},
        {circle(0, 0, 1), box(0.9F, 2, 0.9F, 2, ENEMY), 2},  // by the bounding square
        {circle(0, 0, 1), box(-5, 5, -5, 5), 1},
        {box(-5, 5, -5, 5), circle(0, 0, 1), 0},
        {box(0, 1, 0, 1), box(1, 2, 0, 1, ENEMY), 2},
        {box(0, 1, 0, 1), box(-1, 0, 1, 2), 1},
        {box(0, 1, 0, 1), box(1.001F, 2, 0, 1), 0},
        {box(0, 1, 0, 1), box(0, 1, -2, -0.001F), 0},
        {ODD, box(0, 1, 0, 1), 0},
        {circle(0, 0, 1), ODD, 0},
    };
    for (const auto &[a, b, answer] : pairs) {
        EXPECT_EQ(checkCollision(a, b), answer) << "b is " << b.minX << ".." << b.maxX << ", "
                                                << b.minZ << ".." << b.maxZ << ", code " << b.code;
    }
}

class Scene : public Game_Test {
protected:
    Scene() {
        house_back = 0;
        positionold[0] = 7;
        srand(5);
        setupCollision();
        initCollforBackground();
    }
    static bool blocked(float x, float z) {
        position[0] = x;
        position[2] = z;
        updateCollision();
        return std::any_of(collision_scene, collision_scene + collision_back,
                           [](const auto &f) { return checkCollision(collision_char, f) != 0; });
    }
};

TEST_F(Scene, HousesStandInSixRowsAndBurnByTheRandomStream) {
    constexpr float X[] = {80, 75, 67, 59, 54, 46,  38,  33,  25,
                           17, 12, 4,  -4, -9, -17, -25, -30, -38};
    constexpr float REACH[3][3] = {{1.9F, 2, 2.5F}, {3.2F, 2.8F, 3.9F}, {5.2F, 4.3F, 4.9F}};
    ASSERT_EQ(house_back, 108U);
    ASSERT_EQ(collision_back, 4U + 108U + 7U);
    srand(5);
    for (unsigned k = 0; k < house_back; ++k) {
        const float x = X[k % 18];
        const unsigned row = k / 18;
        const float z = 60 - 22 * static_cast<float>(row);
        EXPECT_EQ(std::pair(house_x[k], house_z[k]), std::pair(x, z)) << "house " << k;
        EXPECT_EQ(size_fire[k], k % 3 == 2 ? static_cast<float>(rand() % 256) / 128 : 0)
            << "house " << k;
        const Collision_Object &f = collision_scene[4 + k];
        const auto &[west, east, depth] = REACH[k % 3];
        EXPECT_THAT((std::array{f.minX, f.maxX, f.minZ, f.maxZ}),
                    Pointwise(FloatNear(1e-4F), {x - west, x + east, z - depth, z + depth}))
            << "house " << k;
    }
}

TEST_F(Scene, StopsThePlayersCircleAtWallsAndScenery) {
    EXPECT_EQ(collision_char.cx, 7) << "placed where the player was";
    // clang-format off
    const std::tuple<float, float, bool> places[] = {
        {99.5F, 49, true}, {98.5F, 71, false}, {-99.5F, 60, true}, {-98.5F, 60, false},  // walls
        {-50, 99.5F, true}, {-50, 98.5F, false}, {-50, -99.5F, true}, {-50, -98.5F, false},
        {-65.1F, 0, true}, {-62, 0, false}, {-60.1F, 1, true}, {-60.1F, -1, true},  // castle
        {-82.1F, 47, true}, {-81.9F, 47, false}, {-82.1F, -47.9F, true}, {-75, 15.1F, false},
        {0, 0, false}, {-1.6F, 1.4F, true}, {-1.4F, 0, false}, {-8.6F, -1.4F, true},  // trees
        {31.4F, 1.4F, true}, {28.4F, 0, false},
    };
    // clang-format on
    for (const auto &[x, z, expected] : places) {
        EXPECT_EQ(blocked(x, z), expected) << x << ", " << z;
    }
}

TEST_F(Scene, FootprintsBeyondTheLastAreDropped) {
    while (collision_back < MAX_FOOTPRINTS) {
        appendFootprint(ENEMY, 0, 1, 0, 1);
    }
    appendFootprint(SOLID, 0, 1, 0, 1);
    EXPECT_EQ(collision_back, MAX_FOOTPRINTS);
    EXPECT_EQ(collision_scene[MAX_FOOTPRINTS - 1].code, ENEMY);
}

TEST_F(Scene, FootprintsAreDrawnFromTheGroundUp) {
    drawCollision(circle(3, -4, 2));
    drawCollision(box(1, 3, -5, -1));
    drawCollision(ODD);
    const auto shapes = recording::drawings(recording::SHAPE);
    ASSERT_EQ(shapes.size(), 2U);
    const auto point = [&shapes](int i, float x, float y, float z) {
        return recording::transform(shapes[i].state.modelview, {x, y, z});
    };
    EXPECT_EQ(point(0, 0, -2, 0), (recording::Point{3, 0, -4})) << "lowest, of radius 2";
    EXPECT_EQ(point(1, 0.5F, -0.5F, 0.5F), (recording::Point{3, 0, -1}));
    EXPECT_EQ(point(1, -0.5F, 0.5F, -0.5F), (recording::Point{1, 80, -5}));
    EXPECT_TRUE(recording::state().lighting && recording::stacksBalanced());
}

}  // namespace

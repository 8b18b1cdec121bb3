#include "collision.h"

#include <gtest/gtest.h>

#include <tuple>

#include "scene_collision.h"

namespace {

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
        {circle(5, -7, 1), circle(6, -8, 1, ENEMY), 2},
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

TEST(Footprints, BeyondTheLastAreDropped) {
    collision_back = 0;
    while (collision_back < MAX_FOOTPRINTS) {
        appendFootprint(ENEMY, 0, 1, 0, 1);
    }
    appendFootprint(SOLID, 0, 1, 0, 1);
    EXPECT_EQ(collision_back, MAX_FOOTPRINTS);
    EXPECT_EQ(collision_scene[MAX_FOOTPRINTS - 1].code, ENEMY);
}

}  // namespace

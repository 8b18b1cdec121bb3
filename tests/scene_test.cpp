// What the recorded rounds show as numbers, said as what it means.

#include <glm/geometric.hpp>
#include <vector>

#include "game_test.h"
#include "poodle.h"
#include "rendering.h"

namespace {

using recording::Drawing;

constexpr float NEAR = 1e-3F;

using Scene = Game_Test;

// The light stands at (-45, 40, 40), the ground at y = 0.
TEST_F(Scene, ShadowsFallAwayFromTheSunOntoTheGround) {
    status = TOWN;
    position[0] = positionold[0] = 6;
    objrotold = 0.7F;
    displayCallback();
    std::vector<glm::vec3> poodles[2];  // lit ones and shadows, the enemies' before the player's
    for (const Drawing &d : recording::drawings(recording::SHAPE)) {
        for (const auto &vertex : d.vertices) {
            poodles[d.state.on[recording::BLENDING]].push_back(vertex.position);
        }
    }
    ASSERT_EQ(poodles[0].size(), 4U * 37 * 4);
    ASSERT_EQ(poodles[1].size(), poodles[0].size());
    for (std::size_t i = 0; i < poodles[0].size(); ++i) {
        const glm::vec3 p = poodles[0][i];
        const glm::vec3 shadow = {40 * p.x + 45 * p.y, 0, 40 * p.z - 40 * p.y};
        EXPECT_LT(glm::distance(poodles[1][i], shadow / (40 - p.y)), NEAR) << "of part " << i / 4;
    }
}

TEST_F(Scene, PartsOfABentPoodleStandWhereItsPosePutsThem) {
    Params pose;  // every joint bent by another angle
    for (int i = 0; i < POSE_VALUES; ++i) {
        (&pose.pos_x)[i] = static_cast<float>(i < 3 ? i + 1 : 2 * i + 2);
    }
    Poodle dog;
    dog.update(pose);
    dog.draw();
    const struct {
        std::size_t ellipsoid;
        const char *name;
        glm::vec3 centre;
    } rows[] = {
        {0, "torso", {0.635, 3.129, 3.064}},           {3, "tail pompom", {0.982, 3.858, 3.471}},
        {5, "left hind toe", {2.288, 3.629, 3.399}},   {8, "left bracelet", {2.026, 3.611, 3.32}},
        {10, "right hind toe", {2.066, 3.691, 2.188}}, {16, "left toe", {1.521, 3.11, 3.514}},
        {19, "right bracelet", {1.091, 3.091, 2.503}}, {20, "right toe", {1.236, 3.248, 2.374}},
        {29, "right pupil", {-0.354, 2.107, 3.137}},   {30, "chin", {0.123, 2.247, 3.155}},
        {32, "left ear", {-0.183, 2.414, 3.387}},      {34, "right ear", {-0.245, 2.414, 3.046}},
        {35, "top-knot", {-0.606, 2.487, 3.283}},      {36, "mane", {-0.259, 2.71, 3.222}},
    };
    const auto ellipsoids = recording::drawings(recording::SHAPE);
    ASSERT_EQ(ellipsoids.size(), 37U);
    for (const auto &row : rows) {
        EXPECT_LT(glm::distance(ellipsoids[row.ellipsoid].vertices[0].position, row.centre), NEAR)
            << row.name;
    }
}

}  // namespace

// What the rounds tell as numbers, said as what it means.

#include <glm/geometric.hpp>
#include <vector>

#include "game_test.h"
#include "rendering.h"

namespace {

using recording::Drawing;

constexpr float NEAR = 1e-3F;

using Shadows = Game_Test;

// The light stands at (-45, 40, 40), the ground at y = 0.
TEST_F(Shadows, FallAwayFromTheSunOntoTheGround) {
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

}  // namespace

#include "camera.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <tuple>

#include "recording_gl.h"

namespace {

using testing::FloatNear;
using testing::Pointwise;

constexpr float NEAR = 1e-5F;
constexpr float NO_NUMBER = std::numeric_limits<float>::quiet_NaN();

// At (x, y, 0), looking at the origin.
Camera looking(float x, float y) {
    Camera c;
    const float eye[] = {x, y, 0};
    const float center[] = {0, 0, 0};
    const float up[] = {0, 0, 1};
    c.update(eye, center, up);
    c.update(nullptr, nullptr, nullptr);  // changes nothing
    return c;
}

TEST(Camera, ZoomStepsByItsTwoFactorsWithinTheBounds) {
    const float almost = std::nextafter(0.9F, 1.0F);
    // 20, 10 has the squared distance 500 exactly; that of 0.5263 is just over 0.277.
    const std::tuple<float, float, float, bool> cases[] = {
        {0.5262F, 0, 0.9F, false}, {0.5264F, 0, 0.9F, true}, {90, 0, 0.9F, true},
        {20, 10, 1.1F, false},     {20, 9.999F, 1.1F, true}, {0.1F, 0, 1.1F, true},
        {3, 4, 0.8F, false},       {3, 4, 1, false},         {3, 4, almost, false},
        {3, 4, -1, false},         {3, 4, 2, false},         {3, 4, NO_NUMBER, false}};
    for (const auto &[x, y, factor, steps] : cases) {
        Camera c = looking(x, y);
        c.zoom(factor);
        const float scale = steps ? factor : 1;
        EXPECT_THAT(c.eye, Pointwise(FloatNear(NEAR), {x * scale, y * scale, 0.0F}))
            << x << " by " << factor;
    }
}

TEST(Camera, SeesFromATenthOfAUnitToSixHundred) {
    for (const auto &[distance, depth] : {std::pair(0.1F, -1), std::pair(600.0F, 1)}) {
        recording::gl = {};
        looking(distance, 0).setup();
        const glm::vec3 origin = recording::transform(recording::gl.state.projection, {0, 0, 0});
        EXPECT_NEAR(origin.z, depth, 1e-7) << "the view's nearest and farthest point";
    }
}

TEST(Camera, PitchThatIsNoNumberStaysAboveTheGround) {
    Camera c = looking(3, 2);
    c.rotate(0, NO_NUMBER);
    EXPECT_EQ(c.eye[1], 0.1F);
}

}  // namespace

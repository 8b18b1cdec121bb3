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

// At the given eye, looking at the given point.
Camera looking(float x, float y, float z, float centre) {
    Camera c;
    const float eye[] = {x, y, z};
    const float center[] = {centre, 0, 0};
    const float up[] = {0, 0, 1};
    c.update(eye, center, up);
    c.update(nullptr, nullptr, nullptr);
    EXPECT_THAT(c.up, Pointwise(FloatNear(0), up));
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
        for (const bool alongZ : {false, true}) {
            Camera c = looking(alongZ ? 0 : x, y, alongZ ? x : 0, 0);
            c.zoom(factor);
            const float scale = steps ? factor : 1;
            EXPECT_THAT(c.eye, Pointwise(FloatNear(NEAR), {alongZ ? 0 : x * scale, y * scale,
                                                           alongZ ? x * scale : 0}))
                << x << " by " << factor;
        }
    }
}

TEST(Camera, SeesFromATenthOfAUnitToSixHundred) {
    const Camera c = looking(0, 0, 0, 1);
    recording::reset();
    c.setup();
    const auto depthAt = [](float x) {
        return recording::transform(recording::state().projection, {x, 0, 0}).z;
    };
    EXPECT_NEAR(depthAt(0.1F), -1, 1e-5);
    EXPECT_NEAR(depthAt(600), 1, 1e-7);
}

TEST(Camera, PitchThatIsNoNumberStaysAboveTheGround) {
    Camera c = looking(3, 2, 4, 7);
    c.rotate(0, NO_NUMBER);
    EXPECT_EQ(c.eye[1], 0.1F);
}

}  // namespace

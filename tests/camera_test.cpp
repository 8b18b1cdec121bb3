#include "camera.h"

#include <gmock/gmock.h>

#include <array>
#include <cmath>
#include <limits>
#include <numbers>
#include <tuple>

#include "recording_gl.h"

namespace {

using testing::ElementsAre;
using testing::FloatNear;

constexpr float NEAR = 1e-5F;
constexpr float QUARTER = std::numbers::pi_v<float> / 2;
constexpr float NO_NUMBER = std::numeric_limits<float>::quiet_NaN();

auto isAt(float x, float y, float z) {
    return ElementsAre(FloatNear(x, NEAR), FloatNear(y, NEAR), FloatNear(z, NEAR));
}

// At the given eye, looking at the origin.
Camera lookingFrom(float x, float y, float z) {
    Camera c;
    const float eye[] = {x, y, z};
    const float origin[] = {0, 0, 0};
    c.update(eye, origin, nullptr);
    return c;
}

// Distance from the origin after zooming out from (x, 0, 0).
float zoomed(float x, float factor, int times = 1) {
    Camera c = lookingFrom(x, 0, 0);
    while (times-- > 0) {
        c.zoom(factor);
    }
    return c.eye[0];
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
        Camera c = lookingFrom(x, y, 0);
        c.zoom(factor);
        const float scale = steps ? factor : 1;
        EXPECT_THAT(c.eye, isAt(x * scale, y * scale, 0)) << x << " by " << factor;
    }
}

TEST(Camera, ZoomPresetsTakeFortyStepsAtMost) {
    for (float x : {0.48F, 0.6F, 4.8F, 21.0F, 24.0F}) {
        const float in = zoomed(x, 0);
        EXPECT_GE(in, 0.473F) << "from " << x;
        EXPECT_LT(in, 0.5264F) << "from " << x;
        EXPECT_EQ(zoomed(x, 0.5F), zoomed(in, 1.1F, 20)) << "the middle, from " << x;
        EXPECT_EQ(zoomed(x, 1.5F), zoomed(x, 1.1F, 40)) << "from " << x;
    }
    EXPECT_EQ(zoomed(4.8F, 0), zoomed(4.8F, 0.9F, 21));
    EXPECT_NEAR(zoomed(4.8F, 1.5F), 4.8 * std::pow(1.1, 17), 1e-4) << "the first beyond 22.36";
}

TEST(Camera, TurnsTheEyeAboutTheCentre) {
    const auto turned = [](float yaw, float pitch) {
        Camera c = lookingFrom(3, 2, 4);
        c.rotate(yaw, pitch);
        return std::to_array(c.eye);
    };
    EXPECT_THAT(turned(QUARTER, 0), isAt(4, 2, -3));
    EXPECT_THAT(turned(-QUARTER / 3, 0), isAt(3 * 0.8660254F - 2, 2, 4 * 0.8660254F + 1.5F));
    EXPECT_THAT(turned(0, -QUARTER), isAt(3, 4, -2)) << "about the world's x axis";
    EXPECT_THAT(turned(QUARTER, QUARTER), isAt(4, 3, 2)) << "from where the yaw led";
    EXPECT_THAT(turned(0, QUARTER), ElementsAre(3, 0.1F, FloatNear(2, NEAR))) << "clamped";
    EXPECT_EQ(turned(0, NO_NUMBER)[1], 0.1F);
    Camera c;
    c.rotate(QUARTER, 0);
    EXPECT_THAT(c.eye, isAt(4.8F, 1.8F, 0));
}

TEST(Camera, ViewGoesOntoTheProjectionMatrix) {
    recording::reset();
    glTranslatef(1, 2, 3);
    const recording::Matrix placement = recording::state().modelview;
    Camera c;
    const float delta[] = {1, -1.8F, 3};
    c.move(nullptr, delta);
    c.setup();
    EXPECT_EQ(recording::state().matrixMode, GLenum{GL_MODELVIEW});
    EXPECT_EQ(recording::state().modelview, placement);
    // The camera looks from (1, 0, 7.8) at (1, -0.3, 3).
    const recording::Matrix view = recording::state().projection;
    EXPECT_THAT(recording::transform(view, {1, -0.3F, 3}),
                ElementsAre(FloatNear(0, NEAR), FloatNear(0, NEAR), testing::_));
    const float aspect = static_cast<float>(width) / static_cast<float>(height);
    const float edge = std::hypot(0.3F, 4.8F) * std::tan(QUARTER * 17.5F / 90) * aspect;
    EXPECT_NEAR(recording::transform(view, {1 + edge, -0.3F, 3})[0], 1, NEAR) << "35 degrees";
    c.setupShadow();
    EXPECT_EQ(recording::state().modelview, view) << "in place of the current matrix";
}

}  // namespace

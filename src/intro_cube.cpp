#include "intro_cube.h"

#include <GL/gl.h>

#include "assets.h"
#include "game_state.h"

namespace {

constexpr float CENTRE_Y = 1.6F;  // of the cube at rest, world units
constexpr float CENTRE_Z = 1.3F;
constexpr float TURN_STEP = 0.5F;    // degrees a frame
constexpr double SWING_STEP = 0.05;  // world units a frame
constexpr float SWING_FRAMES = 90;   // one way

// Zstep counts 0 up to 89 on the way out, then -90 up to -1 on the way back.
void swing() {
    if (Zstep >= 0 && Zstep <= SWING_FRAMES) {
        Zval = static_cast<float>(Zval - SWING_STEP);
        Zstep += 1;
        if (Zstep == SWING_FRAMES) {
            Zstep = -SWING_FRAMES;
        }
    } else {
        Zstep += 1;
        Zval = static_cast<float>(Zval + SWING_STEP);
    }
}

void turn() {
    if (hor == rotHor) {
        return;
    }
    hor += hor > rotHor ? -TURN_STEP : TURN_STEP;
    swing();
    if (hor == rotHor) {
        Rotating = false;
    }
}

}  // namespace

void IntroCube() {
    glColor3f(1, 1, 1);
    glPushMatrix();
    {
        glTranslatef(0, CENTRE_Y, CENTRE_Z);
        if (option == 0 && selectOption) {
            status = TOWN;
        }
        if (Rotating) {
            turn();
        }
        glTranslatef(0, 0, Zval);
        glRotatef(hor, 0, 1, 0);
        glCallList(intro);
    }
    glPopMatrix();
}

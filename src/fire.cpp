#include "fire.h"

#include <GL/gl.h>

#include "assets.h"
#include "degrees.h"
#include "game_objects.h"
#include "game_state.h"

namespace {

constexpr float BASE_HEIGHT = 1.4F;

}  // namespace

void drawFire(float scale, Fountain_Draw draw) {
    glPushMatrix();
    {
        glRotatef(degrees(objrotold), 0, 1, 0);
        glBindTexture(GL_TEXTURE_2D, texture[FIRE_TEXTURE]);
        glBlendFunc(GL_SRC_ALPHA, GL_ONE);
        glTranslatef(0, BASE_HEIGHT, 0);
        glScalef(scale, scale, scale);
        (fireworks1.*draw)();
        glRotatef(90, 0, 1, 0);
        (fireworks2.*draw)();
        camera.setup();
    }
    glPopMatrix();
}

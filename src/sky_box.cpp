#include "sky_box.h"

#include <GL/gl.h>

#include "assets.h"
#include "game_objects.h"

namespace {

constexpr float BASE = -45;  // height of the box's floor, world units

// A corner: texture coordinates, and the place in the box, x and z in units of the
// ground's half extent and y in units of the box's height.
struct Corner {
    float s, t;
    float x, y, z;
};

struct Face {
    Sky_Slot slot;
    Corner corners[4];
};

// The side pictures are seen upright and unmirrored from inside the box.
// clang-format off
constexpr Face FACES[] = {
    {SKY,   {{0, 1, -1, 1, -1}, {0, 0,  1, 1, -1}, {1, 0,  1, 1,  1}, {1, 1, -1, 1,  1}}},
    {FLOOR, {{1, 1, -1, 0,  1}, {0, 1,  1, 0,  1}, {0, 0,  1, 0, -1}, {1, 0, -1, 0, -1}}},
    {NORTH, {{1, 1, -1, 1,  1}, {0, 1,  1, 1,  1}, {0, 0,  1, 0,  1}, {1, 0, -1, 0,  1}}},
    {SOUTH, {{1, 1,  1, 1, -1}, {0, 1, -1, 1, -1}, {0, 0, -1, 0, -1}, {1, 0,  1, 0, -1}}},
    {EAST,  {{1, 1, -1, 1, -1}, {0, 1, -1, 1,  1}, {0, 0, -1, 0,  1}, {1, 0, -1, 0, -1}}},
    {WEST,  {{1, 1,  1, 1,  1}, {0, 1,  1, 1, -1}, {0, 0,  1, 0, -1}, {1, 0,  1, 0,  1}}},
};
// clang-format on
static_assert(sizeof FACES / sizeof *FACES == SKY_SLOTS);

void drawFace(const Face &face) {
    glBindTexture(GL_TEXTURE_2D, skybox[face.slot]);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    glBegin(GL_QUADS);
    for (const Corner &corner : face.corners) {
        glTexCoord2f(corner.s, corner.t);
        glVertex3f(corner.x * swidth2, corner.y * sheight, corner.z * swidth2);
    }
    glEnd();
}

}  // namespace

void drawSkyBox() {
    glPushMatrix();
    {
        glTranslatef(0, BASE, 0);
        glDisable(GL_LIGHTING);
        for (const Face &face : FACES) {
            drawFace(face);
        }
    }
    glPopMatrix();
    glEnable(GL_LIGHTING);
}

#include "town.h"

#include <GL/gl.h>

#include "assets.h"
#include "fire.h"
#include "scene_collision.h"

namespace {

// Height of a house model's origin. Its place on the ground and its footprint come from GROUP in
// scene_collision.cpp.
constexpr float HOUSE_CENTRE = 1.7F;

// Places the modelview frame in house i and draws it.
void drawHouse(unsigned i, unsigned list) {
    glTranslatef(house_x[i], 0, house_z[i]);
    glTranslatef(0, HOUSE_CENTRE, 0);
    glCallList(list);
}

}  // namespace

void drawHouses(bool shadowPass) {
    for (unsigned i = 0; i < house_back; i += 3) {
        glPushMatrix();
        { drawHouse(i, house1); }
        glPopMatrix();
        glPushMatrix();
        { drawHouse(i + 1, house2); }
        glPopMatrix();
        glPushMatrix();
        {
            drawHouse(i + 2, house3);
            if (!shadowPass) {
                drawFire(size_fire[i + 2], &Fireworks::draw_no_update);
                glColor3f(1, 1, 1);
            }
        }
        glPopMatrix();
    }
}

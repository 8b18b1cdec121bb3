#include "landscape.h"

#include <GL/gl.h>

#include "assets.h"
#include "fire.h"

namespace {

struct Place {
    float x, y, z;  // of a model's origin, world units
};

// Where they stand in the way is told apart from this, in SCENERY of scene_collision.cpp.
constexpr Place TREES[] = {{-3, 1.8F, 0}, {-10, 1.8F, 0}, {30, 1.8F, 0}};
constexpr float TREE_SCALE = 0.5F;
constexpr float TREE_FIRE_SCALE = 3;  // within the tree's scale

constexpr Place FOREST_BLOCKS[] = {{-95, 2, 30}, {-95, 2, -30}};
constexpr float FOREST_SCALE = 2;  // across
constexpr float FOREST_HEIGHT_SCALE = 4;
constexpr float FOREST_ANGLE = -90;  // degrees about y

constexpr Place CASTLE = {-80, 4.7F, 0};
constexpr float CASTLE_SCALE = 3;

void translateTo(const Place &place) {
    glTranslatef(place.x, place.y, place.z);
}

}  // namespace

void drawTrees(bool shadowPass) {
    for (const Place &place : TREES) {
        glPushMatrix();
        {
            translateTo(place);
            glScalef(TREE_SCALE, TREE_SCALE, TREE_SCALE);
            glCallList(tree);
            if (!shadowPass) {
                drawFire(TREE_FIRE_SCALE, &Fireworks::draw);
                glColor3f(1, 1, 1);
            }
        }
        glPopMatrix();
    }
}

void drawForest() {
    for (const Place &place : FOREST_BLOCKS) {
        glPushMatrix();
        {
            translateTo(place);
            glScalef(FOREST_SCALE, FOREST_HEIGHT_SCALE, FOREST_SCALE);
            glRotatef(FOREST_ANGLE, 0, 1, 0);
            glCallList(forest);
        }
        glPopMatrix();
    }
}

void drawCastle() {
    glPushMatrix();
    {
        translateTo(CASTLE);
        glScalef(CASTLE_SCALE, CASTLE_SCALE, CASTLE_SCALE);
        glCallList(castle);
    }
    glPopMatrix();
}

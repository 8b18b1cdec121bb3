#include "people.h"

#include <GL/gl.h>

#include "assets.h"
#include "game_objects.h"
#include "game_state.h"
#include "scene_collision.h"

namespace {

struct Person {
    int x, z;   // world units
    int angle;  // degrees about y
};

// clang-format off
constexpr Person ENEMIES[] = {
    { -5,  0,  90},
    {-15,  4, 180},
    {-60, 10, 180},
};

constexpr Person TOWNSPEOPLE[] = {
    {  5,  0, 180},
    {-25,  0, 270},
    {-40, 11,   0},
    { 20, 13,   0},
    { 50,  5,  90},
};
// clang-format on

constexpr float SCALE = 0.3F;               // of either model
constexpr float TOWNSPERSON_HEIGHT = 0.7F;  // of the model's origin
constexpr double FOOTPRINT_REACH = 0.5;
constexpr float SHADOW_GREY = 0.5F;  // lighter than that of the scenery
constexpr float ENEMY_COLOUR[3] = {0.5F, 0.1F, 0.1F};

void shadowColour() {
    glColor3f(SHADOW_GREY, SHADOW_GREY, SHADOW_GREY);
}

void registerFootprint(int code, int x, int z) {
    if (INITCOLLBOXES) {
        appendFootprint(code, x - FOOTPRINT_REACH, x + FOOTPRINT_REACH, z - FOOTPRINT_REACH,
                        z + FOOTPRINT_REACH);
    }
}

void drawEnemy(const Person &enemy, bool shadowPass) {
    glPushMatrix();
    {
        glTranslatef(static_cast<float>(enemy.x), 0, static_cast<float>(enemy.z));
        glScalef(SCALE, SCALE, SCALE);
        glRotatef(static_cast<float>(enemy.angle), 0, 1, 0);
        glDisable(GL_TEXTURE_2D);
        if (shadowPass) {
            shadowColour();
        } else {
            glColor3f(ENEMY_COLOUR[0], ENEMY_COLOUR[1], ENEMY_COLOUR[2]);
        }
        poodle2.draw();
        glEnable(GL_TEXTURE_2D);
    }
    glPopMatrix();
    registerFootprint(ENEMY, enemy.x, enemy.z);
}

}  // namespace

void drawPeople(bool shadowPass) {
    for (const Person &enemy : ENEMIES) {
        drawEnemy(enemy, shadowPass);
    }
    if (shadowPass) {
        glDisable(GL_TEXTURE_2D);
        shadowColour();
    }
    if (status == TOWN) {
        for (const Person &person : TOWNSPEOPLE) {
            drawNPC(person.x, person.z, person.angle);
        }
    }
    INITCOLLBOXES = false;
}

void drawNPC(int x, int z, int angle) {
    glPushMatrix();
    {
        glTranslatef(static_cast<float>(x), TOWNSPERSON_HEIGHT, static_cast<float>(z));
        glScalef(SCALE, SCALE, SCALE);
        glRotatef(static_cast<float>(angle), 0, 1, 0);
        glCallList(NPC);
    }
    glPopMatrix();
    registerFootprint(TOWNSPERSON, x, z);
}

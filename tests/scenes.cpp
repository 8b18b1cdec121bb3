#include "scenes.h"

#include <GL/glut.h>

#include <array>
#include <bit>
#include <cstdlib>

#include "fireworks.h"
#include "game_objects.h"
#include "game_state.h"
#include "menus.h"
#include "overlay.h"
#include "people.h"
#include "poodle.h"
#include "primitives.h"
#include "rendering.h"
#include "scene_collision.h"

namespace {

// Every joint is bent by another angle.
void drawPoodle() {
    std::array<float, POSE_VALUES> pose;
    for (std::size_t i = 0; i < pose.size(); ++i) {
        pose[i] = static_cast<float>(i < 3 ? i + 1 : 2 * i + 2);
    }
    Poodle dog;
    dog.update(std::bit_cast<Params>(pose));
    glColor3f(1, 0, 0);
    dog.draw();
}

// The flames of a new fountain after each of the steps.
void drawFountain(int count, int scheme, int steps, void (Fireworks::*draw)() = &Fireworks::draw) {
    srand(7);
    Fireworks fountain(count, scheme);
    while (steps-- > 0) {
        (fountain.*draw)();
    }
    fountain.draw_no_update();
}

void drawShadow(float light) {
    const float plane[4] = {1, 2, 3, 4};
    const float place[4] = {5, 6, 7, light};
    float shadow[4][4];
    shadowTransform(shadow, plane, place);
    glPushMatrix();
    glMultMatrixf(&shadow[0][0]);
    glutWireSphere(2, 8, 8);
    glPopMatrix();
}

}  // namespace

// clang-format off
const std::map<std::string, std::function<void()>> SCENES = {
    {"ellipsoid",      [] { drawEllipsoid(2, 3, 5, 7); }},
    {"box",            [] { drawBox(2, 4, 6); }},
    {"disc-up",        [] { drawCircle(2, 3, UP); }},
    {"disc-down",      [] { drawCircle(0.5F, 16, DOWN); }},
    {"disc-odd",       [] { drawCircle(1, 3, static_cast<NORMAL>(7)); }},
    {"no-disc",        [] { drawCircle(1, 0, UP); }},
    {"cylinder",       [] { drawCylinder(1, 1, 3, 12); }},
    {"cone",           [] { drawCylinder(2, 0.5F, 3, 5); }},
    {"cone-tip-up",    [] { drawCylinder(1, 0, 2, 8); }},
    {"cone-tip-down",  [] { drawCylinder(0, 1, 2, 8); }},
    {"no-cylinder",    [] { drawCylinder(1, 1, 1, -3); }},
    {"poodle",         drawPoodle},
    {"flames-red",     [] { drawFountain(3, 0, 60); }},
    {"flames-green",   [] { drawFountain(3, 1, 60); }},
    {"flames-blue",    [] { drawFountain(3, 2, 60); }},
    {"flame-reborn",   [] { drawFountain(1, 0, 300); }},
    {"flames-stepped", [] { drawFountain(3, 0, 60, &Fireworks::step); }},
    {"flames-held",    [] { drawFountain(3, 0, 60, &Fireworks::draw_no_update); }},
    {"flames-fewest",  [] { drawFountain(-1, 0, 0); }},
    {"flames-most",    [] { drawFountain(300, 0, 0); }},
    {"circle",         [] { drawCollision({CIRCLE, SOLID, 3, -4, 2, 9, 9, 9, 9}); }},
    {"rectangle",      [] { drawCollision({RECTANGLE, SOLID, 9, 9, 9, 1, 3, -5, -2}); }},
    {"odd-footprint",  [] { drawCollision({2, SOLID, 9, 9, 9, 1, 3, -5, -2}); }},
    {"panels",         [] { for (int box = -1; box <= 6; ++box) { draw2DBox(box); } }},
    {"messages",       [] { for (BATTLE_MESSAGE = -1; BATTLE_MESSAGE <= 4; ++BATTLE_MESSAGE) {
                                displayBattleMessages(); } }},
    {"townsperson",    [] { drawNPC(7, -8, 30); }},
    {"shadow",         [] { drawShadow(8); }},
    {"view-as-shadow", [] { glPushMatrix(); glTranslatef(1, 2, 3); camera.setupShadow();
                            glutWireCube(2); glPopMatrix(); }},
};
// clang-format on

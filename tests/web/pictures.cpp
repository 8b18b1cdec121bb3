// Draws a list of scenes of the real game, on the desktop and in a browser, to be compared: the
// same random numbers, the same state, the same frames. Runs in the data folder.
//
// Usage: pictures PICTURE_FOLDER [NAME_PART]    with NAME_PART only the scenes that contain it

#include <GL/glut.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "camera.h"
#include "game_objects.h"
#include "game_state.h"
#include "input.h"
#include "main.h"
#include "rendering.h"
#include "update.h"

#ifdef __EMSCRIPTEN__
#include <webgl/webgl1.h>
#define glReadPixels emscripten_glReadPixels
#else
// Takes the place of GLUT's: the frame stays in the back buffer, to be read.
void glutSwapBuffers() {}
#endif

// Takes the place of the library's, which is another one in a browser.
int rand() noexcept(noexcept(rand())) {
    static std::uint64_t state = 1;
    state = state * 6364136223846793005U + 1442695040888963407U;
    return static_cast<int>(state >> 33U);
}

namespace {

constexpr unsigned char ENTER = 13;
constexpr float RADIANS = 0.017453292F;  // of one degree

std::string folder;
std::string wanted;

void run(int frames) {
    for (int i = 0; i < frames; ++i) {
        idleCallback();
        displayCallback();
    }
}

void press(unsigned char key, int updates = 0) {
    keyCallback(key, 0, 0);
    for (int i = 0; i < updates; ++i) {
        idleCallback();
    }
}

void turnCube(float degrees) {
    status = TITLE;
    hor = rotHor = degrees;
    displayCallback();
}

// Puts the player somewhere in the town: heading 0 looks along -z, 90 along -x. The view is turned
// by `yaw` from behind the player and raised by `pitch`; `distance` counts in that of the start.
void stand(float x, float z, float heading, float distance, float yaw, float pitch) {
    status = TOWN;
    position[0] = positionold[0] = x;
    position[2] = positionold[2] = z;
    objrot = objrotold = heading * RADIANS;
    const float turn = (heading + yaw) * RADIANS;
    const float rise = pitch * RADIANS;
    const float back = 4.8F * distance;
    const float centre[] = {x, 1.5F, z};
    const float eye[] = {x + back * std::cos(rise) * std::sin(turn),
                         1.5F + 0.3F * distance + back * std::sin(rise),
                         z + back * std::cos(rise) * std::cos(turn)};
    camera.update(eye, centre, nullptr);
    run(2);
}

struct Scene {
    const char *name;
    void (*show)();
};

// In an order in which they can be played: a message belongs to a battle, a win to its end.
// clang-format off
const Scene SCENES[] = {
    {"title-start",    [] { turnCube(0); }},
    {"title-keys",     [] { turnCube(90); }},
    {"title-battles",  [] { turnCube(180); }},
    {"title-story",    [] { turnCube(270); }},
    {"title-turning",  [] { Zval = -2; turnCube(35); }},
    {"start-near",     [] { stand(0, 0, 0, 1, 0, 0); press('1'); run(1); }},
    {"start-far",      [] { stand(0, 0, 0, 1, 0, 0); press('3'); run(1); }},
    {"start-middle",   [] { stand(0, 0, 0, 1, 0, 0); press('2'); run(1); }},
    {"street",         [] { stand(82, 5, 90, 1, 0, 0); }},
    {"street-crowded", [] { stand(-19, 5, 45, 1, 0, 0); }},
    {"castle",         [] { stand(-52, 0, 90, 1, 0, 0); }},
    {"castle-wall",    [] { stand(-65, 8, 85, 0.4F, 0, 0); }},
    {"forest",         [] { stand(-72, 30, 90, 1, 0, 0); }},
    {"sky-edge",       [] { stand(-75, 80, 150, 1, 0, -8); }},
    {"roofs",          [] { stand(4, 5, 0, 4.6F, 0, 25); }},
    {"fire",           [] { stand(4, 25, 0, 1, 0, 0); }},
    {"walking",        [] { stand(40, 5, 90, 0.8F, 60, 0); press('w', 9); press('w', 9); run(1); }},
    {"talk",           [] { stand(5, 2.2F, 0, 0.8F, 25, 0); press('w', 1);
                            while (!IsTalkBool) { press('w', 1); } run(2); }},
    {"battle",         [] { stand(-15, 6.2F, 0, 0.9F, 55, 0); Menu = NO_OVERLAY; IsTalkBool = false;
                            while (status == TOWN) { press('w', 1); } run(2); }},
    {"battle-message", [] { Fight_status = ATTACK; press(ENTER); run(12); }},
    {"battle-answer",  [] { BattleMessageTimer = 1; run(3); }},
    {"won",            [] { ENEMY_Health = 0; run(3); }},
};
// clang-format on

bool save(const std::string &name) {
    std::vector<unsigned char> pixels(std::size_t{4} * START_WIDTH * START_HEIGHT);
    glReadPixels(0, 0, START_WIDTH, START_HEIGHT, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    FILE *file = fopen((folder + "/" + name + ".ppm").c_str(), "wb");
    if (file == nullptr) {
        return false;
    }
    fprintf(file, "P6\n%d %d\n255\n", START_WIDTH, START_HEIGHT);
    for (int y = START_HEIGHT; y-- > 0;) {
        for (int x = 0; x < START_WIDTH; ++x) {
            fwrite(&pixels[4 * (static_cast<std::size_t>(y) * START_WIDTH + x)], 1, 3, file);
        }
    }
    puts(name.c_str());
    return fclose(file) == 0;
}

// Plays them all, also where only some are wanted: one leads to the next.
void showAll() {
    for (const Scene &scene : SCENES) {
        scene.show();
        if (std::string(scene.name).find(wanted) != std::string::npos && !save(scene.name)) {
            exit(1);
        }
    }
    exit(0);
}

}  // namespace

int main(int argc, char **argv) {
    glutInit(&argc, argv);
    if (argc < 2) {
        fprintf(stderr, "usage: pictures PICTURE_FOLDER [NAME_PART]\n");
        return 2;
    }
    folder = argv[1];
    wanted = argc > 2 ? argv[2] : "";
    createAnimations();
    glutInitDisplayMode(GLUT_RGB | GLUT_DOUBLE | GLUT_DEPTH | GLUT_STENCIL);
    glutInitWindowSize(START_WIDTH, START_HEIGHT);
    glutCreateWindow("Talvery: pictures");
    glutReshapeFunc(myReshape);
    glutDisplayFunc(showAll);
    glutIdleFunc([] {});
    init();
    glutMainLoop();
    return 0;
}

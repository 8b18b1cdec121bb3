// Takes pictures of the real game, frame by frame, from a list of places and moments: what to
// look at when the art has changed. Runs in the data folder, on a display.
//
// Usage: shots PICTURE_FOLDER [NAME_PART]
// With NAME_PART only the places whose names contain it; title, start, walk, talk and battle
// each stand for all pictures of that kind.

#include <GL/glut.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "game_objects.h"
#include "game_state.h"
#include "input.h"
#include "main.h"
#include "rendering.h"
#include "update.h"
#include "viewer.h"

namespace {

constexpr int WIDTH = 1280;
constexpr int HEIGHT = 1024;
constexpr float RADIANS = 0.017453292F;  // of one degree
constexpr int SETTLING_FRAMES = 3;       // for the camera and the texts

// A place in the town and a view: heading 0 looks along -z, 90 along -x. The view is turned
// by `yaw` from behind the player and raised by `pitch`; `distance` counts in that of the start.
struct Place {
    const char *name;
    float x, z;
    float heading;
    float distance = 1;
    float yaw = 0;
    float pitch = 0;
};

// clang-format off
const Place PLACES[] = {
    {"start",                  0,     0,    0},
    {"start-back",             0,     5,  180},
    {"start-left",             0,     2,   90},
    {"start-right",            0,     2,  270},
    {"street-49-west",        82,    49,   90},
    {"street-49-east",       -46,    49,  270},
    {"street-27-west",        82,    27,   90},
    {"street-27-east",       -46,    27,  270},
    {"street-05-west",        82,     5,   90},
    {"street-05-east",       -46,     5,  270},
    {"street-17-west",        82,   -17,   90},
    {"street-17-east",       -46,   -17,  270},
    {"street-39-west",        82,   -39,   90},
    {"street-39-east",       -46,   -39,  270},
    {"castle-from-the-gate", -52,     0,   90},
    {"castle-from-the-road", -40,     5,   85},
    {"castle-from-afar",      15,     5,   90},
    {"castle-from-the-side", -58,    40,   40},
    {"castle-gate-near",     -65,     0,   90, 0.5F},
    {"castle-gate-passage",  -62.5F,  0,   90, 0.6F, 0, 6},
    {"castle-post-near",     -59.9F,  1.6F, 100, 0.4F},
    {"castle-wall-near",     -65,     8,   85, 0.4F},
    {"castle-corner-near",   -65,    12.5F, 75, 0.7F},
    {"castle-side-near",     -74,    15,    0, 0.6F},
    {"castle-from-above",    -61,     6,   80, 4.4F, 0, 18},
    {"forest",               -72,    30,   90},
    {"forest-edge",          -76,    52,   60},
    {"forest-and-castle",    -50,   -30,   75},
    {"forest-near",          -81.9F, 27,   90, 0.4F},
    {"forest-near-south",    -81.9F, -33,  100, 0.5F},
    {"forest-ten-away",      -73,   -26,   95},
    {"forest-far-end",       -90,    52,   20},
    {"forest-far-end-near",  -93,    48.2F, 10, 0.5F},
    {"forest-south-end",     -90,   -52,  165},
    {"forest-from-behind",   -99,    56,    0},
    {"forest-by-the-castle", -77,    18,   75},
    {"tree",                  -6,     3,   60, 1, 0, 5},
    {"tree-near",             30,     6,    0, 0.7F},
    {"cottage-front",         17,    22,    0},
    {"cottage-back",          17,     6,  180},
    {"cottage-east",          20.5F, 23,   25},
    {"cottage-west",          13.5F, 23,  335},
    {"inn-front",             12,    24,    0},
    {"inn-back",              12,     8,  180},
    {"inn-east",              18,    24,   30},
    {"inn-west",               6,    24,  330},
    {"hall-front",             4,    25,    0},
    {"hall-back",              4,     7,  180},
    {"hall-east",             12,    24,   40},
    {"hall-west",             -3,    24,  320},
    {"townsperson-1",          5,     2.2F, 0, 0.8F, 25},
    {"townsperson-2",        -23,     2,   45, 0.8F, -25},
    {"townsperson-3",        -40,     8.5F, 180, 0.8F, 25},
    {"townsperson-4",         19,    10,  180, 0.8F, 25},
    {"townsperson-5",         48,     5,  270, 0.8F, 25},
    {"enemy",                -13,     6,   45, 0.8F, 25},
    {"poodle-side",           40,     5,   90, 0.7F, 80},
    {"poodle-front",          40,     5,   90, 0.7F, 160},
    {"sky-north",             60,    71,  180, 1, 0, -18},
    {"sky-south",             60,   -61,    0, 1, 0, -18},
    {"sky-east",             -70,    71,   90, 1, 0, -18},
    {"sky-west",              90,     5,  270, 1, 0, -18},
    {"sky-corner",           -60,    75,  135, 1, 0, -18},
    {"ground-near",           40,     5,   90, 0.12F, 0, 10},
    {"ground-from-above",     40,     5,   90, 4.6F, 0, 40},
    {"roofs-from-above",       4,     5,    0, 4.6F, 0, 25},
    {"edge-north",            30,    80,  180},
    {"edge-north-corner",    -75,    80,  150},
    {"edge-south",            30,   -80,    0},
    {"edge-east",            -80,    70,   90},
    {"edge-west",             80,     5,  270},
    {"edge-west-road",        92,    30,  250},
    {"street-person-1",        6.5F,  6,    0},
    {"street-person-2",      -19,     5,   45},
    {"street-person-3",      -38.5F,  6,  180},
    {"street-person-4",       21.5F,  6,  180},
    {"street-person-4-side",  15,     6,  225},
    {"street-person-5",       43,     6.5F, 270},
    {"ground-square",          1,     7,  120, 0.6F, 0, 22},
    {"ground-square-star",     0,     5,    0, 1.5F, 30, 30},
    {"ground-street",         30,     5,   90, 0.6F, 30, 15},
    {"ground-street-low",     55,     4,   70, 0.6F},
    {"ground-gate",          -56,     0,   90, 0.6F, 30, 15},
    {"ground-court",         -60,     5,  120, 1, 0, 20},
    {"ground-yard",            9.5F, 10,  300, 0.6F, 0, 20},
    {"ground-meadow",         94,    40,  300, 0.6F, 0, 20},
};
// clang-format on

std::string folder;
std::string wanted;

bool isWanted(const std::string &name) {
    return name.find(wanted) != std::string::npos;
}

void runFrames(int frames) {
    for (int i = 0; i < frames; ++i) {
        idleCallback();
        displayCallback();
    }
}

void press(unsigned char key) {
    keyCallback(key, 0, 0);
}

void save(const std::string &name) {
    ContactSheet picture(1, WIDTH, HEIGHT);
    picture.add();
    if (!picture.write(folder + "/" + name + ".png")) {
        exit(1);
    }
    printf("%s\n", name.c_str());
}

void stand(const Place &place) {
    position[0] = positionold[0] = place.x;
    position[2] = positionold[2] = place.z;
    objrot = objrotold = place.heading * RADIANS;
    const float yaw = (place.heading + place.yaw) * RADIANS;
    const float pitch = place.pitch * RADIANS;
    const float back = 4.8F * place.distance;
    camera.center[0] = place.x;
    camera.center[1] = 1.5F;
    camera.center[2] = place.z;
    camera.eye[0] = place.x + back * std::cos(pitch) * std::sin(yaw);
    camera.eye[1] = std::fmax(0.1F, 1.5F + 0.3F * place.distance + back * std::sin(pitch));
    camera.eye[2] = place.z + back * std::cos(pitch) * std::cos(yaw);
    runFrames(SETTLING_FRAMES);
}

void shootTitle() {
    for (const char *face : {"title-0", "title-1", "title-2", "title-3"}) {
        save(face);
        press('n');
        runFrames(60);
        save(std::string(face) + "-turning");
        runFrames(121);
    }
}

// The view that every player sees first, then at the ends of the zoom.
void shootStart() {
    save("start-default");
    const struct {
        unsigned char key;
        const char *name;
    } presets[] = {{'1', "start-near"}, {'3', "start-far"}, {'2', "start-middle"}};
    for (const auto &preset : presets) {
        press(preset.key);
        runFrames(SETTLING_FRAMES);
        save(preset.name);
    }
}

void shootWalk() {
    stand({"", 40, 5, 90, 0.8F, 60});
    for (int picture = 0; picture < 4; ++picture) {
        for (int step = 0; step < 5; ++step) {
            press('w');
            runFrames(1);
        }
        save(std::string("walk-") + static_cast<char>('0' + picture));
    }
    keyUpCallback('w', 0, 0);
}

void shootTalk() {
    stand({"", 5, 2.2F, 0, 0.8F, 25});
    for (int step = 0; step < 6; ++step) {
        press('w');
        runFrames(1);
    }
    save("talk");
    runFrames(60);
}

// A move of the battle at a few of its frames, then the enemy's answer at its height.
void shootMove(const std::string &name, int cursor) {
    Fight_status = cursor;
    press(13);
    int shown = 0;
    for (const int frame : {10, 20, 30, 45}) {
        runFrames(frame - shown);
        shown = frame;
        save("battle-" + name + "-" + std::to_string(frame));
    }
    runFrames(45);
    save("battle-" + name + "-answered");
    runFrames(60);
}

void shootBattle() {
    stand({"", -15, 6.2F, 0, 0.9F, 55});
    for (int step = 0; step < 8 && status == TOWN; ++step) {
        press('w');
        runFrames(1);
    }
    save("battle-panel");
    shootMove("defend", DEFEND);
    shootMove("special", SPECIAL);
    ENEMY_Health = 100;
    shootMove("attack", ATTACK);
    ENEMY_Health = 0;
    runFrames(SETTLING_FRAMES);
    save("battle-won");
}

void shootAll() {
    runFrames(SETTLING_FRAMES);
    if (isWanted("title")) {
        shootTitle();
    }
    press('p');
    runFrames(60);
    if (isWanted("start")) {
        shootStart();
    }
    for (const Place &place : PLACES) {
        if (isWanted(place.name)) {
            stand(place);
            save(place.name);
        }
    }
    if (isWanted("walk")) {
        shootWalk();
    }
    if (isWanted("talk")) {
        shootTalk();
    }
    if (isWanted("battle")) {
        shootBattle();
    }
    exit(0);
}

}  // namespace

// Takes the place of GLUT's: the frame stays in the back buffer, to be read.
void glutSwapBuffers() {}

int main(int argc, char **argv) {
    glutInit(&argc, argv);
    if (argc < 2) {
        fprintf(stderr, "usage: shots PICTURE_FOLDER [NAME_PART]\n");
        return 2;
    }
    folder = argv[1];
    wanted = argc > 2 ? argv[2] : "";
    createAnimations();
    glutInitDisplayMode(GLUT_RGB | GLUT_DOUBLE | GLUT_DEPTH | GLUT_STENCIL);
    glutInitWindowSize(WIDTH, HEIGHT);
    glutCreateWindow("Talvery: shots");
    glutReshapeFunc(myReshape);
    glutDisplayFunc(shootAll);
    init();
    glutMainLoop();
    return 0;
}

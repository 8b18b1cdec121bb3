// Takes pictures of the real game, frame by frame, from a list of places and moments: what to
// look at when the art has changed, and what to compare between the desktop and a browser. The same
// random numbers, the same state, the same frames everywhere. Runs in the data folder.
//
// Usage: shots FOLDER [NAME_PART | --compared | --flames]
// Writes NAME.ppm for the scenes whose names contain NAME_PART, for those that are compared, or
// many for each of those where something burns.

#include <GL/glut.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <string>

#include "camera.h"
#include "game_objects.h"
#include "game_state.h"
#include "input.h"
#include "main.h"
#include "picture.h"
#include "rendering.h"
#include "update.h"

#ifndef __EMSCRIPTEN__
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
constexpr float LOWEST_EYE = 0.1F;       // above the ground, as when the player looks up
constexpr int KINDLING = 600;            // updates until the fires burn
constexpr int FLAME_PICTURES = 60;       // of each scene that is for looking at the fires
constexpr int FLAME_UPDATES = 20;        // between two of them: most flames are others then

std::string folder;
std::string wanted;

// So many updates, and a frame at their end.
void pass(int updates) {
    for (int i = 0; i < updates; ++i) {
        idleCallback();
    }
    displayCallback();
}

void turnCube(float degrees, float swing = 0) {
    status = TITLE;
    hor = rotHor = degrees;
    Zval = swing;
    displayCallback();
}

// Puts the player somewhere in the town: heading 0 looks along -z, 90 along -x. The view is turned
// by `yaw` from behind the player and raised by `pitch`; `distance` counts in that of the start.
void stand(float x, float z, float heading, float distance = 1, float yaw = 0, float pitch = 0) {
    status = TOWN;
    Menu = NO_OVERLAY;
    IsTalkBool = false;
    action = STANDING;
    position[0] = positionold[0] = x;
    position[2] = positionold[2] = z;
    objrot = objrotold = heading * RADIANS;
    const Camera start;
    const float turn = (heading + yaw) * RADIANS;
    const float rise = pitch * RADIANS;
    const float back = start.eye[2] * distance;
    const float above = (start.eye[1] - start.center[1]) * distance + back * std::sin(rise);
    const float centre[] = {x, start.center[1], z};
    const float eye[] = {x + back * std::cos(rise) * std::sin(turn),
                         std::fmax(LOWEST_EYE, centre[1] + above),
                         z + back * std::cos(rise) * std::cos(turn)};
    camera.update(eye, centre, nullptr);
    pass(2);
}

void zoomAtStart(unsigned char key) {
    stand(0, 0, 0);
    keyCallback(key, 0, 0);
    pass(1);
}

void walk(int steps) {
    for (int i = 0; i < steps; ++i) {
        keyCallback('w', 0, 0);
        idleCallback();
    }
    displayCallback();
}

void talk() {
    stand(5, 2.2F, 0, 0.8F, 25);
    while (!IsTalkBool) {
        walk(1);
    }
    pass(1);
}

// A battle begins anew.
void meet() {
    stand(-15, 6.2F, 0, 0.9F, 55);
    while (status == TOWN) {
        walk(1);
    }
    Battle_Turn = PLAYER_CHOOSES;
    PlayerTimer = 0;
    ENEMY_Health = START_HEALTH;
    pass(1);
}

// Only frames that are drawn count the messages' time, so they stay as long as they are wanted.
void fight(int move) {
    meet();
    Fight_status = move;
    keyCallback(ENTER, 0, 0);
    pass(10);
}

void answer() {
    BattleMessageTimer = 0;
    pass(1);
    pass(40);
}

void win() {
    ENEMY_Health = 0;
    pass(1);
}

constexpr unsigned COMPARED = 1;  // with a browser's
constexpr unsigned FOLLOWS = 2;   // from the scene above it, which has to be played before it
constexpr unsigned BURNS = 4;     // and is for looking at the fires, again and again

struct Scene {
    const char *name;
    void (*show)();
    unsigned marks = 0;
};

// clang-format off
const Scene SCENES[] = {
    {"title-0",                [] { turnCube(0); }, COMPARED},
    {"title-0-turning",        [] { turnCube(30, -3); }, COMPARED},
    {"title-1",                [] { turnCube(90); }, COMPARED},
    {"title-1-turning",        [] { turnCube(120, -3); }},
    {"title-2",                [] { turnCube(180); }, COMPARED},
    {"title-2-turning",        [] { turnCube(210, -3); }},
    {"title-3",                [] { turnCube(270); }, COMPARED},
    {"title-3-turning",        [] { turnCube(300, -3); }},
    {"start-default",          [] { stand(0, 0, 0); }},
    {"start-near",             [] { zoomAtStart('1'); }, COMPARED},
    {"start-far",              [] { zoomAtStart('3'); }, COMPARED},
    {"start-middle",           [] { zoomAtStart('2'); }, COMPARED},
    {"start",                   [] { stand(0, 0, 0); }, BURNS},
    {"start-back",              [] { stand(0, 5, 180); }},
    {"start-left",              [] { stand(0, 2, 90); }},
    {"start-right",             [] { stand(0, 2, 270); }},
    {"street-49-west",          [] { stand(82, 49, 90); }},
    {"street-49-east",          [] { stand(-46, 49, 270); }},
    {"street-27-west",          [] { stand(82, 27, 90); }},
    {"street-27-east",          [] { stand(-46, 27, 270); }},
    {"street-05-west",          [] { stand(82, 5, 90); }, COMPARED | BURNS},
    {"street-05-east",          [] { stand(-46, 5, 270); }},
    {"street-17-west",          [] { stand(82, -17, 90); }},
    {"street-17-east",          [] { stand(-46, -17, 270); }},
    {"street-39-west",          [] { stand(82, -39, 90); }},
    {"street-39-east",          [] { stand(-46, -39, 270); }},
    {"castle-from-the-gate",    [] { stand(-52, 0, 90); }, COMPARED},
    {"castle-from-the-road",    [] { stand(-40, 5, 85); }},
    {"castle-from-afar",        [] { stand(15, 5, 90); }},
    {"castle-from-the-side",    [] { stand(-58, 40, 40); }},
    {"castle-gate-near",        [] { stand(-65, 0, 90, 0.5F); }},
    {"castle-gate-passage",     [] { stand(-62.5F, 0, 90, 0.6F, 0, 6); }},
    {"castle-post-near",        [] { stand(-59.9F, 1.6F, 100, 0.4F); }},
    {"castle-wall-near",        [] { stand(-65, 8, 85, 0.4F); }, COMPARED},
    {"castle-corner-near",      [] { stand(-65, 12.5F, 75, 0.7F); }},
    {"castle-side-near",        [] { stand(-74, 15, 0, 0.6F); }},
    {"castle-from-above",       [] { stand(-61, 6, 80, 4.4F, 0, 18); }},
    {"forest",                  [] { stand(-72, 30, 90); }, COMPARED},
    {"forest-edge",             [] { stand(-76, 52, 60); }},
    {"forest-and-castle",       [] { stand(-50, -30, 75); }},
    {"forest-near",             [] { stand(-81.9F, 27, 90, 0.4F); }},
    {"forest-near-south",       [] { stand(-81.9F, -33, 100, 0.5F); }},
    {"forest-ten-away",         [] { stand(-73, -26, 95); }},
    {"forest-far-end",          [] { stand(-90, 52, 20); }},
    {"forest-far-end-near",     [] { stand(-93, 48.2F, 10, 0.5F); }},
    {"forest-south-end",        [] { stand(-90, -52, 165); }},
    {"forest-from-behind",      [] { stand(-99, 56, 0); }},
    {"forest-by-the-castle",    [] { stand(-77, 18, 75); }},
    {"tree",                    [] { stand(-6, 3, 60, 1, 0, 5); }, BURNS},
    {"tree-near",               [] { stand(30, 6, 0, 0.7F); }},
    {"cottage-front",           [] { stand(17, 22, 0); }},
    {"cottage-back",            [] { stand(17, 6, 180); }},
    {"cottage-east",            [] { stand(20.5F, 23, 25); }},
    {"cottage-west",            [] { stand(13.5F, 23, 335); }},
    {"inn-front",               [] { stand(12, 24, 0); }},
    {"inn-back",                [] { stand(12, 8, 180); }},
    {"inn-east",                [] { stand(18, 24, 30); }},
    {"inn-west",                [] { stand(6, 24, 330); }},
    {"hall-front",              [] { stand(4, 25, 0); }, COMPARED | BURNS},
    {"hall-back",               [] { stand(4, 7, 180); }},
    {"hall-east",               [] { stand(12, 24, 40); }},
    {"hall-west",               [] { stand(-3, 24, 320); }},
    {"townsperson-1",           [] { stand(5, 2.2F, 0, 0.8F, 25); }},
    {"townsperson-2",           [] { stand(-23, 2, 45, 0.8F, -25); }},
    {"townsperson-3",           [] { stand(-40, 8.5F, 180, 0.8F, 25); }},
    {"townsperson-4",           [] { stand(19, 10, 180, 0.8F, 25); }},
    {"townsperson-5",           [] { stand(48, 5, 270, 0.8F, 25); }},
    {"enemy",                   [] { stand(-13, 6, 45, 0.8F, 25); }},
    {"poodle-side",             [] { stand(40, 5, 90, 0.7F, 80); }},
    {"poodle-front",            [] { stand(40, 5, 90, 0.7F, 160); }},
    {"sky-north",               [] { stand(60, 71, 180, 1, 0, -18); }},
    {"sky-south",               [] { stand(60, -61, 0, 1, 0, -18); }},
    {"sky-east",                [] { stand(-70, 71, 90, 1, 0, -18); }},
    {"sky-west",                [] { stand(90, 5, 270, 1, 0, -18); }},
    {"sky-corner",              [] { stand(-60, 75, 135, 1, 0, -18); }},
    {"ground-near",             [] { stand(40, 5, 90, 0.12F, 0, 10); }},
    {"ground-from-above",       [] { stand(40, 5, 90, 4.6F, 0, 40); }},
    {"roofs-from-above",        [] { stand(4, 5, 0, 4.6F, 0, 25); }, COMPARED},
    {"edge-north",              [] { stand(30, 80, 180); }},
    {"edge-north-corner",       [] { stand(-75, 80, 150); }, COMPARED},
    {"edge-south",              [] { stand(30, -80, 0); }},
    {"edge-east",               [] { stand(-80, 70, 90); }},
    {"edge-west",               [] { stand(80, 5, 270); }},
    {"edge-west-road",          [] { stand(92, 30, 250); }},
    {"street-person-1",         [] { stand(6.5F, 6, 0); }},
    {"street-person-2",         [] { stand(-19, 5, 45); }, COMPARED},
    {"street-person-3",         [] { stand(-38.5F, 6, 180); }},
    {"street-person-4",         [] { stand(21.5F, 6, 180); }},
    {"street-person-4-side",    [] { stand(15, 6, 225); }},
    {"street-person-5",         [] { stand(43, 6.5F, 270); }},
    {"ground-square",           [] { stand(1, 7, 120, 0.6F, 0, 22); }},
    {"ground-square-star",      [] { stand(0, 5, 0, 1.5F, 30, 30); }},
    {"ground-street",           [] { stand(30, 5, 90, 0.6F, 30, 15); }},
    {"ground-street-low",       [] { stand(55, 4, 70, 0.6F); }},
    {"ground-gate",             [] { stand(-56, 0, 90, 0.6F, 30, 15); }},
    {"ground-court",            [] { stand(-60, 5, 120, 1, 0, 20); }},
    {"ground-yard",             [] { stand(9.5F, 10, 300, 0.6F, 0, 20); }},
    {"ground-meadow",           [] { stand(94, 40, 300, 0.6F, 0, 20); }},
    {"walk-0",                 [] { stand(40, 5, 90, 0.8F, 60); walk(5); }},
    {"walk-1",                 [] { walk(5); }, FOLLOWS},
    {"walk-2",                 [] { walk(5); }, FOLLOWS},
    {"walk-3",                 [] { walk(5); }, FOLLOWS | COMPARED},
    {"talk",                   [] { talk(); }, COMPARED},
    {"battle-panel",           [] { meet(); }, COMPARED},
    {"battle-defend-10",       [] { fight(DEFEND); }},
    {"battle-defend-20",       [] { pass(10); }, FOLLOWS},
    {"battle-defend-30",       [] { pass(10); }, FOLLOWS},
    {"battle-defend-45",       [] { pass(15); }, FOLLOWS},
    {"battle-defend-answered", [] { answer(); }, FOLLOWS},
    {"battle-special-10",      [] { fight(SPECIAL); }},
    {"battle-special-20",      [] { pass(10); }, FOLLOWS},
    {"battle-special-30",      [] { pass(10); }, FOLLOWS},
    {"battle-special-45",      [] { pass(15); }, FOLLOWS},
    {"battle-special-answered", [] { answer(); }, FOLLOWS},
    {"battle-attack-10",       [] { fight(ATTACK); }, COMPARED},
    {"battle-attack-20",       [] { pass(10); }, FOLLOWS},
    {"battle-attack-30",       [] { pass(10); }, FOLLOWS},
    {"battle-attack-45",       [] { pass(15); }, FOLLOWS},
    {"battle-attack-answered", [] { answer(); }, FOLLOWS | COMPARED},
    {"battle-won",             [] { win(); }, FOLLOWS | COMPARED},
};
// clang-format on

bool isWanted(const Scene &scene) {
    return wanted == "--compared" ? (scene.marks & COMPARED) != 0
                                  : std::string(scene.name).find(wanted) != std::string::npos;
}

// Whether the scene is wanted, or one that follows from it.
bool isNeeded(const Scene *scene) {
    do {
        if (isWanted(*scene)) {
            return true;
        }
    } while (++scene != std::end(SCENES) && (scene->marks & FOLLOWS) != 0);
    return false;
}

void save(const std::string &name) {
    FILE *file = fopen((folder + "/" + name + ".ppm").c_str(), "wb");
    if (file != nullptr) {
        writePicture(file, START_WIDTH, START_HEIGHT);
    }
    if (file == nullptr || fclose(file) != 0) {
        perror(name.c_str());
        exit(1);
    }
    puts(name.c_str());
    fflush(stdout);
}

void shootFlames(const Scene &scene) {
    scene.show();
    for (int i = 0; i < FLAME_PICTURES; ++i) {
        pass(FLAME_UPDATES);
        save(std::string(scene.name).append("-").append(std::to_string(i)));
    }
}

void shootAll() {
    pass(KINDLING);
    for (const Scene &scene : SCENES) {
        if (wanted == "--flames" && (scene.marks & BURNS) != 0) {
            shootFlames(scene);
        }
        if (isNeeded(&scene)) {
            scene.show();
        }
        if (isWanted(scene)) {
            save(scene.name);
        }
    }
    exit(0);
}

}  // namespace

int main(int argc, char **argv) {
    glutInit(&argc, argv);
    if (argc < 2) {
        fprintf(stderr, "usage: shots FOLDER [NAME_PART | --compared | --flames]\n");
        return 2;
    }
    folder = argv[1];
    wanted = argc > 2 ? argv[2] : "";
    createAnimations();
    glutInitDisplayMode(GLUT_RGB | GLUT_DOUBLE | GLUT_DEPTH | GLUT_STENCIL);
    glutInitWindowSize(START_WIDTH, START_HEIGHT);
    glutCreateWindow("Talvery: shots");
    glutReshapeFunc(myReshape);
    glutDisplayFunc(shootAll);
    glutIdleFunc([] {});
    init();
    glutMainLoop();
    return 0;
}

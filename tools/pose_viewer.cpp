// Plays a keyframe file on the poodle, as the game does, or writes its frames as a
// contact sheet: above each other the side and the game's view from behind.

#include <GL/glut.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "interpolate.h"
#include "poodle.h"
#include "viewer.h"

namespace {

const char *const USAGE =
    "usage: pose_viewer FILE.txt [--speed UNITS] [--sheet OUT.png]\n"
    "\n"
    "Plays a keyframe file on the poodle. The floor moves by UNITS world units a step\n"
    "(0.0625 is about the game's speed for a held key), so that sliding paws show.\n"
    "Mouse or arrow keys turn, wheel or + - zoom, space pauses, '.' and ',' go one step\n"
    "forward and back, 'v' changes between the side and the view from behind, 'r' reads\n"
    "the file again, Escape leaves. --sheet writes a contact sheet and leaves.\n";

constexpr float POODLE_SCALE = 0.4F;  // of the player's poodle
constexpr View SIDE = {-90, 6, 3.1F, {0, 0.66F, -0.1F}};
constexpr View BEHIND = {0, 16, 3.1F, {0, 0.68F, -0.1F}};  // the game's direction, but nearer

constexpr int WINDOW = 800;                  // pixels, square
constexpr unsigned FRAME_MILLISECONDS = 16;  // about the game's pace
constexpr std::size_t LONGEST = 100000;      // steps; the rest of a longer file is not shown
constexpr unsigned SHEET_COLUMNS = 8;
constexpr std::size_t SHEET_FRAMES = 24;
constexpr int CELL = 132;  // pixels, square

Arguments arguments;
std::vector<Params> steps;  // the pose shown in each step, held ones included
std::size_t current = 0;    // step that is shown
Poodle poodle;
View view = SIDE;
bool fromBehind = false;
bool paused = false;

void readSteps() {
    Interpolate player(arguments.files[0].c_str(), false);
    Params pose = {};
    steps.clear();
    bool ended = false;
    while (!ended && steps.size() < LONGEST) {
        ended = player.step(pose);
        steps.push_back(pose);
    }
    current = 0;
}

void drawPoodle() {
    glPushMatrix();
    {
        glRotatef(-90, 0, 1, 0);
        glScalef(POODLE_SCALE, POODLE_SCALE, POODLE_SCALE);
        glColor3f(1, 1, 1);
        poodle.draw();
    }
    glPopMatrix();
}

void drawPicture(const View &from, int pictureWidth, int pictureHeight) {
    poodle.update(steps[current]);
    beginPicture(from, pictureWidth, pictureHeight);
    drawFloor(arguments.speed * static_cast<float>(current));
    drawShadow(drawPoodle);
    drawPoodle();
    writeCaption(std::to_string(current));
}

void display() {
    drawPicture(view, glutGet(GLUT_WINDOW_WIDTH), glutGet(GLUT_WINDOW_HEIGHT));
    glutSwapBuffers();
}

void move(std::size_t by) {
    current = (current + by) % steps.size();
    glutPostRedisplay();
}

void tick(int /*value*/) {
    if (!paused) {
        move(1);
    }
    glutTimerFunc(FRAME_MILLISECONDS, tick, 0);
}

void pressed(unsigned char key) {
    switch (key) {
    case ' ': paused = !paused; break;
    case '.':
        paused = true;
        move(1);
        break;
    case ',':
        paused = true;
        move(steps.size() - 1);
        break;
    case 'v':
        fromBehind = !fromBehind;
        view = fromBehind ? BEHIND : SIDE;
        break;
    case 'r': readSteps(); break;
    default: return;
    }
    glutPostRedisplay();
}

// The side view, brought along with a poodle that leaps away.
View besidePoodle() {
    View beside = SIDE;
    beside.centre[2] += POODLE_SCALE * steps[current].pos_x;
    return beside;
}

// Frames from the first to the last step, evenly spread, each row from both views.
bool writeSheet() {
    ContactSheet sheet(arguments.sheet, SHEET_COLUMNS);
    for (std::size_t row = 0; row < SHEET_FRAMES; row += SHEET_COLUMNS) {
        for (const bool behind : {false, true}) {
            for (std::size_t frame = row; frame < row + SHEET_COLUMNS; ++frame) {
                current = frame * (steps.size() - 1) / (SHEET_FRAMES - 1);
                drawPicture(behind ? BEHIND : besidePoodle(), CELL, CELL);
                sheet.add(CELL);
            }
        }
    }
    return sheet.close();
}

}  // namespace

int main(int argc, char **argv) {
    arguments = readArguments(argc, argv, 1, USAGE);
    openWindow(&argc, argv, "Talvery: pose viewer", WINDOW, WINDOW);
    readSteps();
    if (!arguments.sheet.empty()) {
        return writeSheet() ? EXIT_SUCCESS : EXIT_FAILURE;
    }
    turnByHand(view, pressed);
    glutDisplayFunc(display);
    glutTimerFunc(FRAME_MILLISECONDS, tick, 0);
    glutMainLoop();
    return EXIT_SUCCESS;
}

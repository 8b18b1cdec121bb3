// Shows a model with its picture as the game draws it, or writes it from eight sides
// as a contact sheet: above each other at eye height and from above.

#include <GL/glut.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <limits>

#include "assets.h"
#include "game_objects.h"
#include "viewer.h"

namespace {

const char *const USAGE =
    "usage: model_viewer MODEL.obj PICTURE.bmp [--sheet OUT.png]\n"
    "\n"
    "Shows a model with its picture, centred on its box as in the game. Mouse or arrow keys\n"
    "turn, wheel or + - zoom, 'w' changes between faces and wires, Escape leaves.\n"
    "--sheet writes a contact sheet and leaves.\n";

constexpr int WINDOW = 800;  // pixels, square
constexpr unsigned SHEET_COLUMNS = 4;
constexpr int CELL = 200;            // pixels, square
constexpr float LOW_PITCH = 5;       // degrees
constexpr float HIGH_PITCH = 30;     // degrees
constexpr float DISTANCE = 3.0F;     // of the eye, in radii of the model
constexpr float SPECK_EDGE = 0.01F;  // triangles below this only stretch the bounds

unsigned model = 0;  // display list
View view = {30, HIGH_PITCH / 2, 1, {0, 0, 0}};
bool wires = false;

const float *corner(const objFace &face, int number) {
    return o.vertices + std::ptrdiff_t{3} * face.vertex[number];
}

bool isSpeck(const objFace &face) {
    const float *a = corner(face, 0);
    const float *b = corner(face, 1);
    const float *c = corner(face, 2);
    return std::hypot(b[0] - a[0], b[1] - a[1], b[2] - a[2]) < SPECK_EDGE &&
           std::hypot(c[0] - a[0], c[1] - a[1], c[2] - a[2]) < SPECK_EDGE;
}

// Looks at the middle of what can be seen of the model in `o`, from far enough away.
void frameModel() {
    float lowest = std::numeric_limits<float>::max();
    float highest = -lowest;
    float across = 0;
    for (int i = 0; i < o.getTriangleCount(); ++i) {
        if (isSpeck(o.faces[i])) {
            continue;
        }
        for (int number = 0; number < 3; ++number) {
            const float *point = corner(o.faces[i], number);
            lowest = std::min(lowest, point[1]);
            highest = std::max(highest, point[1]);
            across = std::max(across, std::hypot(point[0], point[2]));
        }
    }
    if (lowest <= highest) {
        view.centre[1] = (lowest + highest) / 2;
        view.distance = DISTANCE * std::hypot(across, (highest - lowest) / 2);
    }
}

void drawPicture(const View &from, int pictureWidth, int pictureHeight) {
    beginPicture(from, pictureWidth, pictureHeight);
    glPolygonMode(GL_FRONT_AND_BACK, wires ? GL_LINE : GL_FILL);
    glEnable(GL_TEXTURE_2D);
    glColor3f(1, 1, 1);
    glCallList(model);
    glDisable(GL_TEXTURE_2D);
}

void display() {
    drawPicture(view, glutGet(GLUT_WINDOW_WIDTH), glutGet(GLUT_WINDOW_HEIGHT));
    glutSwapBuffers();
}

void pressed(unsigned char key) {
    if (key == 'w') {
        wires = !wires;
        glutPostRedisplay();
    }
}

// From the front, the right, the back and the left, then between those from above.
bool writeSheet(const std::string &file) {
    ContactSheet sheet(file, SHEET_COLUMNS);
    for (const bool above : {false, true}) {
        for (unsigned side = 0; side < SHEET_COLUMNS; ++side) {
            View from = view;
            from.heading = static_cast<float>(side) * 90 + (above ? 45.0F : 0.0F);
            from.pitch = above ? HIGH_PITCH : LOW_PITCH;
            drawPicture(from, CELL, CELL);
            sheet.add(CELL);
        }
    }
    return sheet.close();
}

}  // namespace

int main(int argc, char **argv) {
    const Arguments arguments = readArguments(argc, argv, 2, USAGE);
    openWindow(&argc, argv, "Talvery: model viewer", WINDOW, WINDOW);
    loadModel(OBJ_MODEL, arguments.files[0].c_str(), arguments.files[1].c_str(), model);
    frameModel();
    if (!arguments.sheet.empty()) {
        return writeSheet(arguments.sheet) ? EXIT_SUCCESS : EXIT_FAILURE;
    }
    turnByHand(view, pressed);
    glutDisplayFunc(display);
    glutMainLoop();
    return EXIT_SUCCESS;
}

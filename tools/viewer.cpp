#include "viewer.h"

#include <GL/glut.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "camera.h"
#include "lights.h"
#include "overlay.h"
#include "picture.h"
#include "rendering.h"

namespace {

constexpr float BACKGROUND[3] = {0.20F, 0.22F, 0.32F};
constexpr float LIGHT_SQUARE[3] = {0.44F, 0.41F, 0.38F};
constexpr float DARK_SQUARE[3] = {0.38F, 0.35F, 0.33F};
constexpr float SQUARE = 0.5F;   // edge of a floor square, world units
constexpr int FLOOR_REACH = 24;  // squares from the middle to the edge
constexpr float SHADOW_STRENGTH = 0.55F;

constexpr float KEY_TURN = 5;       // degrees a key press
constexpr float MOUSE_TURN = 0.4F;  // degrees a pixel
constexpr float ZOOM_STEP = 1.1F;
constexpr int WHEEL_UP = 3;  // GLUT's numbers of the wheel as buttons
constexpr int WHEEL_DOWN = 4;
constexpr unsigned char ESCAPE = 27;

View *turned = nullptr;
void (*keyHandler)(unsigned char) = nullptr;
int lastX = 0;
int lastY = 0;

void turn(float heading, float pitch) {
    turned->heading += heading;
    turned->pitch = std::clamp(turned->pitch + pitch, -5.0F, 89.0F);
    glutPostRedisplay();
}

void zoomBy(float factor) {
    turned->distance *= factor;
    glutPostRedisplay();
}

void keyPressed(unsigned char key, int /*x*/, int /*y*/) {
    switch (key) {
    case ESCAPE: exit(0);
    case '+': zoomBy(1 / ZOOM_STEP); break;
    case '-': zoomBy(ZOOM_STEP); break;
    default: keyHandler(key);
    }
}

void arrowPressed(int key, int /*x*/, int /*y*/) {
    switch (key) {
    case GLUT_KEY_LEFT: turn(-KEY_TURN, 0); break;
    case GLUT_KEY_RIGHT: turn(KEY_TURN, 0); break;
    case GLUT_KEY_UP: turn(0, KEY_TURN); break;
    case GLUT_KEY_DOWN: turn(0, -KEY_TURN); break;
    default: break;
    }
}

void mousePressed(int button, int state, int x, int y) {
    lastX = x;
    lastY = y;
    if (state == GLUT_DOWN && button == WHEEL_UP) {
        zoomBy(1 / ZOOM_STEP);
    } else if (state == GLUT_DOWN && button == WHEEL_DOWN) {
        zoomBy(ZOOM_STEP);
    }
}

void mouseDragged(int x, int y) {
    turn(-MOUSE_TURN * static_cast<float>(x - lastX), MOUSE_TURN * static_cast<float>(y - lastY));
    lastX = x;
    lastY = y;
}

void floorQuad(float minX, float minZ, float size) {
    glBegin(GL_QUADS);
    glVertex3f(minX, 0, minZ);
    glVertex3f(minX, 0, minZ + size);
    glVertex3f(minX + size, 0, minZ + size);
    glVertex3f(minX + size, 0, minZ);
    glEnd();
}

}  // namespace

Arguments readArguments(int argc, char **argv, std::size_t fileCount, const char *usage) {
    Arguments arguments;
    bool understood = true;
    for (int i = 1; i < argc; ++i) {
        if (strcmp(argv[i], "--help") == 0) {
            printf("%s", usage);
            exit(0);
        } else if (strcmp(argv[i], "--sheet") == 0 && i + 1 < argc) {
            arguments.sheet = argv[++i];
        } else if (strcmp(argv[i], "--speed") == 0 && i + 1 < argc) {
            arguments.speed = strtof(argv[++i], nullptr);
        } else {
            understood = understood && argv[i][0] != '-';
            arguments.files.emplace_back(argv[i]);
        }
    }
    if (!understood || arguments.files.size() != fileCount) {
        fprintf(stderr, "%s", usage);
        exit(2);
    }
    return arguments;
}

void openWindow(int *argc, char **argv, const char *title, int windowWidth, int windowHeight) {
    glutInit(argc, argv);
    glutInitDisplayMode(GLUT_RGB | GLUT_DOUBLE | GLUT_DEPTH | GLUT_STENCIL);
    glutInitWindowSize(windowWidth, windowHeight);
    glutCreateWindow(title);
    glClearColor(BACKGROUND[0], BACKGROUND[1], BACKGROUND[2], 1);
    setDrawingState();
}

void beginPicture(const View &view, int viewWidth, int viewHeight) {
    width = viewWidth;
    height = viewHeight;
    glViewport(0, 0, width, height);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
    glLoadIdentity();

    const float heading = view.heading * RADIANS;
    const float pitch = view.pitch * RADIANS;
    Camera camera;
    for (int axis = 0; axis < 3; ++axis) {
        camera.center[axis] = view.centre[axis];
    }
    camera.eye[0] = view.centre[0] + view.distance * std::sin(heading) * std::cos(pitch);
    camera.eye[1] = view.centre[1] + view.distance * std::sin(pitch);
    camera.eye[2] = view.centre[2] + view.distance * std::cos(heading) * std::cos(pitch);
    camera.setup();
}

void drawFloor(float travel) {
    const float offset = std::fmod(travel, 2 * SQUARE);
    glDisable(GL_LIGHTING);
    glEnable(GL_STENCIL_TEST);
    glStencilFunc(GL_ALWAYS, 1, ~0U);
    glStencilOp(GL_KEEP, GL_KEEP, GL_REPLACE);
    for (int row = -FLOOR_REACH; row < FLOOR_REACH; ++row) {
        for (int column = -FLOOR_REACH; column < FLOOR_REACH; ++column) {
            glColor3fv((row + column) % 2 == 0 ? LIGHT_SQUARE : DARK_SQUARE);
            floorQuad(static_cast<float>(column) * SQUARE,
                      static_cast<float>(row) * SQUARE + offset, SQUARE);
        }
    }
    glDisable(GL_STENCIL_TEST);
    glEnable(GL_LIGHTING);
}

void drawShadow(void (*drawSubject)()) {
    // The subject sets colours of its own, so it only marks where the floor is dark.
    constexpr float GROUND_PLANE[4] = {0, 1, 0, 0};
    float flatten[4][4];
    shadowTransform(flatten, GROUND_PLANE, sun_position);
    glEnable(GL_STENCIL_TEST);
    glDisable(GL_DEPTH_TEST);
    glColorMask(GL_FALSE, GL_FALSE, GL_FALSE, GL_FALSE);
    glStencilFunc(GL_EQUAL, 1, ~0U);
    glStencilOp(GL_KEEP, GL_KEEP, GL_INCR);
    glPushMatrix();
    {
        glMultMatrixf(&flatten[0][0]);
        drawSubject();
    }
    glPopMatrix();

    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    glStencilFunc(GL_EQUAL, 2, ~0U);
    glStencilOp(GL_KEEP, GL_KEEP, GL_KEEP);
    glDisable(GL_LIGHTING);
    glEnable(GL_BLEND);
    {
        glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
        glColor4f(0, 0, 0, SHADOW_STRENGTH);
        const float reach = static_cast<float>(FLOOR_REACH + 2) * SQUARE;
        floorQuad(-reach, -reach, 2 * reach);
    }
    glDisable(GL_BLEND);
    glEnable(GL_LIGHTING);
    glEnable(GL_DEPTH_TEST);
    glDisable(GL_STENCIL_TEST);
}

void writeCaption(const std::string &text) {
    setOrthographicProjection();
    glPushMatrix();
    {
        glLoadIdentity();
        glDisable(GL_LIGHTING);
        glColor3f(1, 1, 1);
        renderBitmapString(-0.38F, 1.37F, 0, GLUT_BITMAP_HELVETICA_12, text.c_str());
        glEnable(GL_LIGHTING);
    }
    glPopMatrix();
    resetPerspectiveProjection();
}

void turnByHand(View &view, void (*otherKey)(unsigned char key)) {
    turned = &view;
    keyHandler = otherKey;
    glutKeyboardFunc(keyPressed);
    glutSpecialFunc(arrowPressed);
    glutMouseFunc(mousePressed);
    glutMotionFunc(mouseDragged);
}

ContactSheet::ContactSheet(const std::string &file, unsigned cellsAcross) {
    setenv("SHEET", file.c_str(), 1);
    const std::string tiles = std::to_string(cellsAcross) + "x";
    montage = popen(("montage -geometry +0+0 -tile " + tiles + " ppm:- \"$SHEET\"").c_str(), "w");
}

void ContactSheet::add(int pixelsAcross) {
    writePicture(montage, pixelsAcross, pixelsAcross);
}

bool ContactSheet::close() {
    return pclose(montage) == 0;
}

#include "main.h"

#include <GL/glut.h>

#include <cstring>

#include "assets.h"
#include "camera.h"
#include "game_objects.h"
#include "game_state.h"
#include "input.h"
#include "lights.h"
#include "rendering.h"
#include "scene_collision.h"
#include "update.h"

void myReshape(int w, int h) {
    glViewport(0, 0, w, h);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    applyPerspective(w, h);
    glMatrixMode(GL_MODELVIEW);
    width = w;
    height = h;
    glLoadIdentity();
}

void init() {
    loadTextures();
    // Draws the fires' sizes from the random stream, after the fountains.
    setupCollision();
    loadModels();

    glClearColor(0, 0, 0, 0);
    // Given while the modelview matrix is the identity: the lights stay in the world.
    setDrawingState();

    memcpy(HEALTH, "100", sizeof HEALTH);
    initCollforBackground();
    glMatrixMode(GL_MODELVIEW);
}

int main(int argc, char **argv) {
    createAnimations();
    glutInit(&argc, argv);
    glutInitDisplayMode(GLUT_RGB | GLUT_DOUBLE | GLUT_DEPTH | GLUT_STENCIL);
    glutInitWindowSize(START_WIDTH, START_HEIGHT);
    glutCreateWindow("Talvery");
    glutReshapeFunc(myReshape);
    glutDisplayFunc(displayCallback);
    glutFullScreen();
    glutKeyboardFunc(keyCallback);
    glutKeyboardUpFunc(keyUpCallback);
    glutMouseFunc(mouseCallback);
    glutPassiveMotionFunc(motionCallback);
    glutIdleFunc(idleCallback);
    init();
    glutMainLoop();
    return 0;
}

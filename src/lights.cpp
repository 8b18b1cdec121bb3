#include "lights.h"

#include <GL/gl.h>

constinit float sun_ambient[4] = {0.2F, 0.2F, 0.2F, 1};
constinit float sun_diffuse[4] = {0.6F, 0.6F, 0.7F, 1};
constinit float sun_specular[4] = {1, 1, 1, 1};
constinit float sun_position[4] = {-45, 40, 40, 1};
constinit float fill_ambient[4] = {0, 0, 0, 1};
constinit float fill_diffuse[4] = {0.1F, 0.1F, 0, 1};
constinit float fill_specular[4] = {1, 1, 1, 1};
constinit float fill_position[4] = {50, 4, -15, 1};

void setLights() {
    glEnable(GL_LIGHTING);
    glLightfv(GL_LIGHT0, GL_AMBIENT, sun_ambient);
    glLightfv(GL_LIGHT0, GL_DIFFUSE, sun_diffuse);
    glLightfv(GL_LIGHT0, GL_SPECULAR, sun_specular);
    glLightfv(GL_LIGHT0, GL_POSITION, sun_position);
    glEnable(GL_LIGHT0);
    glLightfv(GL_LIGHT1, GL_AMBIENT, fill_ambient);
    glLightfv(GL_LIGHT1, GL_DIFFUSE, fill_diffuse);
    glLightfv(GL_LIGHT1, GL_SPECULAR, fill_specular);
    glLightfv(GL_LIGHT1, GL_POSITION, fill_position);
    glEnable(GL_LIGHT1);
}

void setDrawingState() {
    glShadeModel(GL_SMOOTH);
    setLights();
    glEnable(GL_DEPTH_TEST);
    glEnable(GL_COLOR_MATERIAL);
    glEnable(GL_NORMALIZE);
}

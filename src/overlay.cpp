#include "overlay.h"

#include <GL/glut.h>

namespace {

struct Point {
    float x, y;
};

struct Panel {
    Point corners[4];
};

constexpr int PANELS = 4;
constexpr Point PANEL_ORIGIN = {0.9F, 0.3F};

// Corners from PANEL_ORIGIN; the first two take the lower edge's colour.
// clang-format off
constexpr Panel PANEL_TABLE[] = {
    {{{ 0.16F,  1.02F}, {-0.13F,  1.02F}, {-0.13F,  0.83F}, { 0.16F,  0.83F}}},  // STATUS_BOX
    {{{-0.9F,  -0.1F }, {-1.3F,  -0.1F }, {-1.3F,  -0.3F }, {-0.9F,  -0.3F }}},  // TALK_PANEL_BOX
    {{{-1.0F,   1.0F }, {-1.3F,   1.0F }, {-1.3F,   0.85F}, {-1.0F,   0.85F}}},  // OPTIONS_BOX
    {{{-0.66F, -0.2F }, {-1.28F, -0.2F }, {-1.28F, -0.26F}, {-0.66F, -0.26F}}},  // MESSAGE_BOX
};
// clang-format on
static_assert(sizeof PANEL_TABLE / sizeof *PANEL_TABLE == PANELS);

// Overlay coordinates on the projection, the identity on the modelview matrix.
void beginOverlay() {
    setOrthographicProjection();
    glPushMatrix();
    glLoadIdentity();
    glDisable(GL_TEXTURE_2D);
    glDisable(GL_LIGHTING);
}

void endOverlay() {
    glEnable(GL_TEXTURE_2D);
    glEnable(GL_LIGHTING);
    glPopMatrix();
    resetPerspectiveProjection();
}

void drawPanel(const Panel &panel) {
    glEnable(GL_BLEND);
    glPushMatrix();
    {
        glDisable(GL_DEPTH_TEST);
        glTranslatef(PANEL_ORIGIN.x, PANEL_ORIGIN.y, 0);
        glBlendFunc(GL_SRC_ALPHA, GL_ONE);
        glBegin(GL_QUADS);
        for (int i = 0; i < 4; ++i) {
            if (i < 2) {
                glColor4f(0.2F, 0, 0.5F, 0.95F);
            } else {
                glColor4f(0, 0, 1, 0.95F);
            }
            glVertex3f(panel.corners[i].x, panel.corners[i].y, 0);
        }
        glEnd();
        glDisable(GL_BLEND);
        glEnable(GL_DEPTH_TEST);
    }
    glPopMatrix();
}

}  // namespace

void setOrthographicProjection() {
    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glLoadIdentity();
    gluOrtho2D(-0.4, 1.2, -0.4, 1.0);
    glScalef(1, -1, 1);
    glTranslatef(0, -1, 0);
    glMatrixMode(GL_MODELVIEW);
}

void resetPerspectiveProjection() {
    glMatrixMode(GL_PROJECTION);
    glPopMatrix();
    glMatrixMode(GL_MODELVIEW);
}

void renderBitmapString(float x, float y, float z, void *font, const char *text) {
    glRasterPos3f(x, y, z);
    for (const char *c = text; *c != '\0'; ++c) {
        glutBitmapCharacter(font, static_cast<unsigned char>(*c));
    }
}

void draw2DText(float x, float y, const char *text) {
    beginOverlay();
    { renderBitmapString(x, y, 0, GLUT_BITMAP_TIMES_ROMAN_24, text); }
    endOverlay();
}

void draw2DBox(int box) {
    beginOverlay();
    {
        if (box >= 1 && box <= PANELS) {
            drawPanel(PANEL_TABLE[box - 1]);
        }
    }
    endOverlay();
}

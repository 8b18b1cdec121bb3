#include "overlay.h"

#include <GL/glut.h>

namespace {

struct Point {
    float x, y;
};

struct Colour {
    float red, green, blue, alpha;
};

constexpr int CORNERS = 4;

struct Panel {
    Point corners[CORNERS];
};

// The edges of the window, before y is turned downward from the upper one.
constexpr double LEFT_EDGE = -0.4;
constexpr double RIGHT_EDGE = 1.2;
constexpr double LOWER_EDGE = -0.4;
constexpr double UPPER_EDGE = 1;

constexpr int PANELS = 4;
constexpr Point PANEL_ORIGIN = {0.9F, 0.3F};

// Of the corners of every panel: two on the lower edge, two on the upper one.
constexpr Colour PANEL_COLOURS[CORNERS] = {
    {0.2F, 0, 0.5F, 0.95F}, {0.2F, 0, 0.5F, 0.95F}, {0, 0, 1, 0.95F}, {0, 0, 1, 0.95F}};

// Corners from PANEL_ORIGIN, in the order of PANEL_COLOURS.
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
        for (int i = 0; i < CORNERS; ++i) {
            const Colour &colour = PANEL_COLOURS[i];
            glColor4f(colour.red, colour.green, colour.blue, colour.alpha);
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
    gluOrtho2D(LEFT_EDGE, RIGHT_EDGE, LOWER_EDGE, UPPER_EDGE);
    glScalef(1, -1, 1);
    glTranslatef(0, static_cast<float>(-UPPER_EDGE), 0);
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

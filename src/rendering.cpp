#include "rendering.h"

#include <GL/glut.h>

#include "assets.h"
#include "battle.h"
#include "degrees.h"
#include "game_objects.h"
#include "game_state.h"
#include "intro_cube.h"
#include "landscape.h"
#include "lights.h"
#include "menus.h"
#include "overlay.h"
#include "people.h"
#include "render_pass.h"
#include "sky_box.h"
#include "town.h"

namespace {

constexpr float GROUND_PLANE[4] = {0, 1, 0, 0};
constexpr GLuint ALL_BITS = ~0U;
constexpr float SHADOW_GREY = 0.3F;

constexpr float POODLE_SCALE = 0.4F;
constexpr float LABEL_HEIGHT = 3.5F;  // poodle model units
constexpr char PLAYER_NAME[] = "Quorvel";

void clearFrame() {
    glClearStencil(0);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glEnable(GL_TEXTURE_2D);
}

void drawTitle() {
    menu_camera.setup();
    IntroCube();
}

void runTurnCycle() {
    if (Battle_Turn == ENEMY_TO_MOVE) {
        if (BattleMessageTimer <= 0) {
            enemyTurn();
        } else {
            displayBattleMessages();
            --BattleMessageTimer;
        }
    } else if (PlayerTimer != 0) {
        displayBattleMessages();
        --PlayerTimer;
    }
}

// Stencils the visible ground with 1.
void drawGround() {
    glEnable(GL_STENCIL_TEST);
    glStencilFunc(GL_ALWAYS, 1, ALL_BITS);
    glStencilOp(GL_KEEP, GL_KEEP, GL_REPLACE);
    glBindTexture(GL_TEXTURE_2D, texture[GROUND_TEXTURE]);
    glColor3f(1, 1, 1);
    glNormal3f(0, 1, 0);
    glBegin(GL_POLYGON);
    glTexCoord2f(0, 0);
    glVertex3f(-swidth2, 0, -swidth2);
    glTexCoord2f(0, 1);
    glVertex3f(-swidth2, 0, swidth2);
    glTexCoord2f(1, 1);
    glVertex3f(swidth2, 0, swidth2);
    glTexCoord2f(1, 0);
    glVertex3f(swidth2, 0, -swidth2);
    glEnd();
}

// Places the modelview frame in the player's poodle.
void placePlayer() {
    glTranslatef(positionold[0], positionold[1], positionold[2]);
    glRotatef(degrees(objrotold), 0, 1, 0);
    glRotatef(-90, 0, 1, 0);
    glScalef(POODLE_SCALE, POODLE_SCALE, POODLE_SCALE);
}

void drawPlayerShadow() {
    glPushMatrix();
    {
        placePlayer();
        poodle.draw();
        glEnable(GL_TEXTURE_2D);
    }
    glPopMatrix();
}

void drawPlayer() {
    glPushMatrix();
    {
        placePlayer();
        glDisable(GL_TEXTURE_2D);
        renderBitmapString(0, LABEL_HEIGHT, 0, GLUT_BITMAP_TIMES_ROMAN_24, PLAYER_NAME);
        poodle.draw();
        glEnable(GL_TEXTURE_2D);
    }
    glPopMatrix();
}

// Multiplies the frame by the colour of what casts the shadow: grey, and a lighter grey for the
// people and the player. The first shadow on a pixel takes its stencil value back to 0, so
// overlapping ones darken it only once.
//
// The poodles bring colours of their own for parts of the head. Nose, pupils and tongue leave
// specks in these; the white parts darken nothing, and by the stencil nothing after them does
// where they fall.
void drawShadows() {
    glDisable(GL_LIGHTING);
    glEnable(GL_BLEND);
    glBlendFunc(GL_DST_COLOR, GL_ZERO);
    glDisable(GL_DEPTH_TEST);
    glStencilFunc(GL_EQUAL, 1, ALL_BITS);
    glStencilOp(GL_KEEP, GL_KEEP, GL_ZERO);

    // The view is in the projection matrix: this one starts from world coordinates.
    glPushMatrix();
    {
        glLoadIdentity();
        shadowTransform(matrix, GROUND_PLANE, sun_position);
        glColor3f(SHADOW_GREY, SHADOW_GREY, SHADOW_GREY);
        glDisable(GL_TEXTURE_2D);
        glMultMatrixf(&matrix[0][0]);

        drawTrees(SHADOW);
        drawForest();
        drawCastle();
        drawHouses(SHADOW);
        drawPeople(SHADOW);
        drawPlayerShadow();
    }
    glPopMatrix();

    glDisable(GL_BLEND);
    glDisable(GL_STENCIL_TEST);
    glEnable(GL_DEPTH_TEST);
    glEnable(GL_LIGHTING);
}

void drawTown() {
    // Before the ground, so that shadows do not fall on the people in front of it.
    drawPeople(LIT);
    drawGround();
    drawShadows();
    drawForest();
    drawCastle();
    drawPlayer();
    drawSkyBox();
    drawHouses(LIT);
    // The trees' fires move the fountains on, after the houses have shown them.
    drawTrees(LIT);
}

void drawBoxes() {
    draw2DBox(STATUS_BOX);
    if (Menu == TALK_BOX) {
        draw2DBox(TALK_PANEL_BOX);
    } else if (Menu == BATTLE_PANEL) {
        draw2DBox(OPTIONS_BOX);
        draw2DBox(MESSAGE_BOX);
    }
}

}  // namespace

void displayCallback() {
    clearFrame();
    if (status == TITLE) {
        // May start the game; the town then begins with the next frame.
        drawTitle();
    } else {
        camera.setup();
        displayMenus();
        if (status == BATTLE) {
            runTurnCycle();
        }
        drawTown();
    }
    // Asked again: drawTitle may have started the game, and that frame has the panels too.
    if (status != TITLE) {
        drawBoxes();
    }
    glutSwapBuffers();
}

void shadowTransform(float projection[4][4], const float *plane, const float *light) {
    const float e =
        plane[0] * light[0] + plane[1] * light[1] + plane[2] * light[2] + plane[3] * light[3];
    for (int c = 0; c < 4; ++c) {
        for (int r = 0; r < 4; ++r) {
            projection[c][r] = (r == c ? e : 0) - light[r] * plane[c];
        }
    }
}

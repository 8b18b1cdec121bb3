#include "poodle.h"

#include <GL/gl.h>

#include "primitives.h"

namespace {

constexpr int SLICES = 16;  // of every ellipsoid and cylinder

constexpr float LEG_OFFSET = 11.7F;      // degrees; the front right knee has it too
constexpr float LEG_SPLAY = 17.1F;       // degrees, outwards at the foot
constexpr float JAW_OFFSET = -59.4F;     // degrees, from the vertical
constexpr float TONGUE_OFFSET = -57.6F;  // degrees, from the vertical
constexpr float TAIL_OFFSET = -25.0F;    // degrees
constexpr float EAR_SPLAY = 28.0F;       // degrees, outwards

enum Side { LEFT, RIGHT };

void ellipsoid(float rx, float ry, float rz) {
    drawEllipsoid(rx, ry, rz, SLICES);
}

void cylinder(float r0, float r1, float length) {
    drawCylinder(r0, r1, length, SLICES);
}

void rotateX(float angle) {
    glRotatef(angle, 1, 0, 0);
}

void rotateY(float angle) {
    glRotatef(angle, 0, 1, 0);
}

void rotateZ(float angle) {
    glRotatef(angle, 0, 0, 1);
}

void white() {
    glColor3f(1, 1, 1);
}

void drawToes() {
    glPushMatrix();
    {
        glTranslatef(-0.06F, -0.05F, 0.046F);
        rotateX(21.6F);
        rotateY(45.7F);
        ellipsoid(0.17F, 0.09F, 0.09F);
    }
    glPopMatrix();
    glPushMatrix();
    {
        glTranslatef(-0.1F, -0.03F, -0.028F);
        rotateZ(3.6F);
        ellipsoid(0.17F, 0.09F, 0.09F);
    }
    glPopMatrix();
    glPushMatrix();
    {
        glTranslatef(-0.08F, 0, -0.12F);
        rotateX(9.9F);
        rotateY(-35.8F);
        rotateZ(-10);
        ellipsoid(0.17F, 0.09F, 0.09F);
    }
    glPopMatrix();
}

// Places a leg on its side: a right leg is a left one mirrored in z.
void placeLeg(Side side, float x, float y, float z) {
    glTranslatef(x, y, side == LEFT ? z : -z);
    rotateX(side == LEFT ? -LEG_SPLAY : LEG_SPLAY);
    if (side == RIGHT) {
        glScalef(1, 1, -1);
    }
}

void drawHindLeg(Side side, float hip, float knee, float paw) {
    glPushMatrix();
    {
        rotateZ(hip + LEG_OFFSET);
        placeLeg(side, 0.06F, -0.29F, 0.33F);
        ellipsoid(0.25F, 0.34F, 0.25F);  // thigh
        glPushMatrix();
        {
            glTranslatef(0, -0.2F, 0);
            rotateZ(knee);
            glTranslatef(0, -0.3F, 0);
            cylinder(0.052F, 0.052F, 0.621F);  // shin
            glPushMatrix();
            {
                glTranslatef(0, -0.27F, 0);
                rotateZ(paw);
                drawToes();
            }
            glPopMatrix();
            glTranslatef(0, -0.07F, 0);
            ellipsoid(0.19F, 0.19F, 0.19F);  // bracelet pompom
        }
        glPopMatrix();
    }
    glPopMatrix();
}

void drawFrontLeg(Side side, float shoulder, float knee, float paw) {
    glPushMatrix();
    {
        glTranslatef(0, -0.3F, 0);
        rotateZ(shoulder + LEG_OFFSET);
        placeLeg(side, -0.03F, -0.2F, 0.34F);
        cylinder(0.08F, 0.08F, 0.496F);  // upper leg
        glPushMatrix();
        {
            glTranslatef(0, -0.23F, 0);
            rotateZ(side == LEFT ? knee : knee + LEG_OFFSET);
            glTranslatef(0, -0.23F, 0);
            cylinder(0.08F, 0.08F, 0.496F);  // lower leg
            glPushMatrix();
            {
                glTranslatef(0, -0.07F, 0);
                ellipsoid(0.19F, 0.19F, 0.19F);  // bracelet pompom
                glPushMatrix();
                {
                    glTranslatef(0, -0.17F, 0);
                    rotateZ(paw);
                    drawToes();
                }
                glPopMatrix();
            }
            glPopMatrix();
        }
        glPopMatrix();
    }
    glPopMatrix();
}

void drawTail(const Params &pose) {
    glPushMatrix();
    {
        rotateX(pose.tail_wag);
        glTranslatef(0.24F, 0.36F, 0);
        rotateZ(pose.tail_pitch + TAIL_OFFSET);
        ellipsoid(0.077F, 0.11F, 0.09F);
        glPushMatrix();
        {
            glTranslatef(0.06F, 0.22F, 0);
            ellipsoid(0.2F, 0.2F, 0.2F);  // pompom
        }
        glPopMatrix();
    }
    glPopMatrix();
}

void drawEye(float z) {
    glPushMatrix();
    {
        glTranslatef(-0.37F, 0, z);
        ellipsoid(0.037F, 0.06F, 0.06F);
        glPushMatrix();
        {
            glColor3f(0.1F, 0.1F, 0.1F);
            glTranslatef(-0.03F, 0, 0);
            ellipsoid(0.02F, 0.03F, 0.03F);  // pupil
            white();
        }
        glPopMatrix();
    }
    glPopMatrix();
}

void drawUpperJaw(const Params &pose) {
    glPushMatrix();
    {
        glTranslatef(-0.24F, -0.07F, 0);
        rotateZ(pose.upper_jaw + JAW_OFFSET);
        glPushMatrix();
        {
            glScalef(0.14F, 0.65F, 0.25F);
            cylinder(0.4F, 1, 1);  // snout
        }
        glPopMatrix();
        glPushMatrix();
        {
            glColor3f(0.2F, 0.2F, 0.2F);
            glTranslatef(-0.02F, -0.34F, 0);
            rotateZ(-29.7F);
            glScalef(0.058F, 0.1F, 0.08F);
            cylinder(0.5F, 1, 1);  // nose
            white();
        }
        glPopMatrix();
    }
    glPopMatrix();
}

void drawTongue(const Params &pose) {
    glPushMatrix();
    {
        glColor3f(0.5F, 0, 0);
        glTranslatef(-0.18F, -0.1F, 0);
        rotateZ(pose.tongue + TONGUE_OFFSET);
        glScalef(0.04F, 0.62F, 0.19F);
        cylinder(0.4F, 1, 1);
        white();
    }
    glPopMatrix();
}

void drawLowerJaw(const Params &pose) {
    glPushMatrix();
    {
        glTranslatef(-0.17F, -0.17F, 0);
        rotateZ(pose.lower_jaw + JAW_OFFSET);
        glPushMatrix();
        {
            glScalef(0.12F, 0.65F, 0.25F);
            cylinder(0.3F, 1, 1);
        }
        glPopMatrix();
        glPushMatrix();
        {
            glTranslatef(0, -0.32F, 0);
            ellipsoid(0.037F, 0.04F, 0.078F);  // chin
        }
        glPopMatrix();
    }
    glPopMatrix();
}

// Only the turn about x, given here, is mirrored between the ears.
void drawEar(float z, float turn) {
    glPushMatrix();
    {
        glTranslatef(-0.06F, 0.15F, z);
        rotateX(turn);
        rotateY(-3.9F);
        rotateZ(-7.1F);
        ellipsoid(0.41F, 0.29F, 0.36F);
        glPushMatrix();
        {
            glTranslatef(0, -0.3F, 0);
            ellipsoid(0.41F, 0.65F, 0.32F);  // fur
        }
        glPopMatrix();
    }
    glPopMatrix();
}

void drawHead(const Params &pose) {
    glPushMatrix();
    {
        glTranslatef(-0.028F, 0.53F, 0);
        ellipsoid(0.41F, 0.29F, 0.36F);
        glPushMatrix();
        {
            glTranslatef(-0.35F, 0.12F, 0);
            ellipsoid(0.098F, 0.1F, 0.28F);  // brow
        }
        glPopMatrix();
        drawEye(0.1F);
        drawEye(-0.1F);
        drawUpperJaw(pose);
        drawTongue(pose);
        drawLowerJaw(pose);
        drawEar(0.26F, pose.ear_left - EAR_SPLAY);
        drawEar(-0.26F, EAR_SPLAY - pose.ear_right);
        glPushMatrix();
        {
            glTranslatef(-0.01F, 0.26F, 0);
            rotateZ(-21.6F);
            ellipsoid(0.59F, 0.29F, 0.46F);  // top-knot
        }
        glPopMatrix();
        glPushMatrix();
        {
            glTranslatef(0.2F, -0.1F, 0);
            ellipsoid(0.46F, 0.45F, 0.49F);  // mane
        }
        glPopMatrix();
    }
    glPopMatrix();
}

void drawRearBody(const Params &pose) {
    glPushMatrix();
    {
        glTranslatef(0.3F, 0, 0);
        rotateZ(pose.hips);
        glTranslatef(0.393F, -0.0147F, 0);
        ellipsoid(0.52F, 0.39F, 0.51F);  // hip fur
        drawTail(pose);
        drawHindLeg(LEFT, pose.hind_hip_left, pose.hind_knee_left, pose.hind_paw_left);
        drawHindLeg(RIGHT, pose.hind_hip_right, pose.hind_knee_right, pose.hind_paw_right);
    }
    glPopMatrix();
}

void drawFrontBody(const Params &pose) {
    glPushMatrix();
    {
        glTranslatef(-0.15F, 0.07F, 0);
        rotateZ(pose.chest);
        glTranslatef(-0.2F, 0.065F, 0);
        ellipsoid(0.68F, 0.53F, 0.58F);
        drawFrontLeg(LEFT, pose.front_shoulder_left, pose.front_knee_left, pose.front_paw_left);
        drawFrontLeg(RIGHT, pose.front_shoulder_right, pose.front_knee_right, pose.front_paw_right);
        glPushMatrix();
        {
            rotateZ(pose.neck);
            glTranslatef(-0.49F, 0.165F, 0);
            ellipsoid(0.41F, 0.33F, 0.36F);
            drawHead(pose);
        }
        glPopMatrix();
    }
    glPopMatrix();
}

}  // namespace

void Poodle::update(const Params &params) {
    pose = params;
}

void Poodle::draw() const {
    glPushMatrix();
    {
        glTranslatef(pose.pos_x, pose.pos_y, pose.pos_z);
        rotateY(pose.heading);
        rotateZ(pose.body_tilt);
        glPushMatrix();
        {
            glTranslatef(-0.21F, 1.17F, 0);
            ellipsoid(0.71F, 0.38F, 0.38F);  // torso
            drawRearBody(pose);
            drawFrontBody(pose);
        }
        glPopMatrix();
    }
    glPopMatrix();
}

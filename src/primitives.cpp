#include "primitives.h"

#include <GL/glut.h>

#include <cmath>

#include "vector3f.h"

namespace {

// Not std::numbers::pi, by which some angles would come out one bit apart: with 7 segments, with
// 14, 19 and so on, though not with the 16 of the poodle.
constexpr double PI = 3.14159265;

struct Box_Face {
    float normal[3];
    float corners[4][3];
};

// Counter-clockwise seen from outside.
// clang-format off
constexpr Box_Face BOX_FACES[] = {
    {{ 0,  1,  0}, {{ .5F,  .5F, -.5F}, {-.5F,  .5F, -.5F}, {-.5F,  .5F,  .5F}, { .5F,  .5F,  .5F}}},
    {{ 0, -1,  0}, {{ .5F, -.5F,  .5F}, {-.5F, -.5F,  .5F}, {-.5F, -.5F, -.5F}, { .5F, -.5F, -.5F}}},
    {{ 0,  0,  1}, {{ .5F,  .5F,  .5F}, {-.5F,  .5F,  .5F}, {-.5F, -.5F,  .5F}, { .5F, -.5F,  .5F}}},
    {{ 0,  0, -1}, {{ .5F, -.5F, -.5F}, {-.5F, -.5F, -.5F}, {-.5F,  .5F, -.5F}, { .5F,  .5F, -.5F}}},
    {{-1,  0,  0}, {{-.5F,  .5F,  .5F}, {-.5F,  .5F, -.5F}, {-.5F, -.5F, -.5F}, {-.5F, -.5F,  .5F}}},
    {{ 1,  0,  0}, {{ .5F,  .5F, -.5F}, { .5F,  .5F,  .5F}, { .5F, -.5F,  .5F}, { .5F, -.5F, -.5F}}},
};
// clang-format on

// The angle of the k-th of n steps round the y axis, from +x towards +z.
float ringAngle(int k, int n) {
    const float turns = static_cast<float>(k) / static_cast<float>(n) * 2;
    return static_cast<float>(static_cast<double>(turns) * PI);
}

Vector3f ringPoint(float radius, float angle, float y) {
    const double a = angle;
    return {static_cast<float>(radius * std::cos(a)), y, static_cast<float>(radius * std::sin(a))};
}

void vertex(const Vector3f &v) {
    glVertex3f(v.x, v.y, v.z);
}

void normal(const Vector3f &n) {
    glNormal3f(n.x, n.y, n.z);
}

void drawCap(float y, float radius, int segments, NORMAL facing) {
    glPushMatrix();
    {
        glTranslatef(0, y, 0);
        drawCircle(radius, segments, facing);
    }
    glPopMatrix();
}

}  // namespace

void drawEllipsoid(float rx, float ry, float rz, int slices) {
    glPushMatrix();
    {
        glScalef(rx, ry, rz);
        glutSolidSphere(1.0, slices, slices);
    }
    glPopMatrix();
}

void drawBox(float sx, float sy, float sz) {
    glPushMatrix();
    {
        glScalef(sx, sy, sz);
        glBegin(GL_QUADS);
        for (const Box_Face &face : BOX_FACES) {
            glNormal3f(face.normal[0], face.normal[1], face.normal[2]);
            for (const auto &corner : face.corners) {
                glVertex3f(corner[0], corner[1], corner[2]);
            }
        }
        glEnd();
    }
    glPopMatrix();
}

void drawCircle(float radius, int segments, NORMAL facing) {
    glNormal3f(0, facing == UP ? 1.0F : -1.0F, 0);
    Vector3f rim = ringPoint(radius, ringAngle(0, segments), 0);
    for (int k = 0; k < segments; ++k) {
        const Vector3f nextRim = ringPoint(radius, ringAngle(k + 1, segments), 0);
        glBegin(GL_TRIANGLES);
        vertex(rim);
        vertex(nextRim);
        glVertex3f(0, 0, 0);
        glEnd();
        rim = nextRim;
    }
}

void drawCylinder(float r0, float r1, float length, int segments) {
    const float h = length / 2;
    drawCap(-h, r0, segments, DOWN);
    drawCap(h, r1, segments, UP);

    // Every vertical edge carries the normal of the quad that ends there; the quad
    // that ends at angle 0 seeds the first edge.
    const Vector3f q1 = ringPoint(r0, ringAngle(-1, segments), 0);
    const Vector3f q2(r0, 0, 0);
    const Vector3f q3(r1, length, 0);
    Vector3f edgeNormal = (q3 - q1).normal(q2 - q1);

    float angle = ringAngle(0, segments);
    for (int k = 0; k < segments; ++k) {
        const float nextAngle = ringAngle(k + 1, segments);
        const Vector3f p1 = ringPoint(r0, angle, -h);
        const Vector3f p2 = ringPoint(r0, nextAngle, -h);
        const Vector3f p3 = ringPoint(r1, nextAngle, h);
        const Vector3f p4 = ringPoint(r1, angle, h);
        const Vector3f faceNormal = (p3 - p1).normal(p2 - p1);
        glBegin(GL_QUADS);
        normal(edgeNormal);
        vertex(p1);
        normal(faceNormal);
        vertex(p2);
        vertex(p3);
        normal(edgeNormal);
        vertex(p4);
        glEnd();
        edgeNormal = faceNormal;
        angle = nextAngle;
    }
}

#include "collision.h"

#include <GL/glut.h>

namespace {

constexpr float WIRE_BOX_HEIGHT = 80;
constexpr int WIRE_SPHERE_SLICES = 8;

bool circlesOverlap(const Collision_Object &a, const Collision_Object &b) {
    const float dx = a.cx - b.cx;
    const float dz = a.cz - b.cz;
    const float reach = b.radius + a.radius;
    return reach * reach > dx * dx + dz * dz;
}

bool rectanglesMeet(float minX, float maxX, float minZ, float maxZ, const Collision_Object &b) {
    return !(b.minX > maxX || minX > b.maxX || minZ > b.maxZ || b.minZ > maxZ);
}

bool meet(const Collision_Object &a, const Collision_Object &b) {
    if (a.kind == CIRCLE && b.kind == CIRCLE) {
        return circlesOverlap(a, b);
    }
    if (a.kind == RECTANGLE && b.kind == RECTANGLE) {
        return rectanglesMeet(a.minX, a.maxX, a.minZ, a.maxZ, b);
    }
    if (a.kind == CIRCLE && b.kind == RECTANGLE) {
        return rectanglesMeet(a.cx - a.radius, a.cx + a.radius, a.cz - a.radius, a.cz + a.radius,
                              b);
    }
    return false;
}

}  // namespace

int checkCollision(const Collision_Object &a, const Collision_Object &b) {
    return meet(a, b) ? b.code : NO_CONTACT;
}

void drawCollision(const Collision_Object &object) {
    if (object.kind != CIRCLE && object.kind != RECTANGLE) {
        return;
    }
    glPushMatrix();
    {
        glDisable(GL_LIGHTING);
        if (object.kind == CIRCLE) {
            glTranslatef(object.cx, object.radius, object.cz);
            glutWireSphere(object.radius, WIRE_SPHERE_SLICES, WIRE_SPHERE_SLICES);
        } else {
            glTranslatef((object.minX + object.maxX) * 0.5F, WIRE_BOX_HEIGHT / 2,
                         (object.minZ + object.maxZ) * 0.5F);
            glScalef(object.maxX - object.minX, WIRE_BOX_HEIGHT, object.maxZ - object.minZ);
            glutWireCube(1.0);
        }
        glEnable(GL_LIGHTING);
    }
    glPopMatrix();
}

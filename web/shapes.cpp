#include <GL/glut.h>

#include <cmath>
#include <glm/gtc/constants.hpp>
#include <glm/gtc/matrix_transform.hpp>
#include <initializer_list>

#include "context.h"

namespace web {
namespace {

constexpr int MAX_SLICES = 32;  // of a sphere, and its stacks
constexpr int RING = MAX_SLICES + 1;

constinit Mesh spheres[RING] = {};  // by their slices

// A point of the unit sphere round the z axis, which is its normal too.
glm::vec3 spherePoint(int slice, int slices, int stack, int stacks) {
    const double turn = glm::two_pi<double>() * slice / slices;
    const double fall = glm::pi<double>() * stack / stacks;
    return {std::cos(turn) * std::sin(fall), std::sin(turn) * std::sin(fall), std::cos(fall)};
}

Mesh makeSphere(int slices) {
    Vertex vertices[RING * RING];
    GLushort indices[6 * MAX_SLICES * MAX_SLICES];
    int vertexCount = 0;
    int indexCount = 0;
    for (int stack = 0; stack <= slices; ++stack) {
        for (int slice = 0; slice <= slices; ++slice) {
            const glm::vec3 point = spherePoint(slice, slices, stack, slices);
            vertices[vertexCount++] = {glm::vec4(point, 1), point, {}, {}};
        }
    }
    for (int stack = 0; stack < slices; ++stack) {
        for (int slice = 0; slice < slices; ++slice) {
            const int upper = stack * (slices + 1) + slice;
            const int lower = upper + slices + 1;
            for (const int corner : {lower, lower + 1, upper, upper, lower + 1, upper + 1}) {
                indices[indexCount++] = static_cast<GLushort>(corner);
            }
        }
    }
    return makeMesh(vertices, vertexCount, indices, indexCount);
}

void line(const glm::vec3 &from, const glm::vec3 &to) {
    glVertex3f(from.x, from.y, from.z);
    glVertex3f(to.x, to.y, to.z);
}

}  // namespace
}  // namespace web

using namespace web;

void glutSolidSphere(double radius, int slices, int stacks) {
    requireOutside("glutSolidSphere");
    if (slices != stacks || slices < 1 || slices > MAX_SLICES) {
        fail("glutSolidSphere", "only of as many stacks as slices, up to 32");
    }
    if (spheres[slices].vertexArray == 0) {
        spheres[slices] = makeSphere(slices);
    }
    drawMesh(spheres[slices], glm::scale(modelview(), glm::vec3(static_cast<float>(radius))));
}

void glutWireSphere(double radius, int slices, int stacks) {
    const auto point = [=](int slice, int stack) {
        return static_cast<float>(radius) * spherePoint(slice, slices, stack, stacks);
    };
    glBegin(GL_LINES);
    for (int stack = 0; stack < stacks; ++stack) {
        for (int slice = 0; slice < slices; ++slice) {
            line(point(slice, stack), point(slice, stack + 1));
            line(point(slice, stack), point(slice + 1, stack));
        }
    }
    glEnd();
}

void glutWireCube(double edge) {
    const auto half = static_cast<float>(edge / 2);
    glBegin(GL_LINES);
    for (int axis = 0; axis < 3; ++axis) {
        for (int corner = 0; corner < 4; ++corner) {
            glm::vec3 from;
            from[axis] = -half;
            from[(axis + 1) % 3] = corner % 2 == 0 ? -half : half;
            from[(axis + 2) % 3] = corner / 2 == 0 ? -half : half;
            glm::vec3 to = from;
            to[axis] = half;
            line(from, to);
        }
    }
    glEnd();
}

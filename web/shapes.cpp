#include <GL/glut.h>

#include <cmath>
#include <glm/gtc/constants.hpp>
#include <glm/gtc/matrix_transform.hpp>

#include "context.h"

namespace {

constexpr int MAX_SLICES = 32;

constinit web::Mesh spheres[MAX_SLICES + 1] = {};  // by their slices, as many as their stacks

// The vertex of the unit sphere so many steps round the z axis and down from its top.
web::Vertex sphereVertex(int round, int down, int slices) {
    const double turn = round * glm::two_pi<double>() / slices;
    const double fall = down * glm::pi<double>() / slices;
    const glm::vec3 point(std::sin(fall) * std::cos(turn), std::sin(fall) * std::sin(turn),
                          std::cos(fall));
    return {glm::vec4(point, 1), point, {}, {}};
}

web::Mesh makeSphere(int slices) {
    constexpr int CORNERS[6][2] = {{0, 1}, {1, 1}, {0, 0}, {0, 0}, {1, 1}, {1, 0}};
    std::vector<web::Vertex> vertices;
    for (int quad = 0; quad < slices * slices; ++quad) {
        for (const auto &[right, lower] : CORNERS) {
            vertices.push_back(sphereVertex(quad % slices + right, quad / slices + lower, slices));
        }
    }
    return web::makeMesh(vertices);
}

}  // namespace

void glutSolidSphere(double radius, int slices, int stacks) {
    web::requireOutside();
    web::require(slices == stacks && slices > 0 && slices <= MAX_SLICES);
    if (spheres[slices].array == 0) {
        spheres[slices] = makeSphere(slices);
    }
    web::drawMesh(spheres[slices], glm::scale(web::modelview(), glm::vec3(radius)));
}

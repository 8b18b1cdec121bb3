#include <GL/glut.h>

#include <algorithm>
#include <cmath>
#include <glm/gtc/constants.hpp>
#include <glm/gtc/matrix_inverse.hpp>
#include <glm/gtc/matrix_transform.hpp>
#include <vector>

#include "context.h"
#include "glyphs.h"

void *glutBitmapTimesRoman24 = nullptr;

// In glut.js, with the window's events.
extern "C" void openWindow(const char *title);
extern "C" void refuse(const char *call);

using namespace web;

namespace {

constexpr int MAX_SLICES = 32;
constinit Mesh spheres[MAX_SLICES + 1] = {};  // by their slices, as many as their stacks

// Of radius 1, from quads: their corners count in steps round the z axis and down from its top.
Mesh makeSphere(int slices) {
    constexpr int CORNERS[6][2] = {{0, 1}, {1, 1}, {0, 0}, {0, 0}, {1, 1}, {1, 0}};
    std::vector<Vertex> vertices;
    for (int i = 0; i < 6 * slices * slices; ++i) {
        const int step = i / 6 % slices + CORNERS[i % 6][0];
        const int row = i / 6 / slices + CORNERS[i % 6][1];
        const double turn = glm::two_pi<double>() * step / slices;
        const double fall = glm::pi<double>() * row / slices;
        const glm::vec3 point(std::sin(fall) * std::cos(turn), std::sin(fall) * std::sin(turn),
                              std::cos(fall));
        vertices.push_back({glm::vec4(point, 1), point, {}, {}});
    }
    return makeMesh(vertices);
}

constexpr float SCENE_AMBIENT = 0.2F;
// A raster position that arithmetic has put just below a pixel belongs to that pixel.
constexpr float PIXEL_ROUNDING = 1e-4F;

constinit bool rasterValid = false;
constinit glm::vec3 rasterPlace = {};  // in pixels, and the depth
constinit glm::vec4 rasterColour = {};

// The current colour in the light, as the desktop's usual driver has it for text: in the model's
// coordinates, and not minding how long the normal is.
glm::vec4 litColour(const glm::vec3 &place) {
    const glm::vec3 normal = glm::inverseTranspose(glm::mat3(modelview())) * current.normal;
    glm::vec3 sum(SCENE_AMBIENT);
    for (int i = 0; i < LIGHTS; ++i) {
        const glm::vec3 towards = glm::normalize(glm::vec3(lightPosition[i]) - place);
        sum += lightAmbient[i] + std::max(glm::dot(normal, towards), 0.0F) * lightDiffuse[i];
    }
    return glm::clamp(glm::vec4(sum, 1) * current.colour, 0.0F, 1.0F);
}

}  // namespace

// clang-format off
void web::require(bool right, const char *call) {
    if (!right) {
        refuse(call);
    }
}
int glutCreateWindow(const char *title) {
    openWindow(title);
    initShaders();
    initDrawing();
    return 1;
}
void glutSwapBuffers() { drawWaiting(); }
// clang-format on

void glutSolidSphere(double radius, int slices, int stacks) {
    requireOutside();
    require(slices == stacks && slices > 0 && slices <= MAX_SLICES);
    if (spheres[slices].array == 0) {
        spheres[slices] = makeSphere(slices);
    }
    drawMesh(spheres[slices], glm::scale(modelview(), glm::vec3(radius)));
}

void glRasterPos3f(float x, float y, float z) {
    requireOutside();
    const glm::vec4 clip = projection() * modelview() * glm::vec4(x, y, z, 1);
    rasterValid = glm::all(glm::lessThanEqual(glm::abs(glm::vec3(clip)), glm::vec3(clip.w)));
    const glm::vec3 unit = glm::vec3(clip) / clip.w;
    rasterPlace = {viewport.x + (unit.x + 1) / 2 * viewport.z,
                   viewport.y + (unit.y + 1) / 2 * viewport.w, unit.z};
    rasterColour = currentState().on[LIGHTING] ? litColour({x, y, z}) : current.colour;
}

// Each pixel is a point of the stream.
void glutBitmapCharacter(void *font, int character) {
    requireOutside();
    State how = currentState();
    require(font == GLUT_BITMAP_TIMES_ROMAN_24 && character >= 0 && character < 256 &&
            !how.on[TEXTURING]);
    if (!rasterValid) {
        return;
    }
    how.projection = glm::mat4(1);
    how.on[LIGHTING] = false;
    beginStream(how, GL_POINTS);
    const Glyph &glyph = GLYPHS[character];
    const glm::vec2 corner(std::floor(rasterPlace.x + PIXEL_ROUNDING - glyph.originX),
                           std::floor(rasterPlace.y + PIXEL_ROUNDING - glyph.originY));
    const unsigned char *row = GLYPH_BITS + glyph.bits;
    for (int y = 0; y < glyph.height; ++y, row += (glyph.width + 7) / 8) {
        for (int x = 0; x < glyph.width; ++x) {
            if ((row[x / 8] >> (7 - x % 8) & 1) != 0) {
                const glm::vec2 centre = corner + glm::vec2(x, y) + 0.5F - glm::vec2(viewport);
                const glm::vec2 unit = 2.0F * centre / glm::vec2(viewport.z, viewport.w) - 1.0F;
                addToStream({{unit, rasterPlace.z, 1}, {}, rasterColour, {}});
            }
        }
    }
    rasterPlace.x += glyph.advance;
}

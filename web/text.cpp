#include <GL/glut.h>
#include <webgl/webgl1.h>
#include <webgl/webgl2.h>

#include <cmath>
#include <glm/gtc/matrix_inverse.hpp>

#include "context.h"
#include "glyphs.h"

void *glutBitmapTimesRoman24 = nullptr;

namespace web {
namespace {

// The picture of all glyphs, in cells of a square.
constexpr int CELLS = 16;
constexpr int CELL = 32;  // pixels
constexpr int PICTURE = CELLS * CELL;

// A raster position is rounded down to a pixel: without this much more, the arithmetic decides
// for one that falls between two.
constexpr float PIXEL_ROUNDING = 1e-4F;

constinit struct {
    bool valid;
    glm::vec3 place;  // in pixels and in depth
    glm::vec4 colour;
} raster = {};

constinit GLuint picture = 0;

// One byte a pixel, from the glyphs' bits.
void makePicture() {
    static unsigned char pixels[PICTURE * PICTURE];
    for (int code = 0; code < CELLS * CELLS; ++code) {
        const Glyph &glyph = GLYPHS[code];
        unsigned char *cell = pixels + code / CELLS * CELL * PICTURE + code % CELLS * CELL;
        const int rowBytes = (glyph.width + 7) / 8;
        for (int y = 0; y < glyph.height; ++y) {
            for (int x = 0; x < glyph.width; ++x) {
                const unsigned byte = GLYPH_BITS[glyph.bits + y * rowBytes + x / 8];
                cell[y * PICTURE + x] = (byte >> (7 - x % 8) & 1U) != 0 ? 255 : 0;
            }
        }
    }
    emscripten_glGenTextures(1, &picture);
    Pipeline how = pipeline();
    how.texture = picture;
    drawPending();
    apply(how);
    emscripten_glTexImage2D(GL_TEXTURE_2D, 0, GL_R8, PICTURE, PICTURE, 0, GL_RED, GL_UNSIGNED_BYTE,
                            pixels);
    emscripten_glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    emscripten_glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
}

// Straight onto the pixels, at the raster position's depth.
Pipeline textPipeline() {
    Pipeline how = pipeline();
    if (how.texture != 0) {
        fail("glutBitmapCharacter", "only without a texture");
    }
    how.projection = glm::mat4(1);
    how.lighting = false;
    how.texture = picture;
    how.glyphs = true;
    return how;
}

// The corner of a glyph's rectangle, right and upper counting 0 or 1.
Vertex corner(const Glyph &glyph, int code, int right, int upper) {
    const float x =
        std::floor(raster.place.x + PIXEL_ROUNDING - glyph.originX) + right * glyph.width;
    const float y =
        std::floor(raster.place.y + PIXEL_ROUNDING - glyph.originY) + upper * glyph.height;
    const glm::vec4 position(2 * (x - viewport.x) / viewport.width - 1,
                             2 * (y - viewport.y) / viewport.height - 1, 2 * raster.place.z - 1, 1);
    const glm::vec2 texel(code % CELLS * CELL + right * glyph.width,
                          code / CELLS * CELL + upper * glyph.height);
    return {position, {}, raster.colour, texel / static_cast<float>(PICTURE)};
}

}  // namespace
}  // namespace web

using namespace web;

void glRasterPos3f(GLfloat x, GLfloat y, GLfloat z) {
    requireOutside("glRasterPos3f");
    const glm::vec4 place = modelview() * glm::vec4(x, y, z, 1);
    const glm::vec4 clip = projection() * place;
    raster.valid =
        clip.w > 0 && glm::all(glm::lessThanEqual(glm::abs(glm::vec3(clip)), glm::vec3(clip.w)));
    if (!raster.valid) {
        return;
    }
    const glm::vec3 unit = (glm::vec3(clip) / clip.w + 1.0F) * 0.5F;
    raster.place = {viewport.x + unit.x * viewport.width, viewport.y + unit.y * viewport.height,
                    unit.z};
    raster.colour = current.colour;
    if (pipeline().lighting) {
        const glm::vec3 normal = glm::inverseTranspose(glm::mat3(modelview())) * current.normal;
        raster.colour = lit(glm::vec3(place) / place.w, glm::normalize(normal), current.colour);
    }
}

void glutBitmapCharacter(void *font, int character) {
    requireOutside("glutBitmapCharacter");
    if (font != GLUT_BITMAP_TIMES_ROMAN_24 || character < 0 || character >= CELLS * CELLS) {
        fail("glutBitmapCharacter", "only of Times Roman 24");
    }
    if (!raster.valid) {
        return;
    }
    if (picture == 0) {
        makePicture();
    }
    const Glyph &glyph = GLYPHS[character];
    const Vertex a = corner(glyph, character, 0, 0);
    const Vertex b = corner(glyph, character, 1, 0);
    const Vertex c = corner(glyph, character, 1, 1);
    const Vertex d = corner(glyph, character, 0, 1);
    const Vertex triangles[] = {a, b, c, a, c, d};
    beginStream(textPipeline(), GL_TRIANGLES);
    addToStream(triangles, 6);
    raster.place.x += glyph.advance;
}

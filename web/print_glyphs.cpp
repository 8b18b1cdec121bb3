// Writes the glyphs of GLUT's Times Roman 24 as a C++ header on standard output. It runs when the
// web program is built, on a display: GLUT does not start without one.

#include <GL/glut.h>

#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

constexpr int CODES = 256;
constexpr int CELL = 32;  // pixels that a glyph may take, across and up

struct Glyph {
    int width = 0;
    int height = 0;
    float originX = 0;
    float originY = 0;
    float advance = 0;
    std::vector<GLubyte> bits;  // rows of whole bytes, the lowest first
};

Glyph drawn;

}  // namespace

// Takes the place of OpenGL's: GLUT writes a character with one call.
void glBitmap(GLsizei width, GLsizei height, GLfloat originX, GLfloat originY, GLfloat advance,
              GLfloat rise, const GLubyte *bits) {
    if (width > CELL || height > CELL || rise != 0) {
        fprintf(stderr, "a glyph of %d by %d does not fit\n", width, height);
        exit(1);
    }
    const int size = (width + 7) / 8 * height;
    drawn = {width, height, originX, originY, advance, {bits, bits + size}};
}

int main(int argc, char **argv) {
    glutInit(&argc, argv);
    puts(
        "#pragma once\n\n"
        "// GLUT's Times Roman 24.\n\n"
        "struct Glyph {\n"
        "    int width, height;\n"
        "    float originX, originY, advance;\n"
        "    int bits;  // where they start in GLYPH_BITS\n"
        "};\n\n"
        "inline constexpr Glyph GLYPHS[] = {");
    std::vector<GLubyte> all;
    for (int code = 0; code < CODES; ++code) {
        drawn = Glyph();
        glutBitmapCharacter(GLUT_BITMAP_TIMES_ROMAN_24, code);
        printf("    {%d, %d, %.1fF, %.1fF, %.1fF, %zu},\n", drawn.width, drawn.height,
               static_cast<double>(drawn.originX), static_cast<double>(drawn.originY),
               static_cast<double>(drawn.advance), all.size());
        all.insert(all.end(), drawn.bits.begin(), drawn.bits.end());
    }
    puts("};\n\ninline constexpr unsigned char GLYPH_BITS[] = {");
    for (const GLubyte byte : all) {
        printf("%d,\n", byte);
    }
    puts("};");
    return 0;
}

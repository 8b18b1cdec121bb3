#include "picture.h"

#include <GL/gl.h>

#include <cstddef>
#include <vector>

#ifdef __EMSCRIPTEN__
#include <webgl/webgl1.h>
#define glReadPixels emscripten_glReadPixels
#endif

void writePicture(FILE *file, int width, int height) {
    const std::size_t row = std::size_t{4} * width;
    std::vector<unsigned char> pixels(row * height);
    glReadPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    fprintf(file, "P6\n%d %d\n255\n", width, height);
    // The first row that OpenGL reads back is the lowest one.
    for (int y = height; y-- > 0;) {
        for (std::size_t x = 0; x < row; x += 4) {
            fwrite(&pixels[y * row + x], 1, 3, file);
        }
    }
}

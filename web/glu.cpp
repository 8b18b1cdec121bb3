#include <GL/glu.h>

#include <algorithm>
#include <bit>
#include <glm/gtc/matrix_transform.hpp>
#include <glm/gtc/type_ptr.hpp>
#include <vector>

#include "context.h"

namespace {

constexpr int COMPONENTS = 3;

void multiply(const glm::dmat4 &matrix) {
    glMultMatrixf(glm::value_ptr(glm::mat4(matrix)));
}

// OpenGL reads each row from a multiple of four bytes.
std::size_t rowBytes(int width) {
    return (static_cast<std::size_t>(width) * COMPONENTS + 3) / 4 * 4;
}

// The picture at half its width and height, where they are not 1 already: each pixel is the
// mean of four.
std::vector<unsigned char> halve(const unsigned char *pixels, int width, int height) {
    const int halfWidth = std::max(1, width / 2);
    const int halfHeight = std::max(1, height / 2);
    std::vector<unsigned char> half(rowBytes(halfWidth) * static_cast<std::size_t>(halfHeight));
    for (int y = 0; y < halfHeight; ++y) {
        const unsigned char *upper = pixels + rowBytes(width) * std::min(2 * y, height - 1);
        const unsigned char *lower = pixels + rowBytes(width) * std::min(2 * y + 1, height - 1);
        unsigned char *row = half.data() + rowBytes(halfWidth) * y;
        for (int i = 0; i < COMPONENTS * halfWidth; ++i) {
            const int left = i / COMPONENTS * 2 * COMPONENTS + i % COMPONENTS;
            const int right = width == 1 ? left : left + COMPONENTS;
            row[i] = static_cast<unsigned char>(
                (upper[left] + upper[right] + lower[left] + lower[right] + 2) / 4);
        }
    }
    return half;
}

}  // namespace

void gluPerspective(GLdouble fieldOfView, GLdouble aspect, GLdouble nearPlane, GLdouble farPlane) {
    multiply(glm::perspective(glm::radians(fieldOfView), aspect, nearPlane, farPlane));
}

void gluOrtho2D(GLdouble left, GLdouble right, GLdouble bottom, GLdouble top) {
    multiply(glm::ortho(left, right, bottom, top));
}

void gluLookAt(GLdouble eyeX, GLdouble eyeY, GLdouble eyeZ, GLdouble centreX, GLdouble centreY,
               GLdouble centreZ, GLdouble upX, GLdouble upY, GLdouble upZ) {
    multiply(glm::lookAt(glm::dvec3(eyeX, eyeY, eyeZ), glm::dvec3(centreX, centreY, centreZ),
                         glm::dvec3(upX, upY, upZ)));
}

GLint gluBuild2DMipmaps(GLenum target, GLint components, GLsizei width, GLsizei height,
                        GLenum format, GLenum type, const void *data) {
    if (!std::has_single_bit(static_cast<unsigned>(width)) ||
        !std::has_single_bit(static_cast<unsigned>(height))) {
        web::fail("gluBuild2DMipmaps", "only of sizes that are powers of two");
    }
    glTexImage2D(target, 0, components, width, height, 0, format, type, data);
    const auto *pixels = static_cast<const unsigned char *>(data);
    std::vector<unsigned char> level;
    for (int number = 1; width > 1 || height > 1; ++number) {
        level = halve(pixels, width, height);
        pixels = level.data();
        width = std::max(1, width / 2);
        height = std::max(1, height / 2);
        glTexImage2D(target, number, components, width, height, 0, format, type, pixels);
    }
    return 0;
}

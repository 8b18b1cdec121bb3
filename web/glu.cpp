#include <GL/glu.h>
#include <webgl/webgl1.h>

#include <bit>
#include <glm/gtc/matrix_transform.hpp>
#include <glm/gtc/type_ptr.hpp>

#include "context.h"

// clang-format off
static void multiply(const glm::dmat4 &m) { glMultMatrixf(glm::value_ptr(glm::mat4(m))); }

void gluPerspective(double fieldOfView, double aspect, double nearPlane, double farPlane) {
    multiply(glm::perspective(glm::radians(fieldOfView), aspect, nearPlane, farPlane));
}
void gluOrtho2D(double left, double right, double bottom, double top) {
    multiply(glm::ortho(left, right, bottom, top));
}
void gluLookAt(double eyeX, double eyeY, double eyeZ, double centreX, double centreY,
               double centreZ, double upX, double upY, double upZ) {
    multiply(glm::lookAt(glm::dvec3(eyeX, eyeY, eyeZ), glm::dvec3(centreX, centreY, centreZ),
                         glm::dvec3(upX, upY, upZ)));
}
int gluBuild2DMipmaps(GLenum target, int components, int width, int height, GLenum format,
                      GLenum type, const void *data) {
    // Other sizes would have to be scaled.
    web::require(std::has_single_bit(unsigned(width)) && std::has_single_bit(unsigned(height)));
    glTexImage2D(target, 0, components, width, height, 0, format, type, data);
    emscripten_glGenerateMipmap(target);
    return 0;
}
// clang-format on

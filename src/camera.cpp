#include "camera.h"

#include <GL/glu.h>

#include <algorithm>
#include <cmath>

constinit int width = START_WIDTH;
constinit int height = START_HEIGHT;

namespace {

constexpr double FIELD_OF_VIEW = 35;  // degrees, vertical
constexpr double NEAR_PLANE = 0.1;
constexpr double FAR_PLANE = 600;

constexpr double NEAREST_SQUARED = 0.277;
constexpr double FARTHEST_SQUARED = 500.0;
constexpr int ALL_THE_WAY = 40;  // steps
constexpr int HALF_THE_WAY = 20;

constexpr float LOWEST_EYE = 0.1F;

void copy(const float *from, float (&to)[3]) {
    if (from != nullptr) {
        std::copy(from, from + 3, to);
    }
}

}  // namespace

void applyPerspective(int w, int h) {
    const float aspect = static_cast<float>(w) / static_cast<float>(h == 0 ? 1 : h);
    gluPerspective(FIELD_OF_VIEW, aspect, NEAR_PLANE, FAR_PLANE);
}

void Camera::update(const float *newEye, const float *newCenter, const float *newUp) {
    copy(newEye, eye);
    copy(newCenter, center);
    copy(newUp, up);
}

void Camera::move(const float * /*position*/, const float *delta) {
    for (int i = 0; i < 3; ++i) {
        center[i] += delta[i];
        eye[i] += delta[i];
    }
}

void Camera::zoomSteps(float factor, int steps) {
    for (int i = 0; i < steps; ++i) {
        zoom(factor);
    }
}

void Camera::zoom(float factor) {
    const float d[3] = {eye[0] - center[0], eye[1] - center[1], eye[2] - center[2]};
    const float squared = d[0] * d[0] + d[1] * d[1] + d[2] * d[2];
    if ((factor == ZOOM_IN && squared > NEAREST_SQUARED) ||
        (factor == ZOOM_OUT && squared < FARTHEST_SQUARED)) {
        for (int i = 0; i < 3; ++i) {
            eye[i] = center[i] + d[i] * factor;
        }
    } else if (factor == ZOOM_NEAREST) {
        zoomSteps(ZOOM_IN, ALL_THE_WAY);
    } else if (factor == ZOOM_FARTHEST) {
        zoomSteps(ZOOM_OUT, ALL_THE_WAY);
    } else if (factor == ZOOM_MIDDLE) {
        zoomSteps(ZOOM_IN, ALL_THE_WAY);
        zoomSteps(ZOOM_OUT, HALF_THE_WAY);
    }
}

void Camera::rotate(float yaw, float pitch) {
    if (yaw != 0) {
        const double c = std::cos(static_cast<double>(yaw));
        const double s = std::sin(static_cast<double>(yaw));
        const float dx = eye[0] - center[0];
        const float dz = eye[2] - center[2];
        eye[0] = center[0] + static_cast<float>(c * dx + s * dz);
        eye[2] = center[2] + static_cast<float>(c * dz - s * dx);
    }
    if (pitch != 0) {
        const double c = std::cos(static_cast<double>(pitch));
        const double s = std::sin(static_cast<double>(pitch));
        const float dy = eye[1] - center[1];
        const float dz = eye[2] - center[2];
        const float y = center[1] + static_cast<float>(c * dy - s * dz);
        eye[1] = y > LOWEST_EYE ? y : LOWEST_EYE;  // also where y is not a number
        eye[2] = center[2] + static_cast<float>(s * dy + c * dz);
    }
}

void Camera::setup() const {
    glMatrixMode(GL_PROJECTION);
    setupShadow();
    glMatrixMode(GL_MODELVIEW);
}

void Camera::setupShadow() const {
    glLoadIdentity();
    applyPerspective(width, height);
    gluLookAt(eye[0], eye[1], eye[2], center[0], center[1], center[2], up[0], up[1], up[2]);
}

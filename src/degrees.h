#pragma once

// Degrees of an angle in radians, formed in double precision; one radian is
// 180 / pi = 57.295779513 degrees.
inline float degrees(float radians) {
    return static_cast<float>(radians * 57.295779513);
}

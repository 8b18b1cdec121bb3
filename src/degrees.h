#pragma once

// Degrees of an angle in radians, formed in double precision. The factor is not quite
// 180 / pi, by which about one float in 57,000 would come out one bit apart.
inline float degrees(float radians) {
    return static_cast<float>(radians * 57.295779513);
}

#include "vector3f.h"

#include <cmath>

Vector3f Vector3f::operator+(Vector3f v) const {
    return {x + v.x, y + v.y, z + v.z};
}

Vector3f Vector3f::operator-(Vector3f v) const {
    return {x - v.x, y - v.y, z - v.z};
}

float Vector3f::operator%(Vector3f v) const {
    return x * v.x + y * v.y + z * v.z;
}

Vector3f Vector3f::operator*(Vector3f v) const {
    return {y * v.z - z * v.y, z * v.x - x * v.z, x * v.y - y * v.x};
}

Vector3f Vector3f::operator/(float s) const {
    return {x / s, y / s, z / s};
}

float Vector3f::norm(Vector3f v) const {
    return sqrtf(v % v);
}

Vector3f Vector3f::normal(Vector3f v) const {
    const Vector3f product = *this * v;
    const float length = norm(product);
    return length == 0.0F ? Vector3f() : product / length;
}

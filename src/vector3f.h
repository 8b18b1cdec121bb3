#pragma once

// A point or direction in 3D space, single precision, world axes (y is up).
// A plain value without invariant: a zero or non-finite vector is representable.
struct Vector3f {
    float x = 0;
    float y = 0;
    float z = 0;

    constexpr Vector3f() = default;
    constexpr Vector3f(float x_, float y_, float z_) : x(x_), y(y_), z(z_) {}

    Vector3f operator+(Vector3f v) const;
    Vector3f operator-(Vector3f v) const;

    // Dot product.
    float operator%(Vector3f v) const;

    // Cross product: this x v.
    Vector3f operator*(Vector3f v) const;

    // Each component divided by s, by the IEEE rules also where s is 0.
    Vector3f operator/(float s) const;

    // Length of the argument; the object itself takes no part.
    float norm(Vector3f v) const;

    // Unit vector along this x v, or the zero vector where the product has no
    // direction (its length is 0), so that a degenerate face stays finite.
    Vector3f normal(Vector3f v) const;
};

#include "fireworks.h"

#include <GL/gl.h>

#include <algorithm>
#include <cstdlib>

namespace {

constexpr int CAPACITY = 256;
constexpr double VELOCITY_STEP = 0.0001;  // units per step
constexpr double LIFT = 0.0006;           // units per step per step

float randomVelocity() {
    return static_cast<float>((rand() % 256 - 128) * VELOCITY_STEP);
}

void emit(const Particle &p) {
    // Opacity falls from 152 for the shortest life to 2 for the longest.
    const auto byte = [](int value) { return static_cast<GLubyte>(value); };
    glBegin(GL_QUADS);
    glColor4ub(byte(p.red), byte(p.green), byte(p.blue), byte(-2 * p.life));
    glTexCoord2f(1, 1);
    glVertex3f(p.x + 1, p.y + 1, p.z);
    glTexCoord2f(0, 1);
    glVertex3f(p.x - 1, p.y + 1, p.z);
    glTexCoord2f(0, 0);
    glVertex3f(p.x - 1, p.y - 1, p.z);
    glTexCoord2f(1, 0);
    glVertex3f(p.x + 1, p.y - 1, p.z);
    glEnd();
}

}  // namespace

Fireworks::Fireworks(int count_, int colorScheme_)
    : particles(std::make_unique<Particle[]>(CAPACITY)),
      count(std::clamp(count_, 0, CAPACITY)),
      colorScheme(colorScheme_) {
    std::for_each_n(particles.get(), count, [this](Particle &p) { birth(p); });
}

// The random numbers are drawn in the order of these statements.
void Fireworks::birth(Particle &p) const {
    p.x = p.y = p.z = 0;
    p.red = rand() % (colorScheme == 0 ? 256 : 128);
    p.green = rand() % (colorScheme == 1 ? 256 : 128);
    p.blue = rand() % (colorScheme != 0 && colorScheme != 1 ? 256 : 128);
    p.vx = randomVelocity();
    p.vy = randomVelocity();
    p.vz = randomVelocity();
    p.age = 0;
    p.life = rand() % 76 + 52;
}

void Fireworks::rebirth() {
    std::for_each_n(particles.get(), count, [this](Particle &p) {
        if (p.age > p.life) {
            birth(p);
        }
    });
}

void Fireworks::move() {
    std::for_each_n(particles.get(), count, [](Particle &p) {
        p.x += p.vx;
        p.vy = static_cast<float>(p.vy + LIFT);
        p.y += p.vy;
        p.z += p.vz;
        ++p.age;
    });
}

void Fireworks::draw() {
    rebirth();
    draw_no_update();
    move();
}

void Fireworks::draw_no_update() {
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    glDisable(GL_DEPTH_TEST);
    glEnable(GL_BLEND);
    glNormal3f(0, 1, 0);
    std::for_each_n(particles.get(), count, emit);
    glDisable(GL_BLEND);
    glEnable(GL_DEPTH_TEST);
}

void Fireworks::step() {
    rebirth();
    move();
}

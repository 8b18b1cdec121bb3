#include "fireworks.h"

#include <GL/gl.h>

#include <algorithm>
#include <cstdlib>

namespace {

constexpr int CAPACITY = 256;
constexpr double VELOCITY_STEP = 0.0001;  // units per step
constexpr int VELOCITY_STEPS = 128;       // at birth at most, either way
constexpr double LIFT = 0.0006;           // units per step per step
constexpr int BRIGHT_SHADES = 256;        // of the colour that a scheme favours
constexpr int DIM_SHADES = 128;           // of the other two
constexpr int SHORTEST_LIFE = 52;         // steps
constexpr int LIVES = 76;

float randomVelocity() {
    return static_cast<float>((rand() % (2 * VELOCITY_STEPS) - VELOCITY_STEPS) * VELOCITY_STEP);
}

int randomShade(bool favoured) {
    return rand() % (favoured ? BRIGHT_SHADES : DIM_SHADES);
}

// From 152 for the shortest life down to 2 for the longest.
int opacity(const Particle &p) {
    return 256 - 2 * p.life;
}

void emit(const Particle &p) {
    const auto byte = [](int value) { return static_cast<GLubyte>(value); };
    glBegin(GL_QUADS);
    glColor4ub(byte(p.red), byte(p.green), byte(p.blue), byte(opacity(p)));
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

void move(Particle &p) {
    p.x += p.vx;
    p.vy = static_cast<float>(p.vy + LIFT);
    p.y += p.vy;
    p.z += p.vz;
    ++p.age;
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
    p.red = randomShade(colorScheme == 0);
    p.green = randomShade(colorScheme == 1);
    p.blue = randomShade(colorScheme != 0 && colorScheme != 1);
    p.vx = randomVelocity();
    p.vy = randomVelocity();
    p.vz = randomVelocity();
    p.age = 0;
    p.life = rand() % LIVES + SHORTEST_LIFE;
}

void Fireworks::rebirth() {
    std::for_each_n(particles.get(), count, [this](Particle &p) {
        if (p.age > p.life) {
            birth(p);
        }
    });
}

void Fireworks::draw() {
    rebirth();
    draw_no_update();
    std::for_each_n(particles.get(), count, move);
}

// Not const: it is called by the same kind of pointer as draw.
void Fireworks::draw_no_update() {  // NOLINT(readability-make-member-function-const)
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
    std::for_each_n(particles.get(), count, move);
}

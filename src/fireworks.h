#pragma once

#include <memory>

// One flame of a fountain. Lengths are in units of the fountain's frame; time is
// counted in steps.
struct Particle {
    float x, y, z;
    float vx, vy, vz;      // added to the position once a step
    int red, green, blue;  // 0..255
    int age;               // steps since birth
    int life;              // steps to live, 52..127
};

// A fountain of flames: squares that start together at the origin of the current
// modelview frame, drift with small random velocities, rise ever faster and are
// reborn at the origin when their life ends. The longer a particle lives, the
// fainter it is, all its life.
//
// The caller places and scales the fountain, binds a fire texture and sets the
// blend function. Drawing clamps the bound texture to its edge, for good, and
// leaves the depth test on, blending off and the last particle's colour and the normal
// (0, 1, 0) current.
class Fireworks {
public:
    // Births `count` particles (0..256; other counts are clamped) with seven
    // numbers of rand() each. Scheme 0 favours red, 1 green, any other blue.
    Fireworks(int count, int colorScheme);

    void draw();            // draws the particles and moves them on by one step
    void draw_no_update();  // draws them as they are
    void step();            // moves them on as `draw` does, drawing nothing

    std::unique_ptr<Particle[]> particles;  // 256 records, whatever the count
    int count;                              // in use: the first ones
    int colorScheme;

private:
    void birth(Particle &particle) const;
    void rebirth();
};

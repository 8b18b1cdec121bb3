#include "game_objects.h"

constinit float swidth = 200;
constinit float sheight = 100;

// These stand together because their order matters and is undefined between files:
// both fountains draw from the one stream of rand(), the first before the second
// and both before anything else, and exit destroys in reverse.
Camera camera;
Camera menu_camera;
Fireworks fireworks1(10, 0);
Fireworks fireworks2(10, 0);
objReader o;
Poodle poodle;
Poodle poodle2;
float swidth2 = swidth * 0.5F;

constinit Interpolate *interpolate_walk = nullptr;
constinit Interpolate *interpolate_sitdown = nullptr;
constinit Interpolate *interpolate_stay = nullptr;
constinit Interpolate *interpolate_fight = nullptr;
constinit Interpolate *interpolate_defend = nullptr;
constinit Interpolate *interpolate_special = nullptr;
constinit Interpolate *interpolate_fight2 = nullptr;
constinit Interpolate *interpolate_sitdown2 = nullptr;

namespace {

struct Animation {
    Interpolate *&interpolate;
    const char *file;
    bool loop;
};

// clang-format off
const Animation ANIMATIONS[] = {
    {interpolate_walk,     "walk.txt",    true},
    {interpolate_sitdown,  "stay.txt",    true},
    {interpolate_stay,     "stay.txt",    true},
    {interpolate_fight,    "fight.txt",   false},
    {interpolate_defend,   "defend.txt",  false},
    {interpolate_special,  "special.txt", false},
    {interpolate_fight2,   "fight.txt",   false},
    {interpolate_sitdown2, "stay.txt",    true},
};
// clang-format on

}  // namespace

void createAnimations() {
    for (const Animation &animation : ANIMATIONS) {
        animation.interpolate = new Interpolate(animation.file, animation.loop);
    }
}

#include "scene_collision.h"

#include <cstdlib>

#include "game_objects.h"
#include "game_state.h"

constinit Collision_Object collision_scene[MAX_FOOTPRINTS] = {};
constinit unsigned collision_back = 0;
constinit Collision_Object collision_char = {};
constinit int collision_action = NO_CONTACT;
constinit bool INITCOLLBOXES = true;

constinit float house_x[MAX_HOUSES] = {};
constinit float house_z[MAX_HOUSES] = {};
constinit unsigned house_back = 0;
constinit float size_fire[MAX_HOUSES] = {};

namespace {

constexpr float PLAYER_RADIUS = 1;
constexpr double WALL_THICKNESS = 0.0001;

constexpr int ROWS = 6;
constexpr int GROUPS_PER_ROW = 6;
constexpr float FIRST_ROW_Z = 60;
constexpr float ROW_STEP = -22;
constexpr float FIRST_GROUP_X = 80;
constexpr float GROUP_STEP = -21;
constexpr float FIRE_STEP = 0.0078125F;  // 1/128 of the fountain's size

// A house of a group: its place from the group's and its footprint round it. town.cpp draws it
// there.
struct House {
    float offsetX;
    double west;   // reach towards -x
    double east;   // towards +x
    double depth;  // towards either z
};

// clang-format off
constexpr House GROUP[] = {
    {  0, 1.9, 2.0, 2.5},
    { -5, 3.2, 2.8, 3.9},
    {-13, 5.2, 4.3, 4.9},
};
static_assert(sizeof GROUP / sizeof *GROUP == 3, "houses are drawn in groups of three");

struct Rectangle {
    double minX, maxX, minZ, maxZ;
};

// What landscape.cpp draws: where it draws each is told there.
constexpr Rectangle SCENERY[] = {
    { -90,  -66,  -14,   14},   // castle body
    { -90,  -61, -2.5, -1.9},   // walls of the castle's approach
    { -90,  -61,  1.9,  2.5},
    {-110,  -83,  -47,   47},   // forest belt behind the castle
    {-3.5, -2.5, -0.5,  0.5},   // tree trunks
    {-10.5, -9.5, -0.5, 0.5},
    {29.5, 30.5, -0.5,  0.5},
};
static_assert(sizeof SCENERY / sizeof *SCENERY == 7);
// clang-format on

void appendHouse(float x, float z, const House &house) {
    house_x[house_back] = x;
    house_z[house_back] = z;
    ++house_back;
    appendFootprint(SOLID, x - house.west, x + house.east, z - house.depth, z + house.depth);
}

void setupGroup(float x, float z) {
    appendHouse(x + GROUP[0].offsetX, z, GROUP[0]);
    appendHouse(x + GROUP[1].offsetX, z, GROUP[1]);
    size_fire[house_back] = static_cast<float>(rand() % 256) * FIRE_STEP;
    appendHouse(x + GROUP[2].offsetX, z, GROUP[2]);
}

}  // namespace

void setupCollision() {
    collision_char.kind = CIRCLE;
    collision_char.code = SOLID;
    collision_char.radius = PLAYER_RADIUS;
    collision_char.cx = positionold[0];
    collision_char.cz = positionold[2];

    const double w = swidth2;
    appendFootprint(SOLID, -w - WALL_THICKNESS, -w, -w, w);
    appendFootprint(SOLID, w, w + WALL_THICKNESS, -w, w);
    appendFootprint(SOLID, -w, w, -w - WALL_THICKNESS, -w);
    appendFootprint(SOLID, -w, w, w, w + WALL_THICKNESS);

    setupHouses();
}

void setupHouses() {
    for (int row = 0; row < ROWS; ++row) {
        for (int group = 0; group < GROUPS_PER_ROW; ++group) {
            setupGroup(FIRST_GROUP_X + static_cast<float>(group) * GROUP_STEP,
                       FIRST_ROW_Z + static_cast<float>(row) * ROW_STEP);
        }
    }
}

void initCollforBackground() {
    for (const Rectangle &r : SCENERY) {
        appendFootprint(SOLID, r.minX, r.maxX, r.minZ, r.maxZ);
    }
}

void appendFootprint(int code, double minX, double maxX, double minZ, double maxZ) {
    if (collision_back >= MAX_FOOTPRINTS) {
        return;
    }
    // The circle's fields keep what they held.
    Collision_Object &footprint = collision_scene[collision_back++];
    footprint.kind = RECTANGLE;
    footprint.code = code;
    footprint.minX = static_cast<float>(minX);
    footprint.maxX = static_cast<float>(maxX);
    footprint.minZ = static_cast<float>(minZ);
    footprint.maxZ = static_cast<float>(maxZ);
}

void updateCollision() {
    collision_char.cx = position[0];
    collision_char.cz = position[2];
}

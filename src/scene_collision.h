#pragma once

#include "collision.h"

// --- Footprints of the scene --------------------------------------------------------

constexpr unsigned MAX_FOOTPRINTS = 512;

// The first collision_back entries are in use: walls, houses and fixed scenery from
// start-up, then the people from the first town frame. Nothing is ever removed.
extern Collision_Object collision_scene[MAX_FOOTPRINTS];
extern unsigned collision_back;
// The player's footprint, a circle of radius 1, where `position` was at the start of the last
// update, also if that has put the player back.
extern Collision_Object collision_char;
// Result of the latest test of the update (Collision_Code).
extern int collision_action;
// The people's footprints have not been appended yet; cleared by drawPeople.
extern bool INITCOLLBOXES;

// --- Houses -------------------------------------------------------------------------

constexpr unsigned MAX_HOUSES = 256;

// Places of the houses on the ground, world units, in groups of three; the first
// house_back entries are in use. Written by setupHouses.
extern float house_x[MAX_HOUSES];
extern float house_z[MAX_HOUSES];
extern unsigned house_back;
// Scale of the fire on every third house, 0 to 255/128; 0 for the others.
extern float size_fire[MAX_HOUSES];

// Places the player's footprint, appends the four walls and runs setupHouses.
void setupCollision();

// Lays out the 108 houses in six rows of six groups, appends their footprints and
// draws one number of rand() per group for its fire. To be called once.
void setupHouses();

// Appends the footprints of the castle, the forest and the three trees.
void initCollforBackground();

// Appends a solid, enemy's or townsperson's rectangle (Collision_Code). Beyond
// MAX_FOOTPRINTS it is dropped.
void appendFootprint(int code, double minX, double maxX, double minZ, double maxZ);

// Moves the player's footprint to `position`.
void updateCollision();

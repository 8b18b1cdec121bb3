#pragma once

#include "camera.h"
#include "fireworks.h"
#include "interpolate.h"
#include "objreader.h"
#include "poodle.h"

// --- Objects built before main, in this order -----------------------------------

extern Camera camera;       // follows the player in the town and in battle
extern Camera menu_camera;  // the title screen's; never moved
extern Fireworks fireworks1;
extern Fireworks fireworks2;
extern objReader o;     // reads every model in turn
extern Poodle poodle;   // the player's
extern Poodle poodle2;  // the enemy's, drawn three times

// --- Extent of the world, world units ---------------------------------------------

extern float swidth;   // edge of the square ground
extern float sheight;  // height of the sky box
extern float swidth2;  // half of the ground's edge; set before main

// --- Animations: created by createAnimations, never freed ---------------------------

extern Interpolate *interpolate_walk;      // the player walking in the town
extern Interpolate *interpolate_sitdown;   // the player at rest, in the town and in battle
extern Interpolate *interpolate_stay;      // the enemy in the town
extern Interpolate *interpolate_fight;     // the player's ATTACK
extern Interpolate *interpolate_defend;    // the player's DEFEND
extern Interpolate *interpolate_special;   // the player's SPECIAL
extern Interpolate *interpolate_fight2;    // the enemy's attack
extern Interpolate *interpolate_sitdown2;  // the enemy at rest in battle

// Creates the eight animations, each with its own stream on its keyframe file.
void createAnimations();

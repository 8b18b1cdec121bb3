#pragma once

#include "interpolate.h"

// The state of the whole run. One thread reads and writes it, between GLUT's
// callbacks; nothing is reset when a new game starts from the title screen.

// --- Mode -------------------------------------------------------------------

enum Status { TITLE = 0, TOWN = 1, BATTLE = 2 };
enum Overlay { BATTLE_PANEL = 0, TALK_BOX = 1, NO_OVERLAY = 2 };

// The scene that runs (Status). Written by keys, the update and IntroCube.
extern int status;
// The overlay over the town scene (Overlay). Written by the update.
extern int Menu;

// --- Title screen -----------------------------------------------------------

// Faces of the title cube that can be in front; face 0 starts the game.
constexpr int TITLE_FACES = 4;

extern int option;         // face in front, 0..3; written by keys
extern bool selectOption;  // the start was chosen; written by keys and the update
extern bool Rotating;      // a quarter turn is in progress; keys set, IntroCube clears it
extern float rotHor;       // target angle about the vertical, degrees; written by keys
extern float hor;          // current angle, degrees; written by IntroCube
extern float Zval;         // offset along z of the swing, world units; by IntroCube
extern float Zstep;        // frame counter of the swing; by IntroCube

// --- Talk; written by the update ---------------------------------------------

// Lines of dialogue, told in turn.
constexpr int DIALOGUE_LINES = 11;
// Updates for which the talk box stays.
constexpr int TALK_FRAMES = 50;

extern int TalkMenu;     // number of the line to show; wrapped by the talk box
extern bool IsTalkBool;  // a talk is running
extern int TalkTimer;    // updates left of the talk; goes below zero between talks

// --- Battle; written by the rules, and where noted -----------------------------

enum Move { ATTACK = 0, DEFEND = 1, SPECIAL = 2, NO_MOVE = 3 };
enum Turn { PLAYER_CHOOSES = 0, ENEMY_TO_MOVE = 1 };
enum Message { NO_MESSAGE = 0, PLAYER_HIT = 1, ENEMY_HIT = 2, PLAYER_DEFENDED = 3 };

// Health of the player and of the enemy before the first blow.
constexpr int START_HEALTH = 100;

extern int Fight_status;        // move under the cursor (Move); written by keys
extern int Battle_Turn;         // Turn
extern int BATTLE_MESSAGE;      // Message of the last move; cleared by a win
extern int BattleMessageTimer;  // frames left of the player's message; counted by the frame
extern int PlayerTimer;         // frames left of the enemy's message; counted by the frame
extern char HIT[3];             // damage of the last hit as two digits
extern char HEALTH[4];          // the player's health as three digits
extern int health;              // the player's; no upper limit, 0 is "DEAD" and goes on
extern int ENEMY_Health;        // of all three enemy poodles; below 1 the battle is won
extern int special;             // SPECIAL needs more than 99 and uses it up for the run
extern int ENTERPRESS;          // Move whose animation runs; ended by the update
extern int ENTERPRESS_ENEMY;    // ATTACK while the enemy's animation runs, else NO_MOVE

// --- Player and camera ---------------------------------------------------------

enum Action { STANDING = 0, WALKING = 1, HELD_STILL = 2 };
enum Zoom { ZOOMING_OUT = -1, ZOOM_NONE = 0, ZOOMING_IN = 1 };

extern float position[3];     // on the ground, world units; written by keys and the update
extern float positionold[3];  // at the end of the last update: where the poodle is drawn
extern float objrot;          // heading, radians about y; written by keys
extern float objrotold;       // at the end of the last update: drawn, and used to step
extern float vect[3];         // displacement of the last update
extern float camrot[3];       // mouse look, radians: yaw, pitch, unused; zeroed by the update
extern int zoom;              // held mouse zoom: 1 in, -1 out, 0 none; written by the mouse
extern float zoom_in;         // factor of one step in
extern float zoom_out;        // factor of one step out
extern int action;            // Action of the player in the town; written by keys

// --- Poses and shadow ------------------------------------------------------------

extern Params marked_params;  // the player's pose; written by the update
extern Params enemy_params;   // the enemy's pose; written by the update
extern float matrix[4][4];    // planar shadow matrix, column-major; rebuilt every frame

#pragma once

// GLUT's idle callback, the game's one update step. Resolves the player's movement
// against the scene, makes the mode changes of talks and battles, moves the camera
// after the player and the mouse, steps the animations and the fountains, and asks
// for a redisplay. Each call is one step, whatever the time between calls.
//
// The fountains move on by exactly one step and are not drawn: the next frame would
// wipe the drawing. The blend function is left additive and the blue fire bound.
void idleCallback();

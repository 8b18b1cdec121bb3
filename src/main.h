#pragma once

// Loads every asset, in the fixed order, and sets the lights and the OpenGL state that
// the whole run relies on. Needs the window's OpenGL context; to be called once.
void init();

// GLUT's reshape callback: takes the window's new size, pixels. A height of 0 counts as
// 1 for the aspect ratio. Every frame replaces the projection that it sets.
void myReshape(int w, int h);

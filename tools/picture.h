#pragma once

#include <cstdio>

// Writes the frame that was just drawn, so much of the window from its lower left corner, as PPM.
void writePicture(FILE *file, int width, int height);

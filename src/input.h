#pragma once

// GLUT's input callbacks. They record the player's requests in the game state at
// once and leave what takes time to the next update; each asks for a redisplay.
// Every delivered key event is one step, so a held key moves at the platform's key
// repeat. Letters count in lower case only; a key without a meaning is ignored.

// A key goes down (or repeats). The pointer's place is not used.
void keyCallback(unsigned char key, int x, int y);

// A key comes up: 'w' and 's' stop walking. On the title screen 'n' and 'm' turn the
// cube, as when pressed, if it stands still by then.
void keyUpCallback(unsigned char key, int x, int y);

// A mouse button goes down or up: the left one zooms in while held, the right one
// out. The pointer's place is not used.
void mouseCallback(int button, int state, int x, int y);

// The pointer moves with no button held, window coordinates: looks about.
void motionCallback(int x, int y);

#pragma once

#include <cstdio>
#include <numbers>
#include <string>
#include <vector>

// What the two viewers share: a window lit as the game lights the town, a view that
// turns about its subject under mouse and keys, and contact sheets.

constexpr float RADIANS = std::numbers::pi_v<float> / 180;  // of one degree

// The place from which the subject is seen.
struct View {
    float heading;   // degrees about the vertical; 0 looks along -z
    float pitch;     // degrees; positive looks down
    float distance;  // of the eye from the centre, world units
    float centre[3];
};

// Command line of a viewer: the files in order, and the options after them.
struct Arguments {
    std::vector<std::string> files;
    std::string sheet;  // "--sheet FILE": write a contact sheet and leave
    float speed = 0;    // "--speed UNITS": the ground moves by so much a frame
};

// Takes its options out of the command line. Without `fileCount` files, or with an
// option that it does not know, prints `usage` on standard error and leaves with status 2;
// for "--help" on standard output with status 0.
Arguments readArguments(int argc, char **argv, std::size_t fileCount, const char *usage);

// Opens the window and sets the game's lights and drawing state.
void openWindow(int *argc, char **argv, const char *title, int windowWidth, int windowHeight);

// Clears the picture and loads `view` for a window of `viewWidth` by `viewHeight` pixels.
void beginPicture(const View &view, int viewWidth, int viewHeight);

// A chequered floor at y = 0 that has travelled by `travel` along +z, with squares of
// half a unit. It also prepares the stencil for shadows.
void drawFloor(float travel);

// The shadow that `drawSubject` casts on the floor.
void drawShadow(void (*drawSubject)());

// Writes a line in the lower left corner of the picture.
void writeCaption(const std::string &text);

// Turns and zooms `view` from now on: a dragged mouse or the arrow keys turn it, the
// wheel, '+' and '-' zoom, Escape leaves. Every other key goes to `otherKey`.
void turnByHand(View &view, void (*otherKey)(unsigned char key));

// Square pictures in rows, drawn one by one in the window. ImageMagick puts them together.
class ContactSheet {
public:
    ContactSheet(const std::string &file, unsigned cellsAcross);

    // Takes the picture just drawn, which filled the lower left corner of the window.
    void add(int pixelsAcross);

    // Ends the sheet; false, after a line on standard error, if it could not be written.
    bool close();

private:
    FILE *montage;
};

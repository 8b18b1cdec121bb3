#pragma once

// Name of the texture object that LoadBitmap created last.
extern unsigned num_texture;

// Loads an uncompressed 24-bit BMP file as a mipmapped, repeating texture and
// returns its name, left bound to GL_TEXTURE_2D, with the texture environment set
// to GL_MODULATE. Returns -1 if the file cannot be opened (nothing is printed),
// and 0, after one line on standard output, if its planes are not 1, its depth is
// not 24 bits, its pixels do not fit in memory or the file ends within them.
//
// Neither the signature nor the data offset is looked at: the pixels are the
// width x height x 3 bytes (blue, green, red) from byte 54 on, bottom row first,
// without padding. Where the width is no multiple of 4, OpenGL, which expects padded rows,
// shows them skewed; a negative product of
// the sizes counts as pixels that do not fit, a product of 0 as unreadable ones.
int LoadBitmap(const char *filename);

#pragma once

#include <cstddef>

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
// without padding. OpenGL expects rows that are padded to a multiple of 4 bytes: a picture
// whose width is no multiple of 4 is loaded, and shown skewed. Where just one of the sizes is
// negative, the pixels count as too many for the memory; where one is 0, as unreadable.
int LoadBitmap(const char *filename);

// Bytes to set aside for the pixels of a picture of the given size: the pixels themselves, and
// behind them what OpenGL reads beyond them for the padding that it expects. Never 0, but where
// there is no such number or it is above `limit`.
std::size_t pixelRoom(int width, int height, std::size_t limit);

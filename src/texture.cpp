#include "texture.h"

#include <GL/glu.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <utility>

#include "file.h"

unsigned num_texture;

namespace {

constexpr long SIZE_OFFSET = 18;        // bytes before the width
constexpr long SKIPPED_AFTER_BPP = 24;  // bytes between the bits per pixel and the pixels
constexpr std::int64_t BYTES_PER_PIXEL = 3;
constexpr std::int64_t ROW_ALIGNMENT = 4;  // OpenGL reads rows from multiples of this

struct Free {
    void operator()(unsigned char *memory) const { free(memory); }
};
using Pixels = std::unique_ptr<unsigned char[], Free>;

struct Image {
    int width = 0;
    int height = 0;
    Pixels pixels;  // red, green, blue; null if the file could not be read
};

// Little-endian; the bytes that a short file lacks read as 0.
std::uint32_t readNumber(FILE *file, int bytes) {
    unsigned char raw[4] = {};
    (void)fread(raw, 1, static_cast<std::size_t>(bytes), file);
    return raw[0] | raw[1] << 8U | raw[2] << 16U | static_cast<std::uint32_t>(raw[3]) << 24U;
}

// Bytes of the pixel data, or -1 where the sizes have no such number.
std::int64_t dataSize(int width, int height) {
    const std::int64_t area = static_cast<std::int64_t>(width) * height;
    return area < 0 || area > INT64_MAX / 4 ? -1 : area * BYTES_PER_PIXEL;
}

// Null where there is not so much memory.
Pixels allocatePixels(const Image &image) {
    const std::size_t room = pixelRoom(image.width, image.height, PTRDIFF_MAX);
    if (room == 0) {
        return nullptr;
    }
    return Pixels(static_cast<unsigned char *>(calloc(room, 1)));
}

Image readImage(FILE *file, const char *filename) {
    Image image;
    fseek(file, SIZE_OFFSET, SEEK_CUR);
    image.width = static_cast<int>(readNumber(file, 4));
    image.height = static_cast<int>(readNumber(file, 4));
    const unsigned planes = readNumber(file, 2);
    if (planes != 1) {
        printf("Planes from %s is not 1: %u\n", filename, planes);
        return image;
    }
    const auto bitsPerPixel = static_cast<int>(readNumber(file, 2));
    if (bitsPerPixel != 24) {
        printf("Bpp from %s is not 24: %d\n", filename, bitsPerPixel);
        return image;
    }
    fseek(file, SKIPPED_AFTER_BPP, SEEK_CUR);
    Pixels pixels = allocatePixels(image);
    if (!pixels) {
        puts("Error allocating memory for color-corrected image data");
        return image;
    }
    const auto size = static_cast<std::size_t>(dataSize(image.width, image.height));
    if (fread(pixels.get(), size, 1, file) != 1) {
        printf("Error reading image data from %s.\n", filename);
        return image;
    }
    for (std::size_t i = 0; i < size; i += BYTES_PER_PIXEL) {
        std::swap(pixels[i], pixels[i + 2]);
    }
    image.pixels = std::move(pixels);
    return image;
}

void upload(const Image &image) {
    glGenTextures(1, &num_texture);
    glBindTexture(GL_TEXTURE_2D, num_texture);
    glTexParameterf(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_REPEAT);
    glTexParameterf(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_REPEAT);
    glTexParameterf(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameterf(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR_MIPMAP_NEAREST);
    glTexEnvf(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
    glTexImage2D(GL_TEXTURE_2D, 0, 3, image.width, image.height, 0, GL_RGB, GL_UNSIGNED_BYTE,
                 image.pixels.get());
    gluBuild2DMipmaps(GL_TEXTURE_2D, 3, image.width, image.height, GL_RGB, GL_UNSIGNED_BYTE,
                      image.pixels.get());
}

}  // namespace

std::size_t pixelRoom(int width, int height, std::size_t limit) {
    const std::int64_t size = dataSize(width, height);
    if (size < 0) {
        return 0;
    }
    const std::int64_t rows = size > 0 ? std::abs(static_cast<std::int64_t>(height)) : 0;
    const auto room = static_cast<std::uint64_t>(size + ROW_ALIGNMENT * (rows + 1));
    return room > limit ? 0 : static_cast<std::size_t>(room);
}

int LoadBitmap(const char *filename) {
    const File file(fopen(filename, "rb"));
    if (!file) {
        return -1;
    }
    const Image image = readImage(file.get(), filename);
    if (!image.pixels) {
        return 0;
    }
    upload(image);
    return static_cast<int>(num_texture);
}

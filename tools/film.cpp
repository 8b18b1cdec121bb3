// The camera of tools/film: preloaded into the real program, it stands between the program and
// GLUT where a frame is shown. The game has no clock, so it may wait for its camera: it draws as
// many frames as it is told, then waits for the next word. What is filmed is therefore the same
// on a slow machine and on a fast one, 60 frames to a second of play.
//
// The environment names its files. TALVERY_FILM_ORDERS, a pipe: lines "FRAMES 1" or "FRAMES 0",
// to draw so many more with or without filming. TALVERY_FILM_DONE, a pipe: a line comes out when
// they are drawn. TALVERY_FILM_PICTURES, a folder: every sixth filmed frame.

#include <GL/glut.h>
#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

constexpr int FRAMES_PER_PICTURE = 6;  // 10 pictures for a second of 60 frames

FILE *open(const char *variable, const char *mode) {
    const char *name = std::getenv(variable);
    FILE *file = name == nullptr ? nullptr : std::fopen(name, mode);
    if (file == nullptr) {
        std::perror(variable);
        std::exit(1);
    }
    return file;
}

// The drawn frame, the lower row first, 3 bytes a pixel.
std::vector<unsigned char> readFrame(int width, int height) {
    std::vector<unsigned char> pixels(static_cast<std::size_t>(width) * height * 3);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, width, height, GL_RGB, GL_UNSIGNED_BYTE, pixels.data());
    return pixels;
}

// Writes the frame as a PPM file.
void writePicture(const std::string &file) {
    const int width = glutGet(GLUT_WINDOW_WIDTH);
    const int height = glutGet(GLUT_WINDOW_HEIGHT);
    const std::vector<unsigned char> frame = readFrame(width, height);
    FILE *out = std::fopen(file.c_str(), "wb");
    if (out == nullptr) {
        std::perror(file.c_str());
        std::exit(1);
    }
    std::fprintf(out, "P6\n%d %d\n255\n", width, height);
    const std::size_t row = 3 * static_cast<std::size_t>(width);
    for (int y = height - 1; y >= 0; --y) {
        std::fwrite(&frame[static_cast<std::size_t>(y) * row], 1, row, out);
    }
    std::fclose(out);
}

}  // namespace

void glutSwapBuffers() {
    static const auto swap = reinterpret_cast<void (*)()>(dlsym(RTLD_NEXT, "glutSwapBuffers"));
    static FILE *const orders = open("TALVERY_FILM_ORDERS", "r");
    static FILE *const done = open("TALVERY_FILM_DONE", "w");
    static int left = 0;
    static int filming = 0;
    static int filmed = 0;

    if (filming != 0 && filmed++ % FRAMES_PER_PICTURE == 0) {
        char name[32];
        std::snprintf(name, sizeof name, "/%05d.ppm", filmed / FRAMES_PER_PICTURE);
        writePicture(std::getenv("TALVERY_FILM_PICTURES") + std::string(name));
    }
    swap();
    if (left != 0 && --left != 0) {
        return;
    }
    glFinish();
    std::fputs("\n", done);
    std::fflush(done);
    if (std::fscanf(orders, "%d %d", &left, &filming) != 2) {
        left = -1;  // the film is made: play on alone
        filming = 0;
    }
}

// Preloaded into the real program, it stands between the program and GLUT where a frame is shown.
//
// FRAME_LOG, a file, for tools/cost and tools/soak: a line for every frame, with the CPU time of
// the whole process and the time since it was loaded, both in microseconds. Drawing in software,
// the process draws too.
//
// FILM, a folder, for tools/front_page: the game has no clock, so it may wait for its camera. It
// draws as many frames as it is told, then waits for the next word. What is filmed is therefore the
// same on a slow machine and on a fast one, 60 frames to a second of play. Two pipes lie there:
// "orders" takes lines "FRAMES 1" or "FRAMES 0", to draw so many more with or without filming, and
// from "done" comes a line when they are drawn. Every sixth filmed frame is put beside them.

#include <GL/glut.h>
#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>

#include "picture.h"

namespace {

constexpr int FRAMES_PER_PICTURE = 6;  // 10 pictures for a second of 60 frames

long long microseconds(clockid_t clock) {
    timespec now = {};
    clock_gettime(clock, &now);
    return now.tv_sec * 1000000LL + now.tv_nsec / 1000;
}

const long long loaded = microseconds(CLOCK_MONOTONIC);

// The file that the environment names, or `name` in the folder; null where it names none.
FILE *open(const char *variable, const char *mode, const char *name = "") {
    const char *path = std::getenv(variable);
    if (path == nullptr) {
        return nullptr;
    }
    FILE *file = std::fopen((std::string(path) + name).c_str(), mode);
    if (file == nullptr) {
        std::perror(variable);
        std::exit(2);
    }
    return file;
}

void takePicture(int number) {
    char name[32];
    std::snprintf(name, sizeof name, "/%05d.ppm", number);
    FILE *const file = open("FILM", "wb", name);
    writePicture(file, glutGet(GLUT_WINDOW_WIDTH), glutGet(GLUT_WINDOW_HEIGHT));
    std::fclose(file);
}

}  // namespace

void glutSwapBuffers() {
    static const auto swap = reinterpret_cast<void (*)()>(dlsym(RTLD_NEXT, "glutSwapBuffers"));
    static FILE *const log = open("FRAME_LOG", "w");
    static FILE *const orders = open("FILM", "r", "/orders");
    static FILE *const done = open("FILM", "w", "/done");
    static int left = 0;
    static int filming = 0;
    static int filmed = 0;

    if (filming != 0 && filmed++ % FRAMES_PER_PICTURE == 0) {
        takePicture(filmed / FRAMES_PER_PICTURE);
    }
    swap();
    if (log != nullptr) {
        std::fprintf(log, "%lld %lld\n", microseconds(CLOCK_PROCESS_CPUTIME_ID),
                     microseconds(CLOCK_MONOTONIC) - loaded);
        std::fflush(log);
    }
    if (orders == nullptr || (left != 0 && --left != 0)) {
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

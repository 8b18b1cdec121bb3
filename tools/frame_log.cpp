// Preloaded into the game by tools/cost and tools/soak: writes a line into the file named by
// FRAME_LOG for every frame that is shown, with the CPU time of the whole process and the time
// since it was loaded, both in microseconds. Drawing in software, the process draws too.

#include <GL/glut.h>
#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace {

long long microseconds(clockid_t clock) {
    timespec now = {};
    clock_gettime(clock, &now);
    return now.tv_sec * 1000000LL + now.tv_nsec / 1000;
}

const long long loaded = microseconds(CLOCK_MONOTONIC);

FILE *openLog() {
    const char *name = getenv("FRAME_LOG");
    FILE *file = name == nullptr ? nullptr : fopen(name, "w");
    if (file == nullptr) {
        perror("FRAME_LOG");
        exit(2);
    }
    setvbuf(file, nullptr, _IOLBF, 0);
    return file;
}

}  // namespace

// Takes the place of GLUT's, and calls it.
void glutSwapBuffers() {
    static FILE *const log = openLog();
    static auto *const swap = reinterpret_cast<void (*)()>(dlsym(RTLD_NEXT, "glutSwapBuffers"));
    swap();
    fprintf(log, "%lld %lld\n", microseconds(CLOCK_PROCESS_CPUTIME_ID),
            microseconds(CLOCK_MONOTONIC) - loaded);
}

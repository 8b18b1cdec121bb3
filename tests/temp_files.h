#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <fstream>
#include <string>

// A file in memory, which is opened by its name as others are; gone with the object.
class Temp_File {
public:
    explicit Temp_File(const std::string &content) { std::ofstream(path) << content; }
    ~Temp_File() { close(descriptor); }
    Temp_File(const Temp_File &) = delete;

    const char *name() const { return path.c_str(); }

private:
    const int descriptor = memfd_create("file", 0);
    const std::string path = "/proc/self/fd/" + std::to_string(descriptor);
};

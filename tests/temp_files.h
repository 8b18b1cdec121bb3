#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <string>

// A small file in the temporary folder, gone with the object.
class Temp_File {
public:
    explicit Temp_File(const std::string &content) { std::ofstream(path) << content; }
    ~Temp_File() { remove(); }
    Temp_File(const Temp_File &) = delete;

    void remove() const { std::remove(path.c_str()); }
    const char *name() const { return path.c_str(); }

private:
    static inline int made = 0;
    const std::string path =
        testing::TempDir() + "talvery_" + std::to_string(getpid()) + "_" + std::to_string(made++);
};

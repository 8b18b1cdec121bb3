#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <string>

// What a fuzz target is given, as a file that the game's readers open by its name.
class Input_File {
public:
    Input_File(const std::uint8_t *data, std::size_t size)
        : descriptor(memfd_create("input", 0)),
          path("/proc/self/fd/" + std::to_string(descriptor)) {
        while (size > 0) {
            const ssize_t written = write(descriptor, data, size);
            if (written <= 0) {
                break;
            }
            data += written;
            size -= static_cast<std::size_t>(written);
        }
    }
    ~Input_File() { close(descriptor); }
    Input_File(const Input_File &) = delete;

    const char *name() const { return path.c_str(); }

private:
    int descriptor;
    std::string path;
};

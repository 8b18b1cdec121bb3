// A picture file, read and uploaded as the game does it.

#include <cstdint>
#include <cstdlib>

#include "recording_gl.h"
#include "temp_files.h"
#include "texture.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const Temp_File file(std::string(data, data + size));
    recording::gl = {};
    if (LoadBitmap(file.name()) < 0 || !recording::faults().empty()) {
        abort();
    }
    return 0;
}

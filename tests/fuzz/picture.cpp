// A picture file, read and uploaded as the game does it.

#include <cstdlib>

#include "recording_gl.h"
#include "target.h"
#include "texture.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const Input_File file(data, size);
    recording::reset();
    if (LoadBitmap(file.name()) < 0 || !recording::faults().empty()) {
        abort();
    }
    return 0;
}

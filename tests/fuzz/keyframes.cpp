// A keyframe file, played twice: to its end, and over it in a loop.

#include <cstdint>
#include <cstdlib>

#include "interpolate.h"
#include "temp_files.h"

namespace {

constexpr int STEPS = 60;

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const Temp_File file(std::string(data, data + size));
    for (const bool loop : {false, true}) {
        Interpolate player(file.name(), loop);
        Params pose = {};
        for (int step = 0; step < STEPS; ++step) {
            if (player.step(pose) && !loop) {
                player.reset();
            }
        }
        KeyFrame key = {};
        player.advance();
        player.read(key);
    }
    return 0;
}

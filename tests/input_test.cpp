#include "input.h"

#include <gtest/gtest.h>

#include "game_state.h"
#include "globals.h"

namespace {

// What the others do, the rounds show.
TEST(Input, KeysWithoutAMeaningDoNothing) {
    const struct {
        int mode;
        std::string pressed, released;  // the keys with a meaning
    } modes[] = {
        {TITLE, "nmp\x1b", "nm"},
        {TOWN, "wsad,. 123p\x1b", "ws"},
        {BATTLE, "wsad,. 123p\r\x1b", "ws"},
    };
    for (const auto &[mode, pressed, released] : modes) {
        for (int i = 0; i < 512; ++i) {
            const bool down = i < 256;
            const auto key = static_cast<unsigned char>(i);
            if ((down ? pressed : released).find(static_cast<char>(key)) == std::string::npos) {
                status = mode;
                action = HELD_STILL;
                globals::changes();
                (down ? keyCallback : keyUpCallback)(key, 3, 4);
                EXPECT_EQ(globals::changes(), "")
                    << "mode " << mode << ", " << (down ? "press" : "release") << " of key "
                    << +key;
            }
        }
    }
}

}  // namespace

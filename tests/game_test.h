#pragma once

#include <gtest/gtest.h>

#include "game_objects.h"
#include "game_state.h"
#include "globals.h"
#include "recording_gl.h"
#include "scene_collision.h"

// Starts every test with a fresh game: start values, an empty scene and a new recording.
class Game_Test : public testing::Test {
protected:
    Game_Test() { restart(); }

    static void restart() {
        globals::reset();
        collision_char = {CIRCLE, SOLID, 0, 0, 1, 0, 0, 0, 0};
        recording::reset();
    }
};

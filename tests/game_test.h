#pragma once

#include <gtest/gtest.h>

#include <array>
#include <map>
#include <sstream>
#include <string>
#include <variant>

#include "game_objects.h"
#include "game_state.h"
#include "recording_gl.h"
#include "scene_collision.h"

// Eye, centre and up of a camera in a row.
inline std::array<float, 9> viewOf(const Camera &c) {
    return {c.eye[0],    c.eye[1], c.eye[2], c.center[0], c.center[1],
            c.center[2], c.up[0],  c.up[1],  c.up[2]};
}

// Starts every test with a fresh game and says which of its plain globals change.
class Game_Test : public testing::Test {
protected:
    Game_Test() { restart(); }

    // The start values of the game's state, an empty scene and a new recording.
    void restart() {
        static const State start = read();
        for (const auto &[name, global] : GLOBALS) {
            std::visit([value = start.at(name)](auto *g) { assign(*g, value); }, global);
        }
        marked_params = enemy_params = {};
        camera = Camera();
        collision_back = 0;
        collision_char = {CIRCLE, SOLID, 0, 0, 1, 0, 0, 0, 0};
        INITCOLLBOXES = true;
        recording::reset();
        expectNoMore();
    }

    // The globals that differ from the last call, or from the restart, in the order of
    // the alphabet, capitals first: "action=1 z=-0.15".
    std::string changes() {
        std::ostringstream text;
        text.precision(4);
        for (const auto &[name, value] : read()) {
            if (value != seen[name]) {
                text << (text.tellp() > 0 ? " " : "") << name << '=' << value;
            }
        }
        expectNoMore();
        return text.str();
    }
    void expectNoMore() { seen = read(); }

private:
    using State = std::map<std::string, double>;

    // clang-format off
    static inline const std::map<std::string, std::variant<int *, float *, bool *>> GLOBALS = {
        {"status", &status}, {"Menu", &Menu}, {"option", &option}, {"selectOption", &selectOption},
        {"Rotating", &Rotating}, {"rotHor", &rotHor}, {"hor", &hor}, {"Zval", &Zval},
        {"Zstep", &Zstep}, {"TalkMenu", &TalkMenu}, {"IsTalkBool", &IsTalkBool},
        {"TalkTimer", &TalkTimer}, {"Fight_status", &Fight_status}, {"Battle_Turn", &Battle_Turn},
        {"BATTLE_MESSAGE", &BATTLE_MESSAGE}, {"BattleMessageTimer", &BattleMessageTimer},
        {"PlayerTimer", &PlayerTimer}, {"health", &health}, {"ENEMY_Health", &ENEMY_Health},
        {"special", &special}, {"ENTERPRESS", &ENTERPRESS}, {"ENTERPRESS_ENEMY", &ENTERPRESS_ENEMY},
        {"x", &position[0]}, {"y", &position[1]}, {"z", &position[2]}, {"xOld", &positionold[0]},
        {"yOld", &positionold[1]}, {"zOld", &positionold[2]}, {"objrot", &objrot},
        {"objrotold", &objrotold}, {"yaw", &camrot[0]}, {"pitch", &camrot[1]}, {"zoom", &zoom},
        {"action", &action},
    };
    // clang-format on

    static State read() {
        State state;
        for (const auto &[name, global] : GLOBALS) {
            // The sum has no negative zero.
            state[name] = std::visit([](auto *g) { return static_cast<double>(*g) + 0; }, global);
        }
        return state;
    }
    template <typename T>
    static void assign(T &global, double value) {
        global = static_cast<T>(value);
    }

    State seen;
};

#include "input.h"

#include <functional>
#include <map>

#include "game_test.h"

namespace {

constexpr unsigned char ENTER = 13;
constexpr unsigned char ESCAPE = 27;

using Input = Game_Test;
using Keys = std::map<unsigned char, std::string>;

Keys operator+(Keys keys, const Keys &more) {
    keys.insert(more.begin(), more.end());
    return keys;
}

void fight(int cursor, int turn, int playerTimer) {
    status = BATTLE;
    Fight_status = cursor;
    Battle_Turn = turn;
    PlayerTimer = playerTimer;
}

// The keys of all modes; which of them move the camera, the rounds show.
TEST_F(Input, EveryKeyDoesItsWorkInItsModeAndNothingElse) {
    // clang-format off
    const Keys first = {{'n', "option 1  Rotating 1  rotHor 90"}, {'m', "option 3  Rotating 1  rotHor -90"}};
    const Keys last = {{'n', "option 0  Rotating 1  rotHor 90"}, {'m', "option 2  Rotating 1  rotHor -90"}};
    const Keys start = {{'p', "selectOption 1"}};
    const Keys play = {{'a', "objrot 0.05"}, {'d', "objrot -0.05"}, {',', "position.x -0.15"},
                       {'.', "position.x 0.15"}, {' ', "action 2"}, {'p', "selectOption 1"},
                       {'1', "eye"}, {'2', "eye"}, {'3', "eye"}, {ESCAPE, "status 0  selectOption 0"}};
    const Keys toAttack = {{'w', "Fight_status 0"}};
    const Keys toDefend = {{'w', "Fight_status 1"}};
    const Keys toSpecial = {{'s', "Fight_status 2"}};
    const Keys stop = {{'w', "action 0"}, {'s', "action 0"}};
    const struct {
        const char *name;
        std::function<void()> enter;
        Keys pressed, released;
    } modes[] = {
        {"title", [] {}, first + start, first},
        {"title, last face", [] { option = 3; }, last, last},
        {"title, turning", [] { Rotating = true; }, start, {}},
        {"town", [] { status = TOWN; },
         play + Keys{{'w', "action 1  position.z -0.15"}, {'s', "action 1  position.z 0.15"}}, stop},
        {"DEFEND", [] { fight(DEFEND, 0, 0); }, play + toAttack + toSpecial + Keys{{ENTER,
         "Battle_Turn 1  BATTLE_MESSAGE 3  BattleMessageTimer 60  health 120  ENTERPRESS 1"}}, stop},
        {"DEFEND, enemy's turn", [] { fight(DEFEND, 1, 0); }, play + toAttack + toSpecial, stop},
        {"DEFEND, odd timer", [] { fight(DEFEND, 0, -1); }, play + toAttack + toSpecial, stop},
        {"SPECIAL, used up", [] { fight(SPECIAL, 0, 0); special = 99; }, play + toDefend, stop},
        {"SPECIAL, message", [] { fight(SPECIAL, 0, 1); }, play + toDefend, stop},
        {"ATTACK, message", [] { fight(ATTACK, 0, 60); }, play + Keys{{'s', "Fight_status 1"}}, stop},
    };
    // clang-format on
    for (const auto &mode : modes) {
        for (int i = 0; i < 512; ++i) {
            const auto key = static_cast<unsigned char>(i);
            const bool down = i < 256;
            restart();
            mode.enter();
            if (down && key == ESCAPE && status == TITLE && !Rotating) {
                continue;  // ends the program
            }
            // So that a change shows.
            selectOption = status != TITLE && key != 'p';
            action = key == ' ' ? STANDING : HELD_STILL;
            const Keys expected = (down ? mode.pressed : mode.released) + Keys{{key, ""}};
            std::string changes = after(down ? keyCallback : keyUpCallback, key, 3, 4);
            if (changes.rfind("eye", 0) == 0) {
                changes.resize(3);
            }
            EXPECT_EQ(changes, expected.at(key))
                << mode.name << ": " << (down ? "press" : "release") << " of key " << i % 256;
        }
    }
}

}  // namespace

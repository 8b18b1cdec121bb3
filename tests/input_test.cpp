#include "input.h"

#include <cmath>
#include <cstdlib>
#include <functional>

#include "game_test.h"

namespace {

constexpr unsigned char ENTER = 13;
constexpr unsigned char ESCAPE = 27;

class Input : public Game_Test {
protected:
    // What a callback changes. Each asks for one redisplay.
    template <typename... Arguments>
    std::string after(void (*callback)(Arguments...), std::common_type_t<Arguments>... arguments) {
        expectNoMore();
        recording::clear();
        callback(arguments...);
        EXPECT_EQ(recording::redisplays(), 1);
        return changes();
    }
    std::string press(unsigned char key) { return after(keyCallback, key, 3, 4); }
    std::string release(unsigned char key) { return after(keyUpCallback, key, 3, 4); }
};

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

TEST_F(Input, EveryKeyDoesItsWorkInItsModeAndNothingElse) {
    // clang-format off
    const Keys first = {{'n', "Rotating=1 option=1 rotHor=90"}, {'m', "Rotating=1 option=3 rotHor=-90"}};
    const Keys last = {{'n', "Rotating=1 option=0 rotHor=90"}, {'m', "Rotating=1 option=2 rotHor=-90"}};
    const Keys start = {{'p', "selectOption=1"}};
    const Keys play = {{'a', "objrot=0.05"}, {'d', "objrot=-0.05"}, {',', "x=-0.15"}, {'.', "x=0.15"},
                       {' ', "action=2"}, {'p', "selectOption=1"}, {ESCAPE, "selectOption=0 status=0"}};
    const Keys toAttack = {{'w', "Fight_status=0"}};
    const Keys toDefend = {{'w', "Fight_status=1"}};
    const Keys toSpecial = {{'s', "Fight_status=2"}};
    const Keys stop = {{'w', "action=0"}, {'s', "action=0"}};
    const struct {
        const char *name;
        std::function<void()> enter;
        Keys pressed, released;
    } modes[] = {
        {"title", [] {}, first + start, first},
        {"title, last face", [] { option = 3; }, last, last},
        {"title, turning", [] { Rotating = true; }, start, {}},
        {"town", [] { status = TOWN; },
         play + Keys{{'w', "action=1 z=-0.15"}, {'s', "action=1 z=0.15"}}, stop},
        {"DEFEND", [] { fight(DEFEND, 0, 0); }, play + toAttack + toSpecial + Keys{{ENTER,
         "BATTLE_MESSAGE=3 BattleMessageTimer=60 Battle_Turn=1 ENTERPRESS=1 health=120"}}, stop},
        {"DEFEND, enemy's turn", [] { fight(DEFEND, 1, 0); }, play + toAttack + toSpecial, stop},
        {"DEFEND, odd timer", [] { fight(DEFEND, 0, -1); }, play + toAttack + toSpecial, stop},
        {"SPECIAL", [] { fight(SPECIAL, 0, 0); }, play + toDefend + Keys{{ENTER,
         "BATTLE_MESSAGE=1 BattleMessageTimer=60 Battle_Turn=1 ENEMY_Health=1 ENTERPRESS=2 special=0"}}, stop},
        {"SPECIAL, used up", [] { fight(SPECIAL, 0, 0); special = 99; }, play + toDefend, stop},
        {"SPECIAL, message", [] { fight(SPECIAL, 0, 1); }, play + toDefend, stop},
        {"ATTACK, message", [] { fight(ATTACK, 0, 60); }, play + Keys{{'s', "Fight_status=1"}}, stop},
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
            Camera zoomed;
            if (down && status != TITLE && key >= '1' && key <= '3') {
                zoomed.zoom(key == '1' ? 0 : key == '2' ? 0.5F : 1.5F);
            }
            const Keys expected = (down ? mode.pressed : mode.released) + Keys{{key, ""}};
            EXPECT_EQ(down ? press(key) : release(key), expected.at(key))
                << mode.name << ": " << (down ? "press" : "release") << " of key " << i % 256;
            EXPECT_EQ(viewOf(camera), viewOf(zoomed)) << mode.name << ": zoom by key " << i % 256;
        }
    }
}

TEST_F(Input, EnterAttacksAndReleasingAKeyTurnsTheCubeAgain) {
    fight(ATTACK, 0, 0);
    press(ENTER);
    EXPECT_EQ(ENTERPRESS, ATTACK);
    restart();
    press('n');
    EXPECT_EQ(release('n'), "") << "still turning";
    Rotating = false;
    EXPECT_EQ(release('n'), "Rotating=1 option=2 rotHor=180");
}

TEST_F(Input, StepsFollowTheHeadingOfTheLastUpdate) {
    status = TOWN;
    objrot = 2;
    const std::pair<unsigned char, double> steps[] = {
        {'w', 0}, {',', M_PI_2}, {'s', M_PI}, {'.', -M_PI_2}};
    for (objrotold = -7; objrotold < 7; objrotold += 0.5F) {
        for (const auto &[key, left] : steps) {
            position[0] = position[2] = 0;
            press(key);
            EXPECT_NEAR(position[0], -0.15 * std::sin(objrotold + left), 1e-6) << key;
            EXPECT_NEAR(position[2], -0.15 * std::cos(objrotold + left), 1e-6) << key;
        }
    }
}

TEST_F(Input, MouseButtonsHoldTheZoom) {
    const auto mouse = [this](int button, int state) {
        return after(mouseCallback, button, state, 3, 4);
    };
    EXPECT_EQ(mouse(GLUT_LEFT_BUTTON, GLUT_DOWN), "") << "on the title";
    for (int mode : {TOWN, BATTLE}) {
        status = mode;
        EXPECT_EQ(mouse(GLUT_LEFT_BUTTON, GLUT_DOWN), "zoom=1");
        EXPECT_EQ(mouse(GLUT_MIDDLE_BUTTON, GLUT_DOWN), "");
        EXPECT_EQ(mouse(GLUT_RIGHT_BUTTON, GLUT_DOWN), "zoom=-1");
        EXPECT_EQ(mouse(GLUT_MIDDLE_BUTTON, GLUT_UP), "zoom=0");
    }
}

TEST_F(Input, MotionTurnsByTheTravelSinceTheLastOneInTheGame) {
    status = TOWN;
    motionCallback(100, 100);
    camrot[0] = camrot[1] = 0;
    EXPECT_EQ(after(motionCallback, 125, 90), "pitch=0.4 yaw=-1");
    EXPECT_EQ(after(motionCallback, 120, 90), "pitch=0 yaw=0.2") << "in place of the one before";
    status = TITLE;
    EXPECT_EQ(after(motionCallback, 900, 900), "");
    status = BATTLE;
    EXPECT_EQ(after(motionCallback, 145, 140), "pitch=-2 yaw=-1") << "all the way in one turn";
}

TEST_F(Input, ARunBeginsWithoutATurnAndEndsWithEscapeOnTheTitle) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");  // a process that has seen no motion
    const auto run = [](int mode) {
        status = mode;
        motionCallback(640, 500);
        const bool turned = camrot[0] != 0 || camrot[1] != 0;
        status = TOWN;
        motionCallback(665, 500);
        status = !turned && camrot[0] == -1 ? TITLE : TOWN;
        keyCallback(ESCAPE, 0, 0);
        exit(1);
    };
    EXPECT_EXIT(run(TOWN), testing::ExitedWithCode(0), "");
    EXPECT_EXIT(run(TITLE), testing::ExitedWithCode(0), "");
}

}  // namespace

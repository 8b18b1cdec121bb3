#include <gmock/gmock.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "assets.h"
#include "game_objects.h"
#include "game_state.h"
#include "recording_gl.h"
#include "scene_collision.h"

// The program's main, renamed for this test.
int talveryMain(int argc, char **argv);

namespace {

constexpr unsigned char ENTER = 13;
constexpr unsigned char ESCAPE = 27;
constexpr int FLAMES = (36 + 3) * 20;  // house and tree fires, both fountains

// One small file for everything that start-up reads, no two alike.
void writeData() {
    int number = 0;
    for (const char *model : {"house1", "house2", "house3", "introCube", "Tree", "castleMAPPED",
                              "TreeBackground", "NPC"}) {
        std::ofstream(std::string(model) + ".obj")
            << "v 0 0 0\nv " << ++number << " 0 0\nv 0 2 " << number
            << "\nvt 0 0\nvt 1 0\nvt 0 1\nvn 0 0 1\nf 1/1/1 2/2/1 3/3/1\n";
    }
    for (const char *picture :
         {"stone", "fire", "fire_blue", "sky", "floor", "north", "south", "west", "east", "house",
          "intro", "wood", "brick", "forest", "NPC"}) {
        std::string bytes(54 + 4 * 4 * 3, static_cast<char>(++number));
        bytes.replace(18, 12, {4, 0, 0, 0, 4, 0, 0, 0, 1, 0, 24, 0});
        std::ofstream(std::string(picture) + ".bmp", std::ios::binary) << bytes;
    }
    for (const char *animation : {"walk", "stay", "fight", "defend", "special"}) {
        std::ofstream file(std::string(animation) + ".txt");
        file << "#total_keys = 3\n";
        ++number;
        for (int key = 0; key < 3; ++key) {
            for (int value = 0; value < 27; ++value) {
                file << (value < 3 ? 0 : key % 2 * (number + value)) << ' ';
            }
            file << key * 8 << '\n';
        }
    }
}

// Drives the callbacks as GLUT does and sums up each phase of the round.
class Round {
public:
    std::vector<std::string> phases;

    void key(unsigned char key) {
        recording::window().keyboard(key, 0, 0);
        recording::window().keyboardUp(key, 0, 0);
    }
    void turn(int times = 1) {
        while (times-- > 0) {
            recording::clear();
            recording::window().idle();
            EXPECT_EQ(recording::redisplays(), 1);
            const bool town = status != TITLE;
            recording::window().display();
            EXPECT_EQ(recording::drawings().back().kind, recording::SWAP);
            EXPECT_TRUE(recording::stacksBalanced());
            EXPECT_THAT(recording::faults(), testing::IsEmpty());
            int flames = 0;
            for (const recording::Drawing &d : recording::drawings()) {
                flames += d.list == 0 && d.state.blending && d.state.texturing ? 1 : 0;
            }
            EXPECT_EQ(flames, town ? FLAMES : 0);
            addFrame();
        }
    }
    void press(unsigned char what, int times) {
        while (times-- > 0) {
            key(what);
            turn();
        }
    }
    void endPhase(const std::string &name) {
        char line[80];
        snprintf(line, sizeof line, "%s %08lx", name.c_str(), digest.value & 0xffffffffU);
        phases.emplace_back(line);
        digest = {};
    }

private:
    void addFrame() {
        digest.add(static_cast<std::int64_t>(recording::digest()));
        for (const int value :
             {status, Menu, option, TalkMenu, TalkTimer, Fight_status, Battle_Turn, BATTLE_MESSAGE,
              BattleMessageTimer, PlayerTimer, health, ENEMY_Health, special, ENTERPRESS,
              ENTERPRESS_ENEMY, action}) {
            digest.add(std::int64_t{value});
        }
        for (const float value :
             {hor, position[0], position[2], objrot, camera.eye[0], camera.eye[1], camera.eye[2],
              marked_params.neck, enemy_params.neck}) {
            digest.add(double{value});
        }
    }

    recording::Digest digest;
};

void play(Round &round) {
    const recording::Window &window = recording::window();
    EXPECT_EQ(window.title, "Talvery");
    EXPECT_TRUE(window.fullScreen);
    EXPECT_EQ(window.displayMode, unsigned{GLUT_RGB | GLUT_DOUBLE | GLUT_DEPTH | GLUT_STENCIL});
    EXPECT_EQ(collision_back, 119U) << "walls, houses and scenery";
    EXPECT_EQ(texture_back, 8U);
    EXPECT_EQ(recording::state().lights[0].position, (recording::Colour{-45, 40, 40, 1}));
    window.reshape(1280, 1024);
    round.turn(2);
    round.press('n', 1);
    round.turn(179);
    EXPECT_EQ(hor, 90);
    EXPECT_EQ(option, 1);
    round.press('p', 2);
    EXPECT_EQ(status, TITLE) << "started from another face";
    round.press('m', 180);
    round.endPhase("title");

    round.press('p', 1);
    EXPECT_EQ(status, TOWN);
    EXPECT_EQ(collision_back, 119U) << "the frame that starts the game shows no people";
    round.turn();
    EXPECT_EQ(collision_back, 127U) << "people";
    round.press('w', 2);
    EXPECT_EQ(position[2], 0) << "a house stands in front";
    for (int i = 0; i < 10; ++i) {
        window.keyboard('s', 0, 0);
        round.turn();
    }
    EXPECT_NEAR(position[2], 1.5, 0.001);
    window.keyboardUp('s', 0, 0);
    round.press('a', 4);
    round.press('d', 4);
    window.passiveMotion(640, 512);
    window.passiveMotion(650, 509);
    window.mouse(GLUT_RIGHT_BUTTON, GLUT_DOWN, 0, 0);
    round.turn(3);
    window.mouse(GLUT_RIGHT_BUTTON, GLUT_UP, 0, 0);
    round.endPhase("walk");

    round.press('w', 10);
    round.press('.', 24);
    EXPECT_EQ(Menu, TALK_BOX) << "the townsperson at x = 5 was not met";
    EXPECT_NEAR(position[0], 3.45, 0.001) << "the step into the townsperson was not undone";
    round.turn(48);
    EXPECT_EQ(Menu, TALK_BOX);
    round.turn(2);
    EXPECT_EQ(Menu, NO_OVERLAY);
    round.endPhase("talk");

    round.press('s', 11);
    round.press(',', 57);
    EXPECT_EQ(status, TOWN);
    round.press('w', 2);
    EXPECT_EQ(status, BATTLE) << "the enemy at x = -5 was not met";
    EXPECT_EQ(Menu, BATTLE_PANEL);
    round.press('s', 1);
    round.press(ENTER, 1);
    EXPECT_EQ(health, 120);
    round.press(ENTER, 120);
    EXPECT_LT(health, 120);
    EXPECT_EQ(Battle_Turn, PLAYER_CHOOSES);
    EXPECT_EQ(PlayerTimer, 0) << "the message of the enemy's hit";
    round.endPhase("defence");

    round.press('s', 1);
    round.press(ENTER, 1);
    EXPECT_EQ(ENEMY_Health, 1);
    round.turn(120);
    EXPECT_EQ(special, 0);
    round.press('w', 2);
    EXPECT_EQ(Fight_status, ATTACK);
    round.key(ENTER);
    EXPECT_LT(ENEMY_Health, 1);
    round.turn(20);
    EXPECT_EQ(status, TOWN) << "won";
    EXPECT_EQ(Menu, NO_OVERLAY);
    round.endPhase("win");

    round.press(ESCAPE, 1);
    EXPECT_EQ(status, TITLE);
    EXPECT_EXIT(round.key(ESCAPE), testing::ExitedWithCode(0), "");
}

TEST(Scripted_Run, FromTheTitleToAWonBattleAndOut) {
    std::string folder = testing::TempDir() + "talvery_run_XXXXXX";
    ASSERT_NE(mkdtemp(folder.data()), nullptr);
    std::filesystem::current_path(folder);
    writeData();
    Round round;
    recording::onMainLoop([&round] { play(round); });
    char program[] = "talvery";
    char *arguments[] = {program, nullptr};
    EXPECT_EQ(talveryMain(1, arguments), 0);
    // Digests of state and drawing: where one differs, look at that phase of the game. If
    // the change is meant, the new digest belongs here.
    EXPECT_THAT(round.phases,
                testing::ElementsAre("title 3ecb245b", "walk ea576c2c", "talk 65c1397f",
                                     "defence 7eba28a7", "win 9675d220"));
    std::filesystem::remove_all(folder);
}

}  // namespace

#include "update.h"

#include <gmock/gmock.h>

#include <cmath>
#include <cstdlib>
#include <vector>

#include "assets.h"
#include "game_test.h"
#include "temp_files.h"

namespace {

using testing::ElementsAre;
using Poses = std::pair<int, int>;

// A game whose keyframe players tell who they are: pose n of player p has, to within a
// thousandth, pos_x = 1000 p + n. Looping ones end with pose 5, the others with pose 3.
class Update : public Game_Test {
protected:
    Update() {
        status = TOWN;
        Interpolate **const globals[] = {
            &interpolate_walk,   &interpolate_sitdown, &interpolate_stay,   &interpolate_fight,
            &interpolate_defend, &interpolate_special, &interpolate_fight2, &interpolate_sitdown2};
        for (int p = 1; p <= 8; ++p) {
            const bool loops = p <= 3 || p == 8;
            std::ostringstream text("#total_keys = 2\n", std::ios::ate);
            for (int frame : {0, loops ? 5 : 3}) {
                text << 1000 * p + frame << " 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 "
                     << frame << '\n';
            }
            files.push_back(std::make_unique<Temp_File>(text.str()));
            players.push_back(std::make_unique<Interpolate>(files.back()->name(), loops));
            *globals[p - 1] = players.back().get();
        }
    }

    std::string update() {
        expectNoMore();
        recording::clear();
        idleCallback();
        EXPECT_EQ(recording::redisplays(), 1);
        return changes();
    }
    // From x = 5 on a step touches what has been placed.
    std::string stepTo(float x) {
        position[0] = x;
        return update();
    }
    static void place(int code) { appendFootprint(code, 6, 7, -1, 1); }

    // The poses that the player's and the enemy's poodle are drawn in.
    static Poses poses() {
        recording::clear();
        poodle.draw();
        poodle2.draw();
        const auto parts = recording::drawings(recording::SHAPE);
        const auto x = [](const auto &part) { return std::lround(part.state.modelview[12]); };
        return {x(parts.front()), x(parts[parts.size() / 2])};
    }
    // One of them after each of the updates.
    std::vector<int> play(int Poses::*dog, int updates) {
        std::vector<int> shown;
        while (updates-- > 0) {
            update();
            shown.push_back(poses().*dog);
        }
        return shown;
    }
    static constexpr int Poses::*PLAYER = &Poses::first;
    static constexpr int Poses::*FOE = &Poses::second;

private:
    std::vector<std::unique_ptr<Temp_File>> files;
    std::vector<std::unique_ptr<Interpolate>> players;
};

TEST_F(Update, OneStepActsOnEverythingThatItTouches) {
    const std::string talk = "IsTalkBool=1 Menu=1 TalkMenu=1 TalkTimer=49 x=0";
    const struct {
        std::string touched;  // codes, in the order of the scene
        bool talking;
        std::string changes;
    } cases[] = {
        {"", false, "TalkTimer=-1 xOld=5"},
        {"7", false, "TalkTimer=-1 xOld=5"},
        {"1", false, "TalkTimer=-1 x=0"},
        {"3", false, talk},
        {"13", false, talk},
        {"331", false, talk},
        {"3", true, "TalkTimer=8 x=0"},
        {"2", false, "Menu=0 TalkTimer=-1 selectOption=0 status=2 x=0"},
        {"32", false, "IsTalkBool=1 Menu=0 TalkMenu=1 TalkTimer=49 selectOption=0 status=2 x=0"},
        {"231", false, "IsTalkBool=1 Menu=1 TalkMenu=1 TalkTimer=49 selectOption=0 status=2 x=0"},
    };
    for (const auto &c : cases) {
        restart();
        status = TOWN;
        selectOption = true;
        IsTalkBool = c.talking;
        TalkTimer = c.talking ? 9 : 0;
        for (char code : c.touched) {
            place(code - '0');
        }
        EXPECT_EQ(stepTo(5), c.changes) << "touching " << c.touched;
        EXPECT_EQ(camera.eye[0], position[0]) << "the camera keeps to the player";
        stepTo(4.9F);
        EXPECT_EQ(position[0], 4.9F) << "beside " << c.touched;
    }
}

TEST_F(Update, ATalkLastsFiftyUpdates) {
    place(TOWNSPERSON);
    stepTo(5);
    for (int i = 2; i <= 50; ++i) {
        status = i % 3;  // in a battle and on the title screen too
        stepTo(5);
        EXPECT_EQ(std::pair(Menu, TalkTimer), std::pair(1, 50 - i)) << "update " << i;
    }
    EXPECT_EQ(update(), "IsTalkBool=0 Menu=2");
    EXPECT_EQ(update(), "TalkTimer=-1");
    EXPECT_EQ(stepTo(5), "IsTalkBool=1 Menu=1 TalkMenu=2 TalkTimer=49 x=0") << "the next line";
}

TEST_F(Update, AWinReturnsToTheTownInTheSameUpdate) {
    status = BATTLE;
    Menu = BATTLE_PANEL;
    ENEMY_Health = BATTLE_MESSAGE = Battle_Turn = 1;
    BattleMessageTimer = 33;
    ENTERPRESS = ATTACK;
    health = -4;
    place(ENEMY);
    EXPECT_EQ(update(), "TalkTimer=-1") << "1 is not beaten, and there is no defeat";
    ENEMY_Health = 0;
    position[1] = 2;
    EXPECT_EQ(
        stepTo(5),
        "BATTLE_MESSAGE=0 ENEMY_Health=100 Menu=2 TalkTimer=-2 selectOption=1 status=1 x=0 yOld=2")
        << "the rest stays for the next battle";
    EXPECT_EQ(poses(), Poses(2000, 3000)) << "the town's poses";
}

TEST_F(Update, ABattlesPosesRunInTheUpdateThatStartsIt) {
    place(ENEMY);
    Fight_status = ENTERPRESS = SPECIAL;
    stepTo(5);
    EXPECT_EQ(poses(), Poses(6000, 8000));
}

TEST_F(Update, TownPosesFollowTheAction) {
    action = WALKING;
    EXPECT_THAT(play(PLAYER, 9), ElementsAre(1000, 1001, 1002, 1003, 1004, 1005, 1005, 1005, 1000));
    action = STANDING;
    EXPECT_THAT(play(PLAYER, 2), ElementsAre(2000, 2001));
    action = HELD_STILL;
    EXPECT_THAT(play(PLAYER, 2), ElementsAre(2001, 2001));
    action = WALKING;
    EXPECT_THAT(play(FOE, 4), ElementsAre(3005, 3005, 3005, 3000)) << "all the time its own";
    status = TITLE;
    update();
    EXPECT_EQ(poses(), Poses(1004, 3000)) << "the title animates no dog";
}

TEST_F(Update, TheCursorChoosesTheMoveThatRuns) {
    status = BATTLE;
    ENTERPRESS = SPECIAL;
    EXPECT_THAT(play(PLAYER, 2), ElementsAre(4000, 4001)) << "not what Enter started";
    Fight_status = DEFEND;
    EXPECT_THAT(play(PLAYER, 5), ElementsAre(5000, 5001, 5002, 5003, 5003));
    EXPECT_EQ(update(), "ENTERPRESS=3 TalkTimer=-8") << "ends with the cursor's animation";
    EXPECT_EQ(poses(), Poses(2000, 8005)) << "and rests in the same update";
    EXPECT_THAT(play(PLAYER, 8), ElementsAre(2001, 2002, 2003, 2004, 2005, 2005, 2005, 2000));
    ENTERPRESS = DEFEND;
    EXPECT_THAT(play(PLAYER, 2), ElementsAre(5000, 5001)) << "restarted at its end";
    Fight_status = ATTACK;
    EXPECT_THAT(play(PLAYER, 4), ElementsAre(4002, 4003, 4003, 2001)) << "where it was left";
}

TEST_F(Update, TheEnemyAttacksAndRests) {
    status = BATTLE;
    for (int round = 0; round < 2; ++round) {
        ENTERPRESS_ENEMY = ATTACK;
        EXPECT_THAT(play(FOE, 5), ElementsAre(7000, 7001, 7002, 7003, 7003));
        EXPECT_EQ(ENTERPRESS_ENEMY, ATTACK) << "until the animation reports its end";
        EXPECT_THAT(play(FOE, 1), ElementsAre(8000 + round));
        EXPECT_EQ(ENTERPRESS_ENEMY, NO_MOVE);
    }
    ENTERPRESS_ENEMY = DEFEND;
    update();
    EXPECT_EQ(ENTERPRESS_ENEMY, NO_MOVE) << "it knows no other move";
}

TEST_F(Update, TheCameraFollowsThePlayerThenTheHeadingThenTheMouse) {
    Camera expected;
    for (int held : {1, 1, -1, 0}) {
        for (float &coordinate : position) {
            coordinate += 0.3F;
        }
        objrot += 0.25F;
        camrot[0] = 0.1F;
        camrot[1] = -0.2F;
        zoom = held;
        const float d = position[0] - positionold[0];
        const float step[] = {d, d, d};
        expected.move(nullptr, step);
        expected.rotate(objrot - objrotold, 0);
        expected.rotate(0.1F, -0.2F);
        expected.zoom(held == 1 ? 0.9F : held == -1 ? 1.1F : 1);
        update();
        EXPECT_EQ(viewOf(camera), viewOf(expected)) << "zoom " << held;
        EXPECT_THAT(camrot, ElementsAre(0, 0, 0)) << "used up";
        EXPECT_EQ(objrotold, objrot);
    }
}

TEST_F(Update, EachFountainMovesOnByOneStep) {
    const auto flames = [](Fireworks &fountain, void (Fireworks::*draw)()) {
        recording::clear();
        (fountain.*draw)();
        return recording::digest();
    };
    texture[BLUE_FIRE_TEXTURE] = 9;
    status = TITLE;
    for (Fireworks *fountain : {&fireworks1, &fireworks2}) {
        srand(3);
        *fountain = Fireworks(10, 0);
        srand(3);
        Fireworks twin(10, 0);
        flames(twin, &Fireworks::draw);
        update();
        EXPECT_EQ(recording::state().texture, 9U);
        EXPECT_EQ(recording::state().blendDestination, GLenum{GL_ONE});
        EXPECT_EQ(flames(*fountain, &Fireworks::draw_no_update),
                  flames(twin, &Fireworks::draw_no_update));
    }
}

}  // namespace

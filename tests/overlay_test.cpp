#include "overlay.h"

#include <gmock/gmock.h>

#include <cmath>
#include <cstring>
#include <set>

#include "game_test.h"
#include "menus.h"

namespace {

using recording::Colour;
using recording::Drawing;
using recording::Point;
using testing::ElementsAre;
using testing::FloatNear;
using testing::IsEmpty;
using testing::Pointwise;
using Lines = std::vector<std::string>;

constexpr float NEAR = 1e-5F;

// Where on the window, from (-0.4, 0) at the upper left to (1.2, 1.4) at the lower right.
Point onOverlay(const Drawing &drawing, std::size_t vertex = 0) {
    const Point p =
        recording::transform(drawing.state.projection, drawing.vertices[vertex].position);
    return {0.4F + 0.8F * p[0], 0.7F - 0.7F * p[1], 0};
}

// The texts as "x y rgb text", the colour from 0 to f.
Lines texts() {
    Lines lines;
    for (const Drawing &text : recording::drawings(recording::TEXT)) {
        const Point p = onOverlay(text);
        const Colour &c = text.vertices[0].colour;
        char place[40];
        snprintf(place, sizeof place, "%.2f %.2f %lx%lx%lx ", p[0], p[1], std::lround(15 * c[0]),
                 std::lround(15 * c[1]), std::lround(15 * c[2]));
        lines.push_back(place + text.name);
        EXPECT_FALSE(text.state.lighting) << text.name;
        EXPECT_FALSE(text.state.texturing) << text.name;
        EXPECT_EQ(text.font, GLUT_BITMAP_TIMES_ROMAN_24) << text.name;
    }
    return lines;
}

class Overlay_Test : public Game_Test {
protected:
    Overlay_Test() {
        glEnable(GL_DEPTH_TEST);
        glTranslatef(1, 2, 3);
        camera.setup();
        before = recording::state();
    }
    ~Overlay_Test() override {
        const recording::State &after = recording::state();
        EXPECT_EQ(after.modelview, before.modelview);
        EXPECT_EQ(after.projection, before.projection);
        EXPECT_EQ(after.matrixMode, unsigned{GL_MODELVIEW});
        EXPECT_TRUE(after.texturing && after.lighting && after.depthTest && !after.blending);
        EXPECT_TRUE(recording::stacksBalanced());
        EXPECT_TRUE(recording::faults().empty());
    }
    static Lines menus() {
        recording::clear();
        displayMenus();
        EXPECT_EQ(recording::state().colour, (Colour{1, 1, 1, 1}));
        return texts();
    }
    static Lines message(int number) {
        recording::clear();
        BATTLE_MESSAGE = number;
        displayBattleMessages();
        return texts();
    }

    recording::State before;
};

TEST_F(Overlay_Test, StatusPanelFollowsHealthAndTheSpecialMeter) {
    struct Row {
        int health, special;
        const char *digits, *condition, *meter;
    };
    const Row rows[] = {
        {100, 100, "100", "0f0    HEALTHY", "f0f    READY"},
        {71, 99, "071", "0f0    HEALTHY", "fff    NOT READY"},
        {70, 0, "070", "f88    WEAKENED", "fff    NOT READY"},
        {41, 0, "041", "f88    WEAKENED", "fff    NOT READY"},
        {40, 0, "040", "f55    DYING", "fff    NOT READY"},
        {1, 0, "001", "f55    DYING", "fff    NOT READY"},
        {-7, 0, "000", "f00    DEAD", "fff    NOT READY"},
        {1234, 101, "234", "0f0    HEALTHY", "f0f    READY"},
    };
    for (const Row &row : rows) {
        health = row.health;
        special = row.special;
        EXPECT_THAT(
            menus(),
            ElementsAre("0.80 1.18 fff HEALTH:", std::string("0.95 1.18 fff ") + row.digits,
                        "0.80 1.21 fff PLAYER STATUS", std::string("0.80 1.24 ") + row.condition,
                        "0.80 1.27 fff SPECIAL STATUS", std::string("0.80 1.30 ") + row.meter))
            << "health " << row.health;
        EXPECT_EQ(health, std::max(row.health, 0));
    }
}

TEST_F(Overlay_Test, TheCursorsOptionIsRed) {
    Menu = BATTLE_PANEL;
    for (Fight_status = ATTACK; Fight_status <= SPECIAL; ++Fight_status) {
        Lines options = {"-0.37 1.18 fff FIGHT OPTIONS:", "-0.37 1.21 fff    ATTACK",
                         "-0.37 1.24 fff    DEFEND", "-0.37 1.27 fff    SPECIAL"};
        options[static_cast<std::size_t>(Fight_status) + 1].replace(11, 3, "f00");
        Lines panel = menus();
        panel.resize(4);
        EXPECT_EQ(panel, options);
    }
}

TEST_F(Overlay_Test, TalksTellElevenLinesInTurn) {
    Menu = TALK_BOX;
    std::set<Lines> told;
    for (TalkMenu = 0; TalkMenu < 11; ++TalkMenu) {
        Lines panel = menus();
        panel.resize(panel.size() - 6);  // the status panel
        ASSERT_EQ(panel.size(), TalkMenu == 5 || TalkMenu == 7 ? 4U : 3U) << "line " << TalkMenu;
        EXPECT_EQ(panel[0], "-0.37 0.04 fff TOWNPERSON SAYS:");
        const char *const places[] = {"", "-0.37 0.08 fff    ", "-0.37 0.11 fff    ",
                                      "-0.37 0.14 fff    "};
        for (std::size_t i = 1; i < panel.size(); ++i) {
            EXPECT_EQ(panel[i].substr(0, 18), places[i]);
            EXPECT_GT(panel[i].size(), 26U) << "line " << TalkMenu;
        }
        told.insert(panel);
    }
    EXPECT_EQ(told.size(), 11U) << "a line told twice";
    const Lines eleventh = menus();
    EXPECT_EQ(TalkMenu, 0) << "starts over";
    EXPECT_EQ(eleventh[2], "-0.37 0.11 fff    Drossmere!");
    TalkMenu = -1;
    EXPECT_EQ(menus().size(), 7U) << "no line, only the heading";
}

TEST_F(Overlay_Test, BattleMessagesTellTheHit) {
    glColor3f(1, 1, 1);
    strcpy(HIT, "07");
    EXPECT_THAT(message(PLAYER_HIT), ElementsAre("-0.37 0.08 fff YOUR ATTACK CAUSED",
                                                 "0.00 0.08 fff 07", "0.05 0.08 fff DAMAGE"));
    EXPECT_THAT(message(ENEMY_HIT), ElementsAre("-0.37 0.08 fff ENEMY CAUSED", "-0.10 0.08 fff 07",
                                                "-0.05 0.08 fff DAMAGE TO YOU"));
    EXPECT_THAT(message(PLAYER_DEFENDED),
                ElementsAre("-0.37 0.08 fff DEFENDING ADDS 20 TO YOUR HEALTH"));
    EXPECT_THAT(message(NO_MESSAGE), IsEmpty());
    EXPECT_THAT(message(4), IsEmpty());
}

TEST_F(Overlay_Test, BoxesAreAddedOntoTheirPlaces) {
    struct Row {
        int box;
        float left, top, right, bottom;
    };
    const Row rows[] = {
        {STATUS_BOX, 0.77F, 1.13F, 1.06F, 1.32F},
        {TALK_PANEL_BOX, -0.4F, 0, 0, 0.2F},
        {OPTIONS_BOX, -0.4F, 1.15F, -0.1F, 1.3F},
        {MESSAGE_BOX, -0.38F, 0.04F, 0.24F, 0.1F},
    };
    for (const Row &row : rows) {
        recording::clear();
        draw2DBox(row.box);
        ASSERT_EQ(recording::drawings().size(), 1U);
        const Drawing &box = recording::drawings()[0];
        EXPECT_TRUE(box.state.blending && !box.state.depthTest && !box.state.lighting &&
                    !box.state.texturing);
        EXPECT_EQ(box.state.blendSource, unsigned{GL_SRC_ALPHA});
        EXPECT_EQ(box.state.blendDestination, unsigned{GL_ONE});
        const Point corners[] = {{row.right, row.bottom, 0},
                                 {row.left, row.bottom, 0},
                                 {row.left, row.top, 0},
                                 {row.right, row.top, 0}};
        ASSERT_EQ(box.vertices.size(), 4U);
        for (std::size_t i = 0; i < 4; ++i) {
            EXPECT_THAT(onOverlay(box, i), Pointwise(FloatNear(NEAR), corners[i])) << row.box;
            const Colour colour = i < 2 ? Colour{0.2F, 0, 0.5F, 0.95F} : Colour{0, 0, 1, 0.95F};
            EXPECT_EQ(box.vertices[i].colour, colour);
        }
    }
    recording::clear();
    draw2DBox(0);
    draw2DBox(5);
    EXPECT_THAT(recording::drawings(), IsEmpty());
}

}  // namespace

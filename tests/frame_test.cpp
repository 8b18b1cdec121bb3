#include <gmock/gmock.h>

#include <algorithm>
#include <map>

#include "rendering.h"
#include "town_test.h"

namespace {

using recording::Drawing;
using recording::Vertex;
using testing::FloatNear;
using testing::HasSubstr;
using testing::Pointwise;

constexpr float NEAR = 1e-3F;

class Frame : public Town_Test {
protected:
    Frame() {
        glEnable(GL_LIGHTING);
        glEnable(GL_DEPTH_TEST);
        buildHouses(1);
        status = TOWN;
    }
    ~Frame() override {
        const recording::State &after = recording::state();
        EXPECT_TRUE(after.lighting && after.texturing && after.depthTest);
        EXPECT_FALSE(after.blending || after.stencilTest);
    }

    static bool isShadow(const Drawing &d) {
        return d.state.blending && d.state.blendSource == GL_DST_COLOR;
    }
    static std::string name(const Drawing &d) {
        if (d.list != 0) {
            const std::map<unsigned, std::string> models = {
                {house1, "house"}, {house2, "house"},  {house3, "house"}, {tree, "tree"},
                {forest, "wood"},  {castle, "castle"}, {NPC, "person"},   {intro, "cube"}};
            return models.at(d.list);
        }
        if (d.kind == recording::PRIMITIVE && d.state.texturing) {
            const unsigned bound = d.state.texture;
            return bound == texture[GROUND_TEXTURE] ? "ground"
                   : bound == texture[FIRE_TEXTURE] ? "fire"
                                                    : "sky";
        }
        switch (d.kind) {
        case recording::TEXT: return d.state.lighting ? d.name : "text";
        case recording::CLEAR: return "clear";
        case recording::SWAP: return "swap";
        default: return d.state.blending && !isShadow(d) ? "box" : "dog";
        }
    }
    // What a frame draws, in order; shadows in brackets, repetitions left out but for boxes.
    static std::string drawFrame() {
        recording::clear();
        displayCallback();
        std::string frame;
        std::string last;
        for (const Drawing &d : recording::drawings()) {
            const std::string next = (isShadow(d) ? '(' + name(d) + ')' : name(d)) + ' ';
            frame += next == last && next != "box " ? "" : next;
            last = next;
        }
        return frame;
    }
};

TEST_F(Frame, IsDrawnFromTheBackToTheOverlay) {
    const std::string scene =
        "wood castle Quorvel dog sky house fire tree fire tree fire tree fire ";
    EXPECT_EQ(drawFrame(),
              "clear text dog person ground (tree) (wood) (castle) (house) (dog) "
              "(person) (dog) " +
                  scene + "box swap ");
    Menu = TALK_BOX;
    EXPECT_THAT(drawFrame(), HasSubstr("fire box box swap"));
    status = BATTLE;
    Menu = BATTLE_PANEL;
    EXPECT_EQ(drawFrame(), "clear text dog ground (tree) (wood) (castle) (house) (dog) " + scene +
                               "box box box swap ");
}

TEST_F(Frame, TitleGivesWayToTheTownInTheFrameAfterTheStart) {
    status = TITLE;
    camera.eye[0] = 7;
    EXPECT_EQ(drawFrame(), "clear cube swap ");
    const Drawing cube = recording::drawings()[1];
    menu_camera.setup();
    EXPECT_EQ(cube.state.projection, recording::state().projection);
    selectOption = true;
    EXPECT_EQ(drawFrame(), "clear cube box swap ");
    EXPECT_THAT(drawFrame(), HasSubstr("ground"));
}

TEST_F(Frame, PlayerFacesItsHeadingUnderItsName) {
    positionold[0] = 6;
    objrotold = 0.7F;
    poodle.update({});
    drawFrame();
    const auto &all = recording::drawings();
    const auto label =
        std::find_if(all.begin(), all.end(), [](const Drawing &d) { return name(d) == "Quorvel"; });
    ASSERT_NE(label, all.end());
    EXPECT_THAT(label->vertices[0].position, Pointwise(FloatNear(NEAR), {6.0, 1.4, 0.0}));
    // The torso's centre is a little ahead of the model's origin.
    EXPECT_THAT(
        recording::transform(label[1].state.modelview, {}),
        Pointwise(FloatNear(NEAR), {6 - 0.084 * std::sin(0.7), 0.468, -0.084 * std::cos(0.7)}));
}

TEST_F(Frame, ShadowsFallAwayFromTheSun) {
    positionold[0] = 6;
    objrotold = 0.7F;
    drawFrame();
    std::map<std::string, std::vector<Vertex>> lit;
    std::map<std::string, std::vector<Vertex>> shadows;
    for (const Drawing &d : recording::drawings(recording::PRIMITIVE)) {
        auto &vertices = (isShadow(d) ? shadows : lit)[name(d)];
        vertices.insert(vertices.end(), d.vertices.begin(), d.vertices.end());
        if (isShadow(d)) {
            const recording::State &s = d.state;
            EXPECT_FALSE(s.lighting || s.depthTest || s.texturing) << name(d);
            EXPECT_EQ(s.blendDestination, unsigned{GL_ZERO});
            EXPECT_TRUE(s.stencilTest && s.stencilFunction == GL_EQUAL && s.stencilReference == 1);
            EXPECT_EQ(s.stencilOperations[2], unsigned{GL_ZERO}) << "would darken twice";
        } else if (name(d) == "ground") {
            const recording::State &s = d.state;
            EXPECT_TRUE(s.stencilTest && s.stencilFunction == GL_ALWAYS && s.stencilReference == 1);
            EXPECT_EQ(s.stencilOperations, (std::array<GLenum, 3>{GL_KEEP, GL_KEEP, GL_REPLACE}));
            EXPECT_EQ(s.normal, (Point{0, 1, 0}));
        }
    }
    EXPECT_EQ(shadows.size(), 6U);
    for (const auto &[thing, shadow] : shadows) {
        ASSERT_EQ(shadow.size(), lit[thing].size()) << thing;
        const bool ofPeople = thing == "person" || thing == "dog";
        EXPECT_EQ(shadow[0].colour[0], ofPeople ? 0.5F : 0.3F) << thing;
        for (std::size_t i = 0; i < shadow.size(); ++i) {
            const auto &[x, y, z] = lit[thing][i].position;
            EXPECT_THAT(shadow[i].position,
                        Pointwise(FloatNear(NEAR), {(40 * x + 45 * y) / (40 - y), 0.0F,
                                                    (40 * z - 40 * y) / (40 - y)}))
                << thing;
        }
    }
}

TEST_F(Frame, MessagesStayForSixtyFramesEach) {
    status = BATTLE;
    for (const int message : {int{PLAYER_DEFENDED}, 9}) {
        Battle_Turn = ENEMY_TO_MOVE;
        BATTLE_MESSAGE = message;
        BattleMessageTimer = 60;
        health = 100;
        for (int frame = 1; frame <= 122; ++frame) {
            recording::clear();
            displayCallback();
            std::string shown = "none";
            for (const Drawing &text : recording::drawings(recording::TEXT)) {
                shown = text.name.find("DEFENDING") == 0 || text.name == "ENEMY CAUSED" ? text.name
                                                                                        : shown;
            }
            const bool defended = frame <= 60 && message == PLAYER_DEFENDED;
            EXPECT_EQ(shown, defended                    ? "DEFENDING ADDS 20 TO YOUR HEALTH"
                             : frame > 61 && frame < 122 ? "ENEMY CAUSED"
                                                         : "none")
                << "frame " << frame;
            EXPECT_EQ(health<100, frame> 60) << "the enemy moves in frame 61";
            EXPECT_EQ(Battle_Turn, frame > 60 ? PLAYER_CHOOSES : ENEMY_TO_MOVE);
        }
        EXPECT_EQ(PlayerTimer, 0);
    }
}

}  // namespace

#include <gmock/gmock.h>

#include <cstdlib>

#include "intro_cube.h"
#include "landscape.h"
#include "people.h"
#include "render_pass.h"
#include "sky_box.h"
#include "town.h"
#include "town_test.h"

namespace {

using recording::Colour;
using recording::Drawing;
using recording::Vertex;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr float NEAR = 1e-4F;

class Scenery : public Town_Test {
protected:
    // The models drawn since the last call, as "origin; x axis; y axis".
    static std::vector<std::string> models() {
        std::vector<std::string> lines;
        for (const Drawing &d : recording::drawings()) {
            if (d.list != 0) {
                const auto &v = d.vertices;
                lines.push_back(print(v[0].position) + "; " +
                                print(minus(v[1].position, v[0].position)) + "; " +
                                print(minus(v[2].position, v[0].position)));
            }
        }
        recording::clear();
        return lines;
    }
    static std::string print(const Point &p) {
        std::ostringstream text;
        for (const float axis : p) {
            text << (text.tellp() > 0 ? " " : "") << std::round(axis * 1000) / 1000 + 0.0F;
        }
        return text.str();
    }
    static std::vector<Drawing> flames() {
        std::vector<Drawing> result;
        for (const Drawing &d : recording::drawings()) {
            if (d.list == 0 && d.state.texture == texture[FIRE_TEXTURE]) {
                EXPECT_EQ(d.state.blendSource, unsigned{GL_SRC_ALPHA});
                EXPECT_EQ(d.state.blendDestination, unsigned{GL_ONE});
                result.push_back(d);
            }
        }
        return result;
    }
    // Ten flames of each fountain, in planes that cross and turn with the player.
    static void expectFire(const Drawing *flame, float scale) {
        for (int i = 0; i < 20; ++i, ++flame) {
            const double turn = objrotold + (i < 10 ? 0 : M_PI / 2);
            const Point edge = minus(flame->vertices[3].position, flame->vertices[2].position);
            EXPECT_NEAR(edge[0], 2 * scale * std::cos(turn), NEAR) << "flame " << i;
            EXPECT_NEAR(edge[2], -2 * scale * std::sin(turn), NEAR) << "flame " << i;
        }
    }
};

TEST_F(Scenery, ModelsStandInTheirPlaces) {
    drawTrees(SHADOW);
    EXPECT_THAT(models(), ElementsAre("-3 1.8 0; 0.5 0 0; 0 0.5 0", "-10 1.8 0; 0.5 0 0; 0 0.5 0",
                                      "30 1.8 0; 0.5 0 0; 0 0.5 0"));
    drawForest();
    EXPECT_THAT(models(), ElementsAre("-95 2 30; 0 0 2; 0 4 0", "-95 2 -30; 0 0 2; 0 4 0"));
    drawCastle();
    EXPECT_THAT(models(), ElementsAre("-80 4.7 0; 3 0 0; 0 3 0"));
    buildHouses(1);
    drawHouses(SHADOW);
    EXPECT_THAT(models(), ElementsAre("10 1.7 0; 1 0 0; 0 1 0", "20 1.7 1; 1 0 0; 0 1 0",
                                      "30 1.7 2; 1 0 0; 0 1 0"));
}

TEST_F(Scenery, HouseFiresBurnAtTheirSizesAndStandStill) {
    objrotold = 0.5F;
    buildHouses(0);
    drawHouses(LIT);
    EXPECT_EQ(print(recording::drawings().back().vertices[0].position), "30 3.1 2") << "the base";
    size_fire[2] = 1.5F;
    std::uint64_t digests[2] = {};
    for (auto &digest : digests) {
        recording::clear();
        drawHouses(LIT);
        digest = recording::digest();
    }
    ASSERT_EQ(flames().size(), 20U);
    expectFire(flames().data(), 1.5F);
    EXPECT_EQ(digests[0], digests[1]) << "houses moved the flames";
    recording::clear();
    glBlendFunc(GL_DST_COLOR, GL_ZERO);
    drawHouses(SHADOW);
    EXPECT_EQ(flames().size(), 0U);
    EXPECT_EQ(recording::state().blendSource, unsigned{GL_DST_COLOR});
}

TEST_F(Scenery, EachTreesFireMovesTheFountainsOn) {
    objrotold = -1;
    srand(3);
    Fireworks reference(10, 0);
    srand(3);
    fireworks1 = Fireworks(10, 0);
    drawTrees(SHADOW);
    drawTrees(LIT);
    EXPECT_EQ(recording::state().colour, (Colour{1, 1, 1, 1}));
    const auto fires = flames();
    ASSERT_EQ(fires.size(), 60U);
    for (std::size_t i = 0; i < 60; i += 20) {
        expectFire(&fires[i], 1.5F);
    }
    const Point corner = fires[0].vertices[2].position;
    const Point edge = minus(fires[0].vertices[0].position, corner);
    EXPECT_EQ(print(minus(corner, {-edge[0] / 2, -edge[1] / 2, -edge[2] / 2})), "-3 2.5 0")
        << "where the first flames start";
    for (int tree = 0; tree < 3; ++tree) {
        reference.step();
    }
    std::uint64_t digests[2] = {};
    for (Fireworks *fountain : {&fireworks1, &reference}) {
        recording::clear();
        fountain->draw_no_update();
        digests[fountain == &reference] = recording::digest();
    }
    EXPECT_EQ(digests[0], digests[1]) << "not three steps";
}

TEST_F(Scenery, SkyBoxIsSeenUprightFromInside) {
    glEnable(GL_TEXTURE_2D);
    drawSkyBox();
    // Each picture's corner (0, 0) and its ways along s and t.
    const std::pair<Sky_Slot, const char *> faces[] = {
        {SKY, "100 55 -100; 0 0 200; -200 0 0"},   {FLOOR, "100 -45 -100; -200 0 0; 0 0 200"},
        {NORTH, "100 -45 100; -200 0 0; 0 100 0"}, {SOUTH, "-100 -45 -100; 200 0 0; 0 100 0"},
        {EAST, "-100 -45 100; 0 0 -200; 0 100 0"}, {WEST, "100 -45 -100; 0 0 200; 0 100 0"}};
    ASSERT_EQ(recording::drawings().size(), 6U);
    for (std::size_t i = 0; i < 6; ++i) {
        const Drawing &quad = recording::drawings()[i];
        std::map<Point, Point> corners;
        for (const Vertex &v : quad.vertices) {
            corners[v.texCoord] = v.position;
        }
        const Point origin = corners[{0, 0, 0}];
        EXPECT_EQ(print(origin) + "; " + print(minus(corners[{1, 0, 0}], origin)) + "; " +
                      print(minus(corners[{0, 1, 0}], origin)),
                  faces[i].second);
        EXPECT_EQ(corners.size(), 4U);
        EXPECT_EQ(quad.state.texture, skybox[faces[i].first]);
        EXPECT_EQ(quad.state.wrapS, unsigned{GL_CLAMP_TO_EDGE});
        EXPECT_EQ(quad.state.wrapT, unsigned{GL_CLAMP_TO_EDGE});
        EXPECT_TRUE(quad.state.texturing && !quad.state.lighting);
    }
    EXPECT_TRUE(recording::state().lighting);
}

TEST_F(Scenery, PeopleAreMetWhereTheyStand) {
    status = TOWN;
    drawPeople(LIT);
    EXPECT_TRUE(recording::state().texturing);
    std::vector<std::string> torsos;
    for (std::size_t i = 0; i < 3; ++i) {
        const recording::State enemy = recording::drawings(recording::SHAPE).at(37 * i).state;
        EXPECT_EQ(enemy.colour, (Colour{0.5F, 0.1F, 0.1F, 1}));
        EXPECT_FALSE(enemy.texturing);
        torsos.push_back(print(recording::transform(enemy.modelview, {})));
    }
    EXPECT_THAT(torsos, ElementsAre("-5 0.351 0.063", "-14.937 0.351 4", "-59.937 0.351 10"))
        << "0.063 ahead of the model's origin";
    for (const Drawing &d : recording::drawings()) {
        if (d.list == NPC) {
            EXPECT_EQ(d.vertices[0].colour, (Colour{1, 1, 1, 1}));
        }
    }
    std::vector<std::string> footprints;
    for (unsigned i = 0; i < collision_back; ++i) {
        const Collision_Object &f = collision_scene[i];
        EXPECT_EQ(f.code, i < 3 ? ENEMY : TOWNSPERSON);
        EXPECT_EQ(f.maxX - f.minX + 10 * (f.maxZ - f.minZ), 11) << "one wide, one deep";
        footprints.push_back(print({f.minX + 0.5F, 0, f.minZ + 0.5F}));
    }
    EXPECT_THAT(footprints, ElementsAre("-5 0 0", "-15 0 4", "-60 0 10", "5 0 0", "-25 0 0",
                                        "-40 0 11", "20 0 13", "50 0 5"));
    EXPECT_THAT(models(), ElementsAre("5 0.7 0; -0.3 0 0; 0 0.3 0", "-25 0.7 0; 0 0 0.3; 0 0.3 0",
                                      "-40 0.7 11; 0.3 0 0; 0 0.3 0", "20 0.7 13; 0.3 0 0; 0 0.3 0",
                                      "50 0.7 5; 0 0 -0.3; 0 0.3 0"));
    status = BATTLE;
    drawPeople(SHADOW);
    EXPECT_FALSE(recording::state().texturing);
    EXPECT_EQ(recording::state().colour, (Colour{0.5F, 0.5F, 0.5F, 1}));
    EXPECT_THAT(models(), IsEmpty()) << "townspeople in battle";
    EXPECT_EQ(collision_back, 8U) << "footprints appended twice";
}

TEST_F(Scenery, TitleCubeSwingsOutAndBackInEachQuarterTurn) {
    for (const int turn : {90, -90, -90}) {
        rotHor += static_cast<float>(turn);
        Rotating = true;
        for (int frame = 1; frame <= 180; ++frame) {
            recording::clear();
            IntroCube();
            const auto &v = recording::drawings()[0].vertices;
            const Point axis = minus(v[1].position, v[0].position);
            const double angle = (rotHor - turn * (1 - frame / 180.0)) * M_PI / 180;
            EXPECT_NEAR(v[0].position[2], 1.3 - 0.05 * std::min(frame, 180 - frame), NEAR);
            EXPECT_NEAR(std::atan2(-axis[2], axis[0]), std::remainder(angle, 2 * M_PI), NEAR);
            EXPECT_EQ(Rotating, frame < 180) << "frame " << frame;
        }
        EXPECT_EQ(hor, rotHor);
        EXPECT_EQ(Zstep, 0);
    }
    Rotating = true;
    expectNoMore();
    IntroCube();
    EXPECT_EQ(changes(), "") << "with no angle left it stands and stays Rotating";
}

TEST_F(Scenery, TitleCubeStartsTheGameFromItsFirstFaceOnly) {
    for (const auto &[face, selected, scene] :
         {std::tuple{0, false, TITLE}, {2, true, TITLE}, {0, true, TOWN}}) {
        option = face;
        selectOption = selected;
        IntroCube();
        EXPECT_EQ(status, scene) << "face " << face;
        EXPECT_THAT(models(), ElementsAre("0 1.6 1.3; 1 0 0; 0 1 0"));
    }
}

}  // namespace

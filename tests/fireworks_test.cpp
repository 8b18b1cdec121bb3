#include "fireworks.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "recording_gl.h"

namespace {

using recording::Drawing;
using recording::Point;
using testing::FloatNear;
using testing::Pointwise;

constexpr float NEAR = 1e-4F;

std::vector<Drawing> drawOnce(Fireworks &fountain, void (Fireworks::*draw)() = &Fireworks::draw) {
    recording::clear();
    (fountain.*draw)();
    EXPECT_TRUE(recording::faults().empty());
    return recording::drawings();
}

Point centre(const Drawing &flame) {
    const Point &corner = flame.vertices[2].position;
    return {corner[0] + 1, corner[1] + 1, corner[2]};
}

int life(const Drawing &flame) {
    return static_cast<int>(256 - std::lround(255 * flame.vertices[0].colour[3])) / 2;
}

TEST(Fireworks, AreBornFromTheRandomStreamAndRiseEverFaster) {
    for (const int scheme : {0, 1, 2}) {
        recording::reset();
        srand(7);
        Fireworks fountain(3, scheme);
        srand(7);
        int numbers[3][7] = {};
        for (auto &birth : numbers) {
            std::generate(birth, birth + 7, rand);
        }
        for (int age = 0; age < 53; ++age) {
            const auto squares = drawOnce(fountain);
            ASSERT_EQ(squares.size(), 3U);
            for (std::size_t i = 0; i < 3; ++i) {
                const int *n = numbers[i];
                const auto drift = [n, age](int axis) {
                    return (n[3 + axis] % 256 - 128) * 0.0001 * age;
                };
                EXPECT_THAT(centre(squares[i]),
                            Pointwise(FloatNear(NEAR),
                                      {drift(0), drift(1) + 0.0003 * age * (age + 1), drift(2)}))
                    << "at age " << age;
                EXPECT_EQ(life(squares[i]), n[6] % 76 + 52);
                for (int part = 0; part < 3; ++part) {
                    EXPECT_FLOAT_EQ(
                        squares[i].vertices[0].colour[static_cast<std::size_t>(part)],
                        static_cast<float>(n[part] % (part == scheme ? 256 : 128)) / 255);
                }
            }
        }
    }
}

TEST(Fireworks, AreRebornInTheDrawAfterTheirLife) {
    recording::reset();
    Fireworks fountain(1, 0);
    int rebirth = 0;
    for (int draw = 0; draw < 500; ++draw) {
        const Drawing flame = drawOnce(fountain)[0];
        EXPECT_EQ(centre(flame) == Point{}, draw == rebirth) << "draw " << draw;
        rebirth += draw == rebirth ? life(flame) + 1 : 0;
    }
}

TEST(Fireworks, StepMovesOnAsDrawDoes) {
    recording::reset();
    std::uint64_t digests[2] = {};
    int numbers[2] = {};
    for (const bool drawn : {true, false}) {
        srand(7);
        Fireworks fountain(20, 0);
        for (int i = 0; i < 200; ++i) {
            recording::clear();
            (fountain.*(drawn ? &Fireworks::draw : &Fireworks::step))();
        }
        EXPECT_EQ(recording::drawings().size(), drawn ? 20U : 0U);
        numbers[drawn] = rand();
        drawOnce(fountain, &Fireworks::draw_no_update);
        digests[drawn] = recording::digest();
        drawOnce(fountain, &Fireworks::draw_no_update);
        EXPECT_EQ(recording::digest(), digests[drawn]) << "moved by showing";
    }
    EXPECT_EQ(digests[0], digests[1]);
    EXPECT_EQ(numbers[0], numbers[1]) << "other births";
}

TEST(Fireworks, AreSquaresBlendedOverAnyDepth) {
    recording::reset();
    glEnable(GL_DEPTH_TEST);
    Fireworks fountain(4, 1);
    for (const auto draw : {&Fireworks::draw, &Fireworks::draw_no_update}) {
        for (const Drawing &flame : drawOnce(fountain, draw)) {
            EXPECT_TRUE(flame.state.blending && !flame.state.depthTest);
            EXPECT_EQ(flame.state.wrapS, unsigned{GL_CLAMP_TO_EDGE});
            EXPECT_EQ(flame.state.wrapT, unsigned{GL_CLAMP_TO_EDGE});
            EXPECT_EQ(flame.state.normal, (Point{0, 1, 0}));
            for (const auto &[position, normal, colour, st] : flame.vertices) {
                const Point c = centre(flame);
                EXPECT_FLOAT_EQ(position[0], c[0] + 2 * st[0] - 1);
                EXPECT_FLOAT_EQ(position[1], c[1] + 2 * st[1] - 1);
            }
        }
        EXPECT_TRUE(!recording::state().blending && recording::state().depthTest);
    }
}

TEST(Fireworks, AreAtMostAsManyAsTheStorageHolds) {
    for (const auto &[count, flames] : {std::pair{-1, 0U}, {0, 0U}, {256, 256U}, {300, 256U}}) {
        Fireworks fountain(count, 0);
        EXPECT_EQ(drawOnce(fountain).size(), flames);
    }
}

}  // namespace

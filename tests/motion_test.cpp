// The poodle's five motions, played frame by frame as the game plays them and measured
// as the game draws them. When one of these fails, look at the file in the pose viewer.

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdio>
#include <vector>

#include "interpolate.h"
#include "poodle.h"
#include "recording_gl.h"

namespace {

constexpr double DEEPEST = -0.02;  // model units that a paw may sink into the ground
constexpr double TOUCH = 0.02;     // below this a paw counts as standing on it
constexpr float SNAP = 0.5F;       // degrees that no joint may jump between two motions
constexpr std::size_t LONGEST = 10000;

constexpr std::size_t PAWS = 4;
// The paws' first toes among the ellipsoids of a drawing: hind left and right, front
// left and right.
constexpr std::array<std::size_t, PAWS> FIRST_TOES = {5, 10, 16, 20};

struct Motion {
    const char *file;
    bool loops;
    std::size_t longest;  // steps until it reports its end: a battle message stays for 60
    double highest;       // model units to which the lowest paw may rise
};

constexpr const char *STAY = DATA_FOLDER "/stay.txt";

// clang-format off
const Motion MOTIONS[] = {
    {DATA_FOLDER "/walk.txt",    true,  LONGEST, 0.08},  // a trot: both pairs leave the ground
    {STAY,                       true,  LONGEST, TOUCH},
    {DATA_FOLDER "/fight.txt",   false, 60,      1.5},
    {DATA_FOLDER "/defend.txt",  false, 60,      0.3},  // hops into its guard and out of it
    {DATA_FOLDER "/special.txt", false, 60,      1.5},
};
// clang-format on

// All that the file holds. Where a number can't be read, a key keeps the frame before.
std::vector<KeyFrame> keys(const char *file) {
    Interpolate player(file, false);
    std::vector<KeyFrame> all = {player.current, player.next};
    for (int left = player.total_keys - 2; left > 0; --left) {
        KeyFrame key = all.back();
        player.read(key);
        all.push_back(key);
    }
    EXPECT_EQ(std::fscanf(player.file.get(), " %*c"), EOF) << "more keys than the header counts";
    return all;
}

// The pose shown at each step up to the one that reports the end.
std::vector<Params> steps(const char *file) {
    Interpolate player(file, false);
    std::vector<Params> poses;
    for (Params pose = {}; poses.size() < LONGEST && !player.step(pose);) {
        poses.push_back(pose);
    }
    return poses;
}

// The lowest point of an ellipsoid, from its centre and the ends of its semi-axes.
double lowestPoint(const recording::Drawing &sphere) {
    const auto &v = sphere.vertices;
    const auto rise = [&v](std::size_t i) { return v[i].position[1] - v[0].position[1]; };
    return v[0].position[1] - std::hypot(rise(1), rise(2), rise(3));
}

// The lowest points of the four paws in a pose.
std::array<double, PAWS> pawHeights(const Params &pose) {
    recording::gl = {};
    Poodle dog;
    dog.update(pose);
    dog.draw();
    auto ellipsoids = recording::gl.drawings;
    std::erase_if(ellipsoids, [](const auto &drawing) { return drawing.kind != recording::SHAPE; });
    std::array<double, PAWS> heights;
    for (std::size_t paw = 0; paw < PAWS; ++paw) {
        const auto *const toes = &ellipsoids.at(FIRST_TOES[paw]);
        heights[paw] = std::min({lowestPoint(toes[0]), lowestPoint(toes[1]), lowestPoint(toes[2])});
    }
    return heights;
}

// The most that a joint differs; a full turn ends where it began.
float apart(const KeyFrame &a, const KeyFrame &b) {
    const auto one = std::bit_cast<std::array<float, POSE_VALUES>>(a.pose);
    const auto other = std::bit_cast<std::array<float, POSE_VALUES>>(b.pose);
    float most = 0;
    for (std::size_t i = 0; i < one.size(); ++i) {
        most = std::max(most, std::abs(std::remainder(one[i] - other[i], 360.0F)));
    }
    return most;
}

TEST(Motions, KeysRiseFromFrameZeroAndJoinWithoutASnap) {
    for (const Motion &motion : MOTIONS) {
        SCOPED_TRACE(motion.file);
        const auto all = keys(motion.file);
        EXPECT_EQ(all.front().frame, 0U);
        for (std::size_t i = 1; i < all.size(); ++i) {
            EXPECT_GT(all[i].frame, all[i - 1].frame) << "key " << i;
        }
        EXPECT_LT(apart(all.front(), all.back()), motion.loops ? 1e-6F : SNAP);
        if (!motion.loops) {
            EXPECT_LT(apart(all.front(), keys(STAY).front()), SNAP);
        }
    }
}

TEST(Motions, EndInTimeAndStandOnTheGroundNotInIt) {
    for (const Motion &motion : MOTIONS) {
        SCOPED_TRACE(motion.file);
        const auto poses = steps(motion.file);
        EXPECT_LT(poses.size(), motion.longest) << "ends late or never";
        std::array<bool, PAWS> stood = {};
        for (std::size_t step = 0; step < poses.size(); ++step) {
            const auto heights = pawHeights(poses[step]);
            for (std::size_t paw = 0; paw < PAWS; ++paw) {
                EXPECT_GE(heights[paw], DEEPEST) << "paw " << paw << " at step " << step;
                stood[paw] = stood[paw] || heights[paw] < TOUCH;
            }
            EXPECT_LE(*std::min_element(heights.begin(), heights.end()), motion.highest)
                << "floats at step " << step;
        }
        EXPECT_THAT(stood, testing::Each(true)) << "a paw never comes down";
    }
}

}  // namespace

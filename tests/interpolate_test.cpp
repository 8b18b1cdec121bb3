#include "interpolate.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <sstream>
#include <tuple>

#include "temp_files.h"

namespace {

// Keys of a value and a frame; number i of a key's pose is value + i.
std::string keyFile(int count, std::initializer_list<std::pair<int, int>> keys) {
    std::ostringstream text;
    text << "#total_keys = " << count << '\n';
    for (const auto &[value, frame] : keys) {
        for (int i = 0; i < POSE_VALUES; ++i) {
            text << value + i << ' ';
        }
        text << frame << '\n';
    }
    return text.str();
}

// What `steps` steps do, a word each: the first value of the pose to four decimals,
// "hold" where no pose was written, "end" at the end, which writes none.
std::string play(Interpolate &player, std::ptrdiff_t steps) {
    std::ostringstream words;
    while (steps-- > 0) {
        Params pose;
        pose.pos_x = -1;
        const bool end = player.step(pose);
        words << (words.tellp() > 0 ? " " : "") << (end ? "end" : pose.pos_x < 0 ? "hold" : "");
        if (pose.pos_x >= 0) {
            words << std::round(pose.pos_x * 1e4) / 1e4;
        }
    }
    return words.str();
}

const std::string THREE = keyFile(3, {{0, 0}, {10, 4}, {20, 8}});
const std::string A = "0 2.4999 4.9999 7.4998 9.9998 ";
const std::string B = "hold 12.4999 14.9999 17.4998 19.9998 ";

TEST(Interpolate, PlaysAFileStepByStep) {
    const auto counted = [](int count) { return keyFile(count, {{0, 0}, {10, 4}, {20, 8}}); };
    std::string cramped = "#total_keys=3\n" + THREE.substr(THREE.find('\n'));
    std::replace(cramped.begin(), cramped.end(), ' ', '\n');
    // clang-format off
    const std::tuple<bool, std::string, std::string> cases[] = {
        {false, THREE, A + B + "hold end end"},
        {true,  THREE, A + B + "hold end " + A + "hold 12.4999"},
        {false, cramped, A + B + "hold end"},
        {false, counted(2), A + B + "end"},  // a key more than counted
        {false, counted(5), A + B + "hold hold hold end"},  // two fewer
        {false, counted(-1), A + B + "hold hold hold hold hold"},  // unsigned, so no end
        {true,  THREE.substr(1), "end end"},  // no count without a header
        {false, keyFile(4, {{0, 0}, {10, 4}, {0, 4}, {10, 8}}), A + "hold hold 2.4999 4.9999"},
        {false, keyFile(4, {{0, 0}, {10, 4}, {0, 3}, {10, 8}}), A + "hold hold 3.9999"},
        {false, keyFile(2, {{12, 4}, {24, 8}}), "0.0003 3.0002"},  // extrapolated backwards
        {false, keyFile(3, {{0, 0}, {10, 4}}) + "x 1 2 3", A + "hold hold end"},
    };
    // clang-format on
    for (const auto &[loop, text, script] : cases) {
        const Temp_File file(text);
        Interpolate player(file.name(), loop);
        EXPECT_EQ(play(player, 1 + std::count(script.begin(), script.end(), ' ')), script) << text;
    }
}

TEST(Interpolate, LongSpansChangeKeyAtTheLaterKeysOwnFrame) {
    for (int span : {2047, 2048, 5000}) {
        const Temp_File file(keyFile(2, {{0, 0}, {10, span}}));
        Interpolate player(file.name(), false);
        play(player, span);
        EXPECT_EQ(play(player, 2), span < 2048 ? "10 hold" : "hold end") << span << " frames";
    }
}

TEST(Interpolate, PlayersOfOneFileAreIndependentAndResettable) {
    const Temp_File file(THREE);
    Interpolate one(file.name(), false);
    Interpolate other(file.name(), false);
    play(one, 7);
    EXPECT_EQ(play(other, 12), A + B + "hold end");
    EXPECT_EQ(play(one, 1), "14.9999");
    for (Interpolate *player : {&one, &other}) {
        player->reset();
        EXPECT_EQ(play(*player, 6), A + "hold") << "reset within a segment and after the end";
    }
}

TEST(Interpolate, AMissingFileIsReportedAtEveryAttempt) {
    std::optional<Temp_File> file(keyFile(2, {{0, 0}, {10, 1}}));
    const std::string name = file->name();
    Interpolate looping(name.c_str(), true);
    testing::internal::CaptureStdout();  // which would take the closed file's descriptor
    file.reset();
    EXPECT_EQ(play(looping, 6), "0 9.999 hold end end end") << "gone at its restart";
    Interpolate player("no/such/file", false);
    EXPECT_EQ(play(player, 2), "end end");
    player.reset();
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "Error Opening File\nError Opening File\nError Opening File\n");
}

TEST(Interpolate, AdvanceAndReadMoveThroughTheKeys) {
    const Temp_File file(THREE);
    Interpolate player(file.name(), false);
    EXPECT_EQ(player.advance(), 1);
    EXPECT_EQ(play(player, 1), "2.5002") << "from the second key, at frame 1";
    player.advance();
    player.advance();
    EXPECT_EQ(play(player, 1), "0") << "after the last key a restart, without looping too";
    KeyFrame key = {};
    EXPECT_TRUE(player.read(key));
    EXPECT_EQ(key.pose.hips + static_cast<float>(key.frame), 46 + 8);
    play(player, 11);
    EXPECT_FALSE(player.read(key)) << "no keys are left at the end";
}

}  // namespace

#include "update.h"

#include "game_test.h"
#include "temp_files.h"

namespace {

using Update = Game_Test;

TEST_F(Update, OneStepActsOnEverythingThatItTouches) {
    const Temp_File keys("#total_keys = 99");
    Interpolate player(keys.name(), true);
    interpolate_sitdown = interpolate_sitdown2 = interpolate_stay = &player;
    const std::string talk = "Menu 1  TalkMenu 1  IsTalkBool 1  TalkTimer 49";
    const struct {
        std::string touched;  // codes, in the order of the scene
        bool talking;
        std::string changes;  // to the modes
    } cases[] = {
        {"", false, "TalkTimer -1"},
        {"7", false, "TalkTimer -1"},
        {"1", false, "TalkTimer -1"},
        {"3", false, talk},
        {"13", false, talk},
        {"331", false, talk},
        {"3", true, "TalkTimer 8"},
        {"2", false, "status 2  Menu 0  selectOption 0  TalkTimer -1"},
        {"32", false, "status 2  Menu 0  selectOption 0  TalkMenu 1  IsTalkBool 1  TalkTimer 49"},
        {"231", false, "status 2  Menu 1  selectOption 0  TalkMenu 1  IsTalkBool 1  TalkTimer 49"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE("touching " + c.touched);
        restart();
        status = TOWN;
        selectOption = true;
        IsTalkBool = c.talking;
        TalkTimer = c.talking ? 9 : 0;
        for (const char code : c.touched) {
            appendFootprint(code - '0', 6, 7, -1, 1);
        }
        position[0] = 5;
        const std::string all = after(idleCallback);
        EXPECT_EQ(all.substr(0, all.find("  collision")), c.changes);
        const bool stopped = c.touched.find_first_of("123") != std::string::npos;
        EXPECT_EQ(position[0], stopped ? 0 : 5);
        EXPECT_EQ(camera.eye[0], position[0]) << "the camera keeps to the player";
        EXPECT_EQ(collision_action, c.touched.empty() ? 0 : c.touched.back() - '0');
        position[0] = 4.9F;
        idleCallback();
        EXPECT_EQ(position[0], 4.9F) << "beside them";
    }
}

}  // namespace

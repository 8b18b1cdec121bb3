// Plays at random: every callback of the whole program, in any order, on the recording OpenGL.
// After each update everything must be in its range. Ends with how often each mode and message
// was reached; each must have been.
//
// Usage: random_play [UPDATES [SEED]]     10000 and 1 if not given. Run in a folder with the
// data of a round. A failure tells the seed and after how many events it came.

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <numbers>
#include <numeric>
#include <random>
#include <string>

#include "assets.h"
#include "game_objects.h"
#include "game_state.h"
#include "recording_gl.h"
#include "scene_collision.h"

// The program's main, renamed for the tests.
int talveryMain(int argc, char **argv);

namespace {

constexpr unsigned char ESCAPE = 27;
constexpr int LARGEST_WINDOW = 8192;
constexpr int MESSAGES_LAST = 60;  // frames
constexpr unsigned FOOTPRINTS = 119;
constexpr unsigned FOOTPRINTS_WITH_PEOPLE = 127;

unsigned seed = 1;
std::mt19937 numbers;
long events = 0;
std::map<std::string, long> reached;

// From 0 to `most`.
int upTo(int most) {
    return static_cast<int>(numbers() % (static_cast<unsigned>(most) + 1));
}

void require(bool holds, const char *what) {
    if (!holds) {
        std::printf("seed %u, after %ld events: %s\n", seed, events, what);
        std::exit(1);
    }
}

bool within(int value, int least, int most) {
    return value >= least && value <= most;
}

void checkDrawing() {
    for (const std::string &fault : recording::faults()) {
        require(false, fault.c_str());
    }
    recording::clear();
}

void checkState() {
    checkDrawing();
    require(within(status, TITLE, BATTLE) && within(Menu, BATTLE_PANEL, NO_OVERLAY), "a mode");
    require(within(option, 0, TITLE_FACES - 1) && std::fabs(hor - rotHor) <= 90, "the cube");
    require(within(TalkMenu, 0, 10000) && TalkTimer < TALK_FRAMES, "a talk");
    require(within(Fight_status, ATTACK, SPECIAL) && within(Battle_Turn, 0, 1), "a battle");
    require(within(BATTLE_MESSAGE, NO_MESSAGE, PLAYER_DEFENDED), "a message");
    require(within(BattleMessageTimer, 0, MESSAGES_LAST) && within(PlayerTimer, 0, MESSAGES_LAST),
            "a message's timer");
    require(within(ENTERPRESS, ATTACK, NO_MOVE), "a move");
    require(ENTERPRESS_ENEMY == ATTACK || ENTERPRESS_ENEMY == NO_MOVE, "the enemy's move");
    require(within(ENEMY_Health, 1, START_HEALTH) && (special == 0 || special == 100), "health");
    require(std::all_of(HEALTH, HEALTH + 3, isdigit), "the health's digits");
    require(HIT[0] == '\0' || std::all_of(HIT, HIT + 2, isdigit), "the hit's digits");
    require(within(zoom, ZOOMING_OUT, ZOOMING_IN) && within(action, STANDING, HELD_STILL),
            "an action");
    require(collision_back == (INITCOLLBOXES ? FOOTPRINTS : FOOTPRINTS_WITH_PEOPLE), "footprints");
    const float places = std::accumulate(position, position + 3, objrot) +
                         std::accumulate(camera.eye, camera.eye + 3, 0.0F) +
                         std::accumulate(camera.center, camera.center + 3, 0.0F);
    require(std::isfinite(places), "the player's or the camera's place");
    ++reached["mode " + std::to_string(status)];
    ++reached["overlay " + std::to_string(Menu)];
    ++reached["message " + std::to_string(BATTLE_MESSAGE)];
}

unsigned char randomKey() {
    static const std::string PLAYED = "wsad,.nmp 123\r\r\r\x1b";
    return static_cast<unsigned char>(
        upTo(3) > 0 ? PLAYED[static_cast<std::size_t>(upTo(static_cast<int>(PLAYED.size()) - 1))]
                    : upTo(255));
}

// One event, or as many as a held key or a stall makes of it.
void randomEvent() {
    const recording::Window &window = recording::window();
    const unsigned char key = randomKey();
    const int kind = upTo(19);
    ++events;
    if (kind < 12) {
        // Escape ends the program where the title stands still, and mostly comes too early.
        if (key == ESCAPE && (upTo(9) > 0 || (status == TITLE && !Rotating))) {
            return;
        }
        // A second Escape would end the program too.
        for (int repeats = upTo(29) == 0 && key != ESCAPE ? upTo(80) : 1; repeats > 0; --repeats) {
            window.keyboard(key, upTo(5000) - 1000, upTo(5000) - 1000);
        }
    } else if (kind < 15) {
        window.keyboardUp(key, upTo(5000), upTo(5000));
    } else if (kind < 17) {
        window.mouse(upTo(5), upTo(1), upTo(5000), upTo(5000));
    } else if (kind < 19) {
        window.passiveMotion(upTo(3000) - 1000, upTo(3000) - 1000);
    } else {
        window.reshape(1 + upTo(LARGEST_WINDOW - 1), 1 + upTo(LARGEST_WINDOW - 1));
    }
}

// The key that takes the player on towards a point of the ground.
unsigned char keyTowards(float x, float z) {
    const float wanted = std::atan2(position[0] - x, position[2] - z);
    const float off = std::remainder(wanted - objrot, 2 * std::numbers::pi_v<float>);
    return off > 0.1F ? 'a' : off < -0.1F ? 'd' : 'w';
}

// A key that gets the player somewhere: to somebody in the town, and on in a battle.
unsigned char purposefulKey() {
    static const std::array<float, 2> PLACES[] = {{-5, 0},  {-15, 4},  {-60, 10}, {5, 0},
                                                  {-25, 0}, {-40, 11}, {20, 13},  {0, 0}};
    static int place = 0;
    place = upTo(99) == 0 ? upTo(7) : place;
    return status == TITLE    ? "pn"[upTo(1)]
           : status == BATTLE ? "ws\r\r"[upTo(3)]
                              : keyTowards(PLACES[place][0], PLACES[place][1]);
}

void play(long updates) {
    for (long update = 0; update < updates; ++update) {
        ++events;
        recording::window().keyboard(purposefulKey(), 0, 0);
        for (int burst = upTo(3) > 0 ? 0 : upTo(9) == 0 ? 20 : 1; burst > 0; --burst) {
            randomEvent();
        }
        recording::window().idle();
        checkState();
        // A frame of the town takes longer than all the rest. The cube turns for 180 frames, and
        // a message stays for sixty.
        if (upTo(39) == 0 || status == TITLE || (status == BATTLE && upTo(6) == 0)) {
            recording::window().display();
            checkDrawing();
        }
    }
    for (const char *wanted : {"mode 0", "mode 1", "mode 2", "overlay 0", "overlay 1", "overlay 2",
                               "message 0", "message 1", "message 2", "message 3"}) {
        std::printf("%-10s %ld updates\n", wanted, reached[wanted]);
        require(reached[wanted] > 0, "it was never reached");
    }
}

}  // namespace

int main(int argc, char **argv) {
    const long updates = argc > 1 ? std::strtol(argv[1], nullptr, 10) : 10000;
    seed = argc > 2 ? static_cast<unsigned>(std::strtoul(argv[2], nullptr, 10)) : 1;
    numbers.seed(seed);
    recording::onMainLoop([updates] { play(updates); });
    return talveryMain(argc, argv);
}

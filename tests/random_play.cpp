// Plays at random: every callback of the whole program, in any order, on the recording OpenGL.
// After each update everything must be in its range. Ends with how often each mode, message and
// state of health was reached; each must have been.
//
// Usage: random_play [UPDATES [SEED]]     10000 and 1 if not given. Run in a folder with the
// data of a round. A failure tells the seed and after how many events it came.

#include <algorithm>
#include <array>
#include <bit>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <numeric>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

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
constexpr double TOWN_EDGE = 110;   // of the farthest footprint, world units
constexpr float LARGEST_POSE = 54;  // of the keys in the rounds' data; the smallest is 0
constexpr float SWING = 90;         // frames, one way
constexpr int MUCH_HEALTH = 105;    // more than a battle begins with
constexpr int DEFENDING_MOVES = 6;  // of so many:
constexpr int MOVES = 24;

const char *const WANTED[] = {"mode 0",       "mode 1",      "mode 2",    "overlay 0", "overlay 1",
                              "overlay 2",    "message 0",   "message 1", "message 2", "message 3",
                              "   HEALTHY",   "   WEAKENED", "   DYING",  "   DEAD",   "   READY",
                              "   NOT READY", "much health"};

bool finished = false;
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
        std::fflush(stdout);
        std::_Exit(EXIT_FAILURE);
    }
}

bool within(int value, int least, int most) {
    return value >= least && value <= most;
}

void requireNoFault() {
    for (const std::string &fault : recording::faults()) {
        require(false, fault.c_str());
    }
}

// Calls a callback, which asks for one redisplay, draws nothing and uses OpenGL rightly.
template <typename... Arguments>
void call(void (*callback)(Arguments...), std::common_type_t<Arguments>... arguments) {
    recording::clear();
    callback(arguments...);
    require(recording::gl.redisplays == 1, "a callback asks for one redisplay");
    require(recording::gl.drawings.empty(), "a callback draws");
    requireNoFault();
}

void frame() {
    const int shownHealth = std::max(health, 0) % 1000;
    recording::clear();
    recording::gl.window.display();
    requireNoFault();
    require(recording::gl.redisplays == 0, "a frame asks for the next one");
    require(recording::gl.drawings.back().kind == recording::SWAP, "a frame ends with the swap");
    std::string before;
    for (const recording::Drawing &drawing : recording::gl.drawings) {
        ++reached[drawing.name];
        require(before != "HEALTH:" || std::stoi(drawing.name) == shownHealth,
                "the health that is shown");
        before = drawing.name;
    }
    require(TalkMenu < DIALOGUE_LINES || Menu != TALK_BOX, "a line of a talk");
}

bool isFootprint(const Collision_Object &f) {
    return f.kind == RECTANGLE && within(f.code, SOLID, TOWNSPERSON) && f.minX < f.maxX &&
           f.minZ < f.maxZ && f.minX >= -TOWN_EDGE && f.maxX <= TOWN_EDGE && f.minZ >= -TOWN_EDGE &&
           f.maxZ <= TOWN_EDGE;
}

bool isPose(const Params &params) {
    const auto pose = std::bit_cast<std::array<float, POSE_VALUES>>(params);
    return std::all_of(pose.begin(), pose.end(),
                       [](float value) { return value >= 0 && value <= LARGEST_POSE; });
}

void checkState() {
    require(within(status, TITLE, BATTLE) && within(Menu, BATTLE_PANEL, NO_OVERLAY), "a mode");
    require(within(option, 0, TITLE_FACES - 1) && std::fabs(hor - rotHor) <= 90, "the cube");
    require(std::fabs(Zstep) <= SWING && Zval <= 0.01F && Zval >= -4.51F, "the cube's swing");
    require(within(TalkMenu, 0, DIALOGUE_LINES) && TalkTimer < TALK_FRAMES, "a talk");
    require(within(Fight_status, ATTACK, SPECIAL) && within(Battle_Turn, 0, 1), "a battle");
    require(within(BATTLE_MESSAGE, NO_MESSAGE, PLAYER_DEFENDED), "a message");
    require(within(BattleMessageTimer, 0, MESSAGES_LAST) && within(PlayerTimer, 0, MESSAGES_LAST),
            "a message's timer");
    require(within(ENTERPRESS, ATTACK, NO_MOVE), "a move");
    require(ENTERPRESS_ENEMY == ATTACK || ENTERPRESS_ENEMY == NO_MOVE, "the enemy's move");
    require(within(ENEMY_Health, 1, START_HEALTH) && (special == 0 || special == 100), "health");
    require(HIT[0] == '\0' || std::all_of(HIT, HIT + 2, isdigit), "the hit's digits");
    require(within(zoom, ZOOMING_OUT, ZOOMING_IN) && within(action, STANDING, HELD_STILL),
            "an action");
    require(collision_back == (INITCOLLBOXES ? FOOTPRINTS : FOOTPRINTS_WITH_PEOPLE) &&
                std::all_of(collision_scene, collision_scene + collision_back, isFootprint),
            "footprints");
    require(isPose(marked_params) && isPose(enemy_params), "a pose");
    const float places = std::accumulate(position, position + 3, objrot) +
                         std::accumulate(camera.eye, camera.eye + 3, 0.0F) +
                         std::accumulate(camera.center, camera.center + 3, 0.0F);
    require(std::isfinite(places), "the player's or the camera's place");
    ++reached["mode " + std::to_string(status)];
    ++reached["overlay " + std::to_string(Menu)];
    ++reached["message " + std::to_string(BATTLE_MESSAGE)];
    reached["much health"] += health > MUCH_HEALTH ? 1 : 0;
}

unsigned char randomKey() {
    static const std::string PLAYED = "wsad,.nmp 123\r\r\r\x1b";
    return static_cast<unsigned char>(
        upTo(3) > 0 ? PLAYED[static_cast<std::size_t>(upTo(static_cast<int>(PLAYED.size()) - 1))]
                    : upTo(255));
}

// One event, or as many as a held key or a stall makes of it.
void randomEvent() {
    const recording::Window &window = recording::gl.window;
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
            call(window.keyboard, key, upTo(5000) - 1000, upTo(5000) - 1000);
        }
    } else if (kind < 15) {
        call(window.keyboardUp, key, upTo(5000), upTo(5000));
    } else if (kind < 17) {
        call(window.mouse, upTo(5), upTo(1), upTo(5000), upTo(5000));
    } else if (kind < 19) {
        call(window.passiveMotion, upTo(3000) - 1000, upTo(3000) - 1000);
    } else {
        window.reshape(1 + upTo(LARGEST_WINDOW - 1), 1 + upTo(LARGEST_WINDOW - 1));
    }
}

// Puts the player where an enemy or somebody else stands.
void visitSomebody() {
    constexpr float PLACES[][2] = {{-5, 0}, {-15, 4}, {-60, 10}, {5, 0}, {-25, 0}, {20, 13}};
    const auto &[x, z] = PLACES[upTo(std::size(PLACES) - 1)];
    position[0] = x;
    position[2] = z;
}

// A key for the move that the player likes at present: some are to defend, so that the health rises
// over what a battle begins with, and then many to attack, so that it falls to nothing.
unsigned char battleKey() {
    static int moves = 0;
    const int move = moves % MOVES;
    const int liked = move == 0 ? SPECIAL : move <= DEFENDING_MOVES ? DEFEND : ATTACK;
    if (Fight_status != liked || upTo(9) == 0) {
        return Fight_status < liked ? 's' : 'w';
    }
    moves += Battle_Turn == PLAYER_CHOOSES && PlayerTimer == 0 ? 1 : 0;
    return '\r';
}

void play(long updates) {
    for (long update = 0; update < updates; ++update) {
        ++events;
        const unsigned char key = status == TITLE    ? "pn"[upTo(1)]
                                  : status == BATTLE ? battleKey()
                                                     : 'w';
        call(recording::gl.window.keyboard, key, 0, 0);
        if (status == TOWN && upTo(49) == 0) {
            visitSomebody();
        }
        for (int burst = upTo(3) > 0 ? 0 : upTo(9) == 0 ? 20 : 1; burst > 0; --burst) {
            randomEvent();
        }
        call(recording::gl.window.idle);
        checkState();
        // Most messages are cut short: sixty frames of the town take longer than all the rest.
        if (status == BATTLE && upTo(2) > 0) {
            BattleMessageTimer = std::min(BattleMessageTimer, 1);
            PlayerTimer = std::min(PlayerTimer, 1);
        }
        // The cube turns for 180 frames; the first frame of a talk sees to it that there is such a
        // line.
        if (upTo(39) == 0 || status == TITLE || (status == BATTLE && upTo(6) == 0) ||
            TalkTimer == TALK_FRAMES - 1) {
            frame();
        }
    }
    for (const char *wanted : WANTED) {
        std::printf("%-14s %ld\n", wanted, reached[wanted]);
        require(reached[wanted] > 0, "it was never reached");
    }
    finished = true;
}

}  // namespace

int main(int argc, char **argv) {
    const long updates = argc > 1 ? std::strtol(argv[1], nullptr, 10) : 10000;
    seed = argc > 2 ? static_cast<unsigned>(std::strtoul(argv[2], nullptr, 10)) : 1;
    numbers.seed(seed);
    recording::gl.script = [updates] { play(updates); };
    // With the status of success, too.
    std::atexit([] { require(finished, "the game ended the program"); });
    return talveryMain(argc, argv);
}

#include "menus.h"

#include <GL/gl.h>

#include "battle.h"
#include "game_state.h"
#include "overlay.h"

namespace {

// Where the texts stand, overlay coordinates: their left ends, and baselines 0.03 apart.
constexpr float LEFT = -0.37F;        // of talk, fight options and messages
constexpr float STATUS_LEFT = 0.8F;   // of the status
constexpr float HEALTH_LEFT = 0.95F;  // of the number after "HEALTH:"
constexpr float TALK_TITLE_Y = 0.04F;
constexpr float LOWER_LINES[] = {1.18F, 1.21F, 1.24F, 1.27F, 1.3F};  // at the foot of the window
constexpr float MESSAGE_Y = 0.08F;

struct Colour {
    float red, green, blue;
};

constexpr Colour WHITE = {1, 1, 1};
constexpr Colour RED = {1, 0, 0};
constexpr Colour MAGENTA = {1, 0, 1};

constexpr int LINES_PER_TALK = 3;
constexpr float TALK_Y[LINES_PER_TALK] = {0.08F, 0.11F, 0.14F};

// clang-format off
constexpr const char *DIALOGUE[][LINES_PER_TALK] = {
    {"   Welcome to the Kingdom of",        "   Drossmere!"},
    {"   Have you seen",                    "   the castle yet?"},
    {"   Don't anger the king.",            "   He doesn't like strays."},
    {"   Where are you from?",              "   ... I've never heard of it"},
    {"   We don't take kindly to your",     "   type around here!"},
    {"   I heard a stranger saying",        "   'Tamsel give us first place'",
     "   What does that mean?"},
    {"   Some people offer advice.",        "   But some people just want to fight!"},
    {"   People often ask why the houses are",
     "   all so similar. It's because the same",
     "   2 guys built everything"},
    {"   To recharge your health",          "   speak to the doctor"},
    {"   The trees in this town were burned", "   by the TALVERYS!"},
    {"   What are you staring at?",         "   ... Well you look funny too!"},
};
static_assert(sizeof DIALOGUE / sizeof *DIALOGUE == DIALOGUE_LINES);

struct Fight_Option {
    Move move;
    const char *text;
    float y;
};

constexpr Fight_Option FIGHT_OPTIONS[] = {
    {ATTACK,  "   ATTACK",  LOWER_LINES[1]},
    {DEFEND,  "   DEFEND",  LOWER_LINES[2]},
    {SPECIAL, "   SPECIAL", LOWER_LINES[3]},
};

struct Condition {
    int healthAbove;
    const char *text;
    Colour colour;
};

// The first row that the health exceeds holds.
constexpr Condition CONDITIONS[] = {
    {70, "   HEALTHY",  {0, 1, 0}},
    {40, "   WEAKENED", {1, 0.5F, 0.5F}},
    { 0, "   DYING",    {1, 0.3F, 0.3F}},
    {-1, "   DEAD",     RED},
};

struct Message_Part {
    float x;
    const char *text;
};

struct Message_Line {
    Message message;
    Message_Part parts[3];  // those that it has, in order
};

constexpr Message_Line MESSAGES[] = {
    {PLAYER_HIT,      {{LEFT, "YOUR ATTACK CAUSED"}, {0, HIT},     {0.05F, "DAMAGE"}}},
    {ENEMY_HIT,       {{LEFT, "ENEMY CAUSED"},       {-0.1F, HIT}, {-0.05F, "DAMAGE TO YOU"}}},
    {PLAYER_DEFENDED, {{LEFT, "DEFENDING ADDS 20 TO YOUR HEALTH"}}},
};
// clang-format on

void write(float x, float y, const char *text, const Colour &colour) {
    glColor3f(colour.red, colour.green, colour.blue);
    draw2DText(x, y, text);
}

void displayTalk() {
    if (TalkMenu >= DIALOGUE_LINES) {
        TalkMenu = 0;
    }
    write(LEFT, TALK_TITLE_Y, "TOWNPERSON SAYS:", WHITE);
    if (TalkMenu < 0) {
        return;
    }
    for (int i = 0; i < LINES_PER_TALK; ++i) {
        if (DIALOGUE[TalkMenu][i] != nullptr) {
            write(LEFT, TALK_Y[i], DIALOGUE[TalkMenu][i], WHITE);
        }
    }
}

void displayFightOptions() {
    write(LEFT, LOWER_LINES[0], "FIGHT OPTIONS:", WHITE);
    for (const Fight_Option &fight : FIGHT_OPTIONS) {
        write(LEFT, fight.y, fight.text, fight.move == Fight_status ? RED : WHITE);
    }
}

void displayCondition() {
    for (const Condition &condition : CONDITIONS) {
        if (health > condition.healthAbove) {
            write(STATUS_LEFT, LOWER_LINES[2], condition.text, condition.colour);
            return;
        }
    }
}

void displayStatus() {
    write(STATUS_LEFT, LOWER_LINES[0], "HEALTH:", WHITE);
    htoc();
    write(HEALTH_LEFT, LOWER_LINES[0], HEALTH, WHITE);
    write(STATUS_LEFT, LOWER_LINES[1], "PLAYER STATUS", WHITE);
    displayCondition();
    write(STATUS_LEFT, LOWER_LINES[3], "SPECIAL STATUS", WHITE);
    if (special > SPECIAL_THRESHOLD) {
        write(STATUS_LEFT, LOWER_LINES[4], "   READY", MAGENTA);
    } else {
        write(STATUS_LEFT, LOWER_LINES[4], "   NOT READY", WHITE);
    }
}

}  // namespace

void displayMenus() {
    if (Menu == TALK_BOX) {
        displayTalk();
    }
    if (Menu == BATTLE_PANEL) {
        displayFightOptions();
    }
    displayStatus();
    glColor3f(1, 1, 1);
}

void displayBattleMessages() {
    glPushMatrix();
    {
        for (const Message_Line &line : MESSAGES) {
            for (const Message_Part &part : line.parts) {
                if (line.message == BATTLE_MESSAGE && part.text != nullptr) {
                    draw2DText(part.x, MESSAGE_Y, part.text);
                }
            }
        }
    }
    glPopMatrix();
}

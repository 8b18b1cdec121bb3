#include "menus.h"

#include <GL/gl.h>

#include "battle.h"
#include "game_state.h"
#include "overlay.h"

namespace {

// Left edges of the texts, overlay coordinates.
constexpr float LEFT = -0.37F;
constexpr float STATUS_LEFT = 0.8F;
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
    {ATTACK,  "   ATTACK",  1.21F},
    {DEFEND,  "   DEFEND",  1.24F},
    {SPECIAL, "   SPECIAL", 1.27F},
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
// clang-format on

void write(float x, float y, const char *text, const Colour &colour) {
    glColor3f(colour.red, colour.green, colour.blue);
    draw2DText(x, y, text);
}

void displayTalk() {
    if (TalkMenu >= DIALOGUE_LINES) {
        TalkMenu = 0;
    }
    write(LEFT, 0.04F, "TOWNPERSON SAYS:", WHITE);
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
    write(LEFT, 1.18F, "FIGHT OPTIONS:", WHITE);
    for (const Fight_Option &fight : FIGHT_OPTIONS) {
        write(LEFT, fight.y, fight.text, fight.move == Fight_status ? RED : WHITE);
    }
}

void displayCondition() {
    for (const Condition &condition : CONDITIONS) {
        if (health > condition.healthAbove) {
            write(STATUS_LEFT, 1.24F, condition.text, condition.colour);
            return;
        }
    }
}

void displayStatus() {
    write(STATUS_LEFT, 1.18F, "HEALTH:", WHITE);
    htoc();
    write(0.95F, 1.18F, HEALTH, WHITE);
    write(STATUS_LEFT, 1.21F, "PLAYER STATUS", WHITE);
    displayCondition();
    write(STATUS_LEFT, 1.27F, "SPECIAL STATUS", WHITE);
    if (special > SPECIAL_THRESHOLD) {
        write(STATUS_LEFT, 1.3F, "   READY", MAGENTA);
    } else {
        write(STATUS_LEFT, 1.3F, "   NOT READY", WHITE);
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
        switch (BATTLE_MESSAGE) {
        case PLAYER_HIT:
            draw2DText(LEFT, MESSAGE_Y, "YOUR ATTACK CAUSED");
            draw2DText(0, MESSAGE_Y, HIT);
            draw2DText(0.05F, MESSAGE_Y, "DAMAGE");
            break;
        case ENEMY_HIT:
            draw2DText(LEFT, MESSAGE_Y, "ENEMY CAUSED");
            draw2DText(-0.1F, MESSAGE_Y, HIT);
            draw2DText(-0.05F, MESSAGE_Y, "DAMAGE TO YOU");
            break;
        case PLAYER_DEFENDED:
            draw2DText(LEFT, MESSAGE_Y, "DEFENDING ADDS 20 TO YOUR HEALTH");
            break;
        default: break;
        }
    }
    glPopMatrix();
}

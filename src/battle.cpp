#include "battle.h"

#include <cstdlib>

#include "game_state.h"

namespace {

constexpr int SPECIAL_HIT = 99;
constexpr int SPECIAL_LEAVES = 1;

char digit(int value) {
    return static_cast<char>('0' + value % 10);
}

void endPlayerMove(Move move, Message message) {
    BATTLE_MESSAGE = message;
    Battle_Turn = ENEMY_TO_MOVE;
    BattleMessageTimer = MESSAGE_FRAMES;
    ENTERPRESS = move;
}

}  // namespace

void attack() {
    const int damage = 4 * (rand() % 10) + 20;
    ENEMY_Health -= damage;
    htoc(damage);
    endPlayerMove(ATTACK, PLAYER_HIT);
}

void defend() {
    health += DEFEND_GAIN;
    endPlayerMove(DEFEND, PLAYER_DEFENDED);
}

void specialMove() {
    ENEMY_Health = SPECIAL_LEAVES;
    htoc(SPECIAL_HIT);
    special = 0;
    endPlayerMove(SPECIAL, PLAYER_HIT);
}

void enemyTurn() {
    const int damage = 2 * (rand() % 10) + 5;
    health -= damage;
    htoc(damage);
    Battle_Turn = PLAYER_CHOOSES;
    BATTLE_MESSAGE = ENEMY_HIT;
    PlayerTimer = MESSAGE_FRAMES;
    ENTERPRESS_ENEMY = ATTACK;
}

void htoc(int value) {
    HIT[0] = digit(value / 10);
    HIT[1] = digit(value);
}

void htoc() {
    if (health < 1) {
        health = 0;
    }
    HEALTH[0] = digit(health / 100);
    HEALTH[1] = digit(health / 10);
    HEALTH[2] = digit(health);
}

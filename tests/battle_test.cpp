#include "battle.h"

#include <cstdlib>

#include "game_test.h"

namespace {

using Battle = Game_Test;

TEST_F(Battle, MovesChangeWhatTheyShouldAndNoMore) {
    const std::string message = " BattleMessageTimer=60 Battle_Turn=1";
    const struct {
        void (*move)();
        int least, step;  // of the damage; 0: no random number is drawn
        std::string hit, changes;
        int &target;
    } moves[] = {
        {attack, 20, 4, "", "BATTLE_MESSAGE=1" + message + " ENTERPRESS=0", ENEMY_Health},
        {enemyTurn, 5, 2, "", "BATTLE_MESSAGE=2 ENTERPRESS_ENEMY=0 PlayerTimer=60", health},
        {defend, 0, 0, "37", "BATTLE_MESSAGE=3" + message + " ENTERPRESS=1 health=120", special},
        {specialMove, 0, 0, "99",
         "BATTLE_MESSAGE=1" + message + " ENEMY_Health=1 ENTERPRESS=2 special=0", health},
    };
    for (unsigned seed = 0; seed < 100; ++seed) {
        for (const auto &m : moves) {
            restart();
            htoc(37);
            srand(seed);
            const int damage = m.step > 0 ? m.least + m.step * (rand() % 10) : 0;
            const int next = rand();
            srand(seed);
            m.move();
            EXPECT_EQ(rand(), next) << "the random stream, seed " << seed;
            EXPECT_EQ(HIT, damage > 0 ? std::to_string(100 + damage).substr(1) : m.hit);
            m.target += damage;
            EXPECT_EQ(changes(), m.changes) << "but for a damage of " << damage;
        }
    }
}

TEST_F(Battle, NumbersBecomeFixedWidthDigits) {
    for (int value = -30; value < 2300; ++value) {
        health = value;
        htoc();
        htoc(std::abs(value) % 100);
        EXPECT_EQ(health, std::max(value, 0)) << "stops at 0, and has no upper limit";
        EXPECT_EQ(HEALTH, std::to_string(10000 + health).substr(2));
        EXPECT_EQ(HIT, std::to_string(100 + std::abs(value) % 100).substr(1));
    }
}

}  // namespace

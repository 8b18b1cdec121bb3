#include "battle.h"

#include <algorithm>
#include <cstdlib>

#include "game_test.h"

namespace {

using Battle = Game_Test;

TEST_F(Battle, AHitTakesOneRandomNumberAndTheOtherMovesNone) {
    const struct {
        void (*move)();
        int least, step;  // of the damage; 0: no hit
        int &target;
    } moves[] = {{attack, 20, 4, ENEMY_Health},
                 {enemyTurn, 5, 2, health},
                 {defend, 0, 0, ENEMY_Health},
                 {specialMove, 0, 0, health}};
    for (unsigned seed = 0; seed < 100; ++seed) {
        for (const auto &m : moves) {
            restart();
            srand(seed);
            const int damage = m.step > 0 ? m.least + m.step * (rand() % 10) : 0;
            const int next = rand();
            srand(seed);
            m.move();
            EXPECT_EQ(rand(), next) << "the random stream, seed " << seed;
            EXPECT_EQ(m.target, START_HEALTH - damage);
            EXPECT_TRUE(damage == 0 || std::stoi(HIT) == damage) << HIT;
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

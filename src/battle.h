#pragma once

// The rules of a battle: the player's three moves, the enemy's one, and the digit
// texts that show their results. They change the battle globals of the game state
// only. Random numbers come from rand(), one for each hit.

// Health that DEFEND adds, without an upper limit.
constexpr int DEFEND_GAIN = 20;
// SPECIAL needs a meter above this.
constexpr int SPECIAL_THRESHOLD = 99;
// Drawn frames for which a message stays.
constexpr int MESSAGE_FRAMES = 60;

void attack();       // hits the enemy for 20 to 56 in steps of 4
void defend();       // adds DEFEND_GAIN to the player's health; HIT stays
void specialMove();  // leaves the enemy at 1, shown as a hit of 99; empties the meter
void enemyTurn();    // hits the player for 5 to 23 in steps of 2; the player chooses next

// Writes `value`, 0 to 99, into HIT as two digits.
void htoc(int value);

// Writes the last three digits of `health` into HEALTH; a health below 1 becomes 0.
void htoc();

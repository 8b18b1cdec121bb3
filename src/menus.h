#pragma once

// Writes the texts of the current overlay: the talk or the fight options, and always
// the player's status. Wraps TalkMenu while the talk box is up, clamps `health` to 0
// from below and refreshes HEALTH. Leaves the colour white.
void displayMenus();

// Writes the message numbered BATTLE_MESSAGE in the current colour; nothing for a
// number that is no Message.
void displayBattleMessages();

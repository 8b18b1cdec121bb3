#pragma once

// The asset table: every texture and model is loaded once at start-up, into a
// texture object or a display list that is named here and never deleted. A file
// that fails to load leaves 0 or -1 in its texture slot or an empty list, and the
// game goes on without it.

constexpr unsigned TEXTURE_SLOTS = 128;

// Slots of the fixed textures; models fill theirs from 0 upward.
enum Texture_Slot { BLUE_FIRE_TEXTURE = 125, FIRE_TEXTURE = 126, GROUND_TEXTURE = 127 };

extern unsigned texture[TEXTURE_SLOTS];
extern unsigned texture_back;  // next free slot for a model's texture

// Sky box pictures, by slot.
enum Sky_Slot { SKY, FLOOR, NORTH, SOUTH, WEST, EAST, SKY_SLOTS };

extern unsigned skybox[SKY_SLOTS];

// Display lists of the models. Calling one binds the model's texture and draws the
// model, centred on the origin; its last normal and texture coordinate stay current,
// nothing else is changed.
extern unsigned house1;
extern unsigned house2;
extern unsigned house3;
extern unsigned intro;
extern unsigned tree;
extern unsigned castle;
extern unsigned forest;
extern unsigned NPC;

// What loadModel loads: OBJ_MODEL, or for any other value the texture alone.
enum Model_Type : int { OBJ_MODEL = 0, TEXTURE_ONLY = 1 };

// Loads the picture into the next free texture slot (none if the table is full) and,
// for an OBJ model, compiles the model with that texture into a new display list.
void loadModel(Model_Type type, const char *objFile, const char *bmpFile, unsigned &list);

// The nine fixed textures: ground, two fires and the sky box.
void loadTextures();

// The eight models.
void loadModels();

#include "assets.h"

#include <GL/gl.h>

#include "game_objects.h"
#include "texture.h"

constinit unsigned texture[TEXTURE_SLOTS] = {};
constinit unsigned texture_back = 0;
constinit unsigned skybox[SKY_SLOTS] = {};

constinit unsigned house1 = 0;
constinit unsigned house2 = 0;
constinit unsigned house3 = 0;
constinit unsigned intro = 0;
constinit unsigned tree = 0;
constinit unsigned castle = 0;
constinit unsigned forest = 0;
constinit unsigned NPC = 0;

namespace {

struct Fixed_Texture {
    const char *file;
    unsigned &name;
};

struct Model {
    const char *objFile;
    const char *bmpFile;
    unsigned &list;
};

// clang-format off
const Fixed_Texture FIXED_TEXTURES[] = {
    {"stone.bmp",     texture[GROUND_TEXTURE]},
    {"fire.bmp",      texture[FIRE_TEXTURE]},
    {"fire_blue.bmp", texture[BLUE_FIRE_TEXTURE]},
    {"sky.bmp",       skybox[SKY]},
    {"floor.bmp",     skybox[FLOOR]},
    {"north.bmp",     skybox[NORTH]},
    {"south.bmp",     skybox[SOUTH]},
    {"west.bmp",      skybox[WEST]},
    {"east.bmp",      skybox[EAST]},
};

// The three houses share one picture and still get a texture object each.
const Model MODELS[] = {
    {"house1.obj",         "house.bmp",  house1},
    {"house2.obj",         "house.bmp",  house2},
    {"house3.obj",         "house.bmp",  house3},
    {"introCube.obj",      "intro.bmp",  intro},
    {"Tree.obj",           "wood.bmp",   tree},
    {"castleMAPPED.obj",   "brick.bmp",  castle},
    {"TreeBackground.obj", "forest.bmp", forest},
    {"NPC.obj",            "NPC.bmp",    NPC},
};
// clang-format on

}  // namespace

void loadModel(Model_Type type, const char *objFile, const char *bmpFile, unsigned &list) {
    const unsigned slot = texture_back;
    if (slot < TEXTURE_SLOTS) {
        texture[slot] = static_cast<unsigned>(LoadBitmap(bmpFile));
        texture_back = slot + 1;
    }
    if (type != OBJ_MODEL) {
        return;
    }
    o.loadObj(objFile);
    o.centerObject();
    list = glGenLists(1);
    glNewList(list, GL_COMPILE);
    if (slot < TEXTURE_SLOTS) {
        glBindTexture(GL_TEXTURE_2D, texture[slot]);
    }
    o.displayObj();
    glEndList();
}

void loadTextures() {
    for (const Fixed_Texture &fixed : FIXED_TEXTURES) {
        fixed.name = static_cast<unsigned>(LoadBitmap(fixed.file));
    }
}

void loadModels() {
    for (const Model &model : MODELS) {
        loadModel(OBJ_MODEL, model.objFile, model.bmpFile, model.list);
    }
}

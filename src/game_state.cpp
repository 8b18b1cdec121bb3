#include "game_state.h"

#include "camera.h"

constinit int status = TITLE;
constinit int Menu = NO_OVERLAY;

constinit int option = 0;
constinit bool selectOption = false;
constinit bool Rotating = false;
constinit float rotHor = 0;
constinit float hor = 0;
constinit float Zval = 0;
constinit float Zstep = 0;

constinit int TalkMenu = 0;
constinit bool IsTalkBool = false;
constinit int TalkTimer = 0;

constinit int Fight_status = ATTACK;
constinit int Battle_Turn = PLAYER_CHOOSES;
constinit int BATTLE_MESSAGE = NO_MESSAGE;
constinit int BattleMessageTimer = 0;
constinit int PlayerTimer = 0;
constinit char HIT[3] = {};
constinit char HEALTH[4] = {};
constinit int health = START_HEALTH;
constinit int ENEMY_Health = START_HEALTH;
constinit int special = 100;
constinit int ENTERPRESS = NO_MOVE;
constinit int ENTERPRESS_ENEMY = NO_MOVE;

constinit float position[3] = {};
constinit float positionold[3] = {};
constinit float objrot = 0;
constinit float objrotold = 0;
constinit float vect[3] = {};
constinit float camrot[3] = {};
constinit int zoom = ZOOM_NONE;
constinit float zoom_in = ZOOM_IN;
constinit float zoom_out = ZOOM_OUT;
constinit int action = STANDING;

constinit Params marked_params = {};
constinit Params enemy_params = {};
constinit float matrix[4][4] = {};

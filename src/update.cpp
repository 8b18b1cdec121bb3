#include "update.h"

#include <GL/glut.h>

#include <algorithm>
#include <limits>

#include "assets.h"
#include "game_objects.h"
#include "game_state.h"
#include "scene_collision.h"

namespace {

// Below zero the talk timer only counts, to no effect, until a talk sets it again: here it ends,
// for want of a smaller number.
constexpr int LOWEST_TALK_TIMER = std::numeric_limits<int>::min();

void undoStep() {
    position[0] = positionold[0];
    position[2] = positionold[2];
}

void startTalk() {
    Menu = TALK_BOX;
    TalkTimer = TALK_FRAMES;
    ++TalkMenu;
    IsTalkBool = true;
}

void startBattle() {
    status = BATTLE;
    Menu = BATTLE_PANEL;
    selectOption = false;
}

// One step can touch, and act on, several footprints: every test is made with the
// footprint as it was before any undo.
void collide() {
    for (unsigned i = 0; i < collision_back; ++i) {
        collision_action = checkCollision(collision_char, collision_scene[i]);
        switch (collision_action) {
        case SOLID: undoStep(); break;
        case TOWNSPERSON:
            undoStep();
            if (!IsTalkBool) {
                startTalk();
            }
            break;
        case ENEMY:
            undoStep();
            startBattle();
            break;
        default: break;
        }
    }
}

void checkWin() {
    if (ENEMY_Health < 1) {
        status = TOWN;
        Menu = NO_OVERLAY;
        ENEMY_Health = START_HEALTH;
        selectOption = true;
        BATTLE_MESSAGE = NO_MESSAGE;
    }
}

void runTalkTimer() {
    if (TalkTimer == 0 && IsTalkBool) {
        Menu = NO_OVERLAY;
        IsTalkBool = false;
    } else if (TalkTimer > LOWEST_TALK_TIMER) {
        --TalkTimer;
    }
}

void moveCamera() {
    for (int i = 0; i < 3; ++i) {
        vect[i] = position[i] - positionold[i];
    }
    camera.move(position, vect);
    std::copy_n(position, 3, positionold);

    camera.rotate(objrot - objrotold, 0);
    objrotold = objrot;

    camera.rotate(camrot[0], camrot[1]);
    camrot[0] = 0;
    camrot[1] = 0;

    if (zoom == ZOOMING_IN) {
        camera.zoom(zoom_in);
    } else if (zoom == ZOOMING_OUT) {
        camera.zoom(zoom_out);
    }
}

void poseInTown() {
    if (action == WALKING || action == STANDING) {
        (action == WALKING ? interpolate_walk : interpolate_sitdown)->step(marked_params);
        poodle.update(marked_params);
    }
    interpolate_stay->step(enemy_params);
    poodle2.update(enemy_params);
}

// Steps an animation into the pose and the poodle, restarting it at its end, which a
// looping one has then already done once. True at the end.
bool play(Interpolate &animation, Params &pose, Poodle &dog) {
    const bool ended = animation.step(pose);
    if (ended) {
        animation.reset();
    }
    dog.update(pose);
    return ended;
}

// The animation under the cursor, whichever move was made.
Interpolate *chosenMove() {
    switch (Fight_status) {
    case ATTACK: return interpolate_fight;
    case DEFEND: return interpolate_defend;
    case SPECIAL: return interpolate_special;
    default: return nullptr;
    }
}

void posePlayerInBattle() {
    Interpolate *move = ENTERPRESS == NO_MOVE ? nullptr : chosenMove();
    if (move == nullptr || play(*move, marked_params, poodle)) {
        ENTERPRESS = NO_MOVE;
        play(*interpolate_sitdown, marked_params, poodle);
    }
}

void poseEnemyInBattle() {
    if (ENTERPRESS_ENEMY != ATTACK || play(*interpolate_fight2, enemy_params, poodle2)) {
        ENTERPRESS_ENEMY = NO_MOVE;
        play(*interpolate_sitdown2, enemy_params, poodle2);
    }
}

void stepFountains() {
    glBindTexture(GL_TEXTURE_2D, texture[BLUE_FIRE_TEXTURE]);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE);
    fireworks1.step();
    fireworks2.step();
}

}  // namespace

void idleCallback() {
    updateCollision();
    collide();
    checkWin();
    runTalkTimer();
    moveCamera();
    // The poses follow the mode that collisions and a win have just set.
    if (status == TOWN) {
        poseInTown();
    } else if (status == BATTLE) {
        posePlayerInBattle();
    }
    stepFountains();
    if (status == BATTLE) {
        poseEnemyInBattle();
    }
    glutPostRedisplay();
}

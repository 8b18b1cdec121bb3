#include "input.h"

#include <GL/glut.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "battle.h"
#include "game_objects.h"
#include "game_state.h"

namespace {

constexpr unsigned char ENTER = 13;
constexpr unsigned char ESCAPE = 27;

constexpr double STEP = 0.15;            // world units a key event
constexpr double TURN = 0.05;            // radians a key event
constexpr float CUBE_TURN = 90;          // degrees
constexpr float PIXELS_PER_RADIAN = 25;  // mouse look

// The last pointer seen outside the title screen, or the first one ever.
constinit bool pointerSeen = false;
constinit int lastX = 0;
constinit int lastY = 0;

void turnCube(unsigned char key) {
    switch (key) {
    case 'n':
        option = (option + 1) % TITLE_FACES;
        rotHor += CUBE_TURN;
        Rotating = true;
        break;
    case 'm':
        option = (option + TITLE_FACES - 1) % TITLE_FACES;
        rotHor -= CUBE_TURN;
        Rotating = true;
        break;
    default: break;
    }
}

// Moves the player along its heading and to its left, world units. The heading is
// the one that is drawn, which takes a turn only with the next update.
void walk(double forward, double left) {
    const double c = std::cos(static_cast<double>(objrotold));
    const double s = std::sin(static_cast<double>(objrotold));
    position[0] = static_cast<float>(position[0] - forward * s - left * c);
    position[2] = static_cast<float>(position[2] - forward * c + left * s);
}

// 'w' and 's' walk in the town and move the cursor in battle.
void walkOrChoose(int forward) {
    if (status == TOWN) {
        walk(forward * STEP, 0);
        action = WALKING;
    } else if (status == BATTLE) {
        Fight_status =
            std::clamp(Fight_status - forward, static_cast<int>(ATTACK), static_cast<int>(SPECIAL));
    }
}

void turnPlayer(double angle) {
    objrot = static_cast<float>(objrot + angle);
}

void playKey(unsigned char key) {
    switch (key) {
    case 'w': walkOrChoose(1); break;
    case 's': walkOrChoose(-1); break;
    case 'a': turnPlayer(TURN); break;
    case 'd': turnPlayer(-TURN); break;
    case ',': walk(0, STEP); break;
    case '.': walk(0, -STEP); break;
    case ' ': action = HELD_STILL; break;
    case '1': camera.zoom(ZOOM_NEAREST); break;
    case '2': camera.zoom(ZOOM_MIDDLE); break;
    case '3': camera.zoom(ZOOM_FARTHEST); break;
    default: break;
    }
}

void makeMove() {
    if (PlayerTimer != 0) {
        return;
    }
    switch (Fight_status) {
    case ATTACK: attack(); break;
    case DEFEND: defend(); break;
    case SPECIAL:
        if (special > SPECIAL_THRESHOLD) {
            specialMove();
        }
        break;
    default: break;
    }
}

void handleKey(unsigned char key) {
    if (status == TITLE && !Rotating) {
        turnCube(key);
        if (key == ESCAPE) {
            exit(0);
        }
    }
    if (key == 'p' && option == 0) {
        selectOption = true;
    }
    if (status == TITLE) {
        return;
    }
    if (key == ESCAPE) {
        status = TITLE;
        selectOption = false;
        return;
    }
    playKey(key);
    if (status == BATTLE && key == ENTER && Battle_Turn == PLAYER_CHOOSES) {
        makeMove();
    }
}

}  // namespace

void keyCallback(unsigned char key, int /*x*/, int /*y*/) {
    handleKey(key);
    glutPostRedisplay();
}

void keyUpCallback(unsigned char key, int /*x*/, int /*y*/) {
    if (status == TITLE) {
        if (!Rotating) {
            turnCube(key);
        }
    } else if (key == 'w' || key == 's') {
        action = STANDING;
    }
    glutPostRedisplay();
}

void mouseCallback(int button, int state, int /*x*/, int /*y*/) {
    if (status != TITLE) {
        if (state == GLUT_UP) {
            zoom = ZOOM_NONE;
        } else if (state == GLUT_DOWN && button == GLUT_LEFT_BUTTON) {
            zoom = ZOOMING_IN;
        } else if (state == GLUT_DOWN && button == GLUT_RIGHT_BUTTON) {
            zoom = ZOOMING_OUT;
        }
    }
    glutPostRedisplay();
}

void motionCallback(int x, int y) {
    if (!pointerSeen) {
        pointerSeen = true;
        lastX = x;
        lastY = y;
    }
    if (status != TITLE) {
        camrot[0] = static_cast<float>(lastX - x) / PIXELS_PER_RADIAN;
        camrot[1] = static_cast<float>(lastY - y) / PIXELS_PER_RADIAN;
        lastX = x;
        lastY = y;
    }
    glutPostRedisplay();
}

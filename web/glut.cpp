#include <GL/glut.h>
#include <emscripten/em_js.h>
#include <emscripten/html5.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string_view>
#include <utility>

#include "context.h"

// The page's part: it has a <canvas id="canvas" tabindex="0"> without border or padding, which
// is the game's window, as large as the page's style makes it. The page gives it the keyboard
// focus; everything else that happens to it is told from here.

using Turn = void (*)(double time);

// clang-format off
EM_JS(void, abortWith, (const char *sentence), { abort(UTF8ToString(sentence)); })

// Runs the turns until the game ends, one at most for each picture that the browser shows. Like
// glutMainLoop it does not return; main's variables stay.
EM_JS(void, runTurns, (Turn turn), {
    const run = time => {
        try {
            getWasmTableEntry(turn)(time);
        } catch (end) {
            handleException(end);
            return;
        }
        requestAnimationFrame(run);
    };
    requestAnimationFrame(run);
    throw 'unwind';
})
// clang-format on

namespace web {
namespace {

constexpr const char *CANVAS = "#canvas";
constexpr unsigned DISPLAY_MODE = GLUT_RGB | GLUT_DOUBLE | GLUT_DEPTH | GLUT_STENCIL;

constexpr double PERIOD = 1000.0 / 60;  // milliseconds from turn to turn
constexpr double EARLY = 4;             // so much before its time a turn may start

constexpr int KEYS = 128;  // ASCII
constexpr int BUTTONS = 3;
constexpr int MAX_EVENTS = 256;  // that wait for the next turn

enum Event_Kind { KEY_DOWN, KEY_UP, BUTTON_DOWN, BUTTON_UP, MOTION };

struct Event {
    Event_Kind kind;
    int which;  // key or button
    int x, y;
};

constinit struct {
    void (*display)();
    void (*reshape)(int width, int height);
    void (*keyboard)(unsigned char key, int x, int y);
    void (*keyboardUp)(unsigned char key, int x, int y);
    void (*mouse)(int button, int state, int x, int y);
    void (*passiveMotion)(int x, int y);
    void (*idle)();
} callbacks = {};

constinit Event events[MAX_EVENTS] = {};
constinit int eventCount = 0;
constinit bool resized = true;
constinit bool redisplay = true;

constinit bool keyHeld[KEYS] = {};
constinit bool buttonHeld[BUTTONS] = {};
constinit int pointerX = 0;
constinit int pointerY = 0;

constinit double nextTurn = 0;  // milliseconds, the browser's clock

void queue(Event_Kind kind, int which) {
    if (eventCount == MAX_EVENTS) {
        fail("GLUT", "too many events at once");
    }
    events[eventCount++] = {kind, which, pointerX, pointerY};
}

void deliver(const Event &event) {
    const auto key = static_cast<unsigned char>(event.which);
    switch (event.kind) {
    case KEY_DOWN: callbacks.keyboard(key, event.x, event.y); break;
    case KEY_UP: callbacks.keyboardUp(key, event.x, event.y); break;
    case BUTTON_DOWN: callbacks.mouse(event.which, GLUT_DOWN, event.x, event.y); break;
    case BUTTON_UP: callbacks.mouse(event.which, GLUT_UP, event.x, event.y); break;
    case MOTION: callbacks.passiveMotion(event.x, event.y); break;
    }
}

// What GLUT tells for a key, or 0 for one that is left to the browser.
unsigned char typed(const EmscriptenKeyboardEvent &event) {
    constexpr std::pair<const char *, unsigned char> NAMED[] = {
        {"Backspace", 8}, {"Enter", 13}, {"Escape", 27}, {"Delete", 127}};
    if (event.ctrlKey != 0 || event.altKey != 0 || event.metaKey != 0) {
        return 0;
    }
    if (event.key[1] == '\0') {
        return static_cast<unsigned char>(event.key[0]) < KEYS ? event.key[0] : 0;
    }
    const auto *found = std::find_if(
        std::begin(NAMED), std::end(NAMED),
        [&event](const auto &named) { return std::string_view(named.first) == event.key; });
    return found == std::end(NAMED) ? 0 : found->second;
}

EM_BOOL onKey(int type, const EmscriptenKeyboardEvent *event, void * /*data*/) {
    const unsigned char key = typed(*event);
    if (key == 0) {
        return EM_FALSE;
    }
    keyHeld[key] = type == EMSCRIPTEN_EVENT_KEYDOWN;
    queue(keyHeld[key] ? KEY_DOWN : KEY_UP, key);
    return EM_TRUE;
}

// What is held when the canvas loses the focus is let go of elsewhere.
EM_BOOL onBlur(int /*type*/, const EmscriptenFocusEvent * /*event*/, void * /*data*/) {
    for (int key = 0; key < KEYS; ++key) {
        if (std::exchange(keyHeld[key], false)) {
            queue(KEY_UP, key);
        }
    }
    return EM_FALSE;
}

EM_BOOL onMouse(int type, const EmscriptenMouseEvent *event, void * /*data*/) {
    const double ratio = emscripten_get_device_pixel_ratio();
    pointerX = static_cast<int>(std::lround(static_cast<double>(event->targetX) * ratio));
    pointerY = static_cast<int>(std::lround(static_cast<double>(event->targetY) * ratio));
    const int button = event->button;
    if (type == EMSCRIPTEN_EVENT_MOUSEMOVE) {
        if (event->buttons == 0) {
            queue(MOTION, 0);
        }
    } else if (button < BUTTONS && buttonHeld[button] != (type == EMSCRIPTEN_EVENT_MOUSEDOWN)) {
        buttonHeld[button] = !buttonHeld[button];
        queue(buttonHeld[button] ? BUTTON_DOWN : BUTTON_UP, button);
    }
    return EM_FALSE;
}

EM_BOOL onResize(int /*type*/, const EmscriptenUiEvent * /*event*/, void * /*data*/) {
    resized = true;
    return EM_FALSE;
}

void resize() {
    double width = 0;
    double height = 0;
    emscripten_get_element_css_size(CANVAS, &width, &height);
    const double ratio = emscripten_get_device_pixel_ratio();
    const int pixelsAcross = static_cast<int>(std::lround(width * ratio));
    const int pixelsDown = static_cast<int>(std::lround(height * ratio));
    emscripten_set_canvas_element_size(CANVAS, pixelsAcross, pixelsDown);
    callbacks.reshape(pixelsAcross, pixelsDown);
}

// Like GLUT: what has happened, one update, one frame.
void turn(double time) {
    if (time + EARLY < nextTurn) {
        return;
    }
    nextTurn = std::max(nextTurn + PERIOD, time);
    if (std::exchange(resized, false)) {
        resize();
        redisplay = true;
    }
    std::for_each_n(events, std::exchange(eventCount, 0), deliver);
    callbacks.idle();
    if (std::exchange(redisplay, false)) {
        callbacks.display();
    }
}

void createContext() {
    EmscriptenWebGLContextAttributes attributes;
    emscripten_webgl_init_context_attributes(&attributes);
    attributes.majorVersion = 2;
    attributes.alpha = EM_FALSE;
    attributes.antialias = EM_FALSE;
    attributes.depth = EM_TRUE;
    attributes.stencil = EM_TRUE;
    const EMSCRIPTEN_WEBGL_CONTEXT_HANDLE context =
        emscripten_webgl_create_context(CANVAS, &attributes);
    if (context <= 0 ||
        emscripten_webgl_make_context_current(context) != EMSCRIPTEN_RESULT_SUCCESS) {
        fail("WebGL 2", "the browser has none for this page");
    }
}

void listen() {
    emscripten_set_keydown_callback(CANVAS, nullptr, EM_FALSE, onKey);
    emscripten_set_keyup_callback(CANVAS, nullptr, EM_FALSE, onKey);
    emscripten_set_blur_callback(CANVAS, nullptr, EM_FALSE, onBlur);
    emscripten_set_mousedown_callback(CANVAS, nullptr, EM_FALSE, onMouse);
    emscripten_set_mousemove_callback(CANVAS, nullptr, EM_FALSE, onMouse);
    emscripten_set_mouseup_callback(EMSCRIPTEN_EVENT_TARGET_WINDOW, nullptr, EM_FALSE, onMouse);
    emscripten_set_resize_callback(EMSCRIPTEN_EVENT_TARGET_WINDOW, nullptr, EM_FALSE, onResize);
}

}  // namespace

void fail(const char *name, const char *why) {
    static char sentence[200];
    snprintf(sentence, sizeof sentence, "%s: %s", name, why);
    abortWith(sentence);
    __builtin_unreachable();
}

}  // namespace web

using namespace web;

void glutInit(int * /*count*/, char ** /*arguments*/) {}

void glutInitDisplayMode(unsigned mode) {
    if (mode != DISPLAY_MODE) {
        fail("glutInitDisplayMode", "not the game's");
    }
}

// The window is as large as the page has it, and fills it from the start.
void glutInitWindowSize(int /*width*/, int /*height*/) {}
void glutFullScreen() {}

int glutCreateWindow(const char *title) {
    emscripten_set_window_title(title);
    createContext();
    initShaders();
    initDrawing();
    return 1;
}

// clang-format off
void glutDisplayFunc(void (*call)()) { callbacks.display = call; }
void glutReshapeFunc(void (*call)(int, int)) { callbacks.reshape = call; }
void glutKeyboardFunc(void (*call)(unsigned char, int, int)) { callbacks.keyboard = call; }
void glutKeyboardUpFunc(void (*call)(unsigned char, int, int)) { callbacks.keyboardUp = call; }
void glutMouseFunc(void (*call)(int, int, int, int)) { callbacks.mouse = call; }
void glutPassiveMotionFunc(void (*call)(int, int)) { callbacks.passiveMotion = call; }
void glutIdleFunc(void (*call)()) { callbacks.idle = call; }
// clang-format on

void glutPostRedisplay() {
    redisplay = true;
}

void glutSwapBuffers() {
    drawPending();
}

void glutMainLoop() {
    listen();
    runTurns(turn);
}

#include "recording_gl.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <glm/gtc/matrix_transform.hpp>
#include <glm/gtc/type_ptr.hpp>
#include <type_traits>
#include <utility>

namespace recording {
namespace {

constexpr std::size_t STACK_DEPTH = 32;

// clang-format off
constexpr std::array CAPABILITIES = {
    GL_TEXTURE_2D, GL_LIGHTING, GL_LIGHT0, GL_LIGHT1, GL_COLOR_MATERIAL, GL_NORMALIZE, GL_BLEND,
    GL_DEPTH_TEST, GL_STENCIL_TEST};
const std::map<GLenum, Name> NAMES = {
    {GL_TRIANGLES, "triangles"}, {GL_QUADS, "quads"}, {GL_POLYGON, "polygon"},
    {GL_ZERO, "zero"}, {GL_ONE, "one"}, {GL_SRC_ALPHA, "alpha"}, {GL_DST_COLOR, "picture"},
    {GL_ALWAYS, "always"}, {GL_EQUAL, "equal"}, {GL_KEEP, "keep"}, {GL_REPLACE, "replace"},
    {GL_SMOOTH, "smooth"}, {GL_FLAT, "flat"}, {GL_MODULATE, "modulate"},
    {GL_REPEAT, "repeat"}, {GL_CLAMP_TO_EDGE, "clamp"}, {GL_NEAREST, "nearest"},
    {GL_LINEAR, "linear"}, {GL_LINEAR_MIPMAP_NEAREST, "linear of nearest mipmap"}};
// clang-format on

State &now = gl.state;
std::uint64_t randomState = 1;

void check(bool right, Name call, Name fault) {
    if (!right) {
        gl.faults.push_back(std::string(call) + ": " + fault);
    }
}

// The enumerator's name; the record shows where it is one of another kind.
Name known(GLenum value) {
    const auto found = NAMES.find(value);
    check(found != NAMES.end(), "a call", "unknown enumerator");
    return found == NAMES.end() ? "unknown" : found->second;
}

// Runs the call, or compiles it into the open display list.
template <typename Call>
void run(const Call &call) {
    if (gl.compiling != 0) {
        gl.lists[gl.compiling].push_back(call);
    } else {
        call();
    }
}

// The same for a call that is not allowed between glBegin and glEnd.
template <typename Call>
void runOutside(Name name, const Call &call) {
    run([=] {
        check(!gl.begun, name, "between glBegin and glEnd");
        call();
    });
}

// By the inverse transpose. A shadow's matrix has none: its normals count for nothing.
glm::vec3 worldNormal() {
    const glm::dmat3 m(now.modelview);
    if (glm::determinant(m) == 0 || now.normal == glm::vec3(0)) {
        return glm::vec3(0);
    }
    return glm::normalize(glm::transpose(glm::inverse(m)) * glm::dvec3(now.normal));
}

Vertex vertexAt(const glm::vec3 &p) {
    return {transform(now.modelview, p), worldNormal(), now.colour, now.texCoord};
}

void draw(Kind kind, const std::string &name, std::vector<Vertex> vertices = {}) {
    gl.rasterDrawn = false;
    gl.drawings.push_back({kind, name, now, gl.calling, std::move(vertices)});
}

void drawShape(const std::string &name, double size) {
    runOutside("a shape", [=] {
        const auto r = static_cast<float>(size);
        draw(SHAPE, name,
             {vertexAt({0, 0, 0}), vertexAt({r, 0, 0}), vertexAt({0, r, 0}), vertexAt({0, 0, r})});
    });
}

glm::dmat4 &currentMatrix() {
    return now.matrixMode == GL_PROJECTION ? now.projection : now.modelview;
}

void multiply(const glm::dmat4 &m) {
    runOutside("a matrix", [m] { currentMatrix() *= m; });
}

void enable(GLenum capability, bool on) {
    const auto *const found = std::find(CAPABILITIES.begin(), CAPABILITIES.end(), capability);
    check(found != CAPABILITIES.end(), "glEnable", "unknown enumerator");
    runOutside("glEnable", [=] {
        if (on) {
            now.on.insert(capability);
        } else {
            now.on.erase(capability);
        }
    });
}

Texture &boundTexture(GLenum target) {
    check(target == GL_TEXTURE_2D, "a texture", "wrong target");
    return gl.textures[now.texture];
}

// Rows start at multiples of 4 bytes, as OpenGL unpacks them.
void upload(Texture &t, int components, int width, int height, GLenum format, GLenum type,
            const void *data, bool mipmaps) {
    check(components == 3 && format == GL_RGB && type == GL_UNSIGNED_BYTE, "an upload",
          "not of RGB bytes");
    t.width = width;
    t.height = height;
    t.mipmaps = mipmaps;
    t.pixels.clear();
    const auto *row = static_cast<const unsigned char *>(data);
    const std::ptrdiff_t bytes = 3 * std::ptrdiff_t{width};
    for (int y = 0; y < height; ++y, row += (bytes + 3) / 4 * 4) {
        t.pixels.insert(t.pixels.end(), row, row + bytes);
    }
}

Window &opened() {
    check(!gl.window.title.empty(), "GLUT", "no window yet");
    return gl.window;
}

}  // namespace

void clear() {
    gl.drawings.clear();
    gl.rasterDrawn = false;
    gl.redisplays = 0;
    gl.faults.clear();
}

std::vector<std::string> faults() {
    auto all = gl.faults;
    if (gl.begun) {
        all.emplace_back("glBegin: no glEnd");
    }
    for (const auto &[mode, stack] : gl.stacks) {
        if (!stack.empty()) {
            all.emplace_back("glPushMatrix: no glPopMatrix");
        }
    }
    return all;
}

glm::vec3 transform(const glm::dmat4 &matrix, const glm::vec3 &point) {
    const glm::dvec4 p = matrix * glm::dvec4(point, 1);
    return glm::dvec3(p) / p.w;
}

}  // namespace recording

using namespace recording;

// clang-format off

// --- Random numbers: Knuth's 64-bit linear congruence, its upper bits ---------------

// Some C libraries declare them noexcept, others don't.
constexpr bool QUIET = std::is_same_v<decltype(rand), int() noexcept>;

int rand() noexcept(QUIET) {
    randomState = randomState * 6364136223846793005U + 1442695040888963407U;
    return static_cast<int>(randomState >> 33U);
}
void srand(unsigned seed) noexcept(QUIET) { randomState = seed; }

// --- Primitives and their attributes ----------------------------------------------

void glBegin(GLenum mode) {
    runOutside("glBegin", [=] {
        draw(PRIMITIVE, known(mode));
        gl.begun = true;
    });
}
void glEnd() {
    run([] { check(gl.begun, "glEnd", "without glBegin"); gl.begun = false; });
}
void glVertex3f(float x, float y, float z) {
    run([=] {
        check(gl.begun, "glVertex", "outside a primitive");
        if (gl.begun) {
            gl.drawings.back().vertices.push_back(vertexAt({x, y, z}));
        }
    });
}
void glNormal3f(float x, float y, float z) { run([=] { now.normal = {x, y, z}; }); }
void glTexCoord2f(float s, float t) { glTexCoord3f(s, t, 0); }
void glTexCoord3f(float s, float t, float r) { run([=] { now.texCoord = {s, t, r}; }); }
void glColor3f(float r, float g, float b) { glColor4f(r, g, b, 1); }
void glColor4f(float r, float g, float b, float a) { run([=] { now.colour = {r, g, b, a}; }); }
void glColor4ub(GLubyte r, GLubyte g, GLubyte b, GLubyte a) {
    const auto part = [](GLubyte byte) { return static_cast<float>(byte) / 255; };
    glColor4f(part(r), part(g), part(b), part(a));
}

// --- Matrices ---------------------------------------------------------------------

void glMatrixMode(GLenum mode) {
    check(mode == GL_MODELVIEW || mode == GL_PROJECTION, "glMatrixMode", "unknown enumerator");
    runOutside("glMatrixMode", [=] { now.matrixMode = mode; });
}
void glLoadIdentity() { runOutside("glLoadIdentity", [] { currentMatrix() = glm::dmat4(1); }); }
void glPushMatrix() {
    runOutside("glPushMatrix", [] {
        auto &stack = gl.stacks[now.matrixMode];
        check(stack.size() + 1 < STACK_DEPTH, "glPushMatrix", "full stack");
        stack.push_back(currentMatrix());
    });
}
void glPopMatrix() {
    runOutside("glPopMatrix", [] {
        auto &stack = gl.stacks[now.matrixMode];
        check(!stack.empty(), "glPopMatrix", "empty stack");
        if (!stack.empty()) {
            currentMatrix() = stack.back();
            stack.pop_back();
        }
    });
}
void glMultMatrixf(const float *elements) { multiply(glm::make_mat4(elements)); }
void glTranslatef(float x, float y, float z) {
    multiply(glm::translate(glm::dmat4(1), {x, y, z}));
}
void glScalef(float x, float y, float z) { multiply(glm::scale(glm::dmat4(1), {x, y, z})); }
void glRotatef(float degrees, float x, float y, float z) {
    multiply(glm::rotate(glm::dmat4(1), glm::radians(double{degrees}), {x, y, z}));
}
void gluPerspective(double fieldOfView, double aspect, double near, double far) {
    multiply(glm::perspective(glm::radians(fieldOfView), aspect, near, far));
}
void gluOrtho2D(double left, double right, double bottom, double top) {
    multiply(glm::ortho(left, right, bottom, top));
}
void gluLookAt(double eyeX, double eyeY, double eyeZ, double centreX, double centreY,
               double centreZ, double upX, double upY, double upZ) {
    multiply(glm::lookAt(glm::dvec3(eyeX, eyeY, eyeZ), glm::dvec3(centreX, centreY, centreZ),
                         glm::dvec3(upX, upY, upZ)));
}
void glViewport(int x, int y, int width, int height) {
    runOutside("glViewport", [=] { now.viewport = {x, y, width, height}; });
}

// --- State ------------------------------------------------------------------------

void glEnable(GLenum capability) { enable(capability, true); }
void glDisable(GLenum capability) { enable(capability, false); }
void glBlendFunc(GLenum source, GLenum destination) {
    runOutside("glBlendFunc", [=] { now.blending = {known(source), known(destination)}; });
}
void glStencilFunc(GLenum function, int reference, unsigned mask) {
    runOutside("glStencilFunc", [=] {
        now.stencilFunction = known(function);
        now.stencilReference = reference;
        now.stencilMask = mask;
    });
}
void glStencilOp(GLenum fail, GLenum depthFail, GLenum pass) {
    runOutside("glStencilOp", [=] {
        now.stencilOperations = {known(fail), known(depthFail), known(pass)};
    });
}
void glShadeModel(GLenum mode) {
    runOutside("glShadeModel", [=] { now.shading = known(mode); });
}
void glLightfv(GLenum light, GLenum parameter, const float *values) {
    const glm::vec4 v = glm::make_vec4(values);
    runOutside("glLightfv", [=] {
        const auto value = static_cast<Light_Value>(parameter - GL_AMBIENT);
        now.lights.at(light - GL_LIGHT0).at(value) =
            value == POSITION ? glm::mat4(now.modelview) * v : v;
    });
}
void glClearColor(float r, float g, float b, float a) {
    runOutside("glClearColor", [=] { now.clearColour = {r, g, b, a}; });
}
void glClearStencil(int value) {
    runOutside("glClearStencil", [=] { now.clearStencil = value; });
}
void glClear(GLbitfield mask) {
    runOutside("glClear", [=] {
        draw(CLEAR, std::string("clear") + ((mask & GL_COLOR_BUFFER_BIT) != 0 ? " colour" : "") +
                        ((mask & GL_DEPTH_BUFFER_BIT) != 0 ? " depth" : "") +
                        ((mask & GL_STENCIL_BUFFER_BIT) != 0 ? " stencil" : ""));
    });
}

// --- Textures and display lists ---------------------------------------------------

void glGenTextures(int count, unsigned *names) {
    check(count == 1, "glGenTextures", "several at once");
    *names = static_cast<unsigned>(gl.textures.size()) + 1;
    gl.textures[*names] = {};
}
void glBindTexture(GLenum target, unsigned name) {
    runOutside("glBindTexture", [=] {
        now.texture = name;
        boundTexture(target);
    });
}
void glTexParameteri(GLenum target, GLenum parameter, int value) {
    runOutside("glTexParameter", [=] {
        boundTexture(target).values.at(parameter - GL_TEXTURE_MAG_FILTER) =
            known(static_cast<GLenum>(value));
    });
}
void glTexParameterf(GLenum target, GLenum parameter, float value) {
    glTexParameteri(target, parameter, static_cast<int>(value));
}
void glTexEnvf(GLenum target, GLenum parameter, float value) {
    runOutside("glTexEnvf", [=] {
        check(target == GL_TEXTURE_ENV && parameter == GL_TEXTURE_ENV_MODE, "glTexEnvf",
              "unknown enumerator");
        now.environment = known(static_cast<GLenum>(value));
    });
}
void glTexImage2D(GLenum target, int level, int components, int width, int height, int border,
                  GLenum format, GLenum type, const void *data) {
    check(level == 0 && border == 0, "glTexImage2D", "no whole picture");
    upload(boundTexture(target), components, width, height, format, type, data, false);
}
int gluBuild2DMipmaps(GLenum target, int components, int width, int height, GLenum format,
                      GLenum type, const void *data) {
    upload(boundTexture(target), components, width, height, format, type, data, true);
    return 0;
}
unsigned glGenLists(int count) {
    check(count == 1, "glGenLists", "several at once");
    return static_cast<unsigned>(gl.lists.size()) + 1;
}
void glNewList(unsigned list, GLenum mode) {
    check(!gl.begun && gl.compiling == 0 && mode == GL_COMPILE, "glNewList", "nested");
    gl.lists[list].clear();
    gl.compiling = list;
}
void glEndList() {
    check(gl.compiling != 0, "glEndList", "without glNewList");
    gl.compiling = 0;
}
void glCallList(unsigned list) {
    run([=] {
        const unsigned caller = std::exchange(gl.calling, list);
        if (const auto found = gl.lists.find(list); found != gl.lists.end()) {
            for (const auto &call : found->second) {
                call();
            }
        }
        gl.calling = caller;
    });
}

// --- Shapes and text --------------------------------------------------------------

void *glutBitmapTimesRoman24 = nullptr;

void glutSolidSphere(double radius, int slices, int stacks) {
    drawShape("solid sphere " + std::to_string(slices) + ' ' + std::to_string(stacks), radius);
}
void glutWireSphere(double radius, int slices, int stacks) {
    drawShape("wire sphere " + std::to_string(slices) + ' ' + std::to_string(stacks), radius);
}
void glutWireCube(double size) { drawShape("wire cube", size / 2); }
void glRasterPos3f(float x, float y, float z) {
    runOutside("glRasterPos3f", [=] {
        gl.raster = vertexAt({x, y, z});
        gl.rasterDrawn = false;
    });
}
void glutBitmapCharacter(void *font, int character) {
    runOutside("glutBitmapCharacter", [=] {
        check(font == GLUT_BITMAP_TIMES_ROMAN_24, "glutBitmapCharacter", "another font");
        if (!gl.rasterDrawn) {
            draw(TEXT, "", {gl.raster});
            gl.rasterDrawn = true;
        }
        gl.drawings.back().name += static_cast<char>(character);
    });
}

// --- Window and callbacks ---------------------------------------------------------

void glutInit(int * /*count*/, char ** /*arguments*/) {}
void glutInitDisplayMode(unsigned mode) { gl.window.displayMode = mode; }
void glutInitWindowSize(int width, int height) { gl.window.size = {width, height}; }
int glutCreateWindow(const char *title) { gl.window.title = title; return 1; }
void glutFullScreen() { opened().fullScreen = true; }
void glutDisplayFunc(void (*call)()) { opened().display = call; }
void glutReshapeFunc(void (*call)(int, int)) { opened().reshape = call; }
void glutKeyboardFunc(void (*call)(unsigned char, int, int)) { opened().keyboard = call; }
void glutKeyboardUpFunc(void (*call)(unsigned char, int, int)) { opened().keyboardUp = call; }
void glutMouseFunc(void (*call)(int, int, int, int)) { opened().mouse = call; }
void glutPassiveMotionFunc(void (*call)(int, int)) { opened().passiveMotion = call; }
void glutIdleFunc(void (*call)()) { opened().idle = call; }
void glutPostRedisplay() { ++gl.redisplays; }
void glutSwapBuffers() { draw(SWAP, "swap"); }
void glutMainLoop() { gl.script(); }

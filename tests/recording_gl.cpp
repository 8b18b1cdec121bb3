#include "recording_gl.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace recording {
namespace {

using Vector = std::array<double, 3>;

constexpr std::size_t STACK_DEPTH = 32;

struct Context {
    State state;
    std::vector<Matrix> modelviews;  // pushed, below the current one
    std::vector<Matrix> projections;
    std::vector<Drawing> drawings;
    std::map<unsigned, Texture> textures;
    std::map<unsigned, std::vector<std::function<void()>>> lists;
    unsigned compiling = 0;
    unsigned calling = 0;
    bool begun = false;
    Drawing raster = {};       // colour and place at glRasterPos
    bool rasterDrawn = false;  // the last drawing is a text from there
    Window window;
    std::function<void()> script;
    int redisplays = 0;
    std::vector<std::string> faults;
};

Context context;
State &now = context.state;

void check(bool right, const char *call, const char *fault) {
    if (!right) {
        context.faults.push_back(std::string(call) + ": " + fault);
    }
}

// Runs the call, or compiles it into the open display list.
template <typename Call>
void run(const Call &call) {
    if (context.compiling != 0) {
        context.lists[context.compiling].push_back(call);
    } else {
        call();
    }
}

// The same for a call that is not allowed between glBegin and glEnd.
template <typename Call>
void runOutside(const char *name, const Call &call) {
    run([=] {
        check(!context.begun, name, "between glBegin and glEnd");
        call();
    });
}

Matrix product(const Matrix &a, const Matrix &b) {
    Matrix result = {};
    for (std::size_t i = 0; i < 16; ++i) {
        for (std::size_t k = 0; k < 4; ++k) {
            result[i] += a[4 * k + i % 4] * b[i / 4 * 4 + k];
        }
    }
    return result;
}

Colour times(const Matrix &m, const Colour &p) {
    double sum[4] = {};
    for (std::size_t i = 0; i < 16; ++i) {
        sum[i % 4] += m[i] * p[i / 4];
    }
    Colour result;
    std::transform(sum, sum + 4, result.begin(), [](double d) { return static_cast<float>(d); });
    return result;
}

Vector cross(const Vector &a, const Vector &b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

Vector unit(const Vector &v) {
    const double length = std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
    return length > 0 ? Vector{v[0] / length, v[1] / length, v[2] / length} : v;
}

// By the inverse transpose, whose columns are the cross products of the matrix's own
// but for a factor with the sign of the determinant.
Point worldNormal() {
    const Matrix &m = now.modelview;
    const Vector columns[3] = {{m[0], m[1], m[2]}, {m[4], m[5], m[6]}, {m[8], m[9], m[10]}};
    Vector sum = {};
    double determinant = 0;
    for (std::size_t i = 0; i < 3; ++i) {
        const Vector column = cross(columns[(i + 1) % 3], columns[(i + 2) % 3]);
        for (std::size_t axis = 0; axis < 3; ++axis) {
            sum[axis] += column[axis] * now.normal[i];
            determinant += column[axis] * columns[i][axis];
        }
    }
    sum = unit(sum);
    const double sign = determinant < 0 ? -1 : 1;
    return {static_cast<float>(sign * sum[0]), static_cast<float>(sign * sum[1]),
            static_cast<float>(sign * sum[2])};
}

Vertex vertexAt(float x, float y, float z) {
    return {transform(now.modelview, {x, y, z}), worldNormal(), now.colour, now.texCoord};
}

Drawing &draw(Kind kind, GLenum mode, const char *name = "", double size = 0, int slices = 0,
              int stacks = 0) {
    context.rasterDrawn = false;
    return context.drawings.emplace_back(
        Drawing{kind, mode, now, context.calling, {}, name, size, slices, stacks, nullptr});
}

Matrix &currentMatrix() {
    return now.matrixMode == GL_PROJECTION ? now.projection : now.modelview;
}

std::vector<Matrix> &currentStack() {
    return now.matrixMode == GL_PROJECTION ? context.projections : context.modelviews;
}

void multiply(const char *name, const Matrix &m) {
    runOutside(name, [m] { currentMatrix() = product(currentMatrix(), m); });
}

void enable(const char *name, GLenum capability, bool on) {
    static const std::map<GLenum, bool *> CAPABILITIES = {
        {GL_TEXTURE_2D, &now.texturing},     {GL_LIGHTING, &now.lighting},
        {GL_BLEND, &now.blending},           {GL_DEPTH_TEST, &now.depthTest},
        {GL_STENCIL_TEST, &now.stencilTest}, {GL_COLOR_MATERIAL, &now.colorMaterial},
        {GL_NORMALIZE, &now.normalize},      {GL_LIGHT0, &now.lights[0].on},
        {GL_LIGHT1, &now.lights[1].on},
    };
    runOutside(name, [=] { *CAPABILITIES.at(capability) = on; });
}

// Rows start at multiples of 4 bytes, as OpenGL unpacks them.
void upload(int width, int height, GLenum format, GLenum type, const void *data, bool mipmaps) {
    check(format == GL_RGB && type == GL_UNSIGNED_BYTE, "upload", "not of RGB bytes");
    Texture &t = context.textures[now.texture];
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

template <typename Values>
void addAll(Digest &digest, const Values &values) {
    for (const auto value : values) {
        digest.add(double{value});
    }
}

void addState(Digest &digest, const State &s) {
    const auto when = [](bool on, std::int64_t value) { return on ? value : -1; };
    for (const std::int64_t value :
         {when(s.texturing, s.texture), when(s.texturing, s.wrapS), when(s.texturing, s.wrapT),
          when(s.lighting, s.shading), when(s.lighting && s.normalize, 1),
          when(s.lighting && s.colorMaterial, 1), when(s.texturing, s.environment),
          when(s.depthTest, 1), when(s.blending, s.blendSource),
          when(s.blending, s.blendDestination), when(s.stencilTest, s.stencilFunction),
          when(s.stencilTest, s.stencilReference), when(s.stencilTest, s.stencilOperations[2])}) {
        digest.add(value);
    }
    addAll(digest, s.projection);
}

}  // namespace

void reset() {
    context = Context();
}

void clear() {
    context.drawings.clear();
    context.rasterDrawn = false;
    context.redisplays = 0;
    context.faults.clear();
}

std::vector<Drawing> drawings(Kind kind) {
    std::vector<Drawing> result;
    std::copy_if(context.drawings.begin(), context.drawings.end(), std::back_inserter(result),
                 [kind](const Drawing &drawing) { return drawing.kind == kind; });
    return result;
}

std::vector<Vertex> vertices() {
    std::vector<Vertex> result;
    for (const Drawing &primitive : drawings(PRIMITIVE)) {
        result.insert(result.end(), primitive.vertices.begin(), primitive.vertices.end());
    }
    return result;
}

bool stacksBalanced() {
    return context.modelviews.empty() && context.projections.empty() && !context.begun;
}

void onMainLoop(std::function<void()> script) {
    context.script = std::move(script);
}

Point transform(const Matrix &matrix, const Point &point) {
    const Colour p = times(matrix, {point[0], point[1], point[2], 1});
    return {p[0] / p[3], p[1] / p[3], p[2] / p[3]};
}

// clang-format off
const State &state() { return context.state; }
const std::vector<Drawing> &drawings() { return context.drawings; }
const std::map<unsigned, Texture> &textures() { return context.textures; }
const Window &window() { return context.window; }
int redisplays() { return context.redisplays; }
const std::vector<std::string> &faults() { return context.faults; }
// clang-format on

void Digest::add(std::int64_t whole) {
    value = (value ^ static_cast<std::uint64_t>(whole)) * 0x100000001b3;
    value ^= value >> 29U;
}

void Digest::add(double fraction) {
    // The offset keeps round numbers away from the edges of rounding.
    add(static_cast<std::int64_t>(std::floor(fraction * 1000 + 0.237)));
}

std::uint64_t digest() {
    Digest result;
    for (const Drawing &drawing : context.drawings) {
        result.add(std::int64_t{drawing.kind});
        result.add(std::int64_t{drawing.mode});
        addState(result, drawing.state);
        for (const Vertex &vertex : drawing.vertices) {
            addAll(result, vertex.position);
            addAll(result, vertex.colour);
            addAll(result, drawing.state.lighting ? vertex.normal : Point{});
            addAll(result, drawing.state.texturing ? vertex.texCoord : Point{});
        }
        for (const char c : drawing.name) {
            result.add(std::int64_t{c});
        }
        if (drawing.kind == SHAPE) {
            result.add(drawing.size);
            addAll(result, drawing.state.modelview);
            addAll(result, drawing.state.colour);
        }
    }
    return result.value;
}

}  // namespace recording

using namespace recording;

// clang-format off

// --- Primitives and their attributes ----------------------------------------------

void glBegin(GLenum mode) {
    runOutside("glBegin", [=] { draw(PRIMITIVE, mode); context.begun = true; });
}
void glEnd() {
    run([] { check(context.begun, "glEnd", "without glBegin"); context.begun = false; });
}
void glVertex3f(float x, float y, float z) {
    run([=] {
        check(context.begun, "glVertex", "outside a primitive");
        context.drawings.back().vertices.push_back(vertexAt(x, y, z));
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

void glMatrixMode(GLenum mode) { runOutside("glMatrixMode", [=] { now.matrixMode = mode; }); }
void glLoadIdentity() { runOutside("glLoadIdentity", [] { currentMatrix() = IDENTITY; }); }
void glPushMatrix() {
    runOutside("glPushMatrix", [] {
        check(currentStack().size() + 1 < STACK_DEPTH, "glPushMatrix", "full stack");
        currentStack().push_back(currentMatrix());
    });
}
void glPopMatrix() {
    runOutside("glPopMatrix", [] {
        check(!currentStack().empty(), "glPopMatrix", "empty stack");
        if (!currentStack().empty()) {
            currentMatrix() = currentStack().back();
            currentStack().pop_back();
        }
    });
}
void glMultMatrixf(const float *elements) {
    Matrix m;
    std::copy_n(elements, 16, m.begin());
    multiply("glMultMatrixf", m);
}
void glTranslatef(float x, float y, float z) {
    multiply("glTranslatef", {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, x, y, z, 1});
}
void glScalef(float x, float y, float z) {
    multiply("glScalef", {x, 0, 0, 0, 0, y, 0, 0, 0, 0, z, 0, 0, 0, 0, 1});
}
void glRotatef(float degrees, float x, float y, float z) {
    const Vector axis = unit({x, y, z});
    const double c = std::cos(degrees * M_PI / 180);
    const double s = std::sin(degrees * M_PI / 180);
    Matrix m = IDENTITY;
    for (std::size_t i = 0; i < 3; ++i) {
        const std::size_t j = (i + 1) % 3;
        const std::size_t k = (i + 2) % 3;
        m[4 * i + i] = axis[i] * axis[i] * (1 - c) + c;
        m[4 * i + j] = axis[i] * axis[j] * (1 - c) + axis[k] * s;
        m[4 * i + k] = axis[i] * axis[k] * (1 - c) - axis[j] * s;
    }
    multiply("glRotatef", m);
}
void gluPerspective(double fieldOfView, double aspect, double near, double far) {
    const double f = 1 / std::tan(fieldOfView * M_PI / 360);
    const double depth = near - far;
    multiply("gluPerspective", {f / aspect, 0, 0, 0, 0, f, 0, 0,
                                0, 0, (far + near) / depth, -1, 0, 0, 2 * far * near / depth, 0});
}
void gluOrtho2D(double left, double right, double bottom, double top) {
    const double w = right - left;
    const double h = top - bottom;
    multiply("gluOrtho2D", {2 / w, 0, 0, 0, 0, 2 / h, 0, 0, 0, 0, -1, 0,
                            -(right + left) / w, -(top + bottom) / h, 0, 1});
}
void gluLookAt(double eyeX, double eyeY, double eyeZ, double centreX, double centreY,
               double centreZ, double upX, double upY, double upZ) {
    const Vector forward = unit({centreX - eyeX, centreY - eyeY, centreZ - eyeZ});
    const Vector side = unit(cross(forward, {upX, upY, upZ}));
    const Vector up = cross(side, forward);
    const Matrix turn = {side[0], up[0], -forward[0], 0, side[1], up[1], -forward[1], 0,
                         side[2], up[2], -forward[2], 0, 0, 0, 0, 1};
    multiply("gluLookAt", product(turn, {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0,
                                         -eyeX, -eyeY, -eyeZ, 1}));
}
void glViewport(int x, int y, int width, int height) {
    runOutside("glViewport", [=] { now.viewport = {x, y, width, height}; });
}

// --- State ------------------------------------------------------------------------

void glEnable(GLenum capability) { enable("glEnable", capability, true); }
void glDisable(GLenum capability) { enable("glDisable", capability, false); }
void glBlendFunc(GLenum source, GLenum destination) {
    runOutside("glBlendFunc", [=] {
        now.blendSource = source;
        now.blendDestination = destination;
    });
}
void glStencilFunc(GLenum function, int reference, unsigned mask) {
    runOutside("glStencilFunc", [=] {
        now.stencilFunction = function;
        now.stencilReference = reference;
        now.stencilMask = mask;
    });
}
void glStencilOp(GLenum fail, GLenum depthFail, GLenum pass) {
    runOutside("glStencilOp", [=] { now.stencilOperations = {fail, depthFail, pass}; });
}
void glShadeModel(GLenum mode) { runOutside("glShadeModel", [=] { now.shading = mode; }); }
void glLightfv(GLenum light, GLenum parameter, const float *values) {
    const Colour v = {values[0], values[1], values[2], values[3]};
    runOutside("glLightfv", [=] {
        Light &l = now.lights[light - GL_LIGHT0];
        switch (parameter) {
        case GL_AMBIENT: l.ambient = v; break;
        case GL_DIFFUSE: l.diffuse = v; break;
        case GL_SPECULAR: l.specular = v; break;
        case GL_POSITION: l.position = times(now.modelview, v); break;
        default: check(false, "glLightfv", "unknown parameter");
        }
    });
}
void glClearColor(float r, float g, float b, float a) {
    runOutside("glClearColor", [=] { now.clearColour = {r, g, b, a}; });
}
void glClearStencil(int value) {
    runOutside("glClearStencil", [=] { now.clearStencil = value; });
}
void glClear(GLbitfield mask) { runOutside("glClear", [=] { draw(CLEAR, mask); }); }

// --- Textures and display lists ---------------------------------------------------

void glGenTextures(int count, unsigned *names) {
    for (int i = 0; i < count; ++i) {
        names[i] = 1;
        while (context.textures.contains(names[i])) {
            ++names[i];
        }
        context.textures[names[i]] = {};
    }
}
void glBindTexture(GLenum /*target*/, unsigned name) {
    runOutside("glBindTexture", [=] {
        now.texture = name;
        now.wrapS = context.textures[name].wrapS;
        now.wrapT = context.textures[name].wrapT;
    });
}
void glTexParameteri(GLenum /*target*/, GLenum parameter, int value) {
    runOutside("glTexParameter", [=] {
        Texture &t = context.textures[now.texture];
        const auto mode = static_cast<GLenum>(value);
        switch (parameter) {
        case GL_TEXTURE_WRAP_S: t.wrapS = now.wrapS = mode; break;
        case GL_TEXTURE_WRAP_T: t.wrapT = now.wrapT = mode; break;
        case GL_TEXTURE_MIN_FILTER: t.minFilter = mode; break;
        case GL_TEXTURE_MAG_FILTER: t.magFilter = mode; break;
        default: check(false, "glTexParameter", "unknown parameter");
        }
    });
}
void glTexParameterf(GLenum target, GLenum parameter, float value) {
    glTexParameteri(target, parameter, static_cast<int>(value));
}
void glTexEnvf(GLenum /*target*/, GLenum /*parameter*/, float value) {
    runOutside("glTexEnvf", [=] { now.environment = static_cast<GLenum>(value); });
}
void glTexImage2D(GLenum /*target*/, int /*level*/, int /*components*/, int width, int height,
                  int /*border*/, GLenum format, GLenum type, const void *data) {
    upload(width, height, format, type, data, false);
}
int gluBuild2DMipmaps(GLenum /*target*/, int /*components*/, int width, int height, GLenum format,
                      GLenum type, const void *data) {
    upload(width, height, format, type, data, true);
    return 0;
}
unsigned glGenLists(int count) {
    const auto first = static_cast<unsigned>(context.lists.size()) + 1;
    for (int i = 0; i < count; ++i) {
        context.lists[first + static_cast<unsigned>(i)] = {};
    }
    return first;
}
void glNewList(unsigned list, GLenum mode) {
    check(!context.begun && context.compiling == 0 && mode == GL_COMPILE, "glNewList", "nested");
    context.lists[list].clear();
    context.compiling = list;
}
void glEndList() {
    check(context.compiling != 0, "glEndList", "without glNewList");
    context.compiling = 0;
}
void glCallList(unsigned list) {
    run([=] {
        const unsigned caller = std::exchange(context.calling, list);
        if (const auto found = context.lists.find(list); found != context.lists.end()) {
            for (const auto &call : found->second) {
                call();
            }
        }
        context.calling = caller;
    });
}

// --- Shapes and text --------------------------------------------------------------

void *glutBitmapTimesRoman24 = nullptr;

void glutSolidSphere(double radius, int slices, int stacks) {
    runOutside("glutSolidSphere",
                 [=] { draw(SHAPE, 0, "solid sphere", radius, slices, stacks); });
}
void glutWireSphere(double radius, int slices, int stacks) {
    runOutside("glutWireSphere", [=] { draw(SHAPE, 0, "wire sphere", radius, slices, stacks); });
}
void glutWireCube(double size) {
    runOutside("glutWireCube", [=] { draw(SHAPE, 0, "wire cube", size); });
}
void glRasterPos3f(float x, float y, float z) {
    runOutside("glRasterPos3f", [=] {
        context.raster.vertices = {vertexAt(x, y, z)};
        context.rasterDrawn = false;
    });
}
void glutBitmapCharacter(void *font, int character) {
    runOutside("glutBitmapCharacter", [=] {
        if (!std::exchange(context.rasterDrawn, true)) {
            Drawing &text = draw(TEXT, 0);
            text.vertices = context.raster.vertices;
            text.font = font;
            context.rasterDrawn = true;
        }
        context.drawings.back().name += static_cast<char>(character);
    });
}

// --- Window and callbacks ---------------------------------------------------------

void glutInit(int * /*count*/, char ** /*arguments*/) {}
void glutInitDisplayMode(unsigned mode) { context.window.displayMode = mode; }
void glutInitWindowSize(int width, int height) {
    context.window.width = width;
    context.window.height = height;
}
int glutCreateWindow(const char *title) { context.window.title = title; return 1; }
void glutFullScreen() { context.window.fullScreen = true; }
void glutDisplayFunc(void (*callback)()) { context.window.display = callback; }
void glutReshapeFunc(void (*callback)(int, int)) { context.window.reshape = callback; }
void glutKeyboardFunc(void (*callback)(unsigned char, int, int)) {
    context.window.keyboard = callback;
}
void glutKeyboardUpFunc(void (*callback)(unsigned char, int, int)) {
    context.window.keyboardUp = callback;
}
void glutMouseFunc(void (*callback)(int, int, int, int)) { context.window.mouse = callback; }
void glutPassiveMotionFunc(void (*callback)(int, int)) { context.window.passiveMotion = callback; }
void glutIdleFunc(void (*callback)()) { context.window.idle = callback; }
void glutPostRedisplay() { ++context.redisplays; }
void glutSwapBuffers() { draw(SWAP, 0); }
void glutMainLoop() {
    if (context.script) {
        context.script();
    }
}

#pragma once

#include <GL/glut.h>

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

// A recording OpenGL, GLU and GLUT, linked in place of the real ones. It keeps the
// effective state and lists what is drawn, so that a test says what is seen and not
// by which calls. Tests may call OpenGL themselves to set a state up.
namespace recording {

using Point = std::array<float, 3>;
using Colour = std::array<float, 4>;
using Matrix = std::array<double, 16>;  // column-major

constexpr Matrix IDENTITY = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

struct Light {
    bool on = false;
    Colour ambient = {0, 0, 0, 1};
    Colour diffuse = {};
    Colour specular = {};
    Colour position = {0, 0, 1, 0};  // x, y, z, w in the world
};

// What the next drawing depends on; the start values are OpenGL's.
struct State {
    bool texturing = false;
    bool lighting = false;
    bool blending = false;
    bool depthTest = false;
    bool stencilTest = false;
    bool colorMaterial = false;
    bool normalize = false;
    Light lights[2];

    Colour colour = {1, 1, 1, 1};
    Point normal = {0, 0, 1};  // as given, in the model's frame
    Point texCoord = {};
    unsigned texture = 0;  // bound texture object and its wrap modes
    GLenum wrapS = GL_REPEAT;
    GLenum wrapT = GL_REPEAT;
    GLenum environment = GL_MODULATE;
    GLenum shading = GL_SMOOTH;

    GLenum blendSource = GL_ONE;
    GLenum blendDestination = GL_ZERO;
    GLenum stencilFunction = GL_ALWAYS;
    int stencilReference = 0;
    unsigned stencilMask = ~0U;
    std::array<GLenum, 3> stencilOperations = {GL_KEEP, GL_KEEP, GL_KEEP};
    Colour clearColour = {};
    int clearStencil = 0;

    std::array<int, 4> viewport = {};
    GLenum matrixMode = GL_MODELVIEW;
    Matrix modelview = IDENTITY;
    Matrix projection = IDENTITY;
};

struct Vertex {
    Point position;  // the modelview matrix applied: in the world, or on the overlay
    Point normal;    // likewise, of unit length as by GL_NORMALIZE
    Colour colour;
    Point texCoord;
};

enum Kind {
    PRIMITIVE,  // glBegin to glEnd: `mode` and `vertices`
    SHAPE,      // one of GLUT's: `name`, `size`, `slices`, `stacks`; placed by state.modelview
    TEXT,       // characters from one raster position on: `name`, `font`, one vertex
    CLEAR,      // `mode` is the mask
    SWAP
};

struct Drawing {
    Kind kind;
    GLenum mode;
    State state;    // when it began
    unsigned list;  // display list that drew it, else 0
    std::vector<Vertex> vertices;
    std::string name;  // the text, or "solid sphere", "wire sphere", "wire cube"
    double size;       // radius or edge length
    int slices;
    int stacks;
    const void *font;
};

struct Texture {
    GLenum wrapS = GL_REPEAT;
    GLenum wrapT = GL_REPEAT;
    GLenum minFilter = GL_NEAREST_MIPMAP_LINEAR;
    GLenum magFilter = GL_LINEAR;
    int width = 0;
    int height = 0;
    bool mipmaps = false;
    std::vector<unsigned char> pixels;  // red, green, blue, tightly packed
};

// What the program has asked of GLUT.
struct Window {
    std::string title;
    unsigned displayMode = 0;
    int width = 0;
    int height = 0;
    bool fullScreen = false;
    void (*display)() = nullptr;
    void (*reshape)(int width, int height) = nullptr;
    void (*keyboard)(unsigned char key, int x, int y) = nullptr;
    void (*keyboardUp)(unsigned char key, int x, int y) = nullptr;
    void (*mouse)(int button, int state, int x, int y) = nullptr;
    void (*passiveMotion)(int x, int y) = nullptr;
    void (*idle)() = nullptr;
};

void reset();  // a new context: start values, no objects, nothing recorded
void clear();  // forgets drawings, redisplays and faults; keeps state and objects

const State &state();
const std::vector<Drawing> &drawings();
std::vector<Drawing> drawings(Kind kind);
std::vector<Vertex> vertices();  // of all primitives, in order
const std::map<unsigned, Texture> &textures();
const Window &window();
int redisplays();  // posted

// Misuse of OpenGL, one line each: a test asserts that there is none.
const std::vector<std::string> &faults();
// Nothing left pushed on a matrix stack and no primitive open.
bool stacksBalanced();

// Run by glutMainLoop, which then returns.
void onMainLoop(std::function<void()> script);

// The point, multiplied and divided by w: with state().projection, its place on the
// screen, each axis from -1 to 1.
Point transform(const Matrix &matrix, const Point &point);

// A running hash. Fractions count by thousandths.
struct Digest {
    void add(std::int64_t whole);
    void add(double fraction);

    std::uint64_t value = 0xcbf29ce484222325;
};

// All that is drawn and affects the picture.
std::uint64_t digest();

}  // namespace recording

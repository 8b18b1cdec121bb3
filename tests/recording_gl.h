#pragma once

#include <GL/glut.h>

#include <array>
#include <functional>
#include <glm/mat4x4.hpp>
#include <glm/vec3.hpp>
#include <glm/vec4.hpp>
#include <map>
#include <set>
#include <string>
#include <vector>

// A recording OpenGL, GLU and GLUT, linked in place of the real ones. It keeps the
// effective state and lists what is drawn, so that a test says what is seen and not
// by which calls. Tests may call OpenGL themselves to set a state up. An enumerator that
// the game has no use for counts as a misuse, like one that OpenGL does not know.
//
// Its random numbers (rand and srand) take the place of the C library's, so that what is
// drawn with them is the same everywhere.
namespace recording {

using Name = const char *;  // of an enumerator, as records print it

enum Light_Value { AMBIENT, DIFFUSE, SPECULAR, POSITION, LIGHT_VALUES };  // as OpenGL counts them
using Light = std::array<glm::vec4, LIGHT_VALUES>;  // the position: x, y, z, w in the world

// What the next drawing depends on; the start values are OpenGL's.
struct State {
    std::set<GLenum> on;  // what is enabled
    std::array<Light, 2> lights = {};

    glm::vec4 colour = glm::vec4(1);
    glm::vec3 normal = {0, 0, 1};  // as given, in the model's frame
    glm::vec3 texCoord = {};
    unsigned texture = 0;  // bound texture object
    Name environment = "modulate";
    Name shading = "smooth";

    std::array<Name, 2> blending = {"one", "zero"};  // source, destination
    Name stencilFunction = "always";
    int stencilReference = 0;
    unsigned stencilMask = ~0U;
    std::array<Name, 3> stencilOperations = {"keep", "keep", "keep"};  // fail, depth fail, pass
    glm::vec4 clearColour = {};
    int clearStencil = 0;

    glm::ivec4 viewport = {};
    GLenum matrixMode = GL_MODELVIEW;
    glm::dmat4 modelview = glm::dmat4(1);
    glm::dmat4 projection = glm::dmat4(1);
};

struct Vertex {
    glm::vec3 position;  // the modelview matrix applied: in the world, or on the overlay
    glm::vec3 normal;    // with the modelview matrix applied, of unit length as by GL_NORMALIZE
    glm::vec4 colour;
    glm::vec3 texCoord;
};

enum Kind {
    PRIMITIVE,  // glBegin to glEnd
    SHAPE,      // one of GLUT's; its vertices are the centre and the ends of the three semi-axes
    TEXT,       // characters from one raster position on, its one vertex
    CLEAR,
    SWAP
};

struct Drawing {
    Kind kind;
    std::string name;  // "quads", "solid sphere 16 16", the text, or what is cleared
    State state;       // when it began
    unsigned list;     // display list that drew it, else 0
    std::vector<Vertex> vertices;
};

enum Texture_Value { LARGER, SMALLER, WRAP_S, WRAP_T, TEXTURE_VALUES };

struct Texture {
    std::array<Name, TEXTURE_VALUES> values = {"linear", "nearest of linear mipmaps", "repeat",
                                               "repeat"};
    int width = 0;
    int height = 0;
    bool mipmaps = false;
    std::vector<unsigned char> pixels;  // red, green, blue, tightly packed
};

// What the program has asked of GLUT.
struct Window {
    std::string title;
    unsigned displayMode = 0;
    std::array<int, 2> size = {};
    bool fullScreen = false;
    void (*display)() = nullptr;
    void (*reshape)(int width, int height) = nullptr;
    void (*keyboard)(unsigned char key, int x, int y) = nullptr;
    void (*keyboardUp)(unsigned char key, int x, int y) = nullptr;
    void (*mouse)(int button, int state, int x, int y) = nullptr;
    void (*passiveMotion)(int x, int y) = nullptr;
    void (*idle)() = nullptr;
};

struct Context {
    State state;
    std::vector<Drawing> drawings;
    std::map<unsigned, Texture> textures;
    Window window;
    int redisplays = 0;            // posted
    std::function<void()> script;  // run by glutMainLoop, which then returns
    // The rest is the recording's own.
    std::map<GLenum, std::vector<glm::dmat4>> stacks;  // pushed, below the current one
    std::map<unsigned, std::vector<std::function<void()>>> lists;
    unsigned compiling = 0;
    unsigned calling = 0;
    bool begun = false;
    Vertex raster = {};        // colour and place at glRasterPos
    bool rasterDrawn = false;  // the last drawing is a text from there
    std::vector<std::string> faults;
};

// What the tests look at; to start anew, assign an empty one.
inline Context gl;

void clear();  // forgets drawings, redisplays and faults; keeps state and objects

// Misuse of OpenGL, one line each, with what is left open or pushed at the time of the call.
std::vector<std::string> faults();

// The point, multiplied and divided by w: with state().projection, its place on the
// screen, each axis from -1 to 1.
glm::vec3 transform(const glm::dmat4 &matrix, const glm::vec3 &point);

}  // namespace recording

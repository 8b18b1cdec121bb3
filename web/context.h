#pragma once

#include <GL/gl.h>

#include <glm/glm.hpp>

// What the files of this OpenGL share. It has the functions that the game calls and no more:
// any other does not link, and a known one called in a way that the game doesn't ends the
// program with its name.
namespace web {

// Ends the program; the page shows the sentence.
[[noreturn]] void fail(const char *name, const char *why);

// --- Matrices -----------------------------------------------------------------------

// The tops of the stacks. The game puts its view into the projection matrix, so what OpenGL
// calls eye coordinates, in which it lights, are the world's.
const glm::mat4 &modelview();
const glm::mat4 &projection();

// --- State --------------------------------------------------------------------------

struct Viewport {
    int x, y, width, height;
};
extern Viewport viewport;

// What a draw call depends on beside its vertices. What has no effect is not told apart: two
// draws of the same pipeline may become one.
struct Pipeline {
    glm::mat4 projection = glm::mat4(1);
    GLuint texture = 0;   // 0: none
    bool glyphs = false;  // the texture says which pixels are drawn, not their colour
    bool lighting = false;
    bool depthTest = false;
    bool blending = false;
    GLenum blendFactors[2] = {GL_ONE, GL_ZERO};  // of the source, of the picture
    bool stencilTest = false;
    GLenum stencilFunction = GL_ALWAYS;
    GLint stencilReference = 0;
    GLuint stencilMask = ~0U;
    GLenum stencilOperations[3] = {GL_KEEP, GL_KEEP, GL_KEEP};

    bool operator==(const Pipeline &) const = default;
};

void bindTexture(GLuint name);

// As the state is now.
Pipeline pipeline();

// Makes it WebGL's, by the calls that it takes.
void apply(const Pipeline &next);

// The colour of a vertex in the world, lit by the lights as the shader does it.
glm::vec4 lit(const glm::vec3 &place, const glm::vec3 &normal, const glm::vec4 &colour);

// --- Drawing ------------------------------------------------------------------------

struct Vertex {
    glm::vec4 position;
    glm::vec3 normal;
    glm::vec4 colour;
    glm::vec2 texCoord;
};

// Triangles in buffers of their own, in model coordinates; their colour is the current one.
struct Mesh {
    GLuint vertexArray = 0;
    GLsizei vertices = 0;
    GLsizei indices = 0;  // 0: the vertices one after the other
};

// The current colour, normal and texture coordinate.
extern Vertex current;

Mesh makeMesh(const Vertex *vertices, GLsizei count, const GLushort *indices, GLsizei indexCount);
void drawMesh(const Mesh &mesh, const glm::mat4 &model);

// Adds vertices in the world, of whole triangles or lines, to the frame's stream. The count is of
// one primitive.
void beginStream(const Pipeline &how, GLenum mode);
void addToStream(const Vertex *vertices, int count);

// A frame is kept until something needs the picture so far: then its stream is uploaded in one
// piece and its draw calls are made.
void drawPending();

// Ends the program where glBegin or glNewList is open.
void requireOutside(const char *name);

// Once, in a new context.
void initShaders();
void initDrawing();

// --- Shaders ------------------------------------------------------------------------

enum Attribute { POSITION, NORMAL, COLOUR, TEX_COORD };

constexpr int LIGHTS = 2;  // the shader says so too

struct Light {
    glm::vec4 position = {0, 0, 1, 0};
    glm::vec3 ambient = {0, 0, 0};
    glm::vec3 diffuse = {0, 0, 0};
};

// Locations of the uniforms.
struct Uniforms {
    GLint projection, model;
    GLint lighting, lightPosition, lightAmbient, lightDiffuse;
    GLint texturing, glyphs;
};
extern Uniforms uniforms;

}  // namespace web

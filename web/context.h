#pragma once

#include <GL/gl.h>

#include <glm/glm.hpp>

// What the files of this OpenGL share. It has the calls that the game makes and no more: any
// other does not link, and one made otherwise than by the game ends the program with its name.
namespace web {

// Ends the program where a call, the caller unless another is named, is not right.
void require(bool right, const char *call = __builtin_FUNCTION());
// The same where glBegin or glNewList is open.
void requireOutside(const char *call = __builtin_FUNCTION());

// --- Matrices and state ------------------------------------------------------------------

// The tops of the stacks. The game puts its view into the projection matrix, so what OpenGL
// calls eye coordinates, in which it lights, are the world's.
const glm::mat4 &modelview();
const glm::mat4 &projection();

extern glm::ivec4 viewport;  // left, bottom, width, height

constexpr int LIGHTS = 2;
extern glm::vec4 lightPosition[LIGHTS];
extern glm::vec3 lightAmbient[LIGHTS], lightDiffuse[LIGHTS];

// clang-format off
enum Capability { TEXTURING, LIGHTING, BLENDING, DEPTH_TEST, STENCIL_TEST, COLOUR_MATERIAL,
                  NORMALIZING, LIGHT_0, LIGHT_1, CAPABILITIES };
// clang-format on

// What a draw call depends on beside its vertices.
struct State {
    glm::mat4 projection = glm::mat4(1);
    bool on[CAPABILITIES] = {};
    GLuint texture = 0;
    glm::uvec2 blendFactors = {GL_ONE, GL_ZERO};  // of the source, of the picture
    GLenum stencilFunction = GL_ALWAYS;
    GLint stencilReference = 0;
    GLuint stencilMask = ~0U;
    glm::uvec3 stencilOperations = {GL_KEEP, GL_KEEP, GL_KEEP};
    bool operator==(const State &) const = default;
};
extern State state;             // as the game has set it, but for the projection
State currentState();           // with it
void apply(const State &next);  // makes it WebGL's, by the calls that it takes

// --- Drawing -----------------------------------------------------------------------------

struct Vertex {
    glm::vec4 position;
    glm::vec3 normal;
    glm::vec4 colour;
    glm::vec2 texCoord;
};
extern Vertex current;  // colour, normal and texture coordinate that the next one gets

// Triangles in a buffer of their own, in model coordinates; drawn in the current colour.
struct Mesh {
    GLuint array, buffer;
    int count;
};
Mesh makeMesh(const Vertex *vertices, int count);
void drawMesh(const Mesh &mesh, const glm::mat4 &model);

// Points or triangles in the world; a thousand vertices at most for each beginning.
void beginStream(const State &how, GLenum mode);
void addToStream(const Vertex &vertex);

// What is drawn waits here until the end of the frame, or until something would change it: then
// the streamed vertices are uploaded in one piece, and WebGL draws.
void drawWaiting();

// --- Shaders -----------------------------------------------------------------------------

enum Attribute { POSITION, NORMAL, COLOUR, TEX_COORD };
struct Uniforms {
    GLint projection, model, texturing, lighting, lightPosition, lightAmbient, lightDiffuse;
};
extern Uniforms uniforms;  // their locations

void initShaders();  // in a new context
void initDrawing();

}  // namespace web

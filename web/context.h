#pragma once

#include <GL/gl.h>

#include <glm/glm.hpp>
#include <vector>

// What the files of this OpenGL share. It has the calls that the game makes and no more: any
// other does not link, and one made otherwise than by the game ends the program with its name.
namespace web {

// Ends the program where a call, the caller unless another is named, is not right.
void require(bool right, const char *call = __builtin_FUNCTION());
// The same where glBegin or glNewList is open.
void requireOutside(const char *call = __builtin_FUNCTION());

// --- Matrices and state ------------------------------------------------------------------

// The tops of the stacks. OpenGL lights in eye coordinates, where the modelview matrix leads. Since
// the game keeps its view in the projection matrix, these are the coordinates of the world here.
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
    bool operator==(const Vertex &) const = default;
};
extern Vertex current;  // colour, normal and texture coordinate that the next one gets

// Triangles in buffers of their own, in model coordinates; drawn in the current colour. Equal
// corners are one vertex, which the shader runs for once.
struct Mesh {
    GLuint array;
    int indices;
};
Mesh makeMesh(const std::vector<Vertex> &triangles);  // three corners each
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
    GLint projection, model, normals, texturing, lighting, lightPosition, lightAmbient,
        lightDiffuse;
};
extern Uniforms uniforms;  // their locations

void initShaders();  // in a new context
void initDrawing();

}  // namespace web

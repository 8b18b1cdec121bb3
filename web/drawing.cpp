#include <webgl/webgl1.h>
#include <webgl/webgl2.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <glm/gtc/matrix_inverse.hpp>
#include <glm/gtc/type_ptr.hpp>
#include <initializer_list>
#include <limits>
#include <utility>
#include <vector>

#include "context.h"

namespace web {

constinit Vertex current = {{}, {0, 0, 1}, {1, 1, 1, 1}, {}};

namespace {

constexpr int MAX_DRAWS = 2048;
constexpr int MAX_LISTS = 16;
constexpr int STREAM_VERTICES = 1 << 16;
constexpr int STREAM_INDICES = 1 << 17;
constexpr int STREAM_ROOM = 1 << 10;  // for what follows one beginStream
// So far back an equal vertex is looked for: a cylinder's last quad has two of the next one's.
constexpr int STREAM_REACH = 8;
// The buffers of the stream have parts that take turns: nothing is overwritten that the graphics
// card may still be reading for the frame before.
constexpr int STREAM_PARTS = 3;

struct Draw {
    State state;
    GLuint array;
    GLenum mode;
    int first, indices;
    glm::mat4 model;
    glm::vec4 colour;  // where the vertices have none
};

struct List {
    GLuint texture;  // bound before it draws, or 0
    Mesh mesh;
    Vertex last;
};

// What is streamed: vertices and indices in this frame, where they go to, and how many there are.
constinit Vertex streamVertices[STREAM_VERTICES] = {};
constinit GLuint streamIndices[STREAM_INDICES] = {};
constinit GLuint streamArray = 0, streamBuffers[2] = {};
constinit int streamUsed = 0, streamIndicesUsed = 0, streamPart = 0;
constinit Draw draws[MAX_DRAWS] = {};
constinit int drawCount = 0;

constinit List lists[MAX_LISTS] = {};
constinit GLuint listCount = 1;  // the names count from 1
constinit List *compiling = nullptr;
std::vector<Vertex> compiled;
constinit Vertex outsideList = {};

// The primitive that is open, with the corners that wait for more.
constinit bool begun = false;
constinit GLenum primitive = GL_TRIANGLES;
constinit Vertex corners[4] = {};
constinit int cornerCount = 0;
constinit glm::mat3 normalMatrix = glm::mat3(1);

void describe(Attribute attribute, int size, std::size_t offset) {
    emscripten_glEnableVertexAttribArray(attribute);
    emscripten_glVertexAttribPointer(attribute, size, GL_FLOAT, GL_FALSE, sizeof(Vertex),
                                     reinterpret_cast<const void *>(offset));
}

// Binds a new vertex array with buffers for so many vertices and indices, filled if there is
// something to fill them with.
GLuint makeArray(GLuint *buffers, const Vertex *vertices, std::size_t vertexCount,
                 const GLuint *indices, std::size_t indexCount) {
    const GLenum usage = vertices == nullptr ? GL_DYNAMIC_DRAW : GL_STATIC_DRAW;
    GLuint array = 0;
    emscripten_glGenVertexArrays(1, &array);
    emscripten_glBindVertexArray(array);
    emscripten_glGenBuffers(2, buffers);
    emscripten_glBindBuffer(GL_ARRAY_BUFFER, buffers[0]);
    emscripten_glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, buffers[1]);
    emscripten_glBufferData(
        GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(vertexCount * sizeof *vertices), vertices, usage);
    emscripten_glBufferData(GL_ELEMENT_ARRAY_BUFFER,
                            static_cast<GLsizeiptr>(indexCount * sizeof *indices), indices, usage);
    describe(POSITION, 4, offsetof(Vertex, position));
    describe(NORMAL, 3, offsetof(Vertex, normal));
    describe(TEX_COORD, 2, offsetof(Vertex, texCoord));
    return array;
}

// Fills the stream's part of a buffer.
void upload(GLenum target, GLuint buffer, const void *values, std::size_t part, std::size_t size) {
    emscripten_glBindBuffer(target, buffer);
    emscripten_glBufferSubData(target, static_cast<GLintptr>(streamPart * part),
                               static_cast<GLsizeiptr>(size), values);
}

void makeRoom() {
    if (drawCount == MAX_DRAWS || streamUsed > STREAM_VERTICES - STREAM_ROOM ||
        streamIndicesUsed > STREAM_INDICES - 2 * STREAM_ROOM) {
        drawWaiting();
    }
}

// Of the corners, whole triangles.
void addCorners(std::initializer_list<int> which) {
    for (const int i : which) {
        compiling != nullptr ? compiled.push_back(corners[i]) : addToStream(corners[i]);
    }
}

}  // namespace

Mesh makeMesh(const std::vector<Vertex> &triangles) {
    std::vector<Vertex> vertices;
    std::vector<GLuint> indices;
    for (const Vertex &corner : triangles) {
        const auto found = std::find(vertices.begin(), vertices.end(), corner);
        indices.push_back(static_cast<GLuint>(found - vertices.begin()));
        if (found == vertices.end()) {
            vertices.push_back(corner);
        }
    }
    GLuint buffers[2];
    const GLuint array =
        makeArray(buffers, vertices.data(), vertices.size(), indices.data(), indices.size());
    return {array, static_cast<int>(indices.size())};
}

void initDrawing() {
    streamArray = makeArray(streamBuffers, nullptr, STREAM_PARTS * STREAM_VERTICES, nullptr,
                            STREAM_PARTS * STREAM_INDICES);
    describe(COLOUR, 4, offsetof(Vertex, colour));
}

void drawMesh(const Mesh &mesh, const glm::mat4 &model) {
    makeRoom();
    draws[drawCount++] = {currentState(), mesh.array, GL_TRIANGLES,  0,
                          mesh.indices,   model,      current.colour};
}

void beginStream(const State &how, GLenum mode) {
    makeRoom();
    const Draw &last = draws[std::max(drawCount - 1, 0)];
    if (drawCount == 0 || last.array != streamArray || last.mode != mode || last.state != how) {
        const int first = streamPart * STREAM_INDICES + streamIndicesUsed;
        draws[drawCount++] = {how, streamArray, mode, first, 0, glm::mat4(1), {}};
    }
}

void addToStream(const Vertex &vertex) {
    require(streamUsed < STREAM_VERTICES && streamIndicesUsed < STREAM_INDICES, "glBegin");
    const Vertex *end = streamVertices + streamUsed;
    const Vertex *found = std::find(end - std::min(streamUsed, STREAM_REACH), end, vertex);
    if (found == end) {
        streamVertices[streamUsed++] = vertex;
    }
    streamIndices[streamIndicesUsed++] =
        static_cast<GLuint>(streamPart * STREAM_VERTICES + (found - streamVertices));
    ++draws[drawCount - 1].indices;
}

void drawWaiting() {
    if (streamUsed > 0) {
        emscripten_glBindVertexArray(streamArray);
        upload(GL_ARRAY_BUFFER, streamBuffers[0], streamVertices, sizeof streamVertices,
               streamUsed * sizeof *streamVertices);
        upload(GL_ELEMENT_ARRAY_BUFFER, streamBuffers[1], streamIndices, sizeof streamIndices,
               streamIndicesUsed * sizeof *streamIndices);
        streamPart = (streamPart + 1) % STREAM_PARTS;
        streamUsed = streamIndicesUsed = 0;
    }
    std::for_each_n(draws, std::exchange(drawCount, 0), [](const Draw &draw) {
        apply(draw.state);
        emscripten_glBindVertexArray(draw.array);
        emscripten_glUniformMatrix4fv(uniforms.model, 1, GL_FALSE, glm::value_ptr(draw.model));
        if (draw.state.on[LIGHTING]) {
            const glm::mat3 normals = glm::inverseTranspose(glm::mat3(draw.model));
            emscripten_glUniformMatrix3fv(uniforms.normals, 1, GL_FALSE, glm::value_ptr(normals));
        }
        emscripten_glVertexAttrib4fv(COLOUR, glm::value_ptr(draw.colour));
        emscripten_glDrawElements(draw.mode, draw.indices, GL_UNSIGNED_INT,
                                  reinterpret_cast<const void *>(draw.first * sizeof(GLuint)));
    });
}

void requireOutside(const char *call) {
    require(!begun && compiling == nullptr, call);
}

}  // namespace web

using namespace web;

// clang-format off
void glBegin(GLenum mode) {
    require(!begun && (mode == GL_TRIANGLES || mode == GL_QUADS || mode == GL_POLYGON));
    begun = true;
    primitive = mode;
    cornerCount = 0;
    if (compiling == nullptr) {
        beginStream(currentState(), GL_TRIANGLES);
        normalMatrix = glm::inverseTranspose(glm::mat3(modelview()));
    }
}
void glEnd() { require(std::exchange(begun, false)); }
void glVertex3f(float x, float y, float z) {
    require(begun);
    Vertex &corner = corners[cornerCount++] = current;
    corner.position = {x, y, z, 1};
    if (compiling == nullptr) {
        corner.position = modelview() * corner.position;
        corner.normal = normalMatrix * corner.normal;
    }
    // What is complete: a quad is cut from its second corner to its fourth, a polygon is a fan.
    if (primitive == GL_QUADS && cornerCount == 4) {
        addCorners({0, 1, 3, 1, 2, 3});
        cornerCount = 0;
    } else if (primitive != GL_QUADS && cornerCount == 3) {
        addCorners({0, 1, 2});
        corners[1] = corners[2];
        cornerCount = primitive == GL_POLYGON ? 2 : 0;
    }
}
void glNormal3f(float x, float y, float z) { current.normal = {x, y, z}; }
void glTexCoord3f(float s, float t, float /*r*/) { current.texCoord = {s, t}; }
void glTexCoord2f(float s, float t) { current.texCoord = {s, t}; }
void glColor4f(float red, float green, float blue, float alpha) {
    require(compiling == nullptr);
    current.colour = {red, green, blue, alpha};
}
void glColor3f(float red, float green, float blue) { glColor4f(red, green, blue, 1); }
void glColor4ub(GLubyte red, GLubyte green, GLubyte blue, GLubyte alpha) {
    glColor4f(red / 255.0F, green / 255.0F, blue / 255.0F, alpha / 255.0F);
}

GLuint glGenLists(int count) {
    requireOutside();
    require(count == 1 && listCount < MAX_LISTS);
    return listCount++;
}
void glNewList(GLuint name, GLenum mode) {
    requireOutside();
    require(mode == GL_COMPILE && name < listCount && lists[name].mesh.array == 0);
    compiling = &lists[name];
    outsideList = current;
    current.normal.x = current.texCoord.x = std::numeric_limits<float>::quiet_NaN();
}
void glEndList() {
    require(!begun && compiling != nullptr);
    // A normal or texture coordinate that the list does not say itself would be the caller's.
    require(compiled.empty() || !std::isnan(compiled[0].normal.x + compiled[0].texCoord.x));
    compiling->mesh = makeMesh(compiled);
    std::exchange(compiling, nullptr)->last = std::exchange(current, outsideList);
    compiled = {};
}
void glCallList(GLuint name) {
    requireOutside();
    require(name > 0 && name < listCount);
    const List &list = lists[name];
    state.texture = list.texture != 0 ? list.texture : state.texture;
    if (list.mesh.indices > 0) {
        drawMesh(list.mesh, modelview());
        current.normal = list.last.normal;
        current.texCoord = list.last.texCoord;
    }
}
void glBindTexture(GLenum target, GLuint name) {
    require(target == GL_TEXTURE_2D && !begun && (compiling == nullptr || compiled.empty()));
    (compiling == nullptr ? state.texture : compiling->texture) = name;
}
// clang-format on

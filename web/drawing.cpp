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
constexpr int STREAM_ROOM = 1 << 10;  // for what follows one beginStream
// The buffer of the stream has parts that take turns: nothing is overwritten that the graphics
// card may still be reading for the frame before.
constexpr int STREAM_PARTS = 3;

struct Draw {
    State state;
    GLuint array;
    GLenum mode;
    int first, count;
    glm::mat4 model;
    glm::vec4 colour;  // where the vertices have none
};

struct List {
    GLuint texture;  // bound before it draws, or 0
    Mesh mesh;
    Vertex last;
};

constinit Vertex stream[STREAM_VERTICES] = {};
constinit int streamUsed = 0, streamPart = 0;
constinit Mesh streamMesh = {};
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

void makeRoom() {
    if (drawCount == MAX_DRAWS || streamUsed > STREAM_VERTICES - STREAM_ROOM) {
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

Mesh makeMesh(const Vertex *vertices, int count) {
    Mesh mesh = {0, 0, count};
    emscripten_glGenVertexArrays(1, &mesh.array);
    emscripten_glBindVertexArray(mesh.array);
    emscripten_glGenBuffers(1, &mesh.buffer);
    emscripten_glBindBuffer(GL_ARRAY_BUFFER, mesh.buffer);
    emscripten_glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(count * sizeof(Vertex)),
                            vertices, vertices == nullptr ? GL_DYNAMIC_DRAW : GL_STATIC_DRAW);
    describe(POSITION, 4, offsetof(Vertex, position));
    describe(NORMAL, 3, offsetof(Vertex, normal));
    describe(TEX_COORD, 2, offsetof(Vertex, texCoord));
    return mesh;
}

void initDrawing() {
    streamMesh = makeMesh(nullptr, STREAM_PARTS * STREAM_VERTICES);
    describe(COLOUR, 4, offsetof(Vertex, colour));
}

void drawMesh(const Mesh &mesh, const glm::mat4 &model) {
    makeRoom();
    draws[drawCount++] = {currentState(), mesh.array, GL_TRIANGLES,  0,
                          mesh.count,     model,      current.colour};
}

void beginStream(const State &how, GLenum mode) {
    makeRoom();
    const Draw &last = draws[std::max(drawCount - 1, 0)];
    if (drawCount == 0 || last.array != streamMesh.array || last.mode != mode ||
        last.state != how) {
        const int first = streamPart * STREAM_VERTICES + streamUsed;
        draws[drawCount++] = {how, streamMesh.array, mode, first, 0, glm::mat4(1), {}};
    }
}

void addToStream(const Vertex &vertex) {
    require(streamUsed < STREAM_VERTICES, "glBegin");
    stream[streamUsed++] = vertex;
    ++draws[drawCount - 1].count;
}

void drawWaiting() {
    if (streamUsed > 0) {
        emscripten_glBindBuffer(GL_ARRAY_BUFFER, streamMesh.buffer);
        emscripten_glBufferSubData(GL_ARRAY_BUFFER,
                                   static_cast<GLintptr>(streamPart * sizeof stream),
                                   static_cast<GLsizeiptr>(streamUsed * sizeof *stream), stream);
        streamPart = (streamPart + 1) % STREAM_PARTS;
        streamUsed = 0;
    }
    std::for_each_n(draws, std::exchange(drawCount, 0), [](const Draw &draw) {
        apply(draw.state);
        emscripten_glBindVertexArray(draw.array);
        emscripten_glUniformMatrix4fv(uniforms.model, 1, GL_FALSE, glm::value_ptr(draw.model));
        emscripten_glVertexAttrib4fv(COLOUR, glm::value_ptr(draw.colour));
        emscripten_glDrawArrays(draw.mode, draw.first, draw.count);
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
    compiling->mesh = makeMesh(compiled.data(), static_cast<int>(compiled.size()));
    std::exchange(compiling, nullptr)->last = std::exchange(current, outsideList);
    compiled = {};
}
void glCallList(GLuint name) {
    requireOutside();
    require(name > 0 && name < listCount);
    const List &list = lists[name];
    state.texture = list.texture != 0 ? list.texture : state.texture;
    if (list.mesh.count > 0) {
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

#include <webgl/webgl1.h>
#include <webgl/webgl2.h>

#include <algorithm>
#include <cstddef>
#include <glm/gtc/type_ptr.hpp>
#include <vector>

#include "context.h"

namespace web {

constinit Vertex current = {{}, {0, 0, 1}, {1, 1, 1, 1}, {}};

namespace {

constexpr int STREAM_VERTICES = 1 << 15;
constexpr int MAX_DRAWS = 2048;
constexpr int MAX_LISTS = 16;

// Parts of the stream's buffer that take turns, so that no frame overwrites what the graphics
// card may still be reading of the one before.
constexpr int STREAM_PARTS = 3;

struct Draw {
    Pipeline how;
    const Mesh *mesh;  // null: of the stream
    glm::mat4 model;   // of a mesh
    glm::vec4 colour;  // of a mesh
    GLenum mode;
    int first;
    int count;
};

struct List {
    bool binds;  // a texture, before it draws
    GLuint texture;
    Mesh mesh;
    Vertex last;
};

constinit Vertex stream[STREAM_VERTICES] = {};
constinit int streamUsed = 0;
constinit Draw draws[MAX_DRAWS] = {};
constinit int drawCount = 0;
constinit GLuint streamArray = 0;
constinit GLuint streamBuffer = 0;
constinit int streamPart = 0;

constinit List lists[MAX_LISTS + 1] = {};  // the names count from 1
constinit GLuint listCount = 0;
constinit GLuint compiling = 0;  // the list that is open, or 0
std::vector<Vertex> *compiled = nullptr;

// The primitive that is open: its corners so far, and how its normals go into the world.
constinit bool begun = false;
constinit GLenum primitive = GL_TRIANGLES;
constinit Vertex corners[4] = {};
constinit int cornerCount = 0;
constinit glm::mat3 normalMatrix = {};

void describeVertices() {
    const struct {
        Attribute attribute;
        GLint size;
        std::size_t offset;
    } fields[] = {{POSITION, 4, offsetof(Vertex, position)},
                  {NORMAL, 3, offsetof(Vertex, normal)},
                  {COLOUR, 4, offsetof(Vertex, colour)},
                  {TEX_COORD, 2, offsetof(Vertex, texCoord)}};
    for (const auto &field : fields) {
        emscripten_glEnableVertexAttribArray(field.attribute);
        emscripten_glVertexAttribPointer(field.attribute, field.size, GL_FLOAT, GL_FALSE,
                                         sizeof(Vertex),
                                         reinterpret_cast<const void *>(field.offset));
    }
}

GLuint makeBuffer(GLenum target, std::size_t bytes, const void *data, GLenum usage) {
    GLuint buffer = 0;
    emscripten_glGenBuffers(1, &buffer);
    emscripten_glBindBuffer(target, buffer);
    emscripten_glBufferData(target, static_cast<GLsizeiptr>(bytes), data, usage);
    return buffer;
}

Draw &addDraw(const Pipeline &how, const Mesh *mesh) {
    if (drawCount == MAX_DRAWS) {
        drawPending();
    }
    Draw &draw = draws[drawCount++];
    draw.how = how;
    draw.mesh = mesh;
    return draw;
}

void uploadStream() {
    if (streamUsed == 0) {
        return;  // WebGL would take a size of 0 for everything
    }
    streamPart = (streamPart + 1) % STREAM_PARTS;
    emscripten_glBindBuffer(GL_ARRAY_BUFFER, streamBuffer);
    emscripten_glBufferSubData(
        GL_ARRAY_BUFFER, static_cast<GLintptr>(streamPart * sizeof stream),
        static_cast<GLsizeiptr>(static_cast<std::size_t>(streamUsed) * sizeof(Vertex)), stream);
}

void drawOne(const Draw &draw) {
    apply(draw.how);
    if (draw.mesh == nullptr) {
        emscripten_glBindVertexArray(streamArray);
        emscripten_glUniformMatrix4fv(uniforms.model, 1, GL_FALSE, glm::value_ptr(glm::mat4(1)));
        emscripten_glDrawArrays(draw.mode, streamPart * STREAM_VERTICES + draw.first, draw.count);
        return;
    }
    emscripten_glBindVertexArray(draw.mesh->vertexArray);
    emscripten_glUniformMatrix4fv(uniforms.model, 1, GL_FALSE, glm::value_ptr(draw.model));
    emscripten_glVertexAttrib4fv(COLOUR, glm::value_ptr(draw.colour));
    if (draw.mesh->indices > 0) {
        emscripten_glDrawElements(GL_TRIANGLES, draw.mesh->indices, GL_UNSIGNED_SHORT, nullptr);
    } else {
        emscripten_glDrawArrays(GL_TRIANGLES, 0, draw.mesh->vertices);
    }
}

// The normals go through the inverse transpose, which but for its length are the cofactors.
glm::mat3 normalMatrixOf(const glm::mat3 &m) {
    const glm::mat3 cofactors(glm::cross(m[1], m[2]), glm::cross(m[2], m[0]),
                              glm::cross(m[0], m[1]));
    return glm::dot(m[0], cofactors[0]) < 0 ? -cofactors : cofactors;
}

void addPrimitive(const Vertex &a, const Vertex &b, const Vertex &c) {
    const Vertex triangle[] = {a, b, c};
    if (compiling != 0) {
        compiled->insert(compiled->end(), triangle, triangle + 3);
    } else {
        addToStream(triangle, 3);
    }
}

// Draws what the last corner has completed. A quad is cut from its second corner to its
// fourth, a polygon into a fan.
void assemble() {
    if (primitive == GL_QUADS && cornerCount == 4) {
        addPrimitive(corners[0], corners[1], corners[3]);
        addPrimitive(corners[1], corners[2], corners[3]);
        cornerCount = 0;
    } else if (primitive != GL_QUADS && cornerCount == 3) {
        addPrimitive(corners[0], corners[1], corners[2]);
        corners[1] = corners[2];
        cornerCount = primitive == GL_POLYGON ? 2 : 0;
    } else if (primitive == GL_LINES && cornerCount == 2) {
        addToStream(corners, 2);
        cornerCount = 0;
    }
}

}  // namespace

void initDrawing() {
    emscripten_glGenVertexArrays(1, &streamArray);
    emscripten_glBindVertexArray(streamArray);
    streamBuffer =
        makeBuffer(GL_ARRAY_BUFFER, STREAM_PARTS * sizeof stream, nullptr, GL_DYNAMIC_DRAW);
    describeVertices();
}

Mesh makeMesh(const Vertex *vertices, GLsizei count, const GLushort *indices, GLsizei indexCount) {
    Mesh mesh = {0, count, indexCount};
    emscripten_glGenVertexArrays(1, &mesh.vertexArray);
    emscripten_glBindVertexArray(mesh.vertexArray);
    makeBuffer(GL_ARRAY_BUFFER, static_cast<std::size_t>(count) * sizeof(Vertex), vertices,
               GL_STATIC_DRAW);
    describeVertices();
    emscripten_glDisableVertexAttribArray(COLOUR);
    if (indexCount > 0) {
        makeBuffer(GL_ELEMENT_ARRAY_BUFFER, static_cast<std::size_t>(indexCount) * sizeof *indices,
                   indices, GL_STATIC_DRAW);
    }
    return mesh;
}

void drawMesh(const Mesh &mesh, const glm::mat4 &model) {
    Draw &draw = addDraw(pipeline(), &mesh);
    draw.model = model;
    draw.colour = current.colour;
}

void beginStream(const Pipeline &how, GLenum mode) {
    if (drawCount > 0) {
        const Draw &last = draws[drawCount - 1];
        if (last.mesh == nullptr && last.mode == mode && last.how == how) {
            return;
        }
    }
    Draw &draw = addDraw(how, nullptr);
    draw.mode = mode;
    draw.first = streamUsed;
    draw.count = 0;
}

void addToStream(const Vertex *vertices, int count) {
    if (streamUsed + count > STREAM_VERTICES) {
        const Draw last = draws[drawCount - 1];
        drawPending();
        beginStream(last.how, last.mode);
    }
    std::copy_n(vertices, count, stream + streamUsed);
    streamUsed += count;
    draws[drawCount - 1].count += count;
}

void drawPending() {
    if (drawCount == 0) {
        return;
    }
    uploadStream();
    std::for_each_n(draws, drawCount, drawOne);
    drawCount = 0;
    streamUsed = 0;
}

void requireOutside(const char *name) {
    if (begun || compiling != 0) {
        fail(name, "between glBegin and glEnd or in a display list");
    }
}

}  // namespace web

using namespace web;

namespace {

// What the calls that describe a vertex change.
constinit Vertex listCurrent = {};
constinit bool listHasNormal = false;
constinit bool listHasTexCoord = false;

}  // namespace

void glBegin(GLenum mode) {
    if (begun) {
        fail("glBegin", "before glEnd");
    }
    if (mode != GL_TRIANGLES && mode != GL_QUADS && mode != GL_POLYGON &&
        (mode != GL_LINES || compiling != 0)) {
        fail("glBegin", "of a primitive that the game doesn't draw");
    }
    begun = true;
    primitive = mode;
    cornerCount = 0;
    if (compiling == 0) {
        beginStream(pipeline(), mode == GL_LINES ? GL_LINES : GL_TRIANGLES);
        normalMatrix = normalMatrixOf(glm::mat3(modelview()));
    }
}

void glEnd() {
    if (!begun) {
        fail("glEnd", "without glBegin");
    }
    begun = false;
}

void glVertex3f(GLfloat x, GLfloat y, GLfloat z) {
    if (!begun) {
        fail("glVertex3f", "without glBegin");
    }
    Vertex &corner = corners[cornerCount++];
    if (compiling != 0) {
        if (!listHasNormal || !listHasTexCoord) {
            fail("glVertex3f", "in a display list without a normal or a texture coordinate");
        }
        corner = listCurrent;
        corner.position = {x, y, z, 1};
    } else {
        corner = current;
        corner.position = modelview() * glm::vec4(x, y, z, 1);
        corner.normal = normalMatrix * current.normal;
    }
    assemble();
}

void glNormal3f(GLfloat x, GLfloat y, GLfloat z) {
    listHasNormal = true;
    (compiling != 0 ? listCurrent : current).normal = {x, y, z};
}

void glTexCoord3f(GLfloat s, GLfloat t, GLfloat /*r*/) {
    listHasTexCoord = true;
    (compiling != 0 ? listCurrent : current).texCoord = {s, t};
}

void glTexCoord2f(GLfloat s, GLfloat t) {
    glTexCoord3f(s, t, 0);
}

void glColor4f(GLfloat red, GLfloat green, GLfloat blue, GLfloat alpha) {
    if (compiling != 0) {
        fail("glColor", "in a display list");
    }
    current.colour = {red, green, blue, alpha};
}

void glColor3f(GLfloat red, GLfloat green, GLfloat blue) {
    glColor4f(red, green, blue, 1);
}

void glColor4ub(GLubyte red, GLubyte green, GLubyte blue, GLubyte alpha) {
    constexpr float FULL = 255;
    glColor4f(red / FULL, green / FULL, blue / FULL, alpha / FULL);
}

GLuint glGenLists(GLsizei count) {
    requireOutside("glGenLists");
    if (count != 1 || listCount == MAX_LISTS) {
        fail("glGenLists", "too many lists");
    }
    return ++listCount;
}

void glNewList(GLuint name, GLenum mode) {
    requireOutside("glNewList");
    if (name == 0 || name > listCount || lists[name].mesh.vertexArray != 0 || mode != GL_COMPILE) {
        fail("glNewList", "only with GL_COMPILE, once for each name");
    }
    compiling = name;
    compiled = new std::vector<Vertex>;
    listHasNormal = listHasTexCoord = false;
}

void glEndList() {
    if (begun || compiling == 0) {
        fail("glEndList", "without glNewList");
    }
    List &list = lists[compiling];
    list.mesh = makeMesh(compiled->data(), static_cast<GLsizei>(compiled->size()), nullptr, 0);
    list.last = listCurrent;
    delete compiled;
    compiling = 0;
}

void glCallList(GLuint name) {
    requireOutside("glCallList");
    if (name == 0 || name > listCount) {
        fail("glCallList", "of no list");
    }
    const List &list = lists[name];
    if (list.binds) {
        bindTexture(list.texture);
    }
    if (list.mesh.vertices > 0) {
        drawMesh(list.mesh, modelview());
        current.normal = list.last.normal;
        current.texCoord = list.last.texCoord;
    }
}

void glBindTexture(GLenum target, GLuint name) {
    if (target != GL_TEXTURE_2D || begun) {
        fail("glBindTexture", "only of GL_TEXTURE_2D");
    }
    if (compiling == 0) {
        bindTexture(name);
    } else if (compiled->empty()) {
        lists[compiling].binds = true;
        lists[compiling].texture = name;
    } else {
        fail("glBindTexture", "after a primitive of a display list");
    }
}

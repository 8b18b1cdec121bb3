#include "objreader.h"

#include <GL/gl.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "file.h"

namespace {

constexpr int LINE_BUFFER = 80;   // characters of a line read at a time, with the terminator
constexpr int SHORTEST_LINE = 3;  // what the counting pass takes for a line, with its end
constexpr double BOX_MARGIN = 0.1;
// Below any vertex, where a search for the largest z would start. The first vertex sets the whole
// box instead, so this shows only after a load that found none; the five other bounds are then
// still the previous model's.
constexpr float UNSET_MAX_Z = -3000;

struct Counts {
    int vertices = 0;
    int normals = 0;
    int texCoords = 0;

    bool operator==(const Counts &) const = default;
};

struct Line {
    const char *keyword;
    const char *rest;
};

struct Corner {
    int vertex = 0;
    int texCoord = 0;
    int normal = 0;
};

// A line of 79 characters has fewer corners than characters.
struct Polygon {
    Corner corners[LINE_BUFFER];
    int count = 0;
};

bool readLine(FILE *file, char (&line)[LINE_BUFFER]) {
    return fgets(line, LINE_BUFFER, file) != nullptr;
}

bool startsWith(const char *text, const char *start) {
    return strncmp(text, start, strlen(start)) == 0;
}

// The keyword is one character where a blank follows it, else two; the character
// after it is overwritten.
Line cutKeyword(char (&line)[LINE_BUFFER]) {
    const std::size_t length = strlen(line);
    const std::size_t end = length > 1 && line[1] == ' ' ? 1 : std::min<std::size_t>(2, length);
    if (end == length) {
        return {line, line + length};
    }
    line[end] = '\0';
    return {line, line + end + 1};
}

// Room for the triangles of a face line, given what follows its keyword: each corner but the
// first stands after a blank.
std::size_t triangleRoomOf(const char *rest) {
    return static_cast<std::size_t>(1 + std::count(rest, rest + strlen(rest), ' '));
}

Counts countLines(FILE *file, std::size_t &triangleRoom) {
    Counts counts;
    triangleRoom = 0;
    char line[LINE_BUFFER];
    while (readLine(file, line)) {
        if (strlen(line) >= SHORTEST_LINE) {
            counts.vertices += startsWith(line, "v ") ? 1 : 0;
            counts.normals += startsWith(line, "vn") ? 1 : 0;
            counts.texCoords += startsWith(line, "vt") ? 1 : 0;
        }
        // By the filling pass's own rule, which has no shortest line.
        const auto [keyword, rest] = cutKeyword(line);
        if (strcmp(keyword, "f") == 0) {
            triangleRoom += triangleRoomOf(rest);
        }
    }
    return counts;
}

// An index of the file counts from 1. Unsigned, so that the smallest int wraps
// round instead of overflowing.
int zeroBased(int index) {
    return static_cast<int>(static_cast<unsigned>(index) - 1U);
}

// Reads a corner of the given form, 0 to 3.
bool readCorner(const char *text, int form, Corner &corner) {
    int v = 1;
    int t = 1;
    int n = 1;
    bool matched = false;
    switch (form) {
    case 0: matched = sscanf(text, "%i/%i/%i", &v, &t, &n) == 3; break;
    case 1: matched = sscanf(text, "%i//%i", &v, &n) == 2; break;
    case 2: matched = sscanf(text, "%i/%i", &v, &t) == 2; break;
    default: matched = sscanf(text, "%i", &v) == 1; break;
    }
    corner = {zeroBased(v), zeroBased(t), zeroBased(n)};
    return matched;
}

// The four forms are tried one after the other; once a corner does not match, the
// earlier forms are not tried again.
Polygon parseFace(const char *text) {
    Polygon polygon;
    for (int form = 0; form < 4; ++form) {
        Corner corner;
        while (text != nullptr && readCorner(text, form, corner)) {
            polygon.corners[polygon.count++] = corner;
            text = strchr(text, ' ');
            text = text == nullptr ? nullptr : text + 1;
        }
    }
    polygon.count = std::max(polygon.count, 3);
    return polygon;
}

bool inside(int index, int count) {
    return index >= 0 && index < count;
}

bool drawable(const Polygon &polygon, const Counts &counts) {
    return std::all_of(polygon.corners, polygon.corners + polygon.count, [&](const Corner &c) {
        return inside(c.vertex, counts.vertices) &&
               (counts.normals == 0 || inside(c.normal, counts.normals)) &&
               (counts.texCoords == 0 || inside(c.texCoord, counts.texCoords));
    });
}

void setCorner(objFace &face, int corner, const Corner &from) {
    face.vertex[corner] = from.vertex;
    face.normal[corner] = from.normal;
    face.texCoord[corner] = from.texCoord;
}

void reverseWinding(objFace &face) {
    std::swap(face.vertex[0], face.vertex[1]);
    std::swap(face.normal[0], face.normal[1]);
    std::swap(face.texCoord[0], face.texCoord[1]);
}

// Writes the polygon as a fan of triangles; returns their number.
int makeTriangles(const Polygon &polygon, bool flip, objFace *triangles) {
    const int made = polygon.count - 2;
    for (int i = 0; i < made; ++i) {
        setCorner(triangles[i], 0, polygon.corners[0]);
        setCorner(triangles[i], 1, polygon.corners[i + 1]);
        setCorner(triangles[i], 2, polygon.corners[i + 2]);
    }
    if (polygon.count > 3) {
        setCorner(triangles[0], 3, polygon.corners[3]);
    }
    if (flip) {
        std::for_each(triangles, triangles + made, reverseWinding);
    }
    return made;
}

// Zero-filled room for `count` records; null when there are none.
template <typename T>
T *allocateArray(std::size_t count) {
    return count == 0 ? nullptr : static_cast<T *>(calloc(count, sizeof(T)));
}

// The record of three floats with the given index.
float *record(float *array, int index) {
    return array + 3 * static_cast<std::ptrdiff_t>(index);
}

// Counts one more record and returns its place, or null where the array is full: a last line
// that is too short without its end is no line to the counting pass, and a file may grow
// between the passes.
float *nextRecord(float *array, int capacity, int &used) {
    const int index = used++;
    return index < capacity ? record(array, index) : nullptr;
}

}  // namespace

void objReader::release() {
    free(vertices);
    free(normals);
    free(texCoords);
    free(faces);
    vertices = normals = texCoords = nullptr;
    faces = nullptr;
}

bool objReader::allocate(std::size_t triangleRoom) {
    const auto floats = [](int count) { return 3 * static_cast<std::size_t>(count); };
    vertices = allocateArray<float>(floats(vertexCount));
    normals = allocateArray<float>(floats(normalCount));
    texCoords = allocateArray<float>(floats(texCoordCount));
    faces = allocateArray<objFace>(triangleRoom);
    return (vertices != nullptr || vertexCount == 0) && (normals != nullptr || normalCount == 0) &&
           (texCoords != nullptr || texCoordCount == 0) && (faces != nullptr || triangleRoom == 0);
}

void objReader::growBox(const float *vertex) {
    if (vertex == vertices) {
        maxX = minX = vertex[0];
        maxY = minY = vertex[1];
        maxZ = minZ = vertex[2];
        return;
    }
    maxX = std::max(maxX, vertex[0]);
    minX = std::min(minX, vertex[0]);
    maxY = std::max(maxY, vertex[1]);
    minY = std::min(minY, vertex[1]);
    maxZ = std::max(maxZ, vertex[2]);
    minZ = std::min(minZ, vertex[2]);
}

void objReader::widenBox() {
    for (float *bound : {&maxX, &maxY, &maxZ}) {
        *bound = static_cast<float>(*bound + BOX_MARGIN * std::fabs(*bound));
    }
    for (float *bound : {&minX, &minY, &minZ}) {
        *bound = static_cast<float>(*bound - BOX_MARGIN * std::fabs(*bound));
    }
}

void objReader::loadObj(const char *filename) {
    maxZ = UNSET_MAX_Z;
    const File file(fopen(filename, "r"));
    if (!file) {
        error = OBJ_NOT_OPENED;
        return;
    }

    std::size_t triangleRoom = 0;
    const Counts counts = countLines(file.get(), triangleRoom);
    vertexCount = counts.vertices;
    normalCount = counts.normals;
    texCoordCount = counts.texCoords;
    triangleCount = 0;
    release();
    if (!allocate(triangleRoom)) {
        release();
        vertexCount = normalCount = texCoordCount = 0;
        error = OBJ_NO_MEMORY;
        return;
    }

    rewind(file.get());
    if (fill(file.get(), triangleRoom)) {
        widenBox();
    } else {
        error = OBJ_COUNTS_DIFFER;
    }
}

bool objReader::fill(FILE *file, std::size_t triangleRoom) {
    const Counts counts = {vertexCount, normalCount, texCoordCount};
    Counts used;
    std::size_t roomUsed = 0;
    bool flip = false;
    char text[LINE_BUFFER];
    while (readLine(file, text)) {
        const auto [keyword, rest] = cutKeyword(text);
        if (strcmp(keyword, "v") == 0) {
            if (float *v = nextRecord(vertices, vertexCount, used.vertices)) {
                (void)sscanf(rest, "%f%f%f", &v[0], &v[1], &v[2]);
                growBox(v);
            }
        } else if (strcmp(keyword, "vn") == 0) {
            if (float *n = nextRecord(normals, normalCount, used.normals)) {
                (void)sscanf(rest, "%f%f%f", &n[0], &n[1], &n[2]);
            }
        } else if (strcmp(keyword, "vt") == 0) {
            if (float *t = nextRecord(texCoords, texCoordCount, used.texCoords)) {
                (void)sscanf(rest, "%f%f", &t[0], &t[1]);
            }
        } else if (strcmp(keyword, "f") == 0) {
            roomUsed += triangleRoomOf(rest);
            const Polygon polygon = parseFace(rest);
            if (roomUsed <= triangleRoom && drawable(polygon, counts)) {
                triangleCount += makeTriangles(polygon, flip, faces + triangleCount);
            }
        } else if (strcmp(keyword, "g") == 0) {
            flip = strcmp(rest, "Facets_8\n") == 0;
        }
    }
    return used == counts && roomUsed == triangleRoom;
}

void objReader::centerObject() {
    if (error != OBJ_OK) {
        return;
    }
    const float centre[3] = {(maxX - minX) * 0.5F + minX, (maxY - minY) * 0.5F + minY,
                             (maxZ - minZ) * 0.5F + minZ};
    for (int i = 0; i < vertexCount; ++i) {
        for (int axis = 0; axis < 3; ++axis) {
            record(vertices, i)[axis] -= centre[axis];
        }
    }
    float *bounds[3][2] = {{&minX, &maxX}, {&minY, &maxY}, {&minZ, &maxZ}};
    for (int axis = 0; axis < 3; ++axis) {
        *bounds[axis][0] -= centre[axis];
        *bounds[axis][1] -= centre[axis];
    }
}

void objReader::resizeObject() {
    const float scale = 1 / std::max({0.0F, -minX, -minY, -minZ, maxX, maxY, maxZ});
    std::for_each(vertices, record(vertices, vertexCount), [scale](float &f) { f *= scale; });
    for (float *bound : {&maxX, &minX, &maxY, &minY, &maxZ, &minZ}) {
        *bound *= scale;
    }
}

void objReader::displayObj() const {
    if (error != OBJ_OK) {
        return;
    }
    for (const objFace *face = faces; face != faces + triangleCount; ++face) {
        glBegin(GL_POLYGON);
        for (int corner = 0; corner < 3; ++corner) {
            if (normals != nullptr) {
                const float *n = record(normals, face->normal[corner]);
                glNormal3f(n[0], n[1], n[2]);
            }
            if (texCoords != nullptr) {
                const float *t = record(texCoords, face->texCoord[corner]);
                glTexCoord3f(t[0], t[1], t[2]);
            }
            const float *v = record(vertices, face->vertex[corner]);
            glVertex3f(v[0], v[1], v[2]);
        }
        glEnd();
    }
}

void objReader::getBoundingVolume(float *outMinX, float *outMaxX, float *outMinY, float *outMaxY,
                                  float *outMinZ, float *outMaxZ) const {
    if (error != OBJ_OK) {
        return;
    }
    *outMinX = minX;
    *outMaxX = maxX;
    *outMinY = minY;
    *outMaxY = maxY;
    *outMinZ = minZ;
    *outMaxZ = maxZ;
}

int objReader::getVertexCount() const {
    return error == OBJ_OK ? vertexCount : 0;
}

int objReader::getTriangleCount() const {
    return error == OBJ_OK ? triangleCount : 0;
}

int objReader::getError() const {
    return error;
}

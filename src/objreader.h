#pragma once

#include <cstddef>
#include <cstdio>

// One triangle as zero-based indices into the reader's three arrays. Corners 0
// to 2 are drawn; corner 3 is the polygon's fourth one in the first triangle that it
// was split into, else 0. An absent index is 0 and refers to the first entry.
struct objFace {
    int vertex[4];
    int normal[4];
    int texCoord[4];
};

// What went wrong; kept in objReader::error.
enum Obj_Error { OBJ_OK = 0, OBJ_COUNTS_DIFFER = 2, OBJ_NOT_OPENED = 4, OBJ_NO_MEMORY = 8 };

// Reads a subset of the Wavefront OBJ text format and draws it.
//
// Understood: "v", "vn" and "vt" lines, "f" lines of any number of corners (as
// v/t/n, v//n, v/t or v; a polygon becomes a fan of triangles) and "g" lines: in
// the group "Facets_8" faces are wound the other way round. A blank is a space
// only; everything else is ignored, and a malformed number reads as 0. Lines are
// read in pieces of at most 79 characters, each a line of its own. Indices count
// from 1 over the whole file. A face of fewer than three corners keeps index 0 for the
// missing ones. A face with an index outside an array that the file
// has is dropped; where the file has no such array the index is never used.
//
// The file is read twice: the first pass counts its lines, the second fills the arrays. Only the
// first passes over lines shorter than 3 characters. Where such a line is "v ", "vn" or "vt", as
// the last one of a file can be, or where the file changes between the passes, the counts
// differ, which is an error. What was not counted is not kept.
//
// An object that has failed stays failed: later loads fill its arrays, but it
// centres and draws nothing. Nothing is printed.
class objReader {
public:
    objReader() = default;
    // It owns its arrays.
    objReader(const objReader &) = delete;
    objReader &operator=(const objReader &) = delete;

    // Reads the file in place of the previous model and measures its box, widened
    // by a tenth of each bound's magnitude, outward. Sets `error` on failure.
    void loadObj(const char *filename);

    // Moves the model so that the (widened) box is centred on the origin.
    void centerObject();

    // Scales the model by 1 / the largest distance of a side of the box from the
    // origin, so that it fits in -1..1. Without any extent the result is not finite.
    void resizeObject();

    // Emits every triangle as a polygon of its own, with the normals and texture
    // coordinates that the file has. Touches no other state.
    void displayObj() const;

    // Writes the box, unless an error is set.
    void getBoundingVolume(float *outMinX, float *outMaxX, float *outMinY, float *outMaxY,
                           float *outMinZ, float *outMaxZ) const;

    int getVertexCount() const;    // 0 if an error is set
    int getTriangleCount() const;  // 0 if an error is set
    int getError() const;          // Obj_Error

    // The arrays are owned and released by the next load only: the last model
    // stays until the process ends. Null where the file has no such entries.
    float *vertices = nullptr;   // 3 floats each: x, y, z, model units
    float *normals = nullptr;    // 3 floats each
    float *texCoords = nullptr;  // 3 floats each: u, v, 0
    objFace *faces = nullptr;    // one per triangle
    int vertexCount = 0;
    int normalCount = 0;
    int texCoordCount = 0;
    int triangleCount = 0;
    float maxX = 0;
    float minX = 0;
    float maxY = 0;
    float minY = 0;
    float maxZ = 0;
    float minZ = 0;
    int error = OBJ_OK;

private:
    void release();
    bool allocate(std::size_t triangleRoom);
    // The second pass; false if the counts differ.
    bool fill(FILE *file, std::size_t triangleRoom);
    void growBox(const float *vertex);
    void widenBox();
};

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <filesystem>
#include <numeric>
#include <set>
#include <span>
#include <string>

#include "game_objects.h"
#include "recording_gl.h"
#include "texture.h"
#include "vector3f.h"

namespace {

// Twice the area of a triangle, square model units. The smallest ones that are meant are the
// anchors, which only widen a model's box so that it is centred where it should be.
constexpr float SMALLEST_AREA = 5e-7F;
constexpr double DARKEST = 8;   // mean of a picture's bytes, 0 to 255
constexpr float SLACK = 0.05F;  // model units that no eye and no step notices

Vector3f record(const float *array, int index) {
    const float *r = array + std::ptrdiff_t{3} * index;
    return {r[0], r[1], r[2]};
}

// Every triangle has an area and faces the side to which its normals point, and every place and
// texture coordinate belongs to a triangle. A wrong index in a file breaks one of these in most
// cases.
TEST(Data, ModelsAreSoundAndStandOnTheGroundWithinTheirRoomAndBudget) {
    // clang-format off
    const struct {
        const char *file;
        int budget;                    // triangles
        float ground;                  // model units, as the others
        float minX, maxX, depth, top;  // room, along z both ways, for what is below `top`
    } models[] = {
        {"house1.obj",           80,   -1.7F,  -1.9F,     2,  2.5F, 99},
        {"house2.obj",          100,   -1.7F,  -3.2F,  2.8F,  3.9F, 99},
        {"house3.obj",          120,   -1.7F,  -5.2F,  4.3F,  4.9F, 99},
        {"introCube.obj",       100,   -0.6F,  -0.6F,  0.6F,  0.6F, 99},
        {"Tree.obj",            300,   -3.6F,     -1,     1,     1, -1},
        {"castleMAPPED.obj",   2000, -1.567F, -3.33F, 6.33F, 4.67F, 99},
        {"TreeBackground.obj",  800,   -0.5F,  -8.5F,  8.5F,     6, 99},
        {"NPC.obj",             500, -2.333F, -1.67F, 1.67F, 1.67F, 99},
    };
    // clang-format on
    for (const auto &m : models) {
        SCOPED_TRACE(m.file);
        o.loadObj((std::string(DATA_FOLDER "/") + m.file).c_str());
        o.centerObject();
        ASSERT_EQ(o.getError(), OBJ_OK);
        EXPECT_GE(o.getTriangleCount(), 12);
        EXPECT_LE(o.getTriangleCount(), m.budget);
        EXPECT_TRUE(o.normalCount > 0 && o.texCoordCount > 0) << "it is lit and textured";
        std::set<int> vertices;
        std::set<int> texCoords;
        int sunk = 0;
        float lowest = m.top;
        for (const objFace &f : std::span(o.faces, o.faces + o.triangleCount)) {
            Vector3f corners[3];
            Vector3f normal;
            for (int i = 0; i < 3; ++i) {
                corners[i] = record(o.vertices, f.vertex[i]);
                normal = normal + record(o.normals, f.normal[i]);
                vertices.insert(f.vertex[i]);
                texCoords.insert(f.texCoord[i]);
            }
            const Vector3f area = (corners[1] - corners[0]) * (corners[2] - corners[0]);
            EXPECT_GT(area.norm(area), SMALLEST_AREA) << "triangle " << &f - o.faces;
            EXPECT_GT(normal % area, 0) << "triangle " << &f - o.faces << " is turned away";
            const float low = std::min({corners[0].y, corners[1].y, corners[2].y});
            if (low < m.ground - SLACK) {
                ++sunk;
                continue;
            }
            lowest = std::min(lowest, low);
            for (const Vector3f &c : corners) {
                EXPECT_TRUE(c.y > m.top || (c.x > m.minX - SLACK && c.x < m.maxX + SLACK &&
                                            std::fabs(c.z) < m.depth + SLACK))
                    << "out of its room at " << c.x << ", " << c.y << ", " << c.z;
            }
        }
        EXPECT_EQ(vertices.size(), static_cast<std::size_t>(o.vertexCount)) << "one is left out";
        EXPECT_EQ(texCoords.size(), static_cast<std::size_t>(o.texCoordCount));
        EXPECT_NEAR(lowest, m.ground, SLACK) << "stands on the ground";
        EXPECT_LE(sunk, 1) << "triangles below the ground: only one may anchor the box";
    }
}

TEST(Data, PicturesArePackedPowersOfTwoAndNotBlack) {
    int pictures = 0;
    for (const auto &file : std::filesystem::directory_iterator(DATA_FOLDER)) {
        if (file.path().extension() != ".bmp") {
            continue;
        }
        SCOPED_TRACE(file.path());
        ++pictures;
        recording::gl = {};
        ASSERT_GT(LoadBitmap(file.path().c_str()), 0);
        const recording::Texture &loaded = recording::gl.textures.at(num_texture);
        const std::size_t bytes = loaded.pixels.size();
        EXPECT_TRUE(std::has_single_bit(unsigned(loaded.width)) && std::has_single_bit(bytes / 3));
        EXPECT_EQ(file.file_size(), 54 + bytes) << "more than packed pixels of 24 bits";
        EXPECT_GT(std::accumulate(loaded.pixels.begin(), loaded.pixels.end(), 0.0),
                  DARKEST * static_cast<double>(bytes))
            << "it is black";
    }
    EXPECT_EQ(pictures, 15);
}

}  // namespace

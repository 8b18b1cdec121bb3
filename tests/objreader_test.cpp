#include "objreader.h"

#include <gmock/gmock.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <span>
#include <tuple>
#include <vector>

#include "recording_gl.h"
#include "temp_files.h"

namespace {

std::function<void()> betweenPasses = [] {};

}  // namespace

// Stands in for the C library's, which the reader calls between its passes.
void rewind(FILE *stream) {
    betweenPasses();
    fseek(stream, 0, SEEK_SET);
    clearerr(stream);
}

namespace {

using testing::ElementsAre;
using testing::FloatNear;
using testing::Pointwise;

constexpr float NEAR = 0.005F;

// A reader that frees its arrays; the game's keeps them until the process ends.
struct Reader : objReader {
    explicit Reader(const std::string &content) { load(content); }
    ~Reader() {
        free(vertices);
        free(normals);
        free(texCoords);
        free(faces);
    }

    void load(const std::string &content) { loadObj(Temp_File(content).name()); }

    // Corners 0 to 2 of every triangle as digits: vertices/texture coordinates/normals.
    std::string triangles() const {
        std::string text;
        for (const objFace &f : std::span(faces, faces + triangleCount)) {
            for (const int *i : {f.vertex, f.texCoord, f.normal}) {
                text += i != f.vertex ? "/" : text.empty() ? "" : " ";
                text += std::to_string(i[0]) + std::to_string(i[1]) + std::to_string(i[2]);
            }
        }
        return text;
    }
};

std::string repeat(const std::string &text, int times, std::string before = "") {
    while (times-- > 0) {
        before += text;
    }
    return before;
}

TEST(ObjReader, TurnsFaceLinesIntoTriangles) {
    const std::string arrays = repeat("v 1 2 3\nvt 0 1\nvn 0 1 0\n", 8);
    // clang-format off
    const std::pair<std::string, std::string> cases[] = {
        {"f 2 3 4", "123/000/000"},
        {"f 1/4/7 2/5/8 3/6/1", "012/345/670"},
        {"f 1//4 2//5 3//6", "012/000/345"},
        {"f 1/4 2/5 3/6", "012/345/000"},
        {"f 1/2/3 2//4 3/5 4", "012/104/230 023/140/200"},  // forms fall through,
        {"f 1 2/3/4 3//5", "012/000/000"},                  // but not back
        {"f 010/0x2/0x3 0x4//0x3 0x5/0x1 01", "734/100/220 740/100/200"},  // octal, hexadecimal
        {"f 1/1/1 2/2/2 3/3/3 4/4/4", "012/012/012 023/023/023"},
        {"f 1 2 3 4 5", "012/000/000 023/000/000 034/000/000"},
        {"g Facets_8\nf 1/2/3 4/5/6 7/8/1", "306/417/520"},
        {"g Facets_8\nf 1 2 3 4", "102/000/000 203/000/000"},
        {"g Facets_8\nf 1 2 3\ng other\nf 1 2 3", "102/000/000 012/000/000"},
        {"g Facets_8 \nf 1 2 3\ng Facets_8\r\nf 1 2 3", "012/000/000 012/000/000"},
        {"g Facets_8\ng\nf 1 2 3", "102/000/000"},
        {"f 1  2 3", "011/000/000 012/000/000"},  // after each blank the next number
        {"f 1 2 3  ", "012/000/000"},
        {"f 3 2\nf \nf 4 x 5 6", "210/000/000 000/000/000 300/000/000"},
        {"f\t1 2 3\nfo 1 2 3\n# f 1 2 3", ""},
        {"f 1 2 9\nf 0 1 2\nf -1 1 2\nf 1/9 2 3\nf 1//9 2//1 3//1\nf 1 2 3 9\nf 3 2 1", "210/000/000"},
        {"f 1 2 2147483647\nf 1 2 -2147483648\nf 0x80000000 1 2", ""},
        {repeat(" 2/2/2", 11, "f 1/1/1") + " 3", repeat("011/011/011 ", 10) + "012/010/010"},
        {repeat(" ", 72, "f 1 2 3") + "f 4 5 6", "012/000/000 345/000/000"},  // a second piece
    };
    // clang-format on
    for (const auto &[lines, triangles] : cases) {
        EXPECT_EQ(Reader(arrays + lines).triangles(), triangles) << lines;
        EXPECT_EQ(Reader(lines + "\n" + arrays).triangles(), triangles) << lines << " come first";
    }
    EXPECT_EQ(Reader("v 1 2 3\nf 1/5/5 1 1\n").triangles(), "000/400/400")
        << "indices into arrays that the file lacks";
}

TEST(ObjReader, ReadsNumbersAfterTheKeyword) {
    const Reader r(
        "v 1 2 3\nvt 0.5 0.25 7\nvn1 2 3\nvnx 4 5 6\nv 1e1 abc 3\nvt\t.5\nv\t9 9 9\nvp 1 2\n" +
        repeat(" ", 78, "v") + "7 8 9\n");
    EXPECT_EQ(r.getVertexCount(), 3);
    EXPECT_THAT(std::vector(r.vertices, r.vertices + 9), ElementsAre(1, 2, 3, 10, 0, 0, 0, 0, 0));
    EXPECT_THAT(std::vector(r.normals, r.normals + 6), ElementsAre(2, 3, 0, 4, 5, 6));
    EXPECT_THAT(std::vector(r.texCoords, r.texCoords + 6), ElementsAre(.5F, .25F, 0, .5F, 0, 0));
    for (int length = 1; length < 170; ++length) {
        const Reader longLine(repeat(" ", length - 1, "#") + "v 1 2 3\n");
        EXPECT_EQ(longLine.vertexCount, length % 79 == 0) << length << " characters before";
    }
}

TEST(ObjReader, WidensTheBoxOutwardAndCentresIt) {
    Reader r("v 1000 5000 -8500\nv 4000 10000 -9000\nv -2000 0 -8000\n");
    const auto expect = [&r](const std::vector<float> &box, const std::vector<float> &last) {
        float b[6];
        r.getBoundingVolume(&b[0], &b[1], &b[2], &b[3], &b[4], &b[5]);
        EXPECT_THAT(b, Pointwise(FloatNear(NEAR), box));
        EXPECT_THAT(std::vector(r.vertices + 6, r.vertices + 9), Pointwise(FloatNear(NEAR), last));
    };
    expect({-2200, 4400, 0, 11000, -9900, -7200}, {-2000, 0, -8000});
    r.centerObject();
    expect({-3300, 3300, -5500, 5500, -1350, 1350}, {-3100, -5500, 550});
    r.resizeObject();
    expect({-0.6F, 0.6F, -1, 1, -0.2455F, 0.2455F}, {-0.5636F, -1, 0.1F});

    Reader offCentre("v -1000 0 0\nv 100 0 0\n");
    offCentre.resizeObject();
    EXPECT_EQ(offCentre.minX, -1) << "the farthest side may be a negative one";
    Reader far("v 0 0 1000\nv 0 0 900\n");
    far.resizeObject();
    EXPECT_EQ(far.maxZ, 1) << "or any other one";
}

TEST(ObjReader, LastLineWithoutItsEndMakesTheCountsDiffer) {
    for (const std::string end : {"v ", "vn", "vt"}) {
        const Reader r("v 1 2 3\nf 1 1 1\n" + end);
        EXPECT_EQ(r.error, OBJ_COUNTS_DIFFER) << end;
        EXPECT_EQ(r.maxX, 1) << "the box stays as read";
        EXPECT_EQ(r.triangles(), "000/000/000") << end;
    }
    EXPECT_EQ(Reader("v 1 2 3\nv 4 5 6").error, OBJ_OK) << "long enough without its end";
    EXPECT_EQ(Reader("v \nvn\nvt\n").error, OBJ_OK) << "long enough with it";
    for (const std::string &end : {std::string("f"), std::string("f "), std::string("f\0\n", 3)}) {
        EXPECT_EQ(Reader("v 1 2 3\n" + end).triangles(), "000/000/000") << "a face without corners";
    }
}

TEST(ObjReader, AFileThatGrowsWhileItIsReadMakesTheCountsDiffer) {
    const std::string lines[] = {repeat("f 1 1 1\n", 5000), "v 1 2 3\n", "vn 1 2 3\n", "vt 1 2\n"};
    for (const std::string &line : lines) {
        const Temp_File file("v 1 2 3\nf 1 1 1\n");
        Reader r("v 1 2 3\n");
        betweenPasses = [&] { std::ofstream(file.name(), std::ios::app) << line; };
        r.loadObj(file.name());
        betweenPasses = [] {};
        EXPECT_EQ(r.error, OBJ_COUNTS_DIFFER) << line.substr(0, 8);
        EXPECT_EQ(r.triangleCount, 1) << line.substr(0, 8);
        EXPECT_EQ(r.vertexCount, 1) << line.substr(0, 8);
    }
}

TEST(ObjReader, StaysFailed) {
    recording::gl = {};
    Reader r("v 1 2 3\nv 4 5 6\nf 1 1 1\n");
    r.loadObj("no/such/file");
    EXPECT_EQ(r.maxZ, -3000);
    EXPECT_EQ(r.vertices[5], 6) << "the previous model is still there";
    r.load("v 7 8 9\nf 1 1 1\n");
    float box = 5;
    r.getBoundingVolume(&box, &box, &box, &box, &box, &box);
    r.centerObject();
    r.displayObj();
    EXPECT_EQ(r.getError(), OBJ_NOT_OPENED);
    EXPECT_EQ(r.getVertexCount() + r.getTriangleCount(), 0);
    EXPECT_EQ(r.vertices[0], 7) << "later loads fill the arrays, and that is all";
    EXPECT_TRUE(box == 5 && recording::gl.drawings.empty());
}

}  // namespace

#include "texture.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <climits>
#include <numeric>
#include <regex>

#include "assets.h"
#include "recording_gl.h"
#include "temp_files.h"

namespace {

class Assets : public testing::Test {
protected:
    Assets() { recording::gl = {}; }
    ~Assets() override { EXPECT_TRUE(recording::faults().empty()); }
};

struct Picture {
    int width = 2, height = 2, planes = 1, bitsPerPixel = 24;
    std::size_t bytes = 12;  // of pixels: 0, 1, 2, ...

    // Fields that are not looked at hold nonsense.
    std::string file() const {
        std::string text(54 + bytes, '?');
        std::iota(text.begin() + 54, text.end(), 0);
        const auto put = [&text](std::size_t at, int number, int size) {
            for (int i = 0; i < size; ++i) {
                text[at + i] = static_cast<char>(number >> (8 * i));
            }
        };
        put(18, width, 4);
        put(22, height, 4);
        put(26, planes, 2);
        put(28, bitsPerPixel, 2);
        return text;
    }
};

// That the process has ever had, KiB.
long mostMemory() {
    rusage used;
    getrusage(RUSAGE_SELF, &used);
    return used.ru_maxrss;
}

TEST_F(Assets, PicturesLoadAsRedGreenBlue) {
    // Widths of 3 and 1 too: their rows are packed, and OpenGL must find the last one whole.
    for (int width : {64, 3, 1}) {
        const Temp_File file(Picture{.width = width, .bytes = std::size_t{6} * width}.file());
        const int name = LoadBitmap(file.name());
        EXPECT_EQ(static_cast<unsigned>(name), num_texture);
        EXPECT_EQ(recording::gl.state.texture, num_texture) << "left bound";
        const recording::Texture &loaded = recording::gl.textures.at(num_texture);
        EXPECT_EQ(std::pair(loaded.width, loaded.height), std::pair(width, 2));
        EXPECT_EQ(std::vector(loaded.pixels.begin(), loaded.pixels.begin() + 3),
                  (std::vector<unsigned char>{2, 1, 0}));
        EXPECT_TRUE(loaded.mipmaps);
    }
}

TEST_F(Assets, BadPicturesLeaveALineAndNoTexture) {
    const std::string unreadable = "Error reading image data from FILE.\n";
    const std::string tooBig = "Error allocating memory for color-corrected image data\n";
    const std::pair<Picture, std::string> cases[] = {
        {{.planes = 2, .bitsPerPixel = 8}, "Planes from FILE is not 1: 2\n"},
        {{.planes = 65535}, "Planes from FILE is not 1: 65535\n"},
        {{.bitsPerPixel = 8}, "Bpp from FILE is not 24: 8\n"},
        {{.bytes = 11}, unreadable},
        {{.width = 0}, unreadable},
        {{.height = 0}, unreadable},
        {{.height = -2}, tooBig},
        {{.width = INT_MAX, .height = INT_MAX}, tooBig},
        {{.width = INT_MIN, .height = INT_MAX}, tooBig},
        {{.width = 1 << 14, .height = 1 << 14}, unreadable},
    };
    const long memory = mostMemory();
    for (const auto &[picture, line] : cases) {
        const Temp_File file(picture.file());
        testing::internal::CaptureStdout();
        EXPECT_EQ(LoadBitmap(file.name()), 0) << line;
        EXPECT_EQ(testing::internal::GetCapturedStdout(),
                  std::regex_replace(line, std::regex("FILE"), file.name()));
    }
    testing::internal::CaptureStdout();
    EXPECT_EQ(LoadBitmap("no/such/file"), -1);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    testing::internal::CaptureStdout();
    for (std::size_t length : {0, 20, 27, 28, 40, 54}) {
        const Temp_File file(Picture().file().substr(0, length));
        EXPECT_EQ(LoadBitmap(file.name()), 0) << "cut after " << length << " bytes";
    }
    const std::string printed = testing::internal::GetCapturedStdout();
    EXPECT_EQ(std::count(printed.begin(), printed.end(), '\n'), 6) << "a line each";
    EXPECT_TRUE(recording::gl.textures.empty());
    EXPECT_LT(mostMemory() - memory, 200 * 1024) << "touched for pixels that never came";
}

// Sizes whose product, cut to 32 bits, would be room for a small part of the pixels.
TEST_F(Assets, PixelsBeyondTheMachinesSizesHaveNoRoom) {
    EXPECT_EQ(pixelRoom(65537, 65537, INT32_MAX), 0U);
    EXPECT_EQ(pixelRoom(-65537, -65537, INT32_MAX), 0U);
    EXPECT_EQ(pixelRoom(1 << 16, 1 << 16, UINT32_MAX), 0U) << "0 bytes";
    const std::size_t room = pixelRoom(3, 5, INT32_MAX);
    EXPECT_GE(room, 5U * 12U) << "five rows of 9 bytes, padded";
    EXPECT_EQ(pixelRoom(3, 5, room), room) << "the limit itself fits";
    EXPECT_EQ(pixelRoom(3, 5, room - 1), 0U);
    EXPECT_LE(pixelRoom(0, INT_MAX, SIZE_MAX), 4U) << "no pixels take no room";
}

TEST_F(Assets, AModelBeyondTheLastSlotHasNoTexture) {
    const Temp_File picture(Picture().file());
    const Temp_File model("v 0 0 0\nv 10 0 0\nv 0 10 0\nf 1 2 3\n");
    unsigned list = 77;
    texture_back = TEXTURE_SLOTS - 1;
    loadModel(TEXTURE_ONLY, model.name(), picture.name(), list);
    EXPECT_EQ(std::pair(list, texture_back), std::pair(77U, TEXTURE_SLOTS)) << "no list either";
    loadModel(OBJ_MODEL, model.name(), picture.name(), list);
    EXPECT_EQ(texture_back, TEXTURE_SLOTS);
    glBindTexture(GL_TEXTURE_2D, texture[TEXTURE_SLOTS - 1]);
    glCallList(list);
    ASSERT_EQ(recording::gl.drawings.size(), 1U);
    EXPECT_EQ(recording::gl.drawings[0].state.texture, texture[TEXTURE_SLOTS - 1]) << "binds none";
}

}  // namespace

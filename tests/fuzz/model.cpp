// A model file, read and drawn as the game does it.

#include <cstdint>
#include <cstdlib>

#include "objreader.h"
#include "recording_gl.h"
#include "temp_files.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const Temp_File file(std::string(data, data + size));
    recording::gl = {};
    objReader reader;
    reader.loadObj(file.name());
    reader.centerObject();
    reader.displayObj();
    reader.resizeObject();
    free(reader.vertices);
    free(reader.normals);
    free(reader.texCoords);
    free(reader.faces);
    return recording::faults().empty() ? 0 : (abort(), 0);
}

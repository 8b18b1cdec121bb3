// A model file, read and drawn as the game does it.

#include <cstdlib>

#include "objreader.h"
#include "recording_gl.h"
#include "target.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const Input_File file(data, size);
    recording::reset();
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

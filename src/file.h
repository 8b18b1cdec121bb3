#pragma once

#include <cstdio>
#include <memory>

struct Close_File {
    void operator()(FILE *stream) const { fclose(stream); }
};

// An open stream, or none; closes itself.
using File = std::unique_ptr<FILE, Close_File>;

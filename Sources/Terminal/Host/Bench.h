#pragma once

#include "Terminal/Core/Terminal.h"

#include <string>
#include <vector>

namespace corvane::terminal {

struct BenchOptions {
    Size size;
    Config config;
    size_t chunk = 65536;
    int runs = 3;
};

/// Feeds the file to a new terminal `runs` times and returns the best run as a JSON object.
std::string benchFile(const std::string& path, const BenchOptions& options);

}

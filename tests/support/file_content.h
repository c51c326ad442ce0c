// The bytes of a file.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace QMT {

// With std::ios::in the system's line breaks come as line feeds.
inline std::string ContentOf(std::filesystem::path const& file, std::ios::openmode mode = std::ios::binary) {
    std::ifstream stream(file, mode);
    return stream ? std::string(std::istreambuf_iterator<char>(stream), {}) : "no file";
}

} // namespace QMT

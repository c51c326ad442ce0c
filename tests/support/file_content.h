// The bytes of a file.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace QMT {

inline std::string ContentOf(std::filesystem::path const& file) {
    std::ifstream stream(file, std::ios::binary);
    return stream ? std::string(std::istreambuf_iterator<char>(stream), {}) : "no file";
}

} // namespace QMT

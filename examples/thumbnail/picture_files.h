// Pictures from files and into them.
#pragma once

#include <cstddef>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

namespace Thumbnail {

// Rows of pixels of three bytes, blue, green and red, without gaps.
struct Picture {
    unsigned int width = 0;
    unsigned int height = 0;
    std::vector<unsigned char> bytes;

    Picture() = default;

    // All black.
    Picture(unsigned int columns, unsigned int rows)
        : width(columns), height(rows), bytes(std::size_t{3} * columns * rows) {}
};

// What the user is to be told; the text quotes the file's name.
class Failure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// A file's name in messages.
std::string Quoted(std::filesystem::path const& name);

// Of more pixels no picture is read or written.
constexpr std::size_t mostPixels = 100'000'000;

// Reads a PNG or JPEG file; transparent pixels lie on white. Throws Failure, for a damaged or cut picture
// too.
Picture ReadPicture(std::filesystem::path const& name);

// Makes the picture the whole content of a PNG file. It is written beside its final name, in
// .thumbnail-<digits>.part, and renamed when it is complete. Throws Failure, also for a name that stands for
// anything but a regular file, such as a device; the file is then what it was.
void WritePicture(std::filesystem::path const& name, Picture const& picture);

} // namespace Thumbnail

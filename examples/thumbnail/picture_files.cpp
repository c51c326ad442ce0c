#include "picture_files.h"

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>
#include <random>
#include <string_view>
#include <system_error>

#include <png.h>

#include "jpeg_reader.h"

namespace Thumbnail {

namespace {

namespace fs = std::filesystem;

using Bytes = std::vector<unsigned char>;

// Files of more bytes are not read: the largest picture has 800 million, uncompressed.
constexpr std::uintmax_t mostBytes = 1'000'000'000;

Bytes ContentOf(fs::path const& name) {
    std::error_code error;
    fs::file_status const status = fs::status(name, error);
    if (!fs::exists(status))
        throw Failure("can't read " + Quoted(name) + ": " + error.message());
    if (!fs::is_regular_file(status))
        throw Failure("can't read " + Quoted(name) + ": it is no regular file");
    if (fs::file_size(name, error) > mostBytes && !error)
        throw Failure(Quoted(name) + ": more than 1000 million bytes");
    std::ifstream stream(name, std::ios::binary);
    Bytes content{std::istreambuf_iterator<char>(stream), {}};
    if (!stream.is_open() || stream.bad())
        throw Failure("can't read " + Quoted(name));
    return content;
}

bool BeginsWith(Bytes const& content, std::string_view mark) {
    return content.size() >= mark.size() && std::memcmp(content.data(), mark.data(), mark.size()) == 0;
}

// libpng's state of one picture.
struct PngImage {
    PngImage() { image.version = PNG_IMAGE_VERSION; }

    PngImage(PngImage const&) = delete;
    PngImage& operator=(PngImage const&) = delete;

    ~PngImage() { png_image_free(&image); }

    png_image image{};
};

Picture ReadPng(fs::path const& name, Bytes const& content) {
    PngImage png;
    png_image& image = png.image;
    if (png_image_begin_read_from_memory(&image, content.data(), content.size()) == 0)
        throw Failure(Quoted(name) + ": " + image.message);
    if (std::size_t{image.width} * image.height > mostPixels)
        throw Failure(Quoted(name) + ": more than 100 million pixels");
    image.format = PNG_FORMAT_BGR;
    image.flags |= PNG_IMAGE_FLAG_16BIT_sRGB; // as those of 8 bits, where the file does not tell
    Picture picture(image.width, image.height);
    png_color const white{255, 255, 255};
    if (png_image_finish_read(&image, &white, picture.bytes.data(), 0, nullptr) == 0)
        throw Failure(Quoted(name) + ": " + image.message);
    return picture;
}

Bytes PngOf(fs::path const& name, Picture const& picture) {
    PngImage png;
    png_image& image = png.image;
    image.width = picture.width;
    image.height = picture.height;
    image.format = PNG_FORMAT_BGR;
    Bytes content(PNG_IMAGE_PNG_SIZE_MAX(image));
    png_alloc_size_t size = content.size();
    if (png_image_write_to_memory(&image, content.data(), &size, 0, picture.bytes.data(), 0, nullptr) == 0)
        throw Failure("can't write " + Quoted(name) + ": " + image.message);
    content.resize(size);
    return content;
}

// A file on its way, deleted unless it has been renamed.
class PartFile {
public:
    explicit PartFile(fs::path const& finalPath) {
        std::random_device random;
        std::string const digits = std::to_string(random()) + std::to_string(random());
        path = finalPath.parent_path() / (".thumbnail-" + digits + ".part");
    }

    PartFile(PartFile const&) = delete;
    PartFile& operator=(PartFile const&) = delete;

    ~PartFile() {
        std::error_code ignored;
        fs::remove(path, ignored);
    }

    std::error_code Write(Bytes const& content) const {
        errno = 0;
        std::ofstream stream(path, std::ios::binary);
        stream.write(reinterpret_cast<char const*>(content.data()),
                     static_cast<std::streamsize>(content.size()));
        stream.close();
        if (stream)
            return {};
        return {errno != 0 ? errno : EIO, std::generic_category()};
    }

    std::error_code RenameTo(fs::path const& finalPath) const {
        std::error_code error;
        fs::rename(path, finalPath, error);
        return error;
    }

private:
    fs::path path;
};

} // namespace

std::string Quoted(fs::path const& name) {
    return std::string(1, '"').append(name.string()).append(1, '"');
}

Picture ReadPicture(fs::path const& name) {
    Bytes const content = ContentOf(name);
    if (BeginsWith(content, "\x89PNG\r\n\x1A\n"))
        return ReadPng(name, content);
    if (BeginsWith(content, "\xFF\xD8\xFF"))
        return ReadJpeg(Quoted(name), content);
    throw Failure(Quoted(name) + " is no PNG or JPEG picture");
}

void WritePicture(fs::path const& name, Picture const& picture) {
    std::error_code ignored;
    if (fs::file_status const old = fs::status(name, ignored); fs::exists(old) && !fs::is_regular_file(old))
        throw Failure("can't write " + Quoted(name) + ": it is no regular file");
    Bytes const content = PngOf(name, picture);
    PartFile const part(name);
    std::error_code error = part.Write(content);
    if (!error)
        error = part.RenameTo(name);
    if (error)
        throw Failure("can't write " + Quoted(name) + ": " + error.message());
}

} // namespace Thumbnail

// A directory of its own for each test.
#pragma once

#include <filesystem>
#include <random>
#include <string>

#include "qmt/general/files.h"

namespace QMT {

namespace fs = std::filesystem;

// An empty directory, deleted with all that it holds at the end.
class TempDirectory {
public:
    TempDirectory() : place(fs::temp_directory_path() / MakeName()) { fs::create_directory(place); }

    TempDirectory(TempDirectory&&) = delete;

    ~TempDirectory() {
        std::error_code ignored;
        fs::remove_all(place, ignored);
    }

    fs::path const& Place() const { return place; }

    // The directory's path, or that of a name in it, as text.
    String Path() const { return DecodeFromUTF8(place.string().c_str(), false); }

    String Path(String const& name) const { return Path() + BaseFile::GetDirSeparator() + name; }

private:
    static std::string MakeName() {
        std::random_device random;
        return "qmt_test_" + std::to_string(random()) + "_" + std::to_string(random());
    }

    fs::path place;
};

} // namespace QMT

#include "output_file.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <random>
#include <string>
#include <system_error>

#include "failure.h"

namespace Audio {

namespace {

namespace fs = std::filesystem;

std::string SystemText(int error) {
    return std::generic_category().message(error);
}

// The number of what has just failed; something, in any case.
int LastError() {
    return errno == 0 ? EIO : errno;
}

fs::path ResolveFinalPath(fs::path const& path) {
    std::error_code error;
    fs::file_status const status = fs::status(path, error);
    if (status.type() == fs::file_type::not_found) {
        fs::path const target = fs::read_symlink(path, error);
        return error ? path : ResolveFinalPath(path.parent_path() / target);
    }
    if (status.type() == fs::file_type::none)
        throw Failure("cannot write " + Quoted(path) + ": " + error.message());
    if (!fs::is_regular_file(status))
        throw Failure("cannot write " + Quoted(path) + ": it is no regular file");
    fs::path const resolved = fs::canonical(path, error);
    return error ? path : resolved;
}

fs::path MakeTemporaryPath(fs::path const& finalPath) {
    std::random_device random;
    std::string const digits = std::to_string(random()) + std::to_string(random());
    return finalPath.parent_path() / (".audio_chain-" + digits + ".part");
}

// Fails when there is such a file already, so that nothing of others is overwritten. Gives the system's error
// number, 0 for none.
int CreateNew(fs::path const& path) {
    std::FILE* const file = std::fopen(path.string().c_str(), "wbx");
    if (file == nullptr)
        return LastError();
    return std::fclose(file) == 0 ? 0 : LastError();
}

void CopyPermissions(fs::path const& from, fs::path const& to) {
    std::error_code ignored;
    fs::file_status const status = fs::status(from, ignored);
    if (fs::exists(status))
        fs::permissions(to, status.permissions(), ignored);
}

} // namespace

OutputFile::OutputFile(fs::path const& path)
    : finalPath(ResolveFinalPath(path)), temporaryPath(MakeTemporaryPath(finalPath)) {
    if (int const error = CreateNew(temporaryPath))
        throw Failure("cannot write " + Quoted(finalPath) + ": " + SystemText(error));
    CopyPermissions(finalPath, temporaryPath);
    if (file.open(temporaryPath, std::ios::in | std::ios::out | std::ios::binary) == nullptr)
        firstError = LastError();
}

OutputFile::~OutputFile() {
    if (committed)
        return;
    file.close();
    std::error_code ignored;
    fs::remove(temporaryPath, ignored);
}

std::int64_t OutputFile::Write(void const* bytes, std::int64_t count) {
    errno = 0;
    std::int64_t written = 0;
    if (!moved || file.pubseekpos(position, std::ios::out) == std::streampos(position))
        written = std::max<std::int64_t>(file.sputn(static_cast<char const*>(bytes), count), 0);
    if (written < count && firstError == 0)
        firstError = LastError();
    moved = false;
    position += written;
    size = std::max(size, position);
    return written;
}

void OutputFile::Close() {
    errno = 0;
    if (file.close() == nullptr && firstError == 0)
        firstError = LastError();
    if (firstError != 0)
        ThrowWriteFailure();
}

void OutputFile::Commit() {
    std::error_code error;
    fs::rename(temporaryPath, finalPath, error);
    if (error)
        throw Failure("cannot write " + Quoted(finalPath) + ": " + error.message());
    committed = true;
}

void OutputFile::ThrowWriteFailure() const {
    throw Failure("cannot write " + Quoted(finalPath) + ": " + SystemText(firstError));
}

} // namespace Audio

#include "platform/files.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "platform/path_bytes_posix.h"
#include "platform/uninterrupted_posix.h"

namespace QMT::platform {

namespace {

namespace fs = std::filesystem;

using TextView = std::basic_string_view<CodeUnit>;

constexpr mode_t newFileMode = 0666; // less the user's mask

// What the system calls a failure to write that it does not explain.
constexpr SystemError unexplained = EIO;

bool HoldsZero(TextView path) {
    return path.find(CodeUnit()) != TextView::npos;
}

int FlagsFor(FileAccess access) {
    switch (access) {
    case FileAccess::Read:
        return O_RDONLY;
    case FileAccess::Rewrite:
        return O_WRONLY | O_CREAT;
    default:
        return O_WRONLY | O_CREAT | O_APPEND;
    }
}

SystemError ResultOf(int outcome) {
    return outcome < 0 ? LastSystemError() : 0;
}

SystemError ResultOf(std::error_code const& error) {
    return static_cast<SystemError>(error.value());
}

// Calls write(bytes, count, done) for what is left until all is written; done counts what is.
template <class Write>
SystemError WriteWhole(char const* bytes, std::size_t count, std::size_t& done, Write write) {
    while (done < count) {
        ssize_t const written = Uninterrupted([&] { return write(bytes + done, count - done, done); });
        if (written <= 0) {
            return written < 0 ? LastSystemError() : unexplained;
        }
        done += static_cast<std::size_t>(written);
    }
    return 0;
}

SystemError SizeOf(int file, std::uint64_t& bytes) {
    struct stat facts {};

    SystemError const error = ResultOf(::fstat(file, &facts));
    bytes = static_cast<std::uint64_t>(facts.st_size);
    return error;
}

SystemError Cut(int file, std::uint64_t size) {
    return ResultOf(Uninterrupted([&] { return ::ftruncate(file, static_cast<off_t>(size)); }));
}

// Cuts off the bytes just added behind the old size, if they still end the file. What cannot be taken back
// stays: the failure that led here is the one to report.
void TakeBack(int file, std::uint64_t oldSize, std::size_t added) {
    std::uint64_t size = 0;
    if (added > 0 && SizeOf(file, size) == 0 && size == oldSize + added) {
        Cut(file, oldSize);
    }
}

bool IsDirectory(int file) {
    struct stat facts {};

    return ::fstat(file, &facts) == 0 && S_ISDIR(facts.st_mode);
}

} // namespace

CodeUnit const dirSeparator = u'/';
CodeUnit const* const lineBreak = u"\n";

FileHandle::~FileHandle() {
    Close();
}

SystemError FileHandle::Open(TextView path, FileAccess access) {
    if (HoldsZero(path)) {
        return EINVAL;
    }
    std::string const name = ToPathBytes(path);
    int const file =
        Uninterrupted([&] { return ::open(name.c_str(), FlagsFor(access) | O_CLOEXEC, newFileMode); });
    if (file < 0) {
        return LastSystemError();
    }
    handle = file;
    if (IsDirectory(file)) {
        Close();
        return EISDIR;
    }
    return 0;
}

SystemError FileHandle::Close() noexcept {
    int const file = static_cast<int>(std::exchange(handle, -1));
    // An interrupted close has closed, and the number may be another thread's file by now.
    return file < 0 || ::close(file) == 0 || errno == EINTR ? 0 : LastSystemError();
}

SystemError FileHandle::Read(char* bytes, std::size_t capacity, std::size_t& count) noexcept {
    ssize_t const got = Uninterrupted([&] { return ::read(static_cast<int>(handle), bytes, capacity); });
    count = got < 0 ? 0 : static_cast<std::size_t>(got);
    return got < 0 ? LastSystemError() : 0;
}

SystemError FileHandle::WriteAt(std::uint64_t offset, char const* bytes, std::size_t count) noexcept {
    std::size_t done = 0;
    return WriteWhole(bytes, count, done, [&](char const* rest, std::size_t size, std::size_t before) {
        return ::pwrite(static_cast<int>(handle), rest, size, static_cast<off_t>(offset + before));
    });
}

SystemError FileHandle::Append(char const* bytes, std::size_t count) noexcept {
    std::uint64_t oldSize = 0;
    if (SystemError const error = Size(oldSize)) {
        return error;
    }
    std::size_t done = 0;
    SystemError const error =
        WriteWhole(bytes, count, done, [&](char const* rest, std::size_t size, std::size_t) {
            return ::write(static_cast<int>(handle), rest, size);
        });
    if (error) {
        TakeBack(static_cast<int>(handle), oldSize, done);
    }
    return error;
}

SystemError FileHandle::CutAt(std::uint64_t size) noexcept {
    std::uint64_t present = 0;
    SystemError const error = Size(present);
    return error || present <= size ? error : Cut(static_cast<int>(handle), size);
}

SystemError FileHandle::Size(std::uint64_t& bytes) const noexcept {
    return SizeOf(static_cast<int>(handle), bytes);
}

SystemError RemoveFile(TextView path) {
    return HoldsZero(path) ? SystemError{EINVAL} : ResultOf(::unlink(ToPathBytes(path).c_str()));
}

SystemError MakeDirectory(TextView path) {
    if (HoldsZero(path)) {
        return EINVAL;
    }
    std::error_code error;
    fs::create_directory(ToPathBytes(path), error);
    return ResultOf(error);
}

SystemError CheckDirectory(TextView path) {
    if (HoldsZero(path)) {
        return EINVAL;
    }
    std::error_code error;
    bool const isDirectory = fs::is_directory(ToPathBytes(path), error);
    return error || isDirectory ? ResultOf(error) : SystemError{ENOTDIR};
}

SystemError ListDirectory(TextView path, std::vector<DirectoryEntry>& entries) {
    if (HoldsZero(path)) {
        return EINVAL;
    }
    std::error_code error;
    for (fs::directory_iterator entry(ToPathBytes(path), error); !error && entry != fs::end(entry);
         entry.increment(error)) {
        std::error_code unknown; // a link that leads nowhere is no directory
        bool const isDirectory = entry->is_directory(unknown);
        entries.push_back({FromFileName(entry->path().filename().native()), isDirectory});
    }
    return ResultOf(error);
}

} // namespace QMT::platform

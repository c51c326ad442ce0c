#include "platform/files.h"

#include <windows.h>

#include <algorithm>
#include <memory>
#include <utility>

#include "platform/paths_windows.h"

namespace QMT::platform {

namespace {

using TextView = std::basic_string_view<CodeUnit>;

constexpr SystemError badPath = ERROR_INVALID_NAME;

// As an offset: wherever the end of the file is by then.
constexpr std::uint64_t endOfFile = ~std::uint64_t{0};

constexpr DWORD mostAtOnce = 1U << 30; // bytes

HANDLE ToHandle(std::intptr_t handle) {
    return reinterpret_cast<HANDLE>(handle); // NOLINT(performance-no-int-to-ptr): what a handle is
}

SystemError ResultOf(BOOL done) {
    return done ? 0 : LastSystemError();
}

// Calls work(path) with the path as the system takes it.
template <class Work>
SystemError AtPath(TextView path, Work work) {
    auto const systemPath = ToSystemPath(path);
    return systemPath ? work(*systemPath) : badPath;
}

DWORD NextPiece(std::size_t count) {
    return static_cast<DWORD>(std::min<std::size_t>(count, mostAtOnce));
}

// Writes all the bytes, one call for each piece; at an offset of endOfFile each goes to the end.
SystemError Write(HANDLE file, std::uint64_t offset, char const* bytes, std::size_t count,
                  std::size_t& done) {
    while (done < count) {
        std::uint64_t const place = offset == endOfFile ? endOfFile : offset + done;
        OVERLAPPED at{};
        at.Offset = static_cast<DWORD>(place);
        at.OffsetHigh = static_cast<DWORD>(place >> 32);
        DWORD written = 0;
        if (!WriteFile(file, bytes + done, NextPiece(count - done), &written, &at))
            return LastSystemError();
        if (written == 0)
            return ERROR_WRITE_FAULT;
        done += written;
    }
    return 0;
}

SystemError SizeOf(HANDLE file, std::uint64_t& bytes) {
    LARGE_INTEGER size{};
    SystemError const error = ResultOf(GetFileSizeEx(file, &size));
    bytes = static_cast<std::uint64_t>(size.QuadPart);
    return error;
}

SystemError Cut(HANDLE file, std::uint64_t size) {
    FILE_END_OF_FILE_INFO end{};
    end.EndOfFile.QuadPart = static_cast<LONGLONG>(size);
    return ResultOf(SetFileInformationByHandle(file, FileEndOfFileInfo, &end, sizeof end));
}

// Cuts off the bytes just added behind the old size, if they still end the file. What cannot be taken back
// stays: the failure that led here is the one to report.
void TakeBack(HANDLE file, std::uint64_t oldSize, std::size_t added) {
    std::uint64_t size = 0;
    if (added > 0 && SizeOf(file, size) == 0 && size == oldSize + added)
        Cut(file, oldSize);
}

bool IsDirectory(DWORD attributes) {
    return (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

struct CloseSearch {
    using pointer = HANDLE;

    void operator()(HANDLE search) const { FindClose(search); }
};

bool IsItselfOrParent(TextView name) {
    return name == L"." || name == L"..";
}

SystemError ListFitting(std::wstring const& pattern, std::vector<DirectoryEntry>& entries) {
    WIN32_FIND_DATAW found{};
    HANDLE const search =
        FindFirstFileExW(pattern.c_str(), FindExInfoBasic, &found, FindExSearchNameMatch, nullptr, 0);
    if (search == INVALID_HANDLE_VALUE) {
        SystemError const error = LastSystemError();
        return error == ERROR_FILE_NOT_FOUND ? 0 : error; // a drive's root may be empty
    }
    std::unique_ptr<HANDLE, CloseSearch> const closing(search);
    do {
        if (!IsItselfOrParent(found.cFileName))
            entries.push_back({found.cFileName, IsDirectory(found.dwFileAttributes)});
    } while (FindNextFileW(search, &found));
    SystemError const error = LastSystemError();
    return error == ERROR_NO_MORE_FILES ? 0 : error;
}

} // namespace

CodeUnit const dirSeparator = L'\\';
CodeUnit const* const lineBreak = L"\r\n";

FileHandle::~FileHandle() {
    Close();
}

SystemError FileHandle::Open(TextView path, FileAccess access) {
    bool const reads = access == FileAccess::Read;
    return AtPath(path, [&](std::wstring const& systemPath) {
        // Whoever comes later may do what he likes, rename and delete included.
        HANDLE const file =
            CreateFileW(systemPath.c_str(), reads ? GENERIC_READ : GENERIC_WRITE | FILE_READ_ATTRIBUTES,
                        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                        reads ? OPEN_EXISTING : OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (file == INVALID_HANDLE_VALUE)
            return LastSystemError();
        handle = reinterpret_cast<std::intptr_t>(file);
        return SystemError{};
    });
}

SystemError FileHandle::Close() noexcept {
    std::intptr_t const file = std::exchange(handle, -1);
    return file == -1 ? 0 : ResultOf(CloseHandle(ToHandle(file)));
}

SystemError FileHandle::Read(char* bytes, std::size_t capacity, std::size_t& count) noexcept {
    DWORD got = 0;
    SystemError const error = ResultOf(ReadFile(ToHandle(handle), bytes, NextPiece(capacity), &got, nullptr));
    count = got;
    return error;
}

SystemError FileHandle::WriteAt(std::uint64_t offset, char const* bytes, std::size_t count) noexcept {
    std::size_t done = 0;
    return Write(ToHandle(handle), offset, bytes, count, done);
}

SystemError FileHandle::Append(char const* bytes, std::size_t count) noexcept {
    std::uint64_t oldSize = 0;
    if (SystemError const error = Size(oldSize))
        return error;
    std::size_t done = 0;
    SystemError const error = Write(ToHandle(handle), endOfFile, bytes, count, done);
    if (error)
        TakeBack(ToHandle(handle), oldSize, done);
    return error;
}

SystemError FileHandle::CutAt(std::uint64_t size) noexcept {
    std::uint64_t present = 0;
    SystemError const error = Size(present);
    return error || present <= size ? error : Cut(ToHandle(handle), size);
}

SystemError FileHandle::Size(std::uint64_t& bytes) const noexcept {
    return SizeOf(ToHandle(handle), bytes);
}

SystemError RemoveFile(TextView path) {
    return AtPath(path,
                  [](std::wstring const& systemPath) { return ResultOf(DeleteFileW(systemPath.c_str())); });
}

SystemError MakeDirectory(TextView path) {
    SystemError const error = AtPath(path, [](std::wstring const& systemPath) {
        return ResultOf(CreateDirectoryW(systemPath.c_str(), nullptr));
    });
    // A drive's root is refused as if it were not there to be used, and so may be one in a protected place.
    return error && CheckDirectory(path) == 0 ? 0 : error;
}

SystemError CheckDirectory(TextView path) {
    return AtPath(path, [](std::wstring const& systemPath) {
        DWORD const attributes = GetFileAttributesW(systemPath.c_str());
        if (attributes == INVALID_FILE_ATTRIBUTES)
            return LastSystemError();
        return IsDirectory(attributes) ? SystemError{} : SystemError{ERROR_DIRECTORY};
    });
}

SystemError ListDirectory(TextView path, std::vector<DirectoryEntry>& entries) {
    if (SystemError const error = CheckDirectory(path))
        return error;
    auto const pattern = ToSearchPattern(path);
    return pattern ? ListFitting(*pattern, entries) : badPath;
}

} // namespace QMT::platform

#include "platform/settled_file.h"

#include <windows.h>

#include <cstring>

#include "platform/paths_windows.h"

namespace QMT::platform {

namespace {

// A file that is open for reading; the destructor closes it.
class OpenedFile {
public:
    explicit OpenedFile(std::basic_string_view<CodeUnit> path) {
        auto const systemPath = ToSystemPath(path);
        if (systemPath) {
            handle = CreateFileW(systemPath->c_str(), GENERIC_READ,
                                 FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                 OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
            error = IsOpen() ? 0 : GetLastError();
        }
    }

    OpenedFile(OpenedFile const&) = delete;
    OpenedFile& operator=(OpenedFile const&) = delete;

    ~OpenedFile() {
        if (IsOpen()) {
            CloseHandle(handle);
        }
    }

    // Why it is not open; 0 when it is.
    SystemError OpenError() const { return error; }

    bool IsOpen() const { return handle != INVALID_HANDLE_VALUE; }

    // From the file's start; 0 for success.
    SystemError Read(std::span<char, settledHeadSize> head, std::size_t& count) const {
        OVERLAPPED start{};
        DWORD got = 0;
        bool const done = ReadFile(handle, head.data(), static_cast<DWORD>(head.size()), &got, &start) != 0;
        count = got;
        SystemError const readError = done ? 0 : GetLastError();
        return readError == ERROR_HANDLE_EOF ? 0
                                             : readError; // which a read at an offset gives for an empty file
    }

    // File systems tell a file's size under the lock that a write holds from its start to its end.
    void WaitForLock() const {
        LARGE_INTEGER size;
        GetFileSizeEx(handle, &size);
    }

private:
    HANDLE handle = INVALID_HANDLE_VALUE;
    SystemError error = ERROR_INVALID_NAME;
};

} // namespace

SystemError ReadHeadTwice(std::basic_string_view<CodeUnit> path, std::span<char, settledHeadSize> head,
                          std::size_t& count, bool& agree) {
    OpenedFile const file(path);
    if (file.OpenError() == ERROR_SHARING_VIOLATION) {
        count = 0;
        agree = false;
        return 0;
    }
    if (SystemError const error = file.OpenError()) {
        return error;
    }
    if (SystemError const error = file.Read(head, count)) {
        return error;
    }
    file.WaitForLock();
    char second[settledHeadSize];
    std::size_t secondCount = 0;
    agree = file.Read(second, secondCount) == 0 && secondCount == count &&
            std::memcmp(head.data(), second, count) == 0;
    return 0;
}

void LetWriterFinish(std::basic_string_view<CodeUnit> path) {
    OpenedFile const file(path);
    if (file.IsOpen()) {
        file.WaitForLock();
    }
}

} // namespace QMT::platform

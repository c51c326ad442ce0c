#include "platform/registry_files.h"

#include <windows.h>

#include "platform/paths_windows.h"
#include "platform/utf8_text.h"

namespace QMT::platform {

namespace {

SystemError WriteAll(HANDLE file, std::string_view bytes) {
    constexpr std::size_t mostAtOnce = std::size_t{1} << 30;
    while (!bytes.empty()) {
        auto const piece = static_cast<DWORD>(bytes.substr(0, mostAtOnce).size());
        DWORD written = 0;
        if (!WriteFile(file, bytes.data(), piece, &written, nullptr)) {
            return GetLastError();
        }
        bytes.remove_prefix(written);
    }
    return FlushFileBuffers(file) ? SystemError{} : GetLastError();
}

} // namespace

SystemError WriteNewFile(std::string const& path, std::string_view bytes) {
    auto const systemPath = ToSystemPath(FromUtf8(path));
    if (!systemPath) {
        return ERROR_INVALID_NAME;
    }
    HANDLE const file = CreateFileW(systemPath->c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        return GetLastError();
    }
    SystemError const error = WriteAll(file, bytes);
    CloseHandle(file);
    if (error) {
        DeleteFileW(systemPath->c_str());
    }
    return error;
}

} // namespace QMT::platform

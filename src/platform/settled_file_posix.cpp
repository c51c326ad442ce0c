#include "platform/settled_file.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

#include "platform/file_names.h"
#include "platform/uninterrupted_posix.h"

namespace QMT::platform {

namespace {

ssize_t ReadHead(int file, std::span<char, settledHeadSize> head) {
    return Uninterrupted([&] { return ::pread(file, head.data(), head.size(), 0); });
}

// A file that is open for reading; the destructor closes it.
class OpenedFile {
public:
    explicit OpenedFile(std::basic_string_view<CodeUnit> path) {
        std::string const name = ToFileName(path);
        if (name.find('\0') == std::string::npos) {
            number = Uninterrupted([&] { return ::open(name.c_str(), O_RDONLY | O_CLOEXEC); });
        } else {
            errno = EINVAL;
        }
    }

    OpenedFile(OpenedFile const&) = delete;
    OpenedFile& operator=(OpenedFile const&) = delete;

    ~OpenedFile() {
        if (number >= 0) {
            ::close(number);
        }
    }

    int Number() const { return number; }

private:
    int number = -1;
};

// File systems answer where data begin under the lock that a write holds from its start to its end, while
// most of them read without it.
void WaitForLock(int file) {
#if defined(SEEK_DATA)
    ::lseek(file, 0, SEEK_DATA);
#else
    static_cast<void>(file);
#endif
}

} // namespace

SystemError ReadHeadTwice(std::basic_string_view<CodeUnit> path, std::span<char, settledHeadSize> head,
                          std::size_t& count, bool& agree) {
    OpenedFile const file(path);
    ssize_t const got = file.Number() < 0 ? -1 : ReadHead(file.Number(), head);
    if (got < 0) {
        return static_cast<SystemError>(errno);
    }
    count = static_cast<std::size_t>(got);
    WaitForLock(file.Number());
    char second[settledHeadSize];
    agree = ReadHead(file.Number(), second) == got && std::memcmp(head.data(), second, count) == 0;
    return 0;
}

void LetWriterFinish(std::basic_string_view<CodeUnit> path) {
    OpenedFile const file(path);
    if (file.Number() >= 0) {
        WaitForLock(file.Number());
    }
}

} // namespace QMT::platform

#include "platform/registry_files.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace QMT::platform {

namespace {

// The modes that hold whatever the user's mask says.
struct Modes {
    mode_t directory;
    mode_t file;
};

constexpr Modes ModesFor(Readers readers) {
    return readers == Readers::Owner ? Modes{0700, 0600} : Modes{0755, 0644};
}

constexpr mode_t newFileMode = 0666; // less the user's mask

SystemError LastError() {
    return static_cast<SystemError>(errno);
}

// An open file, closed by the destructor.
class Descriptor {
public:
    Descriptor(std::string const& path, int flags, mode_t mode)
        : number(::open(path.c_str(), flags | O_CLOEXEC, mode)) {}

    Descriptor(Descriptor const&) = delete;
    Descriptor& operator=(Descriptor const&) = delete;

    ~Descriptor() {
        if (number >= 0) {
            ::close(number);
        }
    }

    int Number() const { return number; }

private:
    int number;
};

SystemError MakeDirectories(std::string const& path, mode_t mode) {
    if (path.empty() || ::access(path.c_str(), F_OK) == 0) {
        return 0;
    }
    if (SystemError const error = MakeDirectories(path.substr(0, path.rfind('/')), mode)) {
        return error;
    }
    if (::mkdir(path.c_str(), mode) != 0) {
        return errno == EEXIST ? SystemError{} : LastError();
    }
    return ::chmod(path.c_str(), mode) == 0 ? SystemError{} : LastError();
}

SystemError WriteAll(int file, std::string_view bytes) {
    while (!bytes.empty()) {
        ssize_t const written = ::write(file, bytes.data(), bytes.size());
        if (written < 0 && errno != EINTR) {
            return LastError();
        }
        bytes.remove_prefix(written < 0 ? 0 : static_cast<std::size_t>(written));
    }
    return ::fsync(file) == 0 || errno == EINVAL ? SystemError{} : LastError();
}

std::string Variable(char const* name) {
    // Nothing in the library changes the environment but what sets the zone, which copes with readers.
    char const* const value = std::getenv(name); // NOLINT(concurrency-mt-unsafe): see above
    return value ? value : "";
}

} // namespace

std::string DefaultUserDatabase() {
    std::string directory = Variable("XDG_CONFIG_HOME");
    if (directory.empty() || directory.front() != '/') { // the variable counts only as an absolute path
        std::string const home = Variable("HOME");
        if (home.empty()) {
            return {};
        }
        directory = home + "/.config";
    }
    return directory + "/qmt/registry.db";
}

std::string DefaultMachineDatabase() {
    return "/etc/qmt/registry.db";
}

SystemError MakeDatabaseFile(std::string const& path, Readers readers) {
    if (path.empty()) {
        return ENOENT;
    }
    Modes const modes = ModesFor(readers);
    std::size_t const nameStart = path.rfind('/');
    if (nameStart != std::string::npos) {
        if (SystemError const error = MakeDirectories(path.substr(0, nameStart), modes.directory)) {
            return error;
        }
    }
    Descriptor const file(path, O_RDWR | O_CREAT | O_EXCL, modes.file);
    if (file.Number() < 0) {
        return errno == EEXIST ? SystemError{} : LastError();
    }
    return ::fchmod(file.Number(), modes.file) == 0 ? SystemError{} : LastError();
}

SystemError WriteNewFile(std::string const& path, std::string_view bytes) {
    Descriptor const file(path, O_WRONLY | O_CREAT | O_EXCL, newFileMode);
    if (file.Number() < 0) {
        return LastError();
    }
    SystemError const error = WriteAll(file.Number(), bytes);
    if (error) {
        ::unlink(path.c_str());
    }
    return error;
}

} // namespace QMT::platform

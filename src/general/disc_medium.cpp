#include "general/disc_medium.h"

#include <utility>

#include "general/never_destroyed.h"
#include "general/system_error_text.h"
#include "platform/files.h"

namespace QMT {

namespace {

// Null for success, otherwise an error with the action, the path and the system's text.
ErrorInfo* Outcome(platform::SystemError error, char16_t const* action, String const& path) {
    return error ? MakeError(String(action) + path + u":", SystemErrorText(error)) : nullptr;
}

class DiscFile : public FileMedium::File {
public:
    explicit DiscFile(String filePath) : path(std::move(filePath)) {}

    ErrorInfo* Open(platform::FileAccess access) {
        return Outcome(handle.Open(path.View(), access), u"Couldn't open file ", path);
    }

    ErrorInfo* Read(char* bytes, std::size_t capacity, std::size_t& count) override {
        return Outcome(handle.Read(bytes, capacity, count), u"Couldn't read file ", path);
    }

    ErrorInfo* WriteAt(std::uint64_t offset, char const* bytes, std::size_t count) override {
        return WriteOutcome(handle.WriteAt(offset, bytes, count));
    }

    ErrorInfo* Append(char const* bytes, std::size_t count) override {
        return WriteOutcome(handle.Append(bytes, count));
    }

    ErrorInfo* CutAt(std::uint64_t size) override { return WriteOutcome(handle.CutAt(size)); }

    ErrorInfo* Size(std::uint64_t& bytes) override {
        return Outcome(handle.Size(bytes), u"Couldn't get the size of file ", path);
    }

    ErrorInfo* Close() override { return Outcome(handle.Close(), u"Couldn't close file ", path); }

private:
    ErrorInfo* WriteOutcome(platform::SystemError error) const {
        return Outcome(error, u"Couldn't write file ", path);
    }

    String path;
    platform::FileHandle handle;
};

platform::FileAccess ToPlatform(FileMedium::Access access) {
    switch (access) {
    case FileMedium::Access::Read:
        return platform::FileAccess::Read;
    case FileMedium::Access::Rewrite:
        return platform::FileAccess::Rewrite;
    default:
        return platform::FileAccess::Append;
    }
}

class DiscMedium : public FileMedium {
public:
    ErrorInfo* Open(String path, Access access, std::unique_ptr<File>& file) override {
        auto opened = std::make_unique<DiscFile>(std::move(path));
        ErrorInfo* const error = opened->Open(ToPlatform(access));
        if (!error) {
            file = std::move(opened);
        }
        return error;
    }
};

} // namespace

FileMedium& GetDiscMedium() {
    static NeverDestroyed<DiscMedium> disc;
    return *disc;
}

} // namespace QMT

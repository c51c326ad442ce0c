#include "files.h"

#include <filesystem>
#include <random>
#include <system_error>
#include <utility>

#include "qmt/general/files.h"
#include "qmt/helpers/system.h"
#include "qmt/html/native_strings.h"

namespace Translator {

namespace {

namespace fs = std::filesystem;

using QMT::String;

fs::path PathOf(String const& name) {
    std::string const utf8 = ToUtf8(name);
    return std::u8string(utf8.begin(), utf8.end());
}

String NameOf(fs::path const& path) {
    std::u8string const utf8 = path.u8string();
    return QMT::DecodeFromUTF8(std::string(utf8.begin(), utf8.end()).c_str(), false);
}

Error CannotWrite(String const& name, String const& reason) {
    return Error(QMT::MakeError(u"can't write " + name + u": " + reason));
}

Error CannotWrite(String const& name, std::error_code reason) {
    return CannotWrite(name, QMT::DecodeFromUTF8(reason.message().c_str(), false));
}

// A file on its way, deleted unless it has been renamed.
class PartFile {
public:
    explicit PartFile(fs::path const& finalPath) {
        std::random_device random;
        std::string const digits = std::to_string(random()) + std::to_string(random());
        path = finalPath.parent_path() / (".page_translator-" + digits + ".part");
    }

    PartFile(PartFile const&) = delete;
    PartFile& operator=(PartFile const&) = delete;

    ~PartFile() {
        std::error_code ignored;
        fs::remove(path, ignored);
    }

    Error Write(String const& text) const {
        QMT::FormatableTextFile file(NameOf(path), nullptr);
        if (Error error{file.Open(false)}) {
            return error;
        }
        file << text;
        if (Error error{file.FlushFile(true, QMT::BaseFile::BOM::NoMark)}) {
            return error;
        }
        return Error(file.Close());
    }

    std::error_code RenameTo(fs::path const& finalPath, fs::file_status const& replaced) const {
        std::error_code error;
        if (fs::exists(replaced)) {
            fs::permissions(path, replaced.permissions(), error);
        }
        fs::rename(path, finalPath, error);
        return error;
    }

private:
    fs::path path;
};

} // namespace

std::string ToUtf8(String const& text) {
    constexpr unsigned int utf8 = 65001;
    std::unique_ptr<char[]> const bytes(QMT::ConvertToMultibyte(text, utf8, nullptr));
    return bytes.get();
}

bool IsPoFile(String const& name) {
    return name.Right(3) == u".po";
}

Error ReadText(String const& name, String& text) {
    QMT::LineParsableFile file(name, nullptr);
    if (Error error{file.Open()}) {
        return error;
    }
    String read;
    String line;
    QMT::ErrorInfo* error = nullptr;
    while (file.NextLine(line, error, 0) != 0) {
        read << line << QMT::newline;
    }
    if (!error) {
        text = std::move(read);
    }
    return Error(error);
}

Error ReadTable(String const& name, Table& table) {
    if (IsPoFile(name)) {
        return Error(QMT::ReadPoNativeStrings(name, table));
    }
    // ReadNativeStrings tells of failures in the error log only, and this user has none. So the file is read
    // twice, which a pipe does not allow.
    std::error_code ignored;
    if (fs::file_status const status = fs::status(PathOf(name), ignored);
        fs::exists(status) && !fs::is_regular_file(status)) {
        return Error(QMT::MakeError(u"can't read " + name + u": it is no regular file"));
    }
    String text;
    if (Error error = ReadText(name, text)) {
        return error;
    }
    QMT::ReadNativeStrings(name, table);
    return nullptr;
}

bool IsSameFile(String const& name, String const& other) {
    std::error_code ignored;
    return fs::equivalent(PathOf(name), PathOf(other), ignored);
}

Error ReplaceFile(String const& name, String const& text) {
    fs::path finalPath = PathOf(name);
    std::error_code error;
    fs::file_status const status = fs::status(finalPath, error);
    if (status.type() == fs::file_type::none) {
        return CannotWrite(name, error);
    }
    error.clear(); // a missing file is no fault
    if (fs::exists(status) && !fs::is_regular_file(status)) {
        return CannotWrite(name, u"it is no regular file");
    }
    if (fs::exists(status) && fs::is_symlink(finalPath, error)) {
        finalPath = fs::canonical(finalPath, error);
    }
    if (error) {
        return CannotWrite(name, error);
    }
    PartFile const part(finalPath);
    if (Error const fault = part.Write(text)) {
        return CannotWrite(name, *fault);
    }
    error = part.RenameTo(finalPath, status);
    return error ? CannotWrite(name, error) : nullptr;
}

} // namespace Translator

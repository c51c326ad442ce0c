#include "qmt/general/files.h"

#include <string>
#include <utility>

#include "general/disc_medium.h"
#include "general/line_reader.h"
#include "general/sync_point.h"
#include "general/system_error_text.h"
#include "general/utf.h"
#include "platform/files.h"

namespace QMT {

FileMedium::File::~File() = default;

FileMedium::~FileMedium() = default;

// ---- BaseFile

BaseFile::BaseFile(String path, FileMedium* medium)
    : ownPath(std::move(path)), ownMedium(medium ? medium : &GetDiscMedium()) {}

BaseFile::~BaseFile() = default;

String BaseFile::GetDirSeparator() {
    return String() << platform::dirSeparator;
}

ErrorInfo* BaseFile::Close() {
    std::unique_ptr<FileMedium::File> const closing = std::move(file);
    return closing ? closing->Close() : nullptr;
}

ErrorInfo* BaseFile::OpenFor(FileMedium::Access access) {
    return file ? MakeError(u"File is open already: " + ownPath) : ownMedium->Open(ownPath, access, file);
}

FileMedium::File* BaseFile::OpenFile(ErrorInfo*& error) const {
    if (!file) {
        error = MakeError(u"File isn't open: " + ownPath);
    }
    return file.get();
}

// ---- ReadableFile

ErrorInfo* ReadableFile::Open() {
    return OpenFor(FileMedium::Access::Read);
}

// ---- WriteableFile

WriteableFile::~WriteableFile() {
    std::unique_ptr<ErrorInfo> const nobodyToTell(WriteableFile::Close());
}

ErrorInfo* WriteableFile::Open(bool append) {
    ErrorInfo* const error = OpenFor(append ? FileMedium::Access::Append : FileMedium::Access::Rewrite);
    if (!error) {
        appending = append;
        oldContentStands = !append;
        hasCut = false;
        written = 0;
    }
    return error;
}

ErrorInfo* WriteableFile::Close() {
    std::unique_ptr<ErrorInfo> error;
    if (std::exchange(oldContentStands, false)) {
        error.reset(Write({}));
    }
    std::unique_ptr<ErrorInfo> closeError(BaseFile::Close());
    return error ? error.release() : closeError.release();
}

ErrorInfo* WriteableFile::IsAtHead(bool& atHead) const {
    ErrorInfo* error = nullptr;
    FileMedium::File* const target = OpenFile(error);
    std::uint64_t size = written;
    if (target && appending) {
        error = target->Size(size);
    }
    atHead = size == 0;
    return error;
}

ErrorInfo* WriteableFile::Write(std::string const& bytes) {
    ErrorInfo* error = nullptr;
    FileMedium::File* const target = OpenFile(error);
    if (!target) {
        return error;
    }
    return appending ? target->Append(bytes.data(), bytes.size()) : WriteOver(*target, bytes);
}

ErrorInfo* WriteableFile::WriteOver(FileMedium::File& target, std::string const& bytes) {
    oldContentStands = false;
    std::unique_ptr<ErrorInfo> error(target.WriteAt(written, bytes.data(), bytes.size()));
    std::uint64_t const end = error ? written : written + bytes.size();
    std::unique_ptr<ErrorInfo> cutError(CutBehind(target, end));
    if (!error && !cutError) {
        written = end;
    }
    return error ? error.release() : cutError.release();
}

ErrorInfo* WriteableFile::CutBehind(FileMedium::File& target, std::uint64_t end) {
    std::uint64_t size = 0;
    std::unique_ptr<ErrorInfo> const unknown(target.Size(size));
    if (!unknown && size <= end) {
        return nullptr; // what another process has added by now is not the old text's end
    }
    hasCut = true;
    QMT_SYNC_POINT("WriteableFile: before cutting");
    return target.CutAt(end);
}

bool WriteableFile::HasCut() const noexcept {
    return hasCut;
}

// ---- LineParsableFile

LineParsableFile::LineParsableFile(String path, FileMedium* medium) : BaseFile(std::move(path), medium) {}

LineParsableFile::~LineParsableFile() = default;

ErrorInfo* LineParsableFile::Open() {
    ErrorInfo* error = ReadableFile::Open();
    if (!error) {
        reader = std::make_unique<LineReader>(*OpenFile(error));
    }
    return error;
}

ErrorInfo* LineParsableFile::Close() {
    reader.reset();
    return ReadableFile::Close();
}

int LineParsableFile::NextLine(String& line, ErrorInfo*& error, int) {
    line.SetEmpty();
    if (!OpenFile(error)) {
        return 0;
    }
    std::basic_string<CodeUnit> text;
    bool const delivered = reader->Next(text, error);
    line = String(std::move(text));
    return delivered ? 1 : 0;
}

bool LineParsableFile::LineHadBreak() const noexcept {
    return reader && reader->HadBreak();
}

// ---- FormatableTextFile

FormatableTextFile::FormatableTextFile(String path, FileMedium* medium) : BaseFile(std::move(path), medium) {}

FormatableTextFile::~FormatableTextFile() = default;

ErrorInfo* FormatableTextFile::FlushFile(bool emptyWhenWritten, BOM mark) {
    bool atHead = false;
    if (ErrorInfo* const error = IsAtHead(atHead)) {
        return error;
    }
    std::string bytes;
    if (atHead && (mark == BOM::Utf8Mark || View().starts_with(byteOrderMark))) {
        bytes = utf8Mark;
    }
    AppendUtf8(bytes, View());
    ErrorInfo* const error = Write(bytes);
    if (!error && emptyWhenWritten) {
        SetEmpty();
    }
    return error;
}

// ---- free functions

ErrorInfo* RemoveFile(String path) {
    platform::SystemError const error = platform::RemoveFile(path.View());
    return error ? MakeError(u"Couldn't delete file " + path + u":", SystemErrorText(error)) : nullptr;
}

bool PathSeparatorIsBackslash() {
    return platform::dirSeparator == u'\\';
}

} // namespace QMT

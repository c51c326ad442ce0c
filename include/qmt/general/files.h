// Text files, directories, and the splitting of text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "qmt/export.h"
#include "qmt/general/errors.h"
#include "qmt/general/string.h"

namespace QMT {

class LineReader;

// The storage behind files. A file class given a null medium uses the ordinary disc.
//
// Whoever derives supplies both classes; a medium must outlive the files opened on it, and takes calls from
// as many threads as use files on it. The operations that give an ErrorInfo* give null for success and
// otherwise an error that the caller owns and that quotes the path.
//
//     class MemoryMedium : public FileMedium { ... };
//     MemoryMedium medium;
//     LineParsableFile file(u"settings", &medium);
class QMT_GENU_API FileMedium {
public:
    enum class Access {
        Read,    // the file must exist
        Rewrite, // makes the file when it is missing; what it holds stays until it is written over or cut
        Append   // makes the file when it is missing; Append only
    };

    // One open file, used by one thread at a time. Destroying it closes it.
    class QMT_GENU_API File {
    public:
        virtual ~File();

        // Reads the next bytes, at most capacity of them. A count of 0 is the end; fewer than asked is not.
        virtual ErrorInfo* Read(char* bytes, std::size_t capacity, std::size_t& count) = 0;

        // Writes all the bytes over what stands at the offset. After a failure any of them may be written.
        virtual ErrorInfo* WriteAt(std::uint64_t offset, char const* bytes, std::size_t count) = 0;

        // Adds all the bytes to the end of the file, or none when it fails and that can be avoided.
        virtual ErrorInfo* Append(char const* bytes, std::size_t count) = 0;

        // Cuts off what stands behind the first size bytes; a file that is no longer than that stays.
        virtual ErrorInfo* CutAt(std::uint64_t size) = 0;

        // The file's size in bytes.
        virtual ErrorInfo* Size(std::uint64_t& bytes) = 0;

        // The file is closed after a failure, too. Only the destructor follows.
        virtual ErrorInfo* Close() = 0;
    };

    virtual ~FileMedium();

    // Opens the file at the path; after a failure the pointer is as before.
    virtual ErrorInfo* Open(String path, Access access, std::unique_ptr<File>& file) = 0;
};

// What files for reading and for writing have in common: a path, a medium, and the file while it is open.
//
// The caller uses a file from one thread at a time, and opens it before anything else. It may be opened
// again once it is closed. The destructor closes what is open and says nothing of a failure.
class QMT_GENU_API BaseFile {
public:
    // What stands at the head of a written file. Text that itself begins with U+FEFF gets a mark in front
    // either way, so that it reads back unchanged.
    enum class BOM {
        Utf8Mark = 0, // the mark EF BB BF
        NoMark = 1    // no mark
    };

    // The character between the elements of a path: a backslash on Windows, elsewhere a slash.
    static String GetDirSeparator();

    BaseFile(BaseFile const&) = delete;
    BaseFile& operator=(BaseFile const&) = delete;
    virtual ~BaseFile();

    // Closes the file; a file that is not open is no failure. The file is closed after a failure, too.
    virtual ErrorInfo* Close();

protected:
    BaseFile(String path, FileMedium* medium);

    // For the classes between, whose most derived class names the path and the medium.
    BaseFile() : BaseFile(String(), nullptr) {}

    // Opens the file; an error when it is open already.
    ErrorInfo* OpenFor(FileMedium::Access access);

    // The open file, or null with the error set.
    FileMedium::File* OpenFile(ErrorInfo*& error) const;

private:
    String ownPath;
    FileMedium* ownMedium;
    std::unique_ptr<FileMedium::File> file;
};

// A file that is opened for reading.
class QMT_GENU_API ReadableFile : public virtual BaseFile {
public:
    // Opens the file at the path given at construction. A missing file is an error.
    virtual ErrorInfo* Open();

protected:
    ReadableFile() = default;
};

// A file that is opened for writing.
class QMT_GENU_API WriteableFile : public virtual BaseFile {
public:
    ~WriteableFile() override;

    // Opens the file at the path given at construction, and makes it when it is missing; its directory must
    // exist. true adds to its end, also to what other processes add meanwhile. false replaces what it holds:
    // the first write goes over the old content, and what is left of that is cut off behind it, so that a
    // reader beside it never finds the file empty on the way.
    virtual ErrorInfo* Open(bool append);

    // Closes the file. One opened with false and never written is left empty.
    ErrorInfo* Close() override;

    // True when a write since Open has cut off what stood behind it. If another process was writing the file
    // at that moment, that may have been a piece of its text.
    bool HasCut() const noexcept;

protected:
    WriteableFile() = default;

    // True when the next write stands at the head of the file.
    ErrorInfo* IsAtHead(bool& atHead) const;

    // Writes the bytes behind what was written since Open. After a failure the file holds only what earlier
    // writes have left, as far as the medium can still do that.
    ErrorInfo* Write(std::string const& bytes);

private:
    ErrorInfo* WriteOver(FileMedium::File& target, std::string const& bytes);
    ErrorInfo* CutBehind(FileMedium::File& target, std::uint64_t end);

    bool appending = false;
    bool oldContentStands = false;
    bool hasCut = false;
    std::uint64_t written = 0;
};

// Reads a text file line by line.
//
// The caller opens the file, calls NextLine until it gives 0, and closes or destroys the file.
//
// Guaranteed: the file is read as UTF-8, or as what its byte order mark says: UTF-8, UTF-16 of either byte
// order; the mark is no part of the text. Bytes that are no text become U+FFFD, and lone surrogates come
// back as they were written. A line ends at a line feed, a carriage return, or a carriage return with a line
// feed behind it; the last one counts without a line break. Reading is buffered and takes time in proportion
// to the file's size.
//
//     LineParsableFile file(path, nullptr);
//     ErrorInfo* error = file.Open();
//     String line;
//     while (!error && file.NextLine(line, error, 0)) {
//         Use(line);
//     }
//     return error; // of Open or NextLine, or null
class QMT_GENU_API LineParsableFile : public ReadableFile {
public:
    LineParsableFile(String path, FileMedium* medium);
    ~LineParsableFile() override;

    ErrorInfo* Open() override;
    ErrorInfo* Close() override;

    // Fills line with the next line, without its line break, and gives 1. Gives 0 and an empty line at the
    // end and after a failure; on a failure error, which must be null, becomes an error that the caller owns,
    // and nothing more is read. The last argument is 0.
    int NextLine(String& line, ErrorInfo*& error, int reserved);

    // True when a line break stood behind the line that NextLine gave last. A file that another process is
    // writing at this moment may end within a line.
    bool LineHadBreak() const noexcept;

private:
    std::unique_ptr<LineReader> reader;
};

// Writes a text file. It is also the String that gathers the text: insert into the file object itself.
//
// The caller opens the file, inserts text, calls FlushFile and then Close; text that is not flushed is not
// written.
//
// Guaranteed: the text goes out as UTF-8 in one piece, a lone surrogate in its three-byte form, and reads
// back unchanged through LineParsableFile.
//
//     FormatableTextFile file(path, nullptr);
//     std::unique_ptr<ErrorInfo> error{file.Open(false)};
//     if (!error) {
//         file << u"count: " << count << newline;
//         error.reset(file.FlushFile(true, BaseFile::BOM::NoMark));
//     }
class QMT_GENU_API FormatableTextFile : public WriteableFile, public String {
public:
    FormatableTextFile(String path, FileMedium* medium);
    ~FormatableTextFile() override;

    // Writes the gathered text to the open file, behind what earlier calls have written. true empties the
    // text once it is written; with false it stays and a further call writes it again. After a failure,
    // such as a full disc, the text stays and the call may be repeated.
    ErrorInfo* FlushFile(bool emptyWhenWritten, BOM mark);
};

// A directory.
class QMT_GENU_API Directory {
public:
    enum class ListingType { All = 0, Files = 1, Directories = 2 };

    struct Entry {
        String name; // without the path
        bool isDirectory;
    };

    virtual ~Directory();

    // Creates the directory when it is missing. Its parent must exist. Another process may create it at the
    // same moment.
    virtual ErrorInfo* EnsureExists() = 0;

    // Null when the directory exists; otherwise an error, also when something else stands at the path.
    virtual ErrorInfo* DoesNotExist() = 0;

    // Replaces entries by those of the directory that the listing kind and the mask let through, in the order
    // of their names. After a failure entries is as before.
    virtual ErrorInfo* GetEntries(std::vector<Entry>& entries) = 0;
};

// A directory on the disc, looked at anew in each call.
//
// The mask is a name in which * stands for any characters and ? for any one code unit; "*.*" stands for
// every name, also one without a point. Letters match exactly. The mask must outlive the construction only.
//
// Guaranteed: no name fails, neither one with a lone surrogate nor one whose bytes are no UTF-8, and each
// listed name opens its file.
//
//     DiscDirectory directory(path, Directory::ListingType::Files, u"*.cfg");
//     std::vector<Directory::Entry> entries;
//     std::unique_ptr<ErrorInfo> error{directory.GetEntries(entries)};
class QMT_GENU_API DiscDirectory : public Directory {
public:
    DiscDirectory(String directoryPath, ListingType listing, CodeUnit const* nameMask);
    DiscDirectory(String directoryPath, ListingType listing, OtherCodeUnit const* nameMask);
    ~DiscDirectory() override;

    ErrorInfo* EnsureExists() override;
    ErrorInfo* DoesNotExist() override;
    ErrorInfo* GetEntries(std::vector<Entry>& entries) override;

private:
    bool LetsThrough(Entry const& entry) const;

    String path;
    ListingType kind;
    String mask;
};

// Deletes a file from the disc; a missing file is an error. On Windows no one may have it open.
QMT_GENU_API ErrorInfo* RemoveFile(String path);

// Splits a text into elements.
//
// The caller sets the flags after construction and before the first read, and leaves them from then on.
//
// Without a flag the elements are words, split at runs of blanks, tabs and line breaks; with splitOnFields
// they are fields, split at runs of tabs. Neither gives an empty element. The other flags split at every
// separator: splitOnLineEnds at line feeds, carriage returns and the two together, the path flags at their
// separator. Between two separators these give an empty element; behind the last one none, and a path
// separator at the very start gives none. Flags add their separators; beside another, splitOnFields gives
// empty elements, too.
//
//     ParsableText elements(path);
//     elements.splitOnSlash = true;
//     for (String element; elements.GetNextElem(&element, 0);) { ... }
class QMT_GENU_API ParsableText {
public:
    explicit ParsableText(String wholeText);

    // Puts the next element into elem and gives true; when none is left gives false, and elem keeps its
    // value. The last argument is 0.
    bool GetNextElem(String* elem, int reserved);

    // How many elements GetNextElem has still to deliver. The reading is not disturbed.
    int CountElements() const;

private:
    String text;

public:
    bool splitOnLineEnds = false;
    bool splitOnBackslash = false;
    bool splitOnSlash = false;
    bool splitOnFields = false;

private:
    std::size_t position = 0;
};

// True on a system whose directory separator is a backslash.
QMT_GENU_API bool PathSeparatorIsBackslash();

} // namespace QMT

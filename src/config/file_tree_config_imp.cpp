#include "config/file_tree_config_imp.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "config/entry_file.h"
#include "platform/file_names.h"
#include "qmt/general/files.h"
#include "qmt/helpers/system.h"

namespace QMT {

namespace {

constexpr CodeUnit entryEnding[] = {u'.', u'c', u'f', u'g', 0};
constexpr std::size_t entryEndingLength = 4;

constexpr CodeUnit firstLineEnds[] = {u'\n', u'\r', 0};

constexpr int mostWrites = 10; // of one text, while others write the same entry

DiscDirectory DirectoryAt(String const& path) {
    String const anyName = u"*.*";
    return DiscDirectory(path, Directory::ListingType::All, anyName);
}

// True when a read of the file gives the first line of the value.
bool IsStored(String const& path, String const& value) {
    String text;
    ReadEntryFile(path, text);
    return text.View() == value.View().substr(0, value.View().find_first_of(firstLineEnds));
}

bool IsEntryFile(Directory::Entry const& file) {
    return !file.isDirectory && file.name.Right(entryEndingLength) == entryEnding;
}

} // namespace

FileTreeConfigImp::FileTreeConfigImp(String path) {
    String const separator = BaseFile::GetDirSeparator();
    if (!path.IsEmpty() && path.Right(1) == separator) {
        path.Truncate(path.Len() - 1);
    }
    configDirectory = path + separator + u"Configuration";
    std::unique_ptr<ErrorInfo> const shownByCheckExists(DirectoryAt(configDirectory).EnsureExists());
}

String FileTreeConfigImp::SectionPath(String const& section) const {
    return configDirectory + BaseFile::GetDirSeparator() + section;
}

// Each read and write needs one.
String FileTreeConfigImp::EntryPath(String const& section, String const& entry) const {
    String const separator = BaseFile::GetDirSeparator();
    std::basic_string<CodeUnit> path;
    path.reserve(configDirectory.Len() + section.Len() + entry.Len() + entryEndingLength + 2);
    for (String const* const part : {&configDirectory, &separator, &section, &separator, &entry}) {
        path += part->View();
    }
    path += entryEnding;
    return String(std::move(path));
}

ErrorInfo* FileTreeConfigImp::CheckExists(bool) {
    return DirectoryAt(configDirectory).EnsureExists();
}

// ---- one entry

ErrorInfo* FileTreeConfigImp::OpenForWriting(FormatableTextFile& file, String const& section) const {
    std::unique_ptr<ErrorInfo> const error(file.Open(false));
    if (!error) {
        return nullptr;
    }
    // Mostly because the section is missing.
    ErrorInfo* const sectionError = DirectoryAt(SectionPath(section)).EnsureExists();
    return sectionError ? sectionError : file.Open(false);
}

// Two writers at once leave either text. Only where one has cut off what stood behind its own may that have
// been a piece of the other's, which a look at the file shows.
ErrorInfo* FileTreeConfigImp::WriteProfileStr(String section, String entry, String value) {
    String const path = EntryPath(section, entry);
    FormatableTextFile file(path, nullptr);
    file << value << newline;
    for (int writes = 1;; ++writes) {
        if (ErrorInfo* const error = OpenForWriting(file, section)) {
            return error;
        }
        std::unique_ptr<ErrorInfo> error(file.FlushFile(false, BaseFile::BOM::NoMark));
        std::unique_ptr<ErrorInfo> const nobodyToTell(file.Close());
        if (error || !file.HasCut() || writes == mostWrites || IsStored(path, value)) {
            return error.release();
        }
    }
}

String FileTreeConfigImp::GetStringNoDefault(String section, String entry) {
    String text;
    if (!ReadEntryFile(EntryPath(section, entry), text)) {
        std::unique_ptr<ErrorInfo> const nobodyToTell(DirectoryAt(SectionPath(section)).EnsureExists());
    }
    return text;
}

String FileTreeConfigImp::GetReadOnlyString(String section, String entry) {
    String text;
    ReadEntryFile(EntryPath(section, entry), text);
    return text;
}

ErrorInfo* FileTreeConfigImp::DeleteEntry(String section, String entry) {
    return RemoveFile(EntryPath(section, entry));
}

// ---- all of them

ErrorInfo* FileTreeConfigImp::EnumSections(VArray<String, String>& names) {
    std::vector<Directory::Entry> found;
    if (ErrorInfo* const error = DirectoryAt(configDirectory).GetEntries(found)) {
        return error;
    }
    for (Directory::Entry const& candidate : found) {
        if (candidate.isDirectory) {
            names.Add(candidate.name);
        }
    }
    return nullptr;
}

ErrorInfo* FileTreeConfigImp::EnumEntries(String section, VArray<String, String>& names) {
    DiscDirectory directory = DirectoryAt(SectionPath(section));
    if (std::unique_ptr<ErrorInfo> const isMissing{directory.DoesNotExist()}) {
        return nullptr;
    }
    std::vector<Directory::Entry> found;
    if (ErrorInfo* const error = directory.GetEntries(found)) {
        return error;
    }
    for (Directory::Entry const& candidate : found) {
        if (IsEntryFile(candidate)) {
            names.Add(candidate.name.Left(candidate.name.Len() - entryEndingLength));
        }
    }
    return nullptr;
}

ErrorInfo* FileTreeConfigImp::DeleteSection(String section) {
    String const path = SectionPath(section);
    std::vector<Directory::Entry> found;
    if (ErrorInfo* const error = DirectoryAt(path).GetEntries(found)) {
        return error;
    }
    for (Directory::Entry const& candidate : found) {
        if (!IsEntryFile(candidate)) {
            return MakeError(u"Couldn't delete section " + path + u", which holds other things: " +
                             candidate.name);
        }
    }
    std::unique_ptr<ErrorInfo> first; // an entry may be gone by now, which then shows in nothing else
    for (Directory::Entry const& entry : found) {
        std::unique_ptr<ErrorInfo> error(RemoveFile(path + BaseFile::GetDirSeparator() + entry.name));
        if (!first) {
            first = std::move(error);
        }
    }
    platform::SystemError const error = platform::DeleteEmptyDirectory(path.View());
    if (error && !first) {
        first.reset(MakeError(u"Couldn't delete directory " + path + u":", GetSystemErrMsge(error)));
    }
    return error ? first.release() : nullptr;
}

} // namespace QMT

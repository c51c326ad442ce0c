// Settings in a tree of small text files.
#pragma once

#include <memory>

#include "qmt/config/app_config.h"
#include "qmt/config/config_base.h"
#include "qmt/export.h"
#include "qmt/general/containers.h"
#include "qmt/general/errors.h"
#include "qmt/general/string.h"

namespace QMT {

// Settings by section and entry below a directory: a section is a directory, an entry a file of one line.
// docs/settings.md describes the files.
//
// The caller names a directory that exists, in which a directory "Configuration" is made, and reads and
// writes from one thread at a time.
//
// Guaranteed: a setting that is asked for and missing is stored with its default. Writing an entry touches no
// other. Reads never report a failure: an empty text means that nothing is there. Results are null for
// success and otherwise an error that the caller owns and that names the path. Nothing is kept in memory:
// what one process has written the next read of any other finds. A read beside a write of an entry that
// exists finds the old or the new text, for sure up to 500 bytes and nearly always beyond; it never finds
// none. Every call enters the system; a read that meets a write may wait some milliseconds.
//
//     FileTreeConfig settings(directory);
//     if (ErrorInfo* error = settings.CheckExists(false)) {
//         return error;
//     }
//     String const device = settings.GetString(u"Input", u"Device", u"default");
class QMT_UTILU_API FileTreeConfig : public ConfigBase {
public:
    // One separator at the path's end is dropped. A failure to make the directory shows in CheckExists.
    explicit FileTreeConfig(String path);
    FileTreeConfig(FileTreeConfig const&) = delete;
    FileTreeConfig& operator=(FileTreeConfig const&) = delete;
    ~FileTreeConfig() override;

    // The entry's text: the first line of its file. When that is missing or empty: the default, which is
    // stored; a failure to store it is not noticed.
    String GetString(String section, String entry, String defaultText) override;

    // The entry's text, empty when it is missing. The first makes a missing section, the second nothing.
    String GetStringNoDefault(String section, String entry);
    String GetReadOnlyString(String section, String entry);

    // Makes the directory "Configuration" when it is missing, whatever the argument says.
    ErrorInfo* CheckExists(bool readOnly);

    // Stores a text, of which reads give the first line. A disc that is full may leave the entry empty.
    ErrorInfo* WriteProfileStr(String section, String entry, String value);

    // Add to names those of the sections, or of the entries of a section, in their order. A missing section
    // has no entries.
    ErrorInfo* EnumSections(VArray<String, String>& names);
    ErrorInfo* EnumEntries(String section, VArray<String, String>& names);

    // Delete an entry, or a section with all its entries. What is missing is a failure, and so is a section
    // that holds anything else; nothing is deleted then.
    ErrorInfo* DeleteEntry(String section, String entry);
    ErrorInfo* DeleteSection(String section);

private:
    std::unique_ptr<AppConfigImpInterface> imp;
};

} // namespace QMT

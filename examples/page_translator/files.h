// Pages and tables in, whole files out.
#pragma once

#include <memory>
#include <string>

#include "qmt/general/containers.h"
#include "qmt/general/errors.h"
#include "qmt/general/string.h"

namespace Translator {

// Null for success, otherwise what the user is to be told.
using Error = std::unique_ptr<QMT::ErrorInfo>;
using Table = QMT::Map<QMT::String, QMT::String>;

// As bytes, to print them and for names of files.
std::string ToUtf8(QMT::String const& text);

// True for the name of a gettext file.
bool IsPoFile(QMT::String const& name);

// Reads a text file; each line of text ends with the system's line break, the last one too. After an error
// text is as it was.
Error ReadText(QMT::String const& name, QMT::String& text);

// Reads a table of native strings, lines with a tab or a gettext file. After an error the table is empty.
Error ReadTable(QMT::String const& name, Table& table);

// True when both names lead to the same file, which must exist.
bool IsSameFile(QMT::String const& name, QMT::String const& other);

// Makes the text the whole content of the file, as UTF-8. It is written beside its final name, in
// .page_translator-<digits>.part, and renamed when it is complete: after an error, or when the program is
// killed, the file is what it was. A name that is a symbolic link means the file it leads to; a file that is
// replaced hands its permissions on.
Error ReplaceFile(QMT::String const& name, QMT::String const& text);

} // namespace Translator

#include "platform/user_directories.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <utility>

#include "platform/path_bytes_posix.h"
#include "platform/user_entry_posix.h"

namespace QMT::platform {

namespace {

std::string Variable(char const* name) {
    // Nothing in the library changes the environment but what sets the zone, which copes with readers.
    char const* const value = std::getenv(name); // NOLINT(concurrency-mt-unsafe): see above
    return value ? value : "";
}

std::string WithoutTrailingSlashes(std::string path) {
    path.resize(path.find_last_not_of('/') + 1);
    return path;
}

// Empty unless the path is absolute, since only such a one counts.
std::string Absolute(std::string path) {
    return path.starts_with('/') ? WithoutTrailingSlashes(std::move(path)) : std::string();
}

std::string DirectoryFrom(char const* variable, std::string const& otherwise) {
    std::string const directory = Absolute(Variable(variable));
    return directory.empty() ? otherwise : directory;
}

// Takes the text, and white space in front of it, from the line's start; false when it does not stand there.
bool Take(std::string_view& line, std::string_view text) {
    line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
    if (!line.starts_with(text))
        return false;
    line.remove_prefix(text.size());
    return true;
}

// The text up to the closing quote, in which a backslash takes the next character as it is; nothing when the
// quote is missing.
std::optional<std::string> Unquoted(std::string_view line) {
    std::string text;
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (line[i] == '"')
            return text;
        if (line[i] == '\\' && ++i == line.size())
            break;
        text += line[i];
    }
    return std::nullopt;
}

// The directory that a line such as XDG_MUSIC_DIR="$HOME/Music" gives to the key; empty when it gives none.
std::string DirectoryInLine(std::string_view line, std::string_view key, std::string const& home) {
    if (!Take(line, key) || !Take(line, "=") || !Take(line, "\""))
        return {};
    bool const isBelowHome = line.starts_with("$HOME/") || line.starts_with("$HOME\"");
    if (isBelowHome)
        Take(line, "$HOME");
    std::optional<std::string> const path = Unquoted(line);
    return path ? Absolute(isBelowHome ? home + *path : *path) : std::string();
}

// The last line that counts has its way, as in a script.
std::string DirectoryInFile(std::string const& file, std::string_view key, std::string const& home) {
    std::string found;
    std::ifstream lines(file);
    for (std::string line; std::getline(lines, line);)
        if (std::string const directory = DirectoryInLine(line, key, home); !directory.empty())
            found = directory;
    return found;
}

std::string DesktopDirectory(std::string_view key, char const* usualName, std::string const& home) {
    std::string const file = DirectoryFrom("XDG_CONFIG_HOME", home + "/.config") + "/user-dirs.dirs";
    std::string const found = DirectoryInFile(file, key, home);
    return found.empty() ? home + usualName : found;
}

std::string FileNameOf(UserDirectory which, std::string const& home) {
    switch (which) {
    case UserDirectory::Data:
        return DirectoryFrom("XDG_DATA_HOME", home + "/.local/share");
    case UserDirectory::Pictures:
        return DesktopDirectory("XDG_PICTURES_DIR", "/Pictures", home);
    default:
        return DesktopDirectory("XDG_MUSIC_DIR", "/Music", home);
    }
}

} // namespace

std::basic_string<CodeUnit> PathOf(UserDirectory which, std::basic_string_view<CodeUnit>) {
    std::string home = Variable("HOME");
    if (home.empty())
        home = FieldOfUser(&passwd::pw_dir);
    if (home.empty())
        return {};
    return FromFileName(FileNameOf(which, WithoutTrailingSlashes(home)));
}

} // namespace QMT::platform

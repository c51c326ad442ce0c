// Files and directories as the system has them.
//
// Paths are text. Where the system names files by bytes, a path goes to it as UTF-8, a lone surrogate in its
// three-byte form; a name whose bytes are no UTF-8 comes back with each such byte b as the lone surrogate
// 0xDC00 + b, and such a surrogate goes back as that byte, so that a listed name always opens its file. No
// path makes a call throw; one that holds a zero is refused.
//
// Every call enters the system, waits for it, and gives its error number, 0 for success.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/system_errors.h"
#include "qmt/general/code_unit.h"

namespace QMT::platform {

// The character between the elements of a path, and the zero-terminated text that ends a line.
extern CodeUnit const dirSeparator;
extern CodeUnit const* const lineBreak;

enum class FileAccess {
    Read,    // the file must exist
    Rewrite, // makes the file when it is missing and leaves what it holds
    Append   // the same, for Append
};

// One open file, closed by the destructor if not before. Used by one thread at a time.
class FileHandle {
public:
    FileHandle() = default;
    FileHandle(FileHandle const&) = delete;
    FileHandle& operator=(FileHandle const&) = delete;
    ~FileHandle();

    // Opens the file; a directory is an error. The handle must not be open. Other processes may open the
    // file meanwhile for whatever they like, and a child process does not inherit it.
    SystemError Open(std::basic_string_view<CodeUnit> path, FileAccess access);

    // Closes the file, which is closed after a failure, too.
    SystemError Close() noexcept;

    // Reads the next bytes, at most capacity of them; a count of 0 is the end of the file.
    SystemError Read(char* bytes, std::size_t capacity, std::size_t& count) noexcept;

    // Writes all the bytes over what stands at the offset, in one piece as far as the system takes it.
    SystemError WriteAt(std::uint64_t offset, char const* bytes, std::size_t count) noexcept;

    // Adds all the bytes to the end of the file, wherever that is by now. After a failure what was added is
    // taken back, unless another process has added to it.
    SystemError Append(char const* bytes, std::size_t count) noexcept;

    // Cuts off what stands behind the first size bytes; a file that is no longer than that stays.
    SystemError CutAt(std::uint64_t size) noexcept;

    SystemError Size(std::uint64_t& bytes) const noexcept;

private:
    std::intptr_t handle = -1;
};

// Deletes a file, not a directory.
SystemError RemoveFile(std::basic_string_view<CodeUnit> path);

// Creates the directory in an existing one; success when it is there already.
SystemError MakeDirectory(std::basic_string_view<CodeUnit> path);

// Success when there is a directory at the path.
SystemError CheckDirectory(std::basic_string_view<CodeUnit> path);

struct DirectoryEntry {
    std::basic_string<CodeUnit> name;
    bool isDirectory; // a link counts as what it leads to
};

// Adds the entries of the directory, without itself and its parent, in no particular order.
SystemError ListDirectory(std::basic_string_view<CodeUnit> path, std::vector<DirectoryEntry>& entries);

} // namespace QMT::platform

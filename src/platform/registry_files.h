// The files of a registry that the system does not keep itself. Paths are as ToFileName (file_names.h) gives
// them.
#pragma once

#include <string>
#include <string_view>

#include "platform/system_errors.h"

namespace QMT::platform {

// For databases, so that Windows, which has a registry, has none of these three.

// Where the databases stand when nobody has said otherwise: the user's below his configuration directory,
// empty when he has none; the machine's where its administrator keeps settings.
std::string DefaultUserDatabase();
std::string DefaultMachineDatabase();

// Who may read what is made.
enum class Readers { Owner, Everyone };

// Makes an empty file, and the directories that lead to it, where they are missing. What is there stays as
// it is.
SystemError MakeDatabaseFile(std::string const& path, Readers readers);

// Everywhere: writes a file that must not exist; after a failure it does not.
SystemError WriteNewFile(std::string const& path, std::string_view bytes);

} // namespace QMT::platform

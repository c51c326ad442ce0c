// Failures on their way to the user and to the error log.
#pragma once

#include <filesystem>
#include <string>

#include "qmt/general/errors.h"

namespace Audio {

// Sets up the error log in the directory, which is made if it is missing. Without one that can be written to
// there is no log.
void StartErrorLog(std::filesystem::path const& directory);

// Adds the error to the log and deletes it.
void LogError(QMT::ErrorInfo* error);

// Tells the user on standard error, and the log.
void ReportFailure(std::string const& message);

} // namespace Audio

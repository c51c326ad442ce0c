// The error log: where a failure ends that nobody is left to hear of.
#pragma once

#include "qmt/export.h"
#include "qmt/general/errors.h"
#include "qmt/general/string.h"

namespace QMT {

// The log is a set of three text files in one directory, each for four months of the year; docs/error_log.md
// describes them. It is off until the application has said where the files go.
//
//     SetErrLogPath(directory);
//     ErrorInfo* error = file.Open();
//     LogAndResetError(error); // error is null now

// Sets the directory of the log files, which exists; it may be called again. The name of a file is `path`,
// the system's directory separator and the file's own name. From any thread; waits while another thread logs.
QMT_UTILU_API void SetErrLogPath(String path);

// Adds a line to the log with the time in UTC and the text of `error`, deletes `error`, and sets it to null.
// A null `error` is left alone. Never fails: an entry that cannot be written is lost, and the error is
// deleted all the same. The time is the one the application is to see, so that a modifier of it is called.
// From any thread; lines do not mix. Waits for other threads that log, and for the disc: not for real-time
// work.
QMT_UTILU_API void LogAndResetError(ErrorInfo*& error);

} // namespace QMT

// The failure report of the family, and the developer's debug output.
#pragma once

#include "qmt/export.h"
#include "qmt/general/string.h"

namespace QMT {

// What went wrong, in words.
//
// An ErrorInfo* is an owning pointer, as a result and as an exception alike; as a result null means success.
// Whoever receives one that is not null deletes it, hands it on as its own result, or logs it. Hold it in a
// std::unique_ptr from the moment it arrives and release() it to hand it on.
//
// Guaranteed: the text never changes after construction and may be read from several threads.
//
//     if (std::unique_ptr<ErrorInfo> error{file.Open()}) {
//         return error.release();
//     }
class QMT_GENU_API ErrorInfo {
public:
    // The text is the message with the detail joined straight to it.
    explicit ErrorInfo(String message, String const& detail = String());
    ErrorInfo(ErrorInfo const&) = delete;
    ErrorInfo& operator=(ErrorInfo const&) = delete;
    virtual ~ErrorInfo();

    // The text, as it goes to the error log; it lives as long as this object.
    operator String const&() const noexcept { return text; }

private:
    String text;
};

// A new error, owned by the caller. The detail is the system's text for the failure and begins with a blank.
QMT_GENU_API ErrorInfo* MakeError(String message);
QMT_GENU_API ErrorInfo* MakeError(String message, String detail);

// Writes one line to the developer's debug output: standard error, on Windows the debugger. May be called
// from any thread; lines do not mix. It enters the system; a failure is not noticed.
QMT_GENU_API void LogToIDE(String line);

} // namespace QMT

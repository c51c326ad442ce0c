#include "qmt/general/errors.h"

#include <string>
#include <utility>

#include "general/system_error_text.h"
#include "general/utf.h"
#include "platform/debug_output.h"
#include "platform/system_errors.h"

namespace QMT {

ErrorInfo::ErrorInfo(String message, String const& detail) : text(std::move(message += detail)) {}

ErrorInfo::~ErrorInfo() = default;

ErrorInfo* MakeError(String message) {
    return new ErrorInfo(std::move(message));
}

ErrorInfo* MakeError(String message, String detail) {
    return new ErrorInfo(std::move(message), detail);
}

String SystemErrorText(std::uint32_t code) {
    String text(u" Error code = ");
    text << leadzero << hex(8) << code << u". " << String(platform::SystemErrorMessage(code));
    return text;
}

String LastSystemErrorText() {
    return SystemErrorText(platform::LastSystemError());
}

void LogToIDE(String line) {
    std::string bytes;
    AppendUtf8(bytes, line.View());
    platform::WriteDebugLine(std::move(bytes));
}

} // namespace QMT

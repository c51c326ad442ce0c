#include "error_report.h"

#include <cstdio>
#include <system_error>

#include "qmt/diagnostics/error_log.h"

namespace Audio {

namespace {

QMT::String ToText(std::string const& bytes) {
    return QMT::DecodeFromUTF8(bytes.c_str(), false);
}

} // namespace

void StartErrorLog(std::filesystem::path const& directory) {
    std::error_code ignored;
    std::filesystem::create_directories(directory, ignored);
    QMT::SetErrLogPath(ToText(directory.string()));
}

void LogError(QMT::ErrorInfo* error) {
    QMT::LogAndResetError(error);
}

void ReportFailure(std::string const& message) {
    std::fprintf(stderr, "audio_chain: %s\n", message.c_str());
    LogError(QMT::MakeError(u"audio_chain: " + ToText(message)));
}

} // namespace Audio

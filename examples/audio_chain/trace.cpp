#include "trace.h"

#include <memory>

#include "error_report.h"
#include "failure.h"
#include "qmt/diagnostics/realtime_report.h"
#include "qmt/helpers/system.h"

namespace Audio {

void StartTrace() {
    QMT::StartMillisecsCount();
    QMT::RealTimeReport::TurnReportIngOn();
    QMT::REALTIMETRACE(u"started", QMT::NoTraceValue);
}

bool WriteTrace(std::filesystem::path const& name) {
    QMT::String const path = QMT::DecodeFromUTF8(name.string().c_str(), false);
    std::unique_ptr<QMT::ErrorInfo> error(
        QMT::RealTimeReport::WriteReportFiles(path + u".txt", path + u".json"));
    if (!error)
        return true;
    LogError(error.release());
    ReportFailure("cannot write the trace " + Quoted(name));
    return false;
}

} // namespace Audio

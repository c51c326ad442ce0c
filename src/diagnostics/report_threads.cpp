#include "diagnostics/report_threads.h"

#include "platform/thread_names.h"

namespace QMT {

[[gnu::tls_model("initial-exec")]] thread_local constinit ReportThreads::Known ReportThreads::thisThread{0,
                                                                                                         0};

unsigned int ReportThreads::Add() {
    names.Add(String(platform::CurrentThreadName()));
    thisThread = {round, static_cast<unsigned int>(names.Size())};
    return thisThread.number;
}

void ReportThreads::Clear() {
    names.RemoveAll();
    ++round;
}

} // namespace QMT

// What the application can be told, and how it starts with it.
#pragma once

#include "qmt/config/config_base.h"
#include "qmt/general/containers.h"
#include "qmt/general/errors.h"

// The settings, each with the value it has until something else is read.
//
//     Options options;
//     ReadOptions(store, options, [](QMT::ErrorInfo*& error) { QMT::LogAndResetError(error); });
struct Options {
    int minutesPerSlot = 30;
    QMT::String stringTable; // a file, empty for none
    QMT::String country = u"DE";
    QMT::String greeting = u"on";
    double volume = 0.8;
};

// Reads the settings. Each one that is not allowed is told to report(error), which ends the error, and keeps
// what it was before.
using Report = void (*)(QMT::ErrorInfo*& error);
void ReadOptions(QMT::ConfigBase& settings, Options& options, Report report);

// Starts the library's services with the options, in the order in which they rest on each other; the error
// log, in the directory, is there before anything that can fail.
void StartServices(Options const& options, QMT::String const& directory);

// Ends them, also in order. The real-time report goes to report.txt in the directory; a failure of that is
// nobody's.
void EndServices(QMT::String const& directory);

// Sends a recording through a processing chain and writes the result; docs/audio_chain.md tells how.
#include <cstdio>
#include <exception>

#include "comparison.h"
#include "error_report.h"
#include "failure.h"
#include "options.h"
#include "output_file.h"
#include "recording_reader.h"
#include "recording_writer.h"
#include "result_table.h"
#include "system.h"
#include "trace.h"
#include "transfer.h"

namespace Audio {

namespace {

enum ExitStatus { Success = 0, Failed = 1, BadCommandLine = 2, EndedBySignal = 128 };

ChainSettings SettingsFor(Options const& options, RecordingFormat const& format) {
    ChainSettings settings{};
    settings.channels = static_cast<std::size_t>(format.channels);
    settings.sampleRate = format.sampleRate;
    settings.blockFrames = options.blockFrames;
    settings.buffers = options.buffers;
    settings.gain = FromDb(options.gain);
    for (std::size_t i = 0; i < bandCount; ++i)
        settings.bandGains[i] = FromDb(options.bandGains[i]);
    settings.lowEdge = options.lowEdge;
    settings.highEdge = options.highEdge;
    return settings;
}

RunResult ProcessRecording(Options const& options, RecordingReader& input, OutputFile& file) {
    RecordingWriter output(file, input.Format());
    TransferFigures const figures = Transfer(input, output, SettingsFor(options, input.Format())).Run();
    output.Close();
    file.Close();
    return {figures, input.Format().sampleRate, output.ClippedSamples(), input.UnusableSamples(), {}};
}

int Run(Options const& options) {
    RecordingReader input(options.input);
    OutputFile file(options.output);
    RunResult result = ProcessRecording(options, input, file);
    if (options.IsFlat())
        result.largestDifference = LargestDifference(options.input, file.TemporaryPath());
    if (result.IsAsExpected())
        file.Commit();
    PrintTable(result);
    if (result.IsAsExpected())
        return Success;
    ReportFailure("the result for " + Quoted(options.output) + " does not equal " + Quoted(options.input));
    return Failed;
}

int ReportingFailures(Options const& options) {
    try {
        return Run(options);
    } catch (Interrupted const& reason) {
        ReportFailure("interrupted, " + Quoted(options.output) + " is not written");
        return EndedBySignal + reason.SignalNumber();
    } catch (std::exception const& fault) {
        ReportFailure(fault.what());
        return Failed;
    }
}

// The trace is written after a failure, too, and tells how far the run came.
int Traced(Options const& options) {
    StartTrace();
    int const status = ReportingFailures(options);
    return WriteTrace(options.trace) || status != Success ? status : Failed;
}

} // namespace

} // namespace Audio

int main(int argumentCount, char** arguments) {
    Audio::CatchSignals();
    Audio::Options options;
    try {
        options = Audio::ParseOptions(argumentCount, arguments);
    } catch (Audio::BadUsage const& fault) {
        std::fprintf(stderr, "audio_chain: %s\n\n%s", fault.what(), Audio::UsageText().c_str());
        return Audio::BadCommandLine;
    }
    if (options.help) {
        std::fputs(Audio::UsageText().c_str(), stdout);
        return Audio::Success;
    }
    Audio::StartErrorLog(options.logDirectory);
    return options.trace.empty() ? Audio::ReportingFailures(options) : Audio::Traced(options);
}

#include "options.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <span>
#include <string_view>
#include <system_error>
#include <vector>

namespace Audio {

namespace {

using Value = std::string_view;

struct Option {
    std::string_view name;
    std::string_view value; // what its value is called in the usage
    std::string_view meaning;
    std::function<void(Options&, Value)> take; // throws a text that says what is wrong with the value
};

double ParseNumber(Value text, double lowest, double highest) {
    Value const digits = text.starts_with('+') ? text.substr(1) : text;
    double number = 0;
    auto const [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (error != std::errc() || end != digits.data() + digits.size() ||
        digits.starts_with("-") != (text[0] == '-'))
        throw BadUsage("is no number");
    if (!(number >= lowest && number <= highest))
        throw BadUsage("is out of range");
    return number;
}

double ParseGain(Value text) {
    return ParseNumber(text, -120, 60);
}

double ParseEdge(Value text) {
    return ParseNumber(text, 1, 1e6);
}

std::size_t ParseCount(Value text, double highest) {
    double const number = ParseNumber(text, 1, highest);
    if (number != std::floor(number))
        throw BadUsage("is no whole number");
    return static_cast<std::size_t>(number);
}

std::span<Option const> KnownOptions() {
    static Option const options[] = {
        {"--gain", "dB", "gain of the input, -120 to 60 (0)",
         [](Options& o, Value v) { o.gain = ParseGain(v); }},
        {"--low", "dB", "gain of the low band, -120 to 60 (0)",
         [](Options& o, Value v) { o.bandGains[0] = ParseGain(v); }},
        {"--mid", "dB", "gain of the middle band (0)",
         [](Options& o, Value v) { o.bandGains[1] = ParseGain(v); }},
        {"--high", "dB", "gain of the high band (0)",
         [](Options& o, Value v) { o.bandGains[2] = ParseGain(v); }},
        {"--low-edge", "Hz", "where the low band ends, 1 to 1000000 (250)",
         [](Options& o, Value v) { o.lowEdge = ParseEdge(v); }},
        {"--high-edge", "Hz", "where the high band begins (4000)",
         [](Options& o, Value v) { o.highEdge = ParseEdge(v); }},
        {"--block", "frames", "frames in a block, 1 to 65536 (1024)",
         [](Options& o, Value v) { o.blockFrames = ParseCount(v, 65536); }},
        {"--buffers", "n", "blocks that a ring holds, 1 to 64 (8)",
         [](Options& o, Value v) { o.buffers = ParseCount(v, 64); }},
        {"--log", "dir", "directory of the error log (~/.local/state/audio_chain)",
         [](Options& o, Value v) { o.logDirectory = v; }},
        {"--trace", "name", "writes what happened when to name.txt and, for viewers, name.json",
         [](Options& o, Value v) { o.trace = v; }},
    };
    return options;
}

std::filesystem::path DefaultLogDirectory() {
    auto const variable = [](char const* name) {
        char const* const value = std::getenv(name);
        return std::filesystem::path(value == nullptr ? "" : value);
    };
    constexpr char const* folder = "audio_chain";
    if (auto const state = variable("XDG_STATE_HOME"); state.is_absolute())
        return state / folder;
    if (auto const home = variable("HOME"); home.is_absolute())
        return home / ".local" / "state" / folder;
    std::error_code ignored;
    return std::filesystem::temp_directory_path(ignored) / folder;
}

void TakeOption(Options& options, std::string_view name, Value const* value) {
    auto const known = KnownOptions();
    auto const option = std::ranges::find(known, name, &Option::name);
    if (option == known.end())
        throw BadUsage("unknown option '" + std::string(name) + "'");
    if (value == nullptr || value->empty())
        throw BadUsage("option '" + std::string(name) + "' needs a value");
    try {
        option->take(options, *value);
    } catch (BadUsage const& fault) {
        throw BadUsage("option '" + std::string(name) + "': '" + std::string(*value) + "' " + fault.what());
    }
}

void TakeOperands(Options& options, std::vector<std::string_view> const& operands) {
    if (operands.size() > 2)
        throw BadUsage("surplus argument '" + std::string(operands[2]) + "'");
    if (operands.size() < 2 || operands[0].empty() || operands[1].empty())
        throw BadUsage("an input and an output are needed");
    options.input = operands[0];
    options.output = operands[1];
}

} // namespace

Options ParseOptions(int argumentCount, char const* const* arguments) {
    std::vector<Value> const words(arguments + std::min(argumentCount, 1), arguments + argumentCount);
    Options options;
    options.logDirectory = DefaultLogDirectory();
    std::vector<std::string_view> operands;
    bool onlyOperands = false;
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (onlyOperands || !words[i].starts_with('-')) {
            operands.push_back(words[i]);
        } else if (words[i] == "--") {
            onlyOperands = true;
        } else if (words[i] == "--help") {
            options.help = true;
            return options;
        } else {
            TakeOption(options, words[i], i + 1 < words.size() ? &words[i + 1] : nullptr);
            ++i;
        }
    }
    TakeOperands(options, operands);
    if (options.lowEdge > options.highEdge)
        throw BadUsage("option '--low-edge' lies above '--high-edge'");
    return options;
}

std::string UsageText() {
    std::string text = "usage: audio_chain INPUT OUTPUT [OPTION VALUE]...\n"
                       "Sends a recording through a processing chain and writes the result.\n\n";
    for (Option const& option : KnownOptions()) {
        std::string line = "  " + std::string(option.name) + " " + std::string(option.value);
        line.resize(22, ' ');
        text += line + std::string(option.meaning) + "\n";
    }
    return text + "  --help              these lines\n\n"
                  "Ends with 0 on success, 1 on failure, 2 on a bad command line, 128 and the number of the\n"
                  "signal when interrupted. Nothing stands under the name OUTPUT unless the run succeeds.\n";
}

} // namespace Audio

// Runs the example as a user does and looks at what it writes.
#include <gtest/gtest.h>
#include <sndfile.h>

#include <array>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <numbers>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "support/seed.h"
#include "support/temp_directory.h"

namespace {

struct Sound {
    int code = 0;
    int channels = 0;
    std::vector<double> samples;

    bool operator==(Sound const&) const = default;
};

class AudioChainTest : public testing::Test {
protected:
    std::string PathOf(std::string const& name) const { return (directory.Place() / name).string(); }

    Sound WriteNoise(std::string const& name, int code, int channels, std::size_t frames) {
        Sound sound{code, channels, std::vector<double>(frames * static_cast<std::size_t>(channels))};
        for (double& sample : sound.samples)
            sample = std::uniform_real_distribution(-1.0, 1.0)(random);
        return Write(name, sound);
    }

    // Gives what has become of it in the file.
    Sound Write(std::string const& name, Sound const& sound) const {
        SF_INFO info{0, 44100, sound.channels, sound.code, 0, 0};
        SNDFILE* const file = sf_open(PathOf(name).c_str(), SFM_WRITE, &info);
        sf_command(file, SFC_SET_CLIPPING, nullptr, SF_TRUE);
        sf_write_double(file, sound.samples.data(), static_cast<sf_count_t>(sound.samples.size()));
        sf_close(file);
        return Read(name);
    }

    Sound Read(std::string const& name) const {
        SF_INFO info{};
        SNDFILE* const file = sf_open(PathOf(name).c_str(), SFM_READ, &info);
        if (file == nullptr)
            return {};
        Sound sound{info.format, info.channels, {}};
        sound.samples.resize(static_cast<std::size_t>(info.frames * info.channels));
        sf_read_double(file, sound.samples.data(), info.frames * info.channels);
        sf_close(file);
        return sound;
    }

    // What a shell says to the command, in the test's directory, with the status behind it.
    std::string Run(std::string const& command) const {
        std::string const whole = "cd " + directory.Place().string() +
                                  "; run=" AUDIO_CHAIN_PROGRAM "; export XDG_STATE_HOME=$PWD/state; (" +
                                  command + ") > said 2>&1; echo status $? >> said";
        EXPECT_EQ(std::system(whole.c_str()), 0);
        return TextOf("said");
    }

    std::string TextOf(std::string const& name) const {
        std::ostringstream text;
        text << std::ifstream(PathOf(name)).rdbuf();
        return text.str();
    }

    QMT::TempDirectory directory;
    std::mt19937 random = QMT::SeededGenerator();
};

bool Contains(std::string const& text, std::string const& part) {
    return text.find(part) != std::string::npos;
}

// One low pass in the form of its difference equation, for one channel.
std::vector<double> LowPass(std::vector<double> const& input, double edge) {
    double const g = std::tan(std::numbers::pi * edge / 44100);
    std::vector<double> output;
    double before = 0;
    for (double const sample : input) {
        double const last = output.empty() ? 0 : output.back();
        output.push_back((g * (sample + before) + (1 - g) * last) / (1 + g));
        before = sample;
    }
    return output;
}

TEST_F(AudioChainTest, FlatGainsGiveEverySampleBack) {
    struct Case {
        int code, channels;
        std::size_t frames;
        char const* options;
    };

    for (auto const& [code, channels, frames, options] : std::initializer_list<Case>{
             {SF_FORMAT_WAV | SF_FORMAT_PCM_16, 1, 30011, ""},
             {SF_FORMAT_WAV | SF_FORMAT_PCM_16, 1, 0, ""},
             {SF_FORMAT_WAV | SF_FORMAT_PCM_24, 2, 1024, ""},
             {SF_FORMAT_WAV | SF_FORMAT_PCM_24, 6, 1025, "--buffers 1"},
             {SF_FORMAT_WAV | SF_FORMAT_PCM_32, 2, 5003, "--block 1 --buffers 2"},
             {SF_FORMAT_WAV | SF_FORMAT_FLOAT, 2, 1, ""},
             {SF_FORMAT_WAV | SF_FORMAT_FLOAT, 6, 5003, "--block 65536"},
             {SF_FORMAT_FLAC | SF_FORMAT_PCM_24, 2, 5003, "--block 7 --buffers 64"},
             {SF_FORMAT_AIFF | SF_FORMAT_PCM_U8, 1, 999, "--low-edge 3 --high-edge 40000"}}) {
        SCOPED_TRACE(std::to_string(code) + " " + std::to_string(frames) + " " + options);
        Sound const input = WriteNoise("in", code, channels, frames);
        std::string const said = Run(std::string("$run in out ") + options);
        EXPECT_TRUE(Contains(said, "output equals input") && Contains(said, "\nstatus 0")) << said;
        EXPECT_TRUE(Read("out") == input);
        EXPECT_TRUE(Contains(Run("ls -A"), "in\nout\nsaid\nstate\n"));
    }
}

TEST_F(AudioChainTest, GainsActLikeAPlainComputation) {
    Sound const input = WriteNoise("in", SF_FORMAT_WAV | SF_FORMAT_FLOAT, 2, 20011);
    std::string const said =
        Run("$run in out --gain -3 --low +6 --mid -9.5 --high 2 --low-edge 300 --high-edge 5000 --block 100");
    EXPECT_TRUE(Contains(said, "\nstatus 0") && !Contains(said, "flat")) << said;
    Sound const output = Read("out");
    ASSERT_EQ(output.samples.size(), input.samples.size());
    auto const amplitude = [](double decibels) { return std::pow(10.0, decibels / 20); };
    for (std::size_t channel = 0; channel < 2; ++channel) {
        std::vector<double> sound;
        for (std::size_t i = channel; i < input.samples.size(); i += 2)
            sound.push_back(amplitude(-3) * input.samples[i]);
        std::vector<double> const low = LowPass(sound, 300);
        std::vector<double> const belowHigh = LowPass(sound, 5000);
        for (std::size_t i = 0; i < sound.size(); ++i)
            ASSERT_NEAR(output.samples[2 * i + channel],
                        amplitude(6) * low[i] + amplitude(-9.5) * (belowHigh[i] - low[i]) +
                            amplitude(2) * (sound[i] - belowHigh[i]),
                        1e-6)
                << i;
    }
}

TEST_F(AudioChainTest, ClippedAndUnusableSamplesAreCounted) {
    Write("in", {SF_FORMAT_WAV | SF_FORMAT_PCM_16, 1, {0.5, -0.5, 0.5, 0.001}});
    std::string said = Run("$run in in --gain 20 | tr -s ' '");
    EXPECT_TRUE(Contains(said, "clipped samples 3\n")) << said;
    EXPECT_EQ(Read("in").samples[0], 32767 / 32768.0);
    EXPECT_EQ(Read("in").samples[1], -1);

    double const infinity = std::numeric_limits<double>::infinity();
    Write("in", {SF_FORMAT_WAV | SF_FORMAT_FLOAT, 1, {0.5, std::nan(""), infinity, -0.25}});
    said = Run("$run in out | tr -s ' '");
    EXPECT_TRUE(Contains(said, "taken as 0 2\n") && Contains(said, "peak, dBFS -6.02 -6.02")) << said;
    Sound const output = Read("out");
    for (std::size_t i = 0; i < output.samples.size(); ++i)
        EXPECT_NEAR(output.samples[i], (std::array{0.5, 0.0, 0.0, -0.25}[i]), 1e-6);
}

TEST_F(AudioChainTest, TraceTellsTheRunInBothForms) {
    WriteNoise("in", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 2, 30000);
    std::string const said = Run("$run in out --trace trace && python3 -m json.tool trace.json");
    EXPECT_TRUE(Contains(said, "\nstatus 0") && Contains(said, "\"name\": \"recorder\"")) << said;
    std::string const trace = TextOf("trace.txt");
    EXPECT_TRUE(trace.starts_with("(00000000) started\n")) << trace;
    for (char const* const text :
         {"first block at stage 1", "first block at stage 6", "first block recorded", "end, frames 30000"})
        EXPECT_TRUE(Contains(trace, text) && Contains(said, std::string(text).substr(0, 10))) << trace;
    EXPECT_TRUE(Contains(Run("$run in out --trace no/where >&-"), "the trace 'no/where'\nstatus 1\n"));
    EXPECT_TRUE(Contains(Run("$run missing out --trace early"), "status 1"));
    EXPECT_EQ(TextOf("early.txt"), "(00000000) started\n");
}

TEST_F(AudioChainTest, FailuresAreToldAndLeaveNoOutput) {
    WriteNoise("in", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 2, 100000);
    std::ofstream(PathOf("text")) << "This is no recording.";

    struct Case {
        char const* command;
        char const* message;
        int status;
        bool logged;
    };

    for (auto const& [command, message, status, logged] :
         std::initializer_list<Case>{{"$run missing out", "cannot read 'missing'", 1, true},
                                     {"$run text out", "'text' is no recording", 1, true},
                                     {"$run in nowhere/out", "cannot write 'nowhere/out'", 1, true},
                                     {"ulimit -f 100; $run in out", "cannot write 'out'", 1, true},
                                     {"$run in .", "'.': it is no regular file", 1, true},
                                     {"$run in out --gain loud", "'--gain': 'loud'", 2, false},
                                     {"$run in out --buffers 0", "'--buffers': '0'", 2, false},
                                     {"$run in out --colour red", "'--colour'", 2, false},
                                     {"$run in", "usage", 2, false}}) {
        std::string const said = Run(std::string("rm -rf log; ") + command + " --log log");
        EXPECT_TRUE(Contains(said, message) && Contains(said, "\nstatus " + std::to_string(status))) << said;
        EXPECT_EQ(Contains(Run("cat log/*.log"), message), logged) << message;
        std::string const left = Run("ls -A");
        EXPECT_FALSE(Contains(left, "out") || Contains(left, ".audio_chain")) << left;
    }
}

// The run would take seconds: the input is filled up with silence, and a length that is not known in its head
// means all of it. It is ended as soon as it has begun to write.
TEST_F(AudioChainTest, InterruptedRunLeavesNoOutput) {
    WriteNoise("in", SF_FORMAT_AU | SF_FORMAT_PCM_16, 1, 1);
    constexpr int lengthField = 8;
    std::fstream(PathOf("in")).seekp(lengthField).write("\xFF\xFF\xFF\xFF", 4);
    std::filesystem::resize_file(PathOf("in"), 2'000'000'000);
    std::string const begun =
        "$run in out --high 1 & until ls .audio_chain-* || ! kill -0 $!; do sleep 0.01; done; ";
    for (std::string const signal : {"INT", "TERM", "KILL"}) {
        std::string const said = Run(begun + "kill -" + signal + " $!; wait $!");
        std::string const status = signal == "INT" ? "130" : signal == "TERM" ? "143" : "137";
        EXPECT_TRUE(Contains(said, "\nstatus " + status)) << said;
        EXPECT_EQ(Contains(said, "interrupted, 'out' is not written"), signal != "KILL") << said;
        std::string const left = Run("ls -A");
        EXPECT_FALSE(Contains(left, "out")) << left;
        EXPECT_EQ(Contains(left, ".part"), signal == "KILL") << left;
    }
}

} // namespace

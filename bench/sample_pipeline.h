// oneTBB's pipeline, with the work and the checks of the chain benchmarks.
#pragma once

#include <oneapi/tbb/parallel_pipeline.h>

#include <cstddef>
#include <cstdint>
#include <vector>

#include "sample_block.h"

namespace bench {

// What passes is a token: the blocks that one passage needs, used again when that passage has ended.
//
// A token gives `Input()` to write to, `RunStage(place)` for each stage, and `Output(stages)` to read.
template <typename Token>
class SamplePipeline {
public:
    SamplePipeline(int stageCount, std::size_t inFlight) : stages(stageCount), tokens(inFlight) {}

    // Sends `blocks` blocks through and returns when all of them have come out.
    void Pass(std::uint64_t blocks) {
        end = written + blocks;
        oneapi::tbb::parallel_pipeline(tokens.size(), Filters());
    }

    bool Faultless() const { return faultless && read == written; }

private:
    using FlowControl = oneapi::tbb::flow_control;
    static constexpr auto inOrder = oneapi::tbb::filter_mode::serial_in_order;

    oneapi::tbb::filter<void, void> Filters() {
        using oneapi::tbb::make_filter;
        auto filters = make_filter<void, Token*>(inOrder, [this](FlowControl& flow) { return Write(flow); });
        for (int place = 0; place < stages; ++place)
            filters = filters & make_filter<Token*, Token*>(inOrder, [place](Token* token) {
                          token->RunStage(place);
                          return token;
                      });
        return filters & make_filter<Token*, void>(inOrder, [this](Token* token) { Read(*token); });
    }

    Token* Write(FlowControl& flow) {
        if (written == end) {
            flow.stop();
            return nullptr;
        }
        Token& token = tokens[written % tokens.size()];
        WriteSamples(token.Input(), written++);
        return &token;
    }

    void Read(Token const& token) {
        faultless = faultless && HoldsSamples(token.Output(stages), read++, stages);
    }

    int stages;
    std::vector<Token> tokens;
    std::uint64_t end = 0;
    std::uint64_t written = 0;
    std::uint64_t read = 0;
    bool faultless = true;
};

} // namespace bench

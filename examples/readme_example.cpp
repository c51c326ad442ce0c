// The example of README.md.
#include <algorithm>
#include <cstdio>

#include "qmt/chain/chain_links.h"
#include "qmt/chain/thread_pool.h"
#include "qmt/general/events.h"
#include "qmt/general/threads.h"

// [start]
// The chain's two ends: where the application writes and where it reads.
class Source : public QMT::ExternalPushLink {
    void Process() override {}
};

class Sink : public QMT::ExternalPullLink {
    void Process() override {}
};

// A stage between them, with a thread of its own: adds 1 to every byte of a block.
class AddOne : public QMT::InternalPushLink {
    void Process() override {
        QMT::RotatingFixedBuffers& input = GetPreceeding()->GetBuffers();
        unsigned char** const from = input.BeginRead();
        if (!from)
            return;
        if (unsigned char** const to = GetBuffers().BeginWrite()) {
            std::transform(*from, *from + input.FixedBufferSize(), *to,
                           [](unsigned char byte) { return static_cast<unsigned char>(byte + 1); });
            GetBuffers().EndWrite();
        } // else the reader is slow, and this block is dropped
        input.EndRead();
    }
};

int main() {
    QMT::ThreadPool pool("workers", 1);
    QMT::ChainLink::SetThreadPoolToUse(&pool);

    Source source;
    AddOne addOne;
    Sink sink;
    source.GetBuffers().SetProperties(4, 16); // 4 slots hold up to 3 blocks of 16 bytes
    addOne.GetBuffers().SetProperties(4, 16);
    source.LinkToFollowing(&addOne);
    sink.SetPreceedingLink(&addOne);

    if (unsigned char** const block = source.BeginWrite()) {
        std::fill_n(*block, 16, static_cast<unsigned char>(41));
        source.EndWrite(); // wakes the stage's thread and goes on
    }

    unsigned char** result = sink.BeginRead();
    for (; !result; result = sink.BeginRead())
        QMT::MS_Sleep(1);
    std::printf("%d\n", (*result)[0]); // 42
    sink.EndRead();

    source.StopLinkedProcessing(); // returns when the stage's thread is idle
}

// [end]

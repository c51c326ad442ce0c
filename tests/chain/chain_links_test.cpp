#include "qmt/chain/chain_links.h"

#include "support/chain_fixtures.h"

namespace QMT {
namespace {

TEST(ChainLinks, AreJoinedAlikeFromBothEndsOrOneWay) {
    for (int const way : {0, 1, 2}) {
        Writer writer(3);
        Spy next;
        writer.StopLinkedProcessing(); // nobody is there
        way == 0   ? writer.LinkToFollowing(&next)
        : way == 1 ? next.LinkToPreceeding(&writer)
                   : next.SetPreceedingLink(&writer);
        EXPECT_TRUE(next.GetPreceeding() == &writer && writer.GetPreceeding() == nullptr);
        next.onCall = [&] {
            EXPECT_TRUE(writer.GetBuffers().TestRead()) << "the buffer comes before the push";
        };
        writer.WriteNext();
        writer.StopLinkedProcessing();
        EXPECT_TRUE(next.pushes == (way < 2 ? 1 : 0) && next.stops == (way < 2 ? 1 : 0));
        unsigned char* const block = AllocateBlock(blockSize);
        writer.WriteReplace(block);
        EXPECT_EQ(writer.ForOverWrite(), block);
        writer.GetBuffers().EndWrite();
        EXPECT_FALSE(writer.TestWrite() || writer.BeginWrite() != nullptr);
    }
}

TEST(ChainLinks, ReaderPullsOnceForEachLook) {
    Spy source;
    source.GetBuffers().SetProperties(3, blockSize);
    CountingSemaphore ended(nullptr, 0);
    source.GetBuffers().SetEndReadNotifyRequired(&ended);
    Reader reader;
    reader.StopLinkedProcessing(); // nobody is there
    reader.LinkToPreceeding(&source);
    EXPECT_TRUE(reader.BeginRead() == nullptr && source.pulls == 1);
    source.onCall = [&] { source.GetBuffers().EndWrite(); };
    EXPECT_TRUE(reader.TestRead() && source.pulls == 2) << "it looks behind the pull";
    source.onCall = [] {};
    EXPECT_EQ(reader.ForPeekRead(), source.GetBuffers().InternalBuffers()[0]);
    reader.EndRead();
    EXPECT_EQ(source.pulls, 2);
    EXPECT_TRUE(reader.TestRead()) << "a notification keeps the slot";
    reader.StopLinkedProcessing();
    source.SetTraceName(u"in");
    EXPECT_TRUE(source.stops == 1 && source.GetBuffers().GetTraceName() == String(u"in"));
}

} // namespace
} // namespace QMT

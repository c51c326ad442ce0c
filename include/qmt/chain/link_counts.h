// What the links of a chain have done, for display and for finding the slow one.
//
// Links count while they run, at the cost of a load and a store each, and a look at the counts disturbs
// nobody. Counts go on over a stop and a restart.
#pragma once

#include <cstdint>
#include <vector>

#include "qmt/chain/chain_links.h"
#include "qmt/export.h"
#include "qmt/general/string.h"

namespace QMT {

enum class LinkKind { ExternalPush, ExternalPull, Push, Pull, Crossover, PushArray, PullArray, Other };

// The kind in words, such as "push array".
QMT_UTILU_API String NameOf(LinkKind kind);

// One link of a chain, and what it has counted.
//
// Pushes and pulls that have reached a link with a thread are on its semaphore until the link takes them up,
// and then belong to `pushes` or `pulls`, also when a stop drops them; the link has got all three together.
// Where nothing comes of them, as of a pull at a push link, they are counted as they come, but for pulls of
// parallel links, which are not counted then, and pushes at a link without a predecessor.
struct LinkCounts {
    String name;      // the trace name, may be empty
    int position = 0; // in the chain: 1 at the writer's end; parallel links and their array share one
    int party = 0;    // 1, 2 and so on for the parallel links of a position, 0 for all others
    LinkKind kind = LinkKind::Other;
    bool coupled = false; // to the link in front of it

    std::uint64_t pushes = 0;
    std::uint64_t pulls = 0;
    std::uint64_t waiting = 0;      // on the semaphore at this moment
    std::uint64_t processCalls = 0; // that pushes and pulls have led to, the one under way included

    int slots = 0;   // of the link's own ring, 0 when that is not configured
    RingCounts ring; // likewise
};

// The counts of the link, of all links in front of it and behind it, and of the parallel links of every array
// among them, in the order of positions and parties. What is joined one way, or parallel, is found from
// behind or from the array, and not from in front: the reader's end sees all.
//
// From any thread, at any time at which links are neither joined, configured, named nor destroyed. Each value
// is one that its count has had, but not all need be of one moment. Allocates; the chain notices nothing.
QMT_UTILU_API std::vector<LinkCounts> CountChain(ChainLink& link);

// Begins all counts of these links anew, but for `waiting`. While the chain is stopped and nobody writes or
// reads at its ends.
QMT_UTILU_API void ZeroChainCounts(ChainLink& link);

} // namespace QMT

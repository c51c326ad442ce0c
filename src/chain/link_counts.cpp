#include "qmt/chain/link_counts.h"

#include <algorithm>
#include <tuple>

#include "chain/link_task.h"

namespace QMT {

// Reaches what links and rings keep to themselves.
class CountsAccess {
public:
    static ChainLink* Before(ChainLink& link) { return link.preceeding; }

    static ChainLink* Behind(ChainLink& link) { return link.following; }

    static ChainLink* PartyAt(ParallelLinkArray& array, std::size_t index) { return array.PartyAt(index); }

    static void Count(ChainLink& link, LinkCounts& counts);
    static void Zero(ChainLink& link);

private:
    static void CountPushes(ChainLink& link, LinkCounts& counts);
    static void CountPulls(ChainLink& link, LinkCounts& counts);
    static void CountTask(LinkTask& task, std::uint64_t& taken, LinkCounts& counts);
};

namespace {

struct Place {
    ChainLink* link;
    int position;
    int party;

    // An array comes behind its parties.
    auto Order() const { return std::tuple(position, party == 0, party); }
};

// All links that a chain's joins lead to.
class ChainWalk {
public:
    explicit ChainWalk(ChainLink& start) {
        Visit(&start, 0);
        for (Place& place : places)
            place.position = PositionOf(*place.link);
        std::ranges::stable_sort(places, {}, &Place::Order);
    }

    std::vector<Place> const& Places() const { return places; } // in their order

private:
    void Visit(ChainLink* link, int party) {
        if (link == nullptr)
            return;
        if (auto const known = std::ranges::find(places, link, &Place::link); known != places.end()) {
            known->party = std::max(known->party, party); // the walk may have begun at a party
            return;
        }
        places.push_back({link, 0, party});
        Visit(CountsAccess::Before(*link), 0);
        Visit(CountsAccess::Behind(*link), 0);
        if (auto* const array = dynamic_cast<ParallelLinkArray*>(link))
            for (std::size_t i = 0; ChainLink* const member = CountsAccess::PartyAt(*array, i); ++i)
                Visit(member, static_cast<int>(i) + 1);
    }

    // No link stands behind more links than there are, unless the chain is joined to a circle.
    int PositionOf(ChainLink& link) const {
        int position = 0;
        for (ChainLink* at = &link; at != nullptr && position < static_cast<int>(places.size());
             at = CountsAccess::Before(*at))
            ++position;
        return position;
    }

    std::vector<Place> places;
};

template <typename Link>
bool Is(ChainLink& link) {
    return dynamic_cast<Link*>(&link) != nullptr;
}

LinkKind KindOf(ChainLink& link) {
    if (Is<CrossoverLink>(link))
        return LinkKind::Crossover;
    if (Is<InternalPushLink>(link))
        return Is<ParallelPushLinkArray>(link) ? LinkKind::PushArray : LinkKind::Push;
    if (Is<InternalPullLink>(link))
        return Is<ParallelPullLinkArray>(link) ? LinkKind::PullArray : LinkKind::Pull;
    if (Is<ExternalPushLink>(link))
        return LinkKind::ExternalPush;
    return Is<ExternalPullLink>(link) ? LinkKind::ExternalPull : LinkKind::Other;
}

} // namespace

void CountsAccess::CountTask(LinkTask& task, std::uint64_t& taken, LinkCounts& counts) {
    taken += task.CountsTaken();
    counts.waiting += task.CountsWaiting();
}

void CountsAccess::CountPushes(ChainLink& link, LinkCounts& counts) {
    auto* const pushed = dynamic_cast<InternalPushLink*>(&link);
    ChainLink* const before = link.preceeding;
    if (pushed == nullptr) {
        if (before != nullptr && before->following == &link)
            counts.pushes = before->buffers.pushes.Get();
    } else if (pushed->coupled) {
        counts.coupled = true;
        counts.pushes = counts.processCalls;
    } else {
        CountTask(*pushed->task, counts.pushes, counts);
    }
}

void CountsAccess::CountPulls(ChainLink& link, LinkCounts& counts) {
    counts.pulls = link.buffers.pulls.Get();
    if (auto* const pulled = dynamic_cast<InternalPullLink*>(&link))
        CountTask(*pulled->task, counts.pulls, counts);
}

void CountsAccess::Count(ChainLink& link, LinkCounts& counts) {
    counts.name = link.GetTraceName();
    counts.kind = KindOf(link);
    counts.slots = link.buffers.BufferCount();
    counts.ring = link.buffers.Counts();
    counts.processCalls = link.buffers.processed.Get();
    CountPushes(link, counts);
    CountPulls(link, counts);
}

void CountsAccess::Zero(ChainLink& link) {
    link.buffers.ZeroCounts();
    for (Tally* const tally : {&link.buffers.pushes, &link.buffers.pulls, &link.buffers.processed})
        tally->Zero();
    if (auto* const pushed = dynamic_cast<InternalPushLink*>(&link))
        pushed->task->ZeroCounts();
    if (auto* const pulled = dynamic_cast<InternalPullLink*>(&link))
        pulled->task->ZeroCounts();
}

String NameOf(LinkKind kind) {
    switch (kind) {
    case LinkKind::ExternalPush:
        return u"external push";
    case LinkKind::ExternalPull:
        return u"external pull";
    case LinkKind::Push:
        return u"push";
    case LinkKind::Pull:
        return u"pull";
    case LinkKind::Crossover:
        return u"crossover";
    case LinkKind::PushArray:
        return u"push array";
    case LinkKind::PullArray:
        return u"pull array";
    default:
        return u"other";
    }
}

std::vector<LinkCounts> CountChain(ChainLink& link) {
    std::vector<LinkCounts> all;
    ChainWalk const walk(link);
    for (Place const& place : walk.Places()) {
        LinkCounts& counts = all.emplace_back();
        counts.position = place.position;
        counts.party = place.party;
        CountsAccess::Count(*place.link, counts);
    }
    return all;
}

void ZeroChainCounts(ChainLink& link) {
    ChainWalk const walk(link);
    for (Place const& place : walk.Places())
        CountsAccess::Zero(*place.link);
}

} // namespace QMT

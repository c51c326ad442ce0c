// The clock, and what applications put in its place.
#include <chrono>
#include <cstddef>
#include <vector>

#include "general/never_destroyed.h"
#include "qmt/general/events.h"
#include "qmt/time/portable_time.h"
#include "time/portable_time_imp.h"

namespace QMT {

namespace {

struct ModifierStack {
    CritSection section{"TimeImp"};
    std::vector<PortableTime::CurrentTimeModifier> modifiers QMT_GUARDED_BY(section); // the one in force last

    // The one `depth` places beneath the top, null when there are not so many.
    PortableTime::CurrentTimeModifier FromTop(std::size_t depth) const QMT_REQUIRES(section) {
        return depth < modifiers.size() ? modifiers[modifiers.size() - 1 - depth] : nullptr;
    }
};

ModifierStack& Modifiers() {
    static NeverDestroyed<ModifierStack> stack;
    return *stack;
}

PortableTime::CurrentTimeModifier ModifierInForce() {
    ModifierStack& stack = Modifiers();
    CritSectionLock const lock(&stack.section);
    return stack.FromTop(0);
}

} // namespace

PortableTime PortableTime::GetSystemTimeNow() {
    using std::chrono::floor, std::chrono::seconds, std::chrono::system_clock;
    return PortableTime(new PortableTimeImp(floor<seconds>(system_clock::now()).time_since_epoch().count()));
}

PortableTime PortableTime::GetTimeNow() {
    CurrentTimeModifier const modifier = ModifierInForce();
    if (modifier == nullptr)
        return GetSystemTimeNow();
    // A copy, because the modifier's own value may rest on an implementation of its own.
    PortableTime const told = modifier();
    return PortableTime(told);
}

PortableTime::CurrentTimeModifier PortableTime::InstallCurrentTimeModifier(CurrentTimeModifier modifier) {
    ModifierStack& stack = Modifiers();
    CritSectionLock const lock(&stack.section);
    CurrentTimeModifier const inForce = stack.FromTop(0);
    if (modifier == inForce)
        return stack.FromTop(1);
    stack.modifiers.push_back(modifier);
    return inForce;
}

QMT_NO_THREAD_SAFETY_ANALYSIS void PortableTime::EnterTimeModifierSection() {
    Modifiers().section.Enter();
}

QMT_NO_THREAD_SAFETY_ANALYSIS void PortableTime::LeaveTimeModifierSection() {
    Modifiers().section.Leave();
}

} // namespace QMT

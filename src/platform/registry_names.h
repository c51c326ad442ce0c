// Names of keys and values, which are told apart without the case of ASCII letters.
#pragma once

#include <algorithm>

#include "platform/registry_store.h"

namespace QMT::platform {

// The form in which two names that count as equal are the same.
inline RegistryText FoldedName(RegistryTextView name) {
    RegistryText folded(name);
    for (CodeUnit& unit : folded) {
        if (unit >= u'A' && unit <= u'Z') {
            unit = static_cast<CodeUnit>(unit + (u'a' - u'A'));
        }
    }
    return folded;
}

// Takes the first name off a path: what stands in front of a backslash. Empty names are passed over; false
// when no name is left.
inline bool TakeFirstName(RegistryTextView& path, RegistryTextView& name) {
    path.remove_prefix(std::min(path.find_first_not_of(u'\\'), path.size()));
    name = path.substr(0, path.find(u'\\'));
    path.remove_prefix(name.size());
    return !name.empty();
}

} // namespace QMT::platform

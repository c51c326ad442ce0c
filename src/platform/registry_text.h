// The text file in which registry editors pass keys and values to each other, version 5.00.
#pragma once

#include <string>
#include <vector>

#include "platform/registry_store.h"

namespace QMT::platform {

struct SavedValue {
    RegistryText name;
    RegistryValue value;
};

struct SavedKey {
    RegistryText path; // from the root's name on
    std::vector<SavedValue> values;
};

// The file's bytes. nothing can be written for a path that holds a line break: false.
bool MakeRegistryText(std::vector<SavedKey> const& keys, std::string& bytes);

} // namespace QMT::platform

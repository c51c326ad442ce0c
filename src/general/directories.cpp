#include <algorithm>
#include <string_view>
#include <utility>

#include "general/system_error_text.h"
#include "platform/files.h"
#include "qmt/general/files.h"

namespace QMT {

namespace {

using TextView = std::basic_string_view<CodeUnit>;

constexpr CodeUnit anyName[] = {u'*', u'.', u'*', 0};

// True when the name fits the mask. Each star first takes nothing, then one unit more at each failure behind
// it; only the last star need be tried again.
bool Fits(TextView mask, TextView name) {
    std::size_t maskAt = 0;
    std::size_t nameAt = 0;
    std::size_t star = TextView::npos;
    std::size_t starEnd = 0;
    while (nameAt < name.size()) {
        if (maskAt < mask.size() && mask[maskAt] == u'*') {
            star = maskAt++;
            starEnd = nameAt;
        } else if (maskAt < mask.size() && (mask[maskAt] == u'?' || mask[maskAt] == name[nameAt])) {
            ++maskAt;
            ++nameAt;
        } else if (star != TextView::npos) {
            maskAt = star + 1;
            nameAt = ++starEnd;
        } else {
            return false;
        }
    }
    return mask.find_first_not_of(u'*', maskAt) == TextView::npos;
}

ErrorInfo* Outcome(platform::SystemError error, char16_t const* complaint, String const& path) {
    return error ? MakeError(String(complaint) + path + u":", SystemErrorText(error)) : nullptr;
}

} // namespace

Directory::~Directory() = default;

DiscDirectory::DiscDirectory(String directoryPath, ListingType listing, CodeUnit const* nameMask)
    : path(std::move(directoryPath)), kind(listing), mask(nameMask) {}

DiscDirectory::DiscDirectory(String directoryPath, ListingType listing, OtherCodeUnit const* nameMask)
    : path(std::move(directoryPath)), kind(listing), mask(nameMask) {}

DiscDirectory::~DiscDirectory() = default;

ErrorInfo* DiscDirectory::EnsureExists() {
    return Outcome(platform::MakeDirectory(path.View()), u"Couldn't create directory ", path);
}

ErrorInfo* DiscDirectory::DoesNotExist() {
    return Outcome(platform::CheckDirectory(path.View()), u"No directory ", path);
}

ErrorInfo* DiscDirectory::GetEntries(std::vector<Entry>& entries) {
    std::vector<platform::DirectoryEntry> present;
    if (platform::SystemError const error = platform::ListDirectory(path.View(), present)) {
        return Outcome(error, u"Couldn't list directory ", path);
    }
    entries.clear();
    for (platform::DirectoryEntry& candidate : present) {
        Entry entry{String(std::move(candidate.name)), candidate.isDirectory};
        if (LetsThrough(entry)) {
            entries.push_back(std::move(entry));
        }
    }
    std::sort(entries.begin(), entries.end(),
              [](Entry const& left, Entry const& right) { return left.name < right.name; });
    return nullptr;
}

bool DiscDirectory::LetsThrough(Entry const& entry) const {
    bool const kindFits = kind == ListingType::All || entry.isDirectory == (kind == ListingType::Directories);
    return kindFits && (mask == anyName || Fits(mask.View(), entry.name.View()));
}

} // namespace QMT

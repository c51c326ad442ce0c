// A set of many texts, looked up by content.
#pragma once

#include <cstddef>
#include <functional>
#include <utility>
#include <vector>

#include "html/page_text.h"

namespace QMT {

// Holds pointers to texts, which must live on unchanged in their place. One flat table that is at most half
// full: a look-up mostly touches one entry, where a set of linked nodes touches three places in memory, and
// that is what a page with very many texts would be slow by.
class TextSet {
public:
    // Where the search for a text has ended.
    struct Place {
        std::size_t hash;
        std::size_t index;
        bool isTaken; // by a text of the same content
    };

    Place Find(TextView text) const { return FindHashed(text, std::hash<TextView>()(text)); }

    // Adds the text at the free place that the search for its content has just ended at.
    void Add(String const& text, Place const& place) {
        entries[place.index] = {place.hash, &text};
        if (++count > entries.size() / 2) {
            Grow();
        }
    }

private:
    struct Entry {
        std::size_t hash;
        String const* text; // null in a free entry
    };

    static constexpr std::size_t firstSize = 64; // a power of two, as all sizes are

    Place FindHashed(TextView text, std::size_t hash) const {
        std::size_t index = hash & (entries.size() - 1);
        while (entries[index].text && (entries[index].hash != hash || entries[index].text->View() != text)) {
            index = (index + 1) & (entries.size() - 1);
        }
        return {hash, index, entries[index].text != nullptr};
    }

    void Grow() {
        std::vector<Entry> const old = std::exchange(entries, std::vector<Entry>(2 * entries.size()));
        for (Entry const& entry : old) {
            if (entry.text) {
                entries[FindHashed(entry.text->View(), entry.hash).index] = entry;
            }
        }
    }

    std::vector<Entry> entries = std::vector<Entry>(firstSize);
    std::size_t count = 0;
};

} // namespace QMT

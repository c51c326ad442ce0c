#include "html/row_lines.h"

namespace QMT {

namespace {

// The lines of one row: stretches of its words, of which only the boundaries move.
class RowLines {
public:
    explicit RowLines(std::vector<TextView> const& rowWords) : words(rowWords) {}

    void Fill(std::size_t width) {
        std::size_t const target = TargetLength(width);
        starts.assign(1, 0);
        std::size_t column = 0;
        for (std::size_t i = 0; i < words.size(); ++i) {
            if (column + words[i].size() > target) {
                starts.push_back(i);
                column = 0;
            }
            column += words[i].size() + 1;
        }
        starts.push_back(words.size());
    }

    // A sentence neither begins with the last word of a line nor ends with the first.
    void MoveStrayWords() {
        for (std::size_t i = 1; i + 1 < starts.size(); ++i) {
            std::size_t& boundary = starts[i];
            if (boundary - starts[i - 1] >= 2 && EndsSentence(boundary - 2)) {
                --boundary;
            }
            if (boundary < starts[i + 1] && EndsSentence(boundary)) {
                ++boundary;
            }
        }
    }

    // Makes neighbouring lines about equally long, but for the ends of sentences.
    void Balance() {
        for (std::size_t i = 1; i + 1 < starts.size(); ++i) {
            std::size_t const upper = Length(starts[i - 1], starts[i]);
            std::size_t const lower = Length(starts[i], starts[i + 1]);
            if (upper == 0 || lower == 0) {
                continue;
            }
            if (lower < upper) {
                MoveDown(starts[i], upper, lower);
            } else if (upper < lower && !EndsSentence(starts[i] - 1)) {
                MoveUp(starts[i], starts[i + 1], upper, lower);
            }
        }
    }

    std::vector<std::size_t> const& Starts() const { return starts; }

private:
    // The width, or less where the words so fill their least number of lines evenly.
    std::size_t TargetLength(std::size_t width) const {
        std::size_t total = 0;
        for (TextView const word : words) {
            total += word.size() + 1;
        }
        std::size_t const lineCount =
            total / (width + 1) + 1; // the least that brings total / lineCount to width
        return total <= width ? width : total / lineCount;
    }

    bool EndsSentence(std::size_t word) const { return words[word].back() == u'.'; }

    std::size_t Room(std::size_t word) const { return words[word].size() + 1; }

    std::size_t Length(std::size_t begin, std::size_t end) const {
        std::size_t length = 0;
        for (std::size_t i = begin; i < end; ++i) {
            length += Room(i);
        }
        return length == 0 ? 0 : length - 1;
    }

    // Neither of these empties a line: its only word never has room in the difference to its neighbour.
    void MoveDown(std::size_t& boundary, std::size_t upper, std::size_t lower) {
        bool atSentenceEnd = EndsSentence(boundary - 1);
        while (lower < upper && !atSentenceEnd) {
            std::size_t const room = Room(boundary - 1);
            if (upper - lower < room) {
                return;
            }
            --boundary;
            upper -= room;
            lower += room;
            atSentenceEnd = EndsSentence(boundary); // of the moved word, not of the one that is last now
        }
    }

    void MoveUp(std::size_t& boundary, std::size_t end, std::size_t upper, std::size_t lower) {
        while (upper < lower) {
            std::size_t const room = Room(boundary);
            bool const wouldLeaveStray = end - boundary >= 2 && EndsSentence(boundary + 1);
            if (wouldLeaveStray || lower - upper < room) {
                return;
            }
            ++boundary;
            upper += room;
            lower -= room;
        }
    }

    std::vector<TextView> const& words;
    std::vector<std::size_t> starts;
};

} // namespace

std::vector<std::size_t> LineStarts(std::vector<TextView> const& words, std::size_t width) {
    RowLines lines(words);
    lines.Fill(width);
    lines.MoveStrayWords();
    lines.Balance();
    lines.Balance();
    return lines.Starts();
}

} // namespace QMT

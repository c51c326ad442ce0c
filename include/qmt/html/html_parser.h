// The text of an HTML page: found for translators, replaced for readers, wrapped to a width.
#pragma once

#include <cstddef>
#include <vector>

#include "qmt/export.h"
#include "qmt/general/containers.h"
#include "qmt/general/string.h"

namespace QMT {

// Holds the text of one page and works on it line by line, by fixed markers; there is no document tree. What
// counts as a native string, a text that the reader reads, and how lines come out is told in
// docs/html_pages.md. Pages and tables in use depend on each of those rules, the odd ones too.
//
// The caller gives the page's text, not its path, and uses an object from one thread at a time; several
// objects are independent. Each job goes on from the text that the one before has left.
//
// Guaranteed: no job fails. Mark-up that is not recognised, unbalanced or cut off passes through. Time and
// memory grow with the page, and not faster.
//
//     HtmlParser parser(page);
//     parser.SubstituteNativeStrings(table, true);
//     parser.FormatForCharactersWidth(60);
//     Send(parser.GetAlteredHtml());
class QMT_UTILU_API HtmlParser {
public:
    // Brings the page into the line layout that the jobs rely on: the tags that matter to them on lines of
    // their own, each <br/> and <br /> as a line " <br />", no blank line.
    explicit HtmlParser(String page);

    // A copy of the page as it is now.
    String GetAlteredHtml() const;

    // Makes ExtractNativeStrings append its new texts to the list as well, in the order of the page. The list
    // stays the caller's and must live until it is replaced; null switches that off.
    void SetUnsortedExtraction(NonSortableVArray<String>* list);

    // Adds the page's native strings that strings does not hold yet; the page stays as it is. strings is in
    // ascending order and stays so; it is not emptied, so that one array can gather several pages. With
    // parseHead the title and the description count and the body begins behind the line with </head>;
    // without, every line is read as body.
    void ExtractNativeStrings(VArray<String, String>& strings, bool parseHead);

    // Puts the values of natives in the place of the page's native strings, each the first time that its text
    // stands in its line. A text that is no key stays. parseHead is as in ExtractNativeStrings. Lines held in
    // a paragraph that is never closed are lost.
    void SubstituteNativeStrings(Map<String, String> const& natives, bool parseHead);

    // Wraps the paragraphs of the blocks that open with <div id="formatable"> to lines of about so many
    // characters, tags counted, each ended by " <br />". Words are spread evenly, never split, and moved
    // between neighbouring lines so that no sentence leaves a word alone; a line can so become longer than
    // the width. A negative width counts as 0.
    void FormatForCharactersWidth(int width);

private:
    void PreFilter();

    NonSortableVArray<String>* unsortedExtraction = nullptr;
    String html;
};

// How a table of native strings fits a page.
struct NativeCoverage {
    struct MissingText {
        String text;
        std::vector<std::size_t> lines; // of the page where the text begins, ascending
    };

    std::vector<MissingText> missing; // texts of the page that are no key, in the order of the page
    std::vector<String> unused;       // keys that are no text of the page, ascending

    // Where the text of a paragraph begins that is never closed, so that substitution loses it; 0 when there
    // is none.
    std::size_t lostFrom = 0;
};

// Compares the page, as it was written, with the table. Lines are counted from 1 in that page. parseHead is
// as in HtmlParser::ExtractNativeStrings. Nothing is changed, and nothing fails.
QMT_UTILU_API NativeCoverage CheckNativeCoverage(String page, Map<String, String> const& natives,
                                                 bool parseHead);

} // namespace QMT

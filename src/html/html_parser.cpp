#include "qmt/html/html_parser.h"

#include <algorithm>
#include <utility>

#include "html/native_text_jobs.h"
#include "html/pre_filter.h"
#include "html/width_format.h"

namespace QMT {

HtmlParser::HtmlParser(String page) : html(std::move(page)) {
    PreFilter();
}

String HtmlParser::GetAlteredHtml() const {
    return html;
}

void HtmlParser::SetUnsortedExtraction(NonSortableVArray<String>* list) {
    unsortedExtraction = list;
}

void HtmlParser::ExtractNativeStrings(VArray<String, String>& strings, bool parseHead) {
    CollectNativeTexts(html.View(), parseHead, strings, unsortedExtraction);
}

void HtmlParser::SubstituteNativeStrings(Map<String, String> const& natives, bool parseHead) {
    html = SubstitutedPage(html.View(), parseHead, natives);
}

void HtmlParser::FormatForCharactersWidth(int width) {
    html = FormattedPage(html.View(), static_cast<std::size_t>(std::max(width, 0)));
}

void HtmlParser::PreFilter() {
    html = FilteredPage(html.View(), nullptr);
}

} // namespace QMT

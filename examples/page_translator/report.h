// What the program tells of the page's texts: as a table to fill in, and how well a table fits.
#pragma once

#include <cstddef>

#include "qmt/general/string.h"
#include "qmt/html/html_parser.h"

namespace Translator {

// The texts as the content of a table, in their order, without values.
//
// As a gettext file it holds all of them, with the lines of the page where they stand. As lines with a tab it
// leaves out those that hold a line break or a tab, and leftOut is increased by their number.
QMT::String MakePoFile(QMT::NativeCoverage const& texts, QMT::String const& page);
QMT::String MakeTableFile(QMT::NativeCoverage const& texts, std::size_t& leftOut);

// Lines for the user: counts, then each missing text with its lines and each key of no use. textCount is the
// number of different texts of the page.
QMT::String DescribeCoverage(QMT::NativeCoverage const& coverage, std::size_t textCount);

} // namespace Translator

// The command line.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "files.h"
#include "qmt/general/string.h"

namespace Translator {

// What the user wants. Names of files are as they were given.
struct Options {
    QMT::String page;
    QMT::String table; // not with list
    QMT::String output;
    std::optional<int> width; // in characters; without one nothing is wrapped
    bool list = false;        // write the page's texts instead of a page
    bool help = false;        // nothing else counts then
};

// Reads the words behind the program's name. An error quotes the word that is wrong; options is then of no
// use.
Error ParseOptions(std::vector<std::string> const& words, Options& options);

// How to call the program, some lines with a line break at the end.
char const* UsageText();

} // namespace Translator

#include "options.h"

#include <cstddef>
#include <utility>

namespace Translator {

namespace {

using QMT::String;

constexpr int widestLine = 10000;

Error Wrong(String const& complaint, String const& word) {
    return Error(QMT::MakeError(complaint + u": \"" + word + u"\""));
}

// A name that does not come back as it was would mean another file.
Error DecodeWords(std::vector<std::string> const& words, std::vector<String>& decoded) {
    for (std::string const& word : words) {
        decoded.push_back(QMT::DecodeFromUTF8(word.c_str(), false));
        if (ToUtf8(decoded.back()) != word) {
            return Wrong(u"an argument is no UTF-8", decoded.back());
        }
    }
    return nullptr;
}

Error TakeWidth(String const& word, Options& options) {
    Error const complaint = Wrong(u"--width needs a whole number from 1 to 10000, not", word);
    int width = 0;
    try {
        word >> width;
    } catch (QMT::ErrorInfo* fault) {
        delete fault;
    }
    if (width < 1 || width > widestLine) {
        return Error(QMT::MakeError(*complaint));
    }
    options.width = width;
    return nullptr;
}

Error TakeOperands(std::vector<String> const& operands, Options& options) {
    std::vector<String*> places{&options.page, &options.output};
    if (!options.list) {
        places.insert(places.begin() + 1, &options.table);
    }
    if (operands.size() > places.size()) {
        return Wrong(u"surplus argument", operands[places.size()]);
    }
    if (operands.size() < places.size()) {
        return Error(QMT::MakeError(options.list ? u"a page and an output are needed"
                                                 : u"a page, a table and an output are needed"));
    }
    for (std::size_t i = 0; i < places.size(); ++i) {
        *places[i] = operands[i];
    }
    return nullptr;
}

} // namespace

Error ParseOptions(std::vector<std::string> const& words, Options& options) {
    std::vector<String> decoded;
    if (Error error = DecodeWords(words, decoded)) {
        return error;
    }
    std::vector<String> operands;
    bool onlyOperands = false;
    for (std::size_t i = 0; i < decoded.size(); ++i) {
        String const& word = decoded[i];
        if (onlyOperands || word.Left(1) != u"-") {
            operands.push_back(word);
        } else if (word == u"--") {
            onlyOperands = true;
        } else if (word == u"--help") {
            options.help = true;
            return nullptr;
        } else if (word == u"--list") {
            options.list = true;
        } else if (word != u"--width") {
            return Wrong(u"unknown option", word);
        } else if (Error error = TakeWidth(++i < decoded.size() ? decoded[i] : String(), options)) {
            return error;
        }
    }
    if (options.list && options.width) {
        return Error(QMT::MakeError(u"--width does not go with --list"));
    }
    return TakeOperands(operands, options);
}

char const* UsageText() {
    return "usage: page_translator PAGE TABLE OUTPUT [--width N]\n"
           "       page_translator --list PAGE OUTPUT\n"
           "Writes a page with its texts translated by the table and tells how well the table fits;\n"
           "with --list writes the page's texts as a table to fill in.\n\n"
           "  --width N  wraps the blocks that allow it to lines of about N characters\n"
           "  --list     OUTPUT becomes a gettext file if its name ends in .po, else lines with a tab\n"
           "  --help     these lines\n\n"
           "Ends with 0 on success, 1 on failure, 2 on a bad command line. Nothing new stands under the\n"
           "name OUTPUT unless it is complete.\n";
}

} // namespace Translator

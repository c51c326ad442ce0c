// Shows pages in the reader's language; docs/page_translator.md tells how.
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include "files.h"
#include "options.h"
#include "qmt/html/html_parser.h"
#include "report.h"

namespace Translator {

namespace {

using QMT::String;

enum ExitStatus { Success = 0, Failed = 1, BadCommandLine = 2 };

void Tell(String const& message) {
    std::fprintf(stderr, "page_translator: %s\n", ToUtf8(message).c_str());
}

Error Print(String const& text) {
    if (std::fputs(ToUtf8(text).c_str(), stdout) >= 0 && std::fflush(stdout) == 0) {
        return nullptr;
    }
    std::string const reason = std::generic_category().message(errno);
    return Error(
        QMT::MakeError(u"can't write to standard output: " + QMT::DecodeFromUTF8(reason.c_str(), false)));
}

// Says on standard error what is being done, where the page is so long that somebody may wonder.
class Progress {
public:
    Progress(String const& page, int stepCount) : isLong(page.Len() >= longPage), steps(stepCount) {}

    void Begin(char const* step) {
        ++current;
        if (isLong) {
            std::fprintf(stderr, "page_translator: step %d of %d, %s\n", current, steps, step);
        }
    }

private:
    static constexpr std::size_t longPage = 4'000'000; // some tenths of a second

    bool isLong;
    int steps;
    int current = 0;
};

// A page, and whether it is to be read as one with a head: without the head's end tag all of it would count
// as head.
struct Page {
    String text;
    bool hasHead = false;
};

Error ReadPage(String const& name, Page& page) {
    if (Error error = ReadText(name, page.text)) {
        return error;
    }
    page.hasHead = page.text.Find(u"</head>") != -1;
    if (page.text.Find(u"\uFFFD") != -1) {
        Tell(name + u" holds bytes that are no UTF-8; U+FFFD stands for them");
    }
    return nullptr;
}

Error ListTexts(Options const& options) {
    Page page;
    if (Error error = ReadPage(options.page, page)) {
        return error;
    }
    Progress progress(page.text, 2);
    progress.Begin("looking for texts");
    QMT::NativeCoverage const texts = QMT::CheckNativeCoverage(page.text, Table(), page.hasHead);
    std::size_t leftOut = 0;
    String const file =
        IsPoFile(options.output) ? MakePoFile(texts, options.page) : MakeTableFile(texts, leftOut);
    if (leftOut != 0) {
        String message = u"texts left out, since only a .po file can hold their line breaks and tabs: ";
        message << static_cast<unsigned long long>(leftOut);
        Tell(message);
    }
    progress.Begin("writing");
    return ReplaceFile(options.output, file);
}

struct Translation {
    String page;
    std::size_t textCount; // different texts that the page had
};

Translation Translate(Page const& page, Table const& table, std::optional<int> width, Progress& progress) {
    progress.Begin("looking for texts");
    QMT::HtmlParser parser(page.text);
    QMT::VArray<String, String> texts;
    parser.ExtractNativeStrings(texts, page.hasHead);
    progress.Begin("translating");
    parser.SubstituteNativeStrings(table, page.hasHead);
    if (width) {
        progress.Begin("wrapping");
        parser.FormatForCharactersWidth(*width);
    }
    return {parser.GetAlteredHtml(), texts.Size()};
}

Error TranslatePage(Options const& options) {
    Page page;
    if (Error error = ReadPage(options.page, page)) {
        return error;
    }
    Table table;
    if (Error error = ReadTable(options.table, table)) {
        return error;
    }
    Progress progress(page.text, options.width ? 5 : 4);
    progress.Begin("comparing with the table");
    QMT::NativeCoverage const coverage = QMT::CheckNativeCoverage(page.text, table, page.hasHead);
    Translation const translation = Translate(page, table, options.width, progress);
    progress.Begin("writing");
    if (Error error = ReplaceFile(options.output, translation.page)) {
        return error;
    }
    return Print(DescribeCoverage(coverage, translation.textCount));
}

Error Execute(Options const& options) {
    if (options.help) {
        return Print(QMT::DecodeFromUTF8(UsageText(), false));
    }
    // A page may be replaced by its translation, but nothing else by what is made of it.
    if (String const& source = options.list ? options.page : options.table;
        IsSameFile(source, options.output)) {
        return Error(QMT::MakeError(u"won't replace " + source + u", which is to be read"));
    }
    return options.list ? ListTexts(options) : TranslatePage(options);
}

int Run(std::vector<std::string> const& words) {
    Options options;
    if (Error const error = ParseOptions(words, options)) {
        Tell(*error);
        std::fprintf(stderr, "\n%s", UsageText());
        return BadCommandLine;
    }
    if (Error const error = Execute(options)) {
        Tell(*error);
        return Failed;
    }
    return Success;
}

} // namespace

} // namespace Translator

int main(int argumentCount, char** arguments) {
    std::vector<std::string> const words(arguments + (argumentCount > 0 ? 1 : 0), arguments + argumentCount);
    return Translator::Run(words);
}

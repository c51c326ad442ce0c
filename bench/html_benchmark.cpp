// The jobs on a page: how their time grows with the page, and beside parsers and a regular expression engine.
// Rates count characters, since the parsers read one byte for each and the others two.
//
// Large blocks are kept and handed out again, see below: the system hands a process its memory page by page
// and takes longer for that than some of the jobs take for the text on it, and only pages of many megabytes
// come to feel it.

#include <benchmark/benchmark.h>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <gumbo.h>
#include <libxml/HTMLparser.h>
#include <map>
#include <memory>
#include <new>
#include <string>
#include <utility>

#define PCRE2_CODE_UNIT_WIDTH 16
#include <pcre2.h>

#include "qmt/html/html_parser.h"

namespace {

constexpr std::size_t largeBlock = 1 << 17;

// The free large blocks by their size. The benchmarks run on one thread.
std::multimap<std::size_t, void*>& FreeBlocks() {
    static std::multimap<std::size_t, void*> blocks;
    return blocks;
}

// In front of each block stands its size.
union BlockHead {
    std::size_t size;
    std::max_align_t alignment;
};

void* TakeBlock(std::size_t size) {
    if (size >= largeBlock) {
        auto const place = FreeBlocks().lower_bound(size);
        if (place != FreeBlocks().end() && place->first <= 2 * size)
            return FreeBlocks().extract(place).mapped();
    }
    auto* const head = static_cast<BlockHead*>(std::malloc(sizeof(BlockHead) + size));
    if (!head)
        throw std::bad_alloc();
    head->size = size;
    return head + 1;
}

void GiveBlockBack(void* block) {
    if (!block)
        return;
    BlockHead* const head = static_cast<BlockHead*>(block) - 1;
    if (head->size >= largeBlock)
        FreeBlocks().emplace(head->size, block);
    else
        std::free(head);
}

} // namespace

void* operator new(std::size_t size) {
    return TakeBlock(size);
}

void operator delete(void* block) noexcept {
    GiveBlockBack(block);
}

void operator delete(void* block, std::size_t) noexcept {
    GiveBlockBack(block);
}

namespace QMT {

namespace {

constexpr std::size_t megabyte = (1 << 20) / sizeof(CodeUnit);
constexpr std::size_t tableSize = 10'000;

// One paragraph in each block of lines begins with a number below differentTexts.
String MakePage(std::size_t length, std::size_t differentTexts) {
    String page = u"<html><head><title>Setup</title></head>\n<body>\n<div id=\"formatable\">\n";
    for (std::size_t i = 0; page.Len() < length; ++i)
        page << u"  <div class=\"row\"><p>Choose network number "
             << static_cast<unsigned int>(i % differentTexts)
             << u" <b>from</b> the list.<br/>The device looks for it,\nand joins it again after each "
                u"start.</p>\n"
                u"    <label>Name:</label><input type=\"text\" value=\"\" placeholder=\"Your name\">\n"
                u"    <td class=\"help\">More is <a href=\"help.htm\">in the manual</a>.</td>\n"
                u"    <h2>Further settings</h2></div>\n";
    return page << u"</div>\n</body>\n</html>\n";
}

Map<String, String> MakeTable() {
    Map<String, String> table;
    for (std::size_t i = 0; i < tableSize; ++i) {
        String key = u"Choose network number ";
        key << static_cast<unsigned int>(i) << u" <b>from</b> the list.";
        table.Insert(key, u"Ein Netz von der Liste waehlen.");
    }
    return table;
}

String PageOf(benchmark::State const& state, std::size_t differentTexts = tableSize) {
    return MakePage(static_cast<std::size_t>(state.range(0)) * megabyte, differentTexts);
}

// To be called at the end of a benchmark.
void CountCharacters(benchmark::State& state, std::size_t characters) {
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(characters));
}

// Times only the job, not the making of what it works on, and in processor time.
template <typename Prepare, typename Job>
void Measure(benchmark::State& state, std::size_t characters, Prepare const& prepare, Job const& job) {
    for ([[maybe_unused]] auto step : state) {
        auto subject = prepare();
        std::clock_t const start = std::clock();
        job(subject);
        state.SetIterationTime(static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC);
    }
    CountCharacters(state, characters);
}

void Constructor(benchmark::State& state) {
    String const page = PageOf(state);
    auto const prepare = [&] { return std::pair(page, std::unique_ptr<HtmlParser>()); };
    Measure(state, page.Len(), prepare,
            [](auto& subject) { subject.second = std::make_unique<HtmlParser>(std::move(subject.first)); });
}

void Extraction(benchmark::State& state) {
    String const page = PageOf(state, static_cast<std::size_t>(state.range(1)));
    HtmlParser parser(page);
    auto const prepare = [] { return VArray<String, String>(); };
    Measure(state, page.Len(), prepare, [&](auto& strings) { parser.ExtractNativeStrings(strings, true); });
}

void Substitution(benchmark::State& state) {
    String const page = PageOf(state);
    Map<String, String> const table = MakeTable();
    HtmlParser const filtered(page);
    auto const prepare = [&] { return filtered; };
    Measure(state, page.Len(), prepare,
            [&](HtmlParser& parser) { parser.SubstituteNativeStrings(table, true); });
}

void Formatting(benchmark::State& state) {
    String const page = PageOf(state);
    HtmlParser const filtered(page);
    auto const prepare = [&] { return filtered; };
    Measure(state, page.Len(), prepare, [](HtmlParser& parser) { parser.FormatForCharactersWidth(60); });
}

BENCHMARK(Constructor)->ArgName("MB")->Arg(1)->Arg(64)->UseManualTime();
BENCHMARK(Extraction)->ArgNames({"MB", "texts"})->ArgsProduct({{1, 64}, {10'000, 100'000}})->UseManualTime();
BENCHMARK(Substitution)->ArgName("MB")->Arg(1)->Arg(64)->UseManualTime();
BENCHMARK(Formatting)->ArgName("MB")->Arg(1)->Arg(64)->UseManualTime();

std::string Narrowed(String const& page) {
    return std::string(page.View().begin(), page.View().end());
}

void Gumbo(benchmark::State& state) {
    std::string const page = Narrowed(PageOf(state));
    for ([[maybe_unused]] auto step : state)
        gumbo_destroy_output(&kGumboDefaultOptions, gumbo_parse(page.c_str()));
    CountCharacters(state, page.size());
}

void LibXml2(benchmark::State& state) {
    std::string const page = Narrowed(PageOf(state));
    for ([[maybe_unused]] auto step : state)
        xmlFreeDoc(htmlReadMemory(page.data(), static_cast<int>(page.size()), nullptr, "UTF-8",
                                  HTML_PARSE_NOERROR | HTML_PARSE_NOWARNING));
    CountCharacters(state, page.size());
}

PCRE2_SPTR Pcre2Text(CodeUnit const* text) {
    return reinterpret_cast<PCRE2_SPTR>(text);
}

// Puts each marker that the constructor knows on a line of its own, which is less than the constructor does.
void Pcre2Substitution(benchmark::State& state) {
    String const page = PageOf(state);
    int error = 0;
    PCRE2_SIZE place = 0;
    std::unique_ptr<pcre2_code, decltype(&pcre2_code_free)> const code(
        pcre2_compile(Pcre2Text(u"[ \\t]*(<(?:(?:p|td|div)[^>]*>|/(?:p|div|form|td)>|br ?/>|h(?!tml)))"),
                      PCRE2_ZERO_TERMINATED, 0, &error, &place, nullptr),
        pcre2_code_free);
    if (!code || pcre2_jit_compile(code.get(), PCRE2_JIT_COMPLETE) != 0) {
        state.SkipWithError("the expression does not compile");
        return;
    }
    std::basic_string<CodeUnit> result(2 * page.Len(), u' ');
    for ([[maybe_unused]] auto step : state) {
        PCRE2_SIZE length = result.size();
        pcre2_substitute(code.get(), Pcre2Text(page), page.Len(), 0, PCRE2_SUBSTITUTE_GLOBAL, nullptr,
                         nullptr, Pcre2Text(u"\n$1\n"), 4, reinterpret_cast<PCRE2_UCHAR*>(result.data()),
                         &length);
        benchmark::DoNotOptimize(length);
    }
    CountCharacters(state, page.Len());
}

BENCHMARK(Gumbo)->ArgName("MB")->Arg(1);
BENCHMARK(LibXml2)->ArgName("MB")->Arg(1);
BENCHMARK(Pcre2Substitution)->ArgName("MB")->Arg(1);

} // namespace

} // namespace QMT

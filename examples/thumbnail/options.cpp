#include "options.h"

#include <charconv>
#include <cstddef>
#include <system_error>

namespace Thumbnail {

namespace {

constexpr unsigned int largestFactor = 15;

unsigned int FactorOf(std::string const& word) {
    unsigned int factor = 0;
    char const* const end = word.data() + word.size();
    auto const [place, error] = std::from_chars(word.data(), end, factor);
    if (error != std::errc() || place != end || factor < 1 || factor > largestFactor)
        throw BadUsage("--by needs a whole number from 1 to 15, not: \"" + word + "\"");
    return factor;
}

void TakeOperands(std::vector<std::string> const& operands, Options& options) {
    if (operands.size() < 2)
        throw BadUsage("a picture and an output are needed");
    if (operands.size() > 2)
        throw BadUsage("surplus argument: \"" + operands[2] + "\"");
    options.input = operands[0];
    options.output = operands[1];
}

} // namespace

Options ParseOptions(std::vector<std::string> const& words) {
    Options options;
    std::vector<std::string> operands;
    std::string jobWord;
    auto const takeJob = [&](std::string const& word, Job job) {
        if (!jobWord.empty())
            throw BadUsage(word + " does not go with " + jobWord);
        jobWord = word;
        options.job = job;
    };
    bool onlyOperands = false;
    for (std::size_t i = 0; i < words.size(); ++i) {
        std::string const& word = words[i];
        if (onlyOperands || word.empty() || word[0] != '-')
            operands.push_back(word);
        else if (word == "--")
            onlyOperands = true;
        else if (word == "--help") {
            options.help = true;
            return options;
        } else if (word == "--by") {
            takeJob(word, Job::Shrink);
            options.factor = FactorOf(++i < words.size() ? words[i] : "");
        } else if (word == "--double")
            takeJob(word, Job::Double);
        else if (word == "--yuv")
            takeJob(word, Job::YuvAndBack);
        else
            throw BadUsage("unknown option: \"" + word + "\"");
    }
    TakeOperands(operands, options);
    return options;
}

char const* UsageText() {
    return "usage: thumbnail PICTURE OUTPUT [--by N | --double | --yuv]\n"
           "Writes a PNG or JPEG picture in another size, as PNG. By default it is shrunk by 2.\n\n"
           "  --by N    shrinks it by a whole number from 1 to 15\n"
           "  --double  doubles it\n"
           "  --yuv     keeps its size, but takes it to YUV and back\n"
           "  --help    these lines\n\n"
           "Ends with 0 on success, 1 on failure, 2 on a bad command line. Nothing new stands under the\n"
           "name OUTPUT unless the run succeeds.\n";
}

} // namespace Thumbnail

// Pictures in another size; docs/rgb_scaling.md tells how.
#include <cstddef>
#include <cstdio>
#include <exception>
#include <new>
#include <string>
#include <vector>

#include "options.h"
#include "picture_files.h"
#include "qmt/helpers/rgb_scaling.h"

namespace Thumbnail {

namespace {

enum ExitStatus { Success = 0, Failed = 1, BadCommandLine = 2 };

void Tell(char const* message) {
    std::fprintf(stderr, "thumbnail: %s\n", message);
}

Picture Shrunk(Picture const& picture, Options const& options) {
    Picture result(picture.width / options.factor, picture.height / options.factor);
    if (result.bytes.empty())
        throw Failure(Quoted(options.input) + " is too small to be shrunk by " +
                      std::to_string(options.factor));
    QMT::DownsizeRGB(picture.bytes.data(), picture.width, picture.height, 3, options.factor,
                     result.bytes.data(), result.width, result.height, QMT::RGBPlain, 0);
    return result;
}

Picture Doubled(Picture const& picture, Options const& options) {
    if (picture.bytes.size() / 3 * 4 > mostPixels)
        throw Failure(Quoted(options.input) + " doubled has more than 100 million pixels");
    Picture result(2 * picture.width, 2 * picture.height);
    QMT::DoubleUpRGB(picture.bytes.data(), picture.width, picture.height, result.bytes.data(), QMT::RGBPlain);
    return result;
}

// Both ways by a factor of 1.
Picture ThroughYuv(Picture const& picture) {
    unsigned int const width = picture.width;
    unsigned int const height = picture.height;
    std::vector<unsigned char> planes(picture.bytes.size());
    QMT::DownsizeRGB(picture.bytes.data(), width, height, 3, 1, planes.data(), width, height, QMT::RGBToYUV,
                     0);
    Picture result(width, height);
    QMT::DownsizeRGB(planes.data(), width, height, 1, 1, result.bytes.data(), width, height, QMT::YUVToRGB,
                     0);
    return result;
}

Picture Changed(Picture const& picture, Options const& options) {
    switch (options.job) {
    case Job::Double:
        return Doubled(picture, options);
    case Job::YuvAndBack:
        return ThroughYuv(picture);
    default:
        return Shrunk(picture, options);
    }
}

int Run(std::vector<std::string> const& words) {
    try {
        Options const options = ParseOptions(words);
        if (options.help)
            std::fputs(UsageText(), stdout);
        else
            WritePicture(options.output, Changed(ReadPicture(options.input), options));
    } catch (BadUsage const& fault) {
        Tell(fault.what());
        std::fprintf(stderr, "\n%s", UsageText());
        return BadCommandLine;
    } catch (std::bad_alloc const&) {
        Tell("not enough memory");
        return Failed;
    } catch (std::exception const& fault) {
        Tell(fault.what());
        return Failed;
    }
    return Success;
}

} // namespace

} // namespace Thumbnail

int main(int argumentCount, char** arguments) {
    return Thumbnail::Run({arguments + (argumentCount > 0 ? 1 : 0), arguments + argumentCount});
}

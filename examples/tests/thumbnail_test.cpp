// Runs the example as a user does and looks at what it writes.
#include <cstdlib>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include <png.h>

#include "support/file_content.h"
#include "support/temp_directory.h"

namespace {

// What a shell says to the command, in the directory, with the status behind it.
std::string Said(QMT::TempDirectory const& directory, std::string const& command) {
    std::string const whole = "cd " + directory.Place().string() +
                              "; demo=" THUMBNAIL_DEMO "/red_blue; run=" THUMBNAIL_PROGRAM "; (" + command +
                              ") > said 2>&1; echo status $? >> said";
    EXPECT_EQ(std::system(whole.c_str()), 0);
    return QMT::ContentOf(directory.Place() / "said");
}

// The pictures have 4 x 2 pixels, red on the left and blue on the right.
TEST(ThumbnailTest, PicturesChangeSizeAndKeepTheirColours) {
    QMT::TempDirectory const directory;
    for (auto const& [job, width] : {std::pair{".jpg out", 2U},
                                     {".png out --by 1", 4U},
                                     {".jpg out --double", 8U},
                                     {".png out --yuv", 4U}}) {
        EXPECT_EQ(Said(directory, std::string("$run $demo") + job), "status 0\n");
        png_image image{};
        image.version = PNG_IMAGE_VERSION;
        EXPECT_TRUE(png_image_begin_read_from_file(&image, (directory.Place() / "out").c_str()));
        EXPECT_TRUE(image.width == width && image.height == width / 2) << job;
        image.format = PNG_FORMAT_RGB;
        std::vector<unsigned char> pixels(PNG_IMAGE_SIZE(image));
        EXPECT_TRUE(png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr));
        for (std::size_t i = 0; i < pixels.size(); ++i) // JPEG and YUV cost some steps
            EXPECT_NEAR(pixels[i], i % 3 == (i / 3 % width < width / 2 ? 0U : 2U) ? 255 : 0, 4) << job;
    }
    EXPECT_EQ(Said(directory,
                   "for bits in 8 16; do $run ${demo%red_blue}grey_$bits.png $bits --by 1; done; cmp 8 16"),
              "status 0\n");
}

TEST(ThumbnailTest, FailuresAreToldAndLeaveTheOldPicture) {
    QMT::TempDirectory const directory;
    Said(directory,
         "printf old > out; echo no picture > text; head -c 50 $demo.png > cut.png; head -c -8 $demo.jpg > "
         "cut.jpg; LC_ALL=C sed 's/\\xFF\\xC0\\(...\\)..../\\xFF\\xC0\\1aaaa/' $demo.jpg > huge.jpg");
    for (std::string const row :
         {"missing out|\"missing\": No such file", ". out|\".\": it is no regular file",
          "cut.png out|\"cut.png\": ", "cut.jpg out|\"cut.jpg\": ",
          "huge.jpg out|\"huge.jpg\": more than 100 million", "text out|\"text\" is no PNG",
          "$demo.png nowhere/out|can't write \"nowhere/out\": No such",
          "$demo.png .|can't write \".\": it is no regular file", "$demo.png out --by 3|.png\" is too small",
          "a out --by 16|not: \"16\"", "a out more|argument: \"more\"", "a out --wide|option: \"--wide\""}) {
        std::string const said = Said(directory, "$run " + row.substr(0, row.find('|')));
        EXPECT_TRUE(said.find(row.substr(row.find('|') + 1)) != said.npos &&
                    said.find("status 0") == said.npos)
            << said;
        EXPECT_EQ(Said(directory, "ls -A; cat out"),
                  "cut.jpg\ncut.png\nhuge.jpg\nout\nsaid\ntext\noldstatus 0\n");
    }
}

} // namespace

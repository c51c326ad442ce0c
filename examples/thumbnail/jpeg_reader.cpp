#include "jpeg_reader.h"

#include <csetjmp>
#include <cstdio>

#include <jpeglib.h>

namespace Thumbnail {

namespace {

// Errors leave libjpeg's C code by a jump, as its authors mean it. Warnings do too: libjpeg warns of cut data
// and makes grey of what is missing.
struct Decoder {
    jpeg_error_mgr manager; // first, since libjpeg knows only this
    std::jmp_buf place;
    char message[JMSG_LENGTH_MAX];
};

[[noreturn]] void LeaveWithMessage(j_common_ptr state) {
    auto* const decoder = reinterpret_cast<Decoder*>(state->err);
    decoder->manager.format_message(state, decoder->message);
    std::longjmp(decoder->place, 1);
}

void TakeMessage(j_common_ptr state, int level) {
    if (level < 0)
        LeaveWithMessage(state);
}

enum class Outcome { Done, TooLarge, Failed };

// Nothing here has a destructor that a jump would pass over: the picture is the caller's.
Outcome Decode(std::vector<unsigned char> const& content, Decoder& decoder, Picture& picture) {
    jpeg_decompress_struct state;
    state.err = jpeg_std_error(&decoder.manager);
    decoder.manager.error_exit = LeaveWithMessage;
    decoder.manager.emit_message = TakeMessage;
    if (setjmp(decoder.place) != 0) { // NOLINT(cert-err52-cpp): the only way out of libjpeg
        jpeg_destroy_decompress(&state);
        return Outcome::Failed;
    }
    jpeg_create_decompress(&state);
    jpeg_mem_src(&state, content.data(), static_cast<unsigned long>(content.size()));
    jpeg_read_header(&state, TRUE);
    if (std::size_t{state.image_width} * state.image_height > mostPixels) {
        jpeg_destroy_decompress(&state);
        return Outcome::TooLarge;
    }
    state.out_color_space = JCS_EXT_BGR;
    jpeg_start_decompress(&state);
    picture = Picture(state.output_width, state.output_height);
    while (state.output_scanline < state.output_height) {
        JSAMPROW row = picture.bytes.data() + std::size_t{3} * state.output_scanline * picture.width;
        jpeg_read_scanlines(&state, &row, 1);
    }
    jpeg_finish_decompress(&state);
    jpeg_destroy_decompress(&state);
    return Outcome::Done;
}

} // namespace

Picture ReadJpeg(std::string const& name, std::vector<unsigned char> const& content) {
    Picture picture;
    Decoder decoder;
    switch (Decode(content, decoder, picture)) {
    case Outcome::TooLarge:
        throw Failure(name + ": more than 100 million pixels");
    case Outcome::Failed:
        throw Failure(name + ": " + decoder.message);
    case Outcome::Done:
        break;
    }
    return picture;
}

} // namespace Thumbnail

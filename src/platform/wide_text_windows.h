// UTF-8 as the text that Windows takes.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

namespace QMT::platform {

// Bytes that are no text become U+FFFD.
inline std::wstring ToWide(std::string_view bytes) {
    auto const size = static_cast<int>(bytes.size());
    std::wstring text(bytes.size(), L'\0'); // never takes more units than bytes
    text.resize(
        static_cast<std::size_t>(MultiByteToWideChar(CP_UTF8, 0, bytes.data(), size, text.data(), size)));
    return text;
}

} // namespace QMT::platform

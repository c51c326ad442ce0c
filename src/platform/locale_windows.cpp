#include "platform/locale.h"

#include <windows.h>

namespace QMT::platform {

std::basic_string<CodeUnit> LocaleCurrency() {
    auto const query = [](CodeUnit* symbol, int room) {
        int const size = ::GetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_SINTLSYMBOL, symbol, room);
        return static_cast<std::size_t>(size);
    };
    std::basic_string<CodeUnit> symbol(query(nullptr, 0), CodeUnit());
    std::size_t const size = query(symbol.data(), static_cast<int>(symbol.size()));
    symbol.resize(size > 0 ? size - 1 : 0); // it counts the terminator
    return symbol;
}

} // namespace QMT::platform

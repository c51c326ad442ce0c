#include "platform/locale.h"

#include "platform/user_locale_posix.h"

namespace QMT::platform {

std::basic_string<CodeUnit> LocaleCurrency() {
    constexpr std::size_t letters = 3; // and behind them what parts them from the amount
    UserLocale const locale(LC_MONETARY_MASK);
    std::string const symbol = locale.Text(INT_CURR_SYMBOL).substr(0, letters);
    return {symbol.begin(), symbol.end()};
}

} // namespace QMT::platform

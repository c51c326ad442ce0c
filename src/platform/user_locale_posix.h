// The locale that the user's environment names, whatever the application has set.
#pragma once

#include <clocale>
#include <langinfo.h>
#include <locale.h>
#include <string>

namespace QMT::platform {

class UserLocale {
public:
    // The categories as newlocale takes them.
    explicit UserLocale(int categories) : locale(::newlocale(categories, "", nullptr)) {}

    UserLocale(UserLocale const&) = delete;
    UserLocale& operator=(UserLocale const&) = delete;

    ~UserLocale() {
        if (locale) {
            ::freelocale(locale);
        }
    }

    // An item of it; empty when the system does not have the locale.
    std::string Text(nl_item item) const { return locale ? ::nl_langinfo_l(item, locale) : ""; }

private:
    locale_t locale;
};

} // namespace QMT::platform

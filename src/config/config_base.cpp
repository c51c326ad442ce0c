#include "qmt/config/config_base.h"

#include <cstdint>
#include <utility>

namespace QMT {

namespace {

// Does what may throw an ErrorInfo*, and gives that as a result.
template <class Action>
ErrorInfo* Caught(Action action) {
    try {
        return action();
    } catch (ErrorInfo* error) {
        return error;
    }
}

// 2 to the power 63: the first number above the signed ones of 64 bits.
constexpr double endOf64Bits = 9223372036854775808.0;

} // namespace

ConfigBase::~ConfigBase() = default;

ErrorInfo* ConfigBase::MakeConfigError(String section, String entry, String detail) {
    String text;
    text << u"Error reading configuration. In section [" << section << u"] entry : " << entry << u". "
         << detail;
    return MakeError(std::move(text));
}

// ---- text

ErrorInfo* ConfigBase::TestProfileString(String section, String entry, String& value, String defaultText) {
    return Caught([&]() -> ErrorInfo* {
        value = GetString(std::move(section), std::move(entry), std::move(defaultText));
        return nullptr;
    });
}

ErrorInfo* ConfigBase::TestProfileToggle(String section, String entry, String& value, String firstOption,
                                         String secondOption, String defaultText) {
    if (ErrorInfo* const error = TestProfileString(section, entry, value, std::move(defaultText))) {
        return error;
    }
    if (value == firstOption || value == secondOption) {
        return nullptr;
    }
    return MakeConfigError(std::move(section), std::move(entry),
                           u"Illegal option. Must be " + firstOption + u" or " + secondOption);
}

// ---- whole numbers

ErrorInfo* ConfigBase::TestProfileNumber(String section, String entry, long int& value, String defaultText) {
    return Caught([&]() -> ErrorInfo* {
        String const text = GetString(section, entry, std::move(defaultText));
        if (text.Find(u".") != -1) {
            return MakeConfigError(std::move(section), std::move(entry), u"Has illegal decimal point.");
        }
        text >> value;
        return nullptr;
    });
}

template <class Number>
ErrorInfo* ConfigBase::ReadBits(String section, String entry, Number& value, String defaultText) {
    long int number = 0;
    ErrorInfo* const error =
        TestProfileNumber(std::move(section), std::move(entry), number, std::move(defaultText));
    if (!error) {
        value = static_cast<Number>(number);
    }
    return error;
}

ErrorInfo* ConfigBase::TestProfileNumber(String section, String entry, int& value, String defaultText) {
    return ReadBits(std::move(section), std::move(entry), value, std::move(defaultText));
}

ErrorInfo* ConfigBase::TestProfileNumber(String section, String entry, unsigned int& value,
                                         String defaultText) {
    return ReadBits(std::move(section), std::move(entry), value, std::move(defaultText));
}

ErrorInfo* ConfigBase::TestProfileNumber(String section, String entry, int& value, int minimum, int maximum,
                                         String defaultText) {
    ErrorInfo* const error = TestProfileNumber(section, entry, value, std::move(defaultText));
    return error ? error : CheckRange(std::move(section), std::move(entry), value, minimum, maximum);
}

// ---- numbers with a fraction

ErrorInfo* ConfigBase::TestProfileNumber(String section, String entry, double& value, String defaultText) {
    return Caught([&]() -> ErrorInfo* {
        GetString(std::move(section), std::move(entry), std::move(defaultText)) >> value;
        return nullptr;
    });
}

ErrorInfo* ConfigBase::TestProfileNumber(String section, String entry, double& value, double minimum,
                                         double maximum, String defaultText) {
    ErrorInfo* const error = TestProfileNumber(section, entry, value, std::move(defaultText));
    return error ? error : CheckRange(std::move(section), std::move(entry), value, minimum, maximum);
}

ErrorInfo* ConfigBase::TestProfileNumber(String section, String entry, unsigned long int& value,
                                         String defaultText) {
    double number = 0;
    if (ErrorInfo* const error = TestProfileNumber(section, entry, number, std::move(defaultText))) {
        return error;
    }
    if (number < -endOf64Bits || number >= endOf64Bits) {
        String detail = u"Number is too large: ";
        return MakeConfigError(std::move(section), std::move(entry), detail << number);
    }
    value = static_cast<std::uint32_t>(static_cast<std::int64_t>(number));
    return nullptr;
}

template <class Number>
ErrorInfo* ConfigBase::CheckRange(String section, String entry, Number value, Number minimum,
                                  Number maximum) {
    String detail;
    if (value < minimum) {
        detail << u"Entry less than allowed minimum of " << minimum;
    } else if (value > maximum) {
        detail << u"Entry greater than allowed maximum of " << maximum;
    } else {
        return nullptr;
    }
    return MakeConfigError(std::move(section), std::move(entry), std::move(detail));
}

} // namespace QMT

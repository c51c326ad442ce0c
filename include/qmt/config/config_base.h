// Settings that are read, converted and checked in one step.
#pragma once

#include "qmt/export.h"
#include "qmt/general/errors.h"
#include "qmt/general/string.h"

namespace QMT {

// The base of the settings stores: checked reads over one read of a text.
//
// A store supplies GetString. The caller gives a section, an entry, a variable and a default, which is a text
// also for a number, and uses the variable when the result is null; an error is his to delete. It names the
// section and the entry.
//
// Guaranteed: the default passes through the same checks as a stored text. When the store's read or the
// conversion throws an ErrorInfo*, that is the result, and the variable keeps its value. After a text that is
// not allowed the variable holds that text, after a number out of range that number. Nothing is locked:
// between threads a store decides.
//
//     int channels = 0;
//     if (ErrorInfo* error = settings.TestProfileNumber(u"Audio", u"Channels", channels, 1, 8, u"2")) {
//         return error; // "Error reading configuration. In section [Audio] entry : Channels. ..."
//     }
class QMT_UTILU_API ConfigBase {
public:
    virtual ~ConfigBase();

    // The text of the entry, or the default.
    virtual String GetString(String section, String entry, String defaultText) = 0;

    ErrorInfo* TestProfileString(String section, String entry, String& value, String defaultText);

    // Allows the two options only, exactly as they are written.
    ErrorInfo* TestProfileToggle(String section, String entry, String& value, String firstOption,
                                 String secondOption, String defaultText);

    // Whole numbers of 32 bits; a text with a point is an error and leaves the variable as it is. The minimum
    // and the maximum are allowed themselves. An unsigned int takes the bits of a signed number.
    ErrorInfo* TestProfileNumber(String section, String entry, long int& value, String defaultText);
    ErrorInfo* TestProfileNumber(String section, String entry, int& value, String defaultText);
    ErrorInfo* TestProfileNumber(String section, String entry, unsigned int& value, String defaultText);
    ErrorInfo* TestProfileNumber(String section, String entry, int& value, int minimum, int maximum,
                                 String defaultText);

    // Any number.
    ErrorInfo* TestProfileNumber(String section, String entry, double& value, String defaultText);
    ErrorInfo* TestProfileNumber(String section, String entry, double& value, double minimum, double maximum,
                                 String defaultText);

    // Any number within 64 bits, without its fraction and modulo 2 to the power 32.
    ErrorInfo* TestProfileNumber(String section, String entry, unsigned long int& value, String defaultText);

private:
    static ErrorInfo* MakeConfigError(String section, String entry, String detail);

    template <class Number>
    static ErrorInfo* CheckRange(String section, String entry, Number value, Number minimum, Number maximum);

    template <class Number>
    ErrorInfo* ReadBits(String section, String entry, Number& value, String defaultText);
};

} // namespace QMT

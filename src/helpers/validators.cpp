#include "qmt/helpers/validators.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string_view>

#include "qmt/html/native_strings.h"

namespace QMT {

namespace {

using TextView = std::basic_string_view<CodeUnit>;

bool IsDigit(CodeUnit unit) {
    return unit >= u'0' && unit <= u'9';
}

bool IsCapital(CodeUnit unit) {
    return unit >= u'A' && unit <= u'Z';
}

template <std::size_t count>
bool HoldsAny(String const& text, char16_t const* const (&parts)[count]) {
    return std::any_of(std::begin(parts), std::end(parts),
                       [&](char16_t const* part) { return text.Find(part) != -1; });
}

// ---- e-mail addresses

// A trimmed address and what the rules ask of it; -1 stands for no place.
struct Address {
    explicit Address(String const& trimmed)
        : text(trimmed),
          length(static_cast<int>(trimmed.Len())),
          at(trimmed.Find(u"@")),
          lastDot(trimmed.FindLast(u".")) {}

    String const& text;
    int length;
    int at;
    int lastDot;
};

bool HasSecondAt(Address const& address) {
    return address.text.Find(u"@", static_cast<std::size_t>(address.at) + 1) != -1;
}

bool IsOfAnOffice(Address const& address) {
    return HoldsAny(address.text,
                    {u"abuse@", u"root@", u"info@", u"postmaster@", u"support@", u"webmaster@"});
}

struct AddressRule {
    bool (*isBroken)(Address const&);
    char16_t const* message;
    bool translated;
};

// In the order of judging: each may rely on those before it.
constexpr AddressRule addressRules[] = {
    {[](Address const& a) { return a.length == 0; }, u"Email address must not be blank", false},
    {[](Address const& a) { return a.at == -1; }, u"Email address must contain an '@' character", false},
    {HasSecondAt, u"Email address should have only one '@' character", false},
    {[](Address const& a) { return a.lastDot == -1; }, u"Email address must contain a '.' character", false},
    {[](Address const& a) { return HoldsAny(a.text, {u".."}); },
     u"Email address has two dots '..' instead of '.' ", false},
    {[](Address const& a) { return a.lastDot < 2; },
     u"Email address must have at least two characters before the '.'", false},
    {[](Address const& a) { return a.lastDot > a.length - 3; },
     u"Email address has insufficient characters after the '.'", false},
    {[](Address const& a) { return a.lastDot - a.at < 2; },
     u"Email address has insufficient characters between the '@' and the '.'", false},
    {[](Address const& a) { return a.at < 2; }, u"Email address has insufficient characters before  the '@'",
     false},
    {IsOfAnOffice, u"Email address not acceptable. Please choose another address.", true},
    {[](Address const& a) {
         return HoldsAny(a.text, {u" ", u"\t"});
     },
     u"Email address has spaces. Remove the spaces.", true},
    {[](Address const& a) {
         return HoldsAny(a.text, {u"&", u"+"});
     },
     u"Email address should not have a & or +.", true},
    {[](Address const& a) { return HoldsAny(a.text, {u","}); },
     u"Email address has a comma in it. Did you mean to type a '.' instead?", true},
};

// ---- postal codes

// A stands for a capital, 9 for a digit.
bool HasShape(TextView text, std::u16string_view shape) {
    return std::equal(text.begin(), text.end(), shape.begin(), shape.end(), [](CodeUnit unit, char16_t kind) {
        return kind == u'A' ? IsCapital(unit) : IsDigit(unit);
    });
}

bool HasOutwardShape(TextView outward) {
    constexpr std::u16string_view shapes[] = {u"A9", u"A99", u"AA9", u"A9A", u"AA99", u"AA9A"};
    return std::any_of(std::begin(shapes), std::end(shapes),
                       [&](std::u16string_view shape) { return HasShape(outward, shape); });
}

bool HasPostalShape(TextView outward, TextView inward) {
    bool const isJudged = outward.size() >= 2 && outward.size() <= 4;
    return !isJudged || (HasOutwardShape(outward) && HasShape(inward, u"9AA"));
}

ErrorInfo* MissingBlank(String const& code) {
    return MakeError(NATIVE(code.Len() <= 4 ? u"Postcode too short"
                                            : u"Postcode needs a separating space in the middle."));
}

// The code is trimmed and has a blank there.
bool RepairAndJudge(String& code, std::size_t blank) {
    String const outward = code.Left(blank);
    String inward = code.Mid(blank + 1);
    std::size_t const surplus = std::min(inward.View().find_first_not_of(CodeUnit{u' '}), inward.Len());
    inward = inward.Mid(surplus);
    if (HoldsAny(inward, {u"C", u"I", u"K", u"M", u"O", u"V"})) {
        return false;
    }
    if (surplus > 0) {
        code = outward + u" " + inward;
    }
    return HasPostalShape(outward.View(), inward.View());
}

} // namespace

ErrorInfo* InvalidEmailAddress(String address) {
    Address const judged(address.TrimAll());
    for (AddressRule const& rule : addressRules) {
        if (rule.isBroken(judged)) {
            return MakeError(rule.translated ? NATIVE(rule.message) : String(rule.message));
        }
    }
    return nullptr;
}

ErrorInfo* CheckPostalCodeFormat(String& code, String country) {
    if (country != u"uk") {
        return nullptr;
    }
    code.TrimAll();
    if (code.IsEmpty()) {
        return MakeError(NATIVE(u"No postcode supplied."));
    }
    int const blank = code.Find(u" ");
    if (blank == -1) {
        return MissingBlank(code);
    }
    return RepairAndJudge(code, static_cast<std::size_t>(blank))
               ? nullptr
               : MakeError(u"Postal code incorrectly formatted.");
}

String SQLSafe(String text, bool allowQuotes) {
    constexpr char16_t const* disallowed[] = {u"'", u"\"", u"\\", u";", u"%", u"_", u"#"};
    constexpr std::ptrdiff_t quotes = 2;
    String message;
    for (auto part = disallowed + (allowQuotes ? quotes : 0); part != std::end(disallowed); ++part) {
        if (text.Find(*part) != -1) {
            message << (message.IsEmpty() ? NATIVE(u"Disallowed characters in text: ") : String(u" "))
                    << *part;
        }
    }
    return message;
}

bool IsNumeric(std::basic_string<CodeUnit> const& text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), IsDigit);
}

} // namespace QMT

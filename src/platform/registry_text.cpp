#include "platform/registry_text.h"

#include <algorithm>
#include <array>

#include "platform/code_points.h"
#include "qmt/platform/registry.h"

namespace QMT::platform {

namespace {

// Text of 16-bit units on every system, so that it goes together with u"...".
using FileText = std::u16string;
using FileTextView = std::u16string_view;

constexpr std::uint32_t binaryType = 3;
constexpr std::size_t dwordSize = 4;
constexpr std::size_t longestLine = 76; // editors break a line that would go on behind it

FileText HexNumber(std::uint32_t number, std::size_t leastDigits) {
    FileText digits;
    for (; number > 0 || digits.size() < leastDigits; number >>= 4) {
        digits.insert(digits.begin(), u"0123456789abcdef"[number & 0xF]);
    }
    return digits;
}

unsigned ByteAt(std::string_view bytes, std::size_t index) {
    return static_cast<unsigned char>(bytes[index]);
}

RegistryText UnitsOf(std::string_view bytes) {
    RegistryText units;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        units += static_cast<CodeUnit>(ByteAt(bytes, i) | ByteAt(bytes, i + 1) << 8);
    }
    return units;
}

FileText Quoted(FileTextView text) {
    FileText quoted{u'"'};
    for (char16_t const unit : text) {
        if (unit == u'"' || unit == u'\\') {
            quoted += {u'\\', unit};
        } else if (unit == u'\n' || unit == u'\r') {
            quoted += {u'\\', unit == u'\n' ? u'n' : u'r'};
        } else {
            quoted += unit;
        }
    }
    return quoted + u'"';
}

// True when every unit comes back from a quoted text with every editor.
bool IsPlain(RegistryTextView text) {
    for (std::size_t i = 0; i < text.size();) {
        std::uint32_t const codePoint = NextCodePoint(text, i);
        if (codePoint < 0x20 || (codePoint >= 0xD800 && codePoint < 0xE000)) {
            return false;
        }
    }
    return true;
}

FileText ToFile(RegistryTextView text) {
    return {text.begin(), text.end()};
}

// The bytes as pairs of digits, with lines broken so that the first one begins behind lineStart units.
void AppendBytes(FileText& text, std::size_t lineStart, std::string_view bytes) {
    std::size_t column = lineStart;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (column > longestLine) {
            text += u"\\\r\n  ";
            column = 2;
        }
        text += HexNumber(ByteAt(bytes, i), 2);
        if (i + 1 < bytes.size()) {
            text += u',';
        }
        column += 3;
    }
}

void AppendBinary(FileText& text, std::size_t lineStart, RegistryValue const& value) {
    std::size_t const before = text.size();
    text += value.type == binaryType ? u"hex:" : u"hex(" + HexNumber(value.type, 1) + u"):";
    AppendBytes(text, lineStart + text.size() - before, value.bytes);
}

void AppendData(FileText& text, std::size_t lineStart, RegistryValue const& value) {
    if (value.type == REG_DWORD && value.bytes.size() == dwordSize) {
        RegistryText const units = UnitsOf(value.bytes);
        text += u"dword:" + HexNumber(units[0] | std::uint32_t{units[1]} << 16, 8);
        return;
    }
    RegistryText units = UnitsOf(value.bytes);
    bool const isTerminated = value.bytes.size() % 2 == 0 && !units.empty() && units.back() == 0;
    if (isTerminated) {
        units.pop_back();
    }
    if (value.type == REG_SZ && isTerminated && IsPlain(units)) {
        text += Quoted(ToFile(units));
    } else {
        AppendBinary(text, lineStart, value);
    }
}

void AppendValue(FileText& text, SavedValue const& saved) {
    FileText const name = saved.name.empty() ? FileText{u'@'} : Quoted(ToFile(saved.name));
    text += name + u'=';
    AppendData(text, name.size() + 1, saved.value);
    text += u"\r\n";
}

std::string ToBytes(FileTextView text) {
    std::string bytes;
    bytes.reserve(2 * text.size());
    for (char16_t const unit : text) {
        bytes += static_cast<char>(unit & 0xFF);
        bytes += static_cast<char>(unit >> 8);
    }
    return bytes;
}

} // namespace

bool MakeRegistryText(std::vector<SavedKey> const& keys, std::string& bytes) {
    FileText text = u"\xFEFFWindows Registry Editor Version 5.00\r\n";
    for (SavedKey const& key : keys) {
        FileText const path = ToFile(key.path);
        if (path.find_first_of(u"\r\n") != FileText::npos) {
            return false;
        }
        text += u"\r\n[" + path + u"]\r\n";
        for (SavedValue const& value : key.values) {
            AppendValue(text, value);
        }
    }
    bytes = ToBytes(text);
    return true;
}

} // namespace QMT::platform

#include "helpers/paths_text.h"

#include <algorithm>
#include <utility>

#include "qmt/general/containers.h"
#include "qmt/general/files.h"
#include "qmt/helpers/paths.h"

namespace QMT {

namespace {

using TextView = std::basic_string_view<CodeUnit>;

constexpr CodeUnit backslash = u'\\';
constexpr CodeUnit slash = u'/';

CodeUnit SystemSeparator() {
    return PathSeparatorIsBackslash() ? backslash : slash;
}

bool IsSeparator(CodeUnit unit) {
    return unit == backslash || unit == slash;
}

bool IsReversal(String const& element) {
    return element == u"..";
}

// Where the last component begins.
std::size_t NameStart(String const& path) {
    auto const isEnd = [](CodeUnit unit) { return IsSeparator(unit) || unit == u':'; };
    TextView const units = path.View();
    return static_cast<std::size_t>(std::find_if(units.rbegin(), units.rend(), isEnd).base() - units.begin());
}

// Where the extension begins; the path's end when there is none.
std::size_t ExtensionStart(String const& path) {
    int const point = path.FindLast(u".");
    return point < 0 ? path.Len() : static_cast<std::size_t>(point);
}

using Elements = VArray<String, String>;

void DropEmptyTail(Elements& elements) {
    while (elements.Size() > 0 && elements[elements.Size() - 1].IsEmpty())
        elements.Remove(elements.Size() - 1);
}

// Takes out the last element that has a name, and the empty ones that several separators in a row leave
// behind it. False, with all elements in place, when a ".." finds nothing that it could turn back from.
bool TurnBack(Elements& elements) {
    std::size_t named = elements.Size();
    while (named > 0 && elements[named - 1].IsEmpty())
        --named;
    if (named == 0 || IsReversal(elements[named - 1]))
        return false;
    while (elements.Size() >= named)
        elements.Remove(elements.Size() - 1);
    return true;
}

Elements ElementsWithoutReversals(String path) {
    constexpr std::size_t usualDepth = 14;
    Elements elements;
    elements.SetCapacityIncrease(usualDepth);
    ParsableText rest(std::move(path));
    rest.splitOnBackslash = true;
    rest.splitOnSlash = true;
    bool turned = false;
    for (String element; rest.GetNextElem(&element, 0);) {
        // All separators behind a ".." that turns back go with it: one that stayed could make a relative path
        // begin at the root.
        if (turned && element.IsEmpty())
            continue;
        turned = IsReversal(element) && TurnBack(elements);
        if (!turned)
            elements.Add(element);
    }
    DropEmptyTail(elements);
    return elements;
}

} // namespace

String WithSeparators(String path, CodeUnit separator) {
    for (std::size_t i = 0; i < path.Len(); ++i)
        if (IsSeparator(path[i]))
            path[i] = separator;
    return path;
}

String WithoutReversals(String path, CodeUnit separator) {
    String result = IsSeparator(path[0]) ? path.Left(1) : String();
    Elements const elements = ElementsWithoutReversals(std::move(path));
    for (std::size_t i = 0; i < elements.Size(); ++i) {
        if (i > 0)
            result << separator;
        result += elements[i];
    }
    return result;
}

String DirectoryOf(String path, CodeUnit separator) {
    std::size_t const end = path.View().rfind(separator);
    return end == TextView::npos ? path : path.Left(end);
}

String CorrectPathSeparators(String path) {
    return WithSeparators(std::move(path), SystemSeparator());
}

String RemoveLeadPath(String path) {
    return path.Mid(NameStart(path));
}

String RemoveTrailName(String path) {
    std::size_t const end = NameStart(path);
    return path.Left(end > 0 && IsSeparator(path[end - 1]) ? end - 1 : end);
}

String RemoveExtension(String path, String& extension) {
    std::size_t const end = ExtensionStart(path);
    extension = path.Mid(end);
    path.Truncate(end);
    return path;
}

String GetExtension(String path) {
    return path.Mid(ExtensionStart(path));
}

String QuotedPath(String path) {
    path.TrimAll();
    if (path.Find(u" ") < 0)
        return path;
    if (path[0] != u'"')
        path = u"\"" + path;
    if (path[path.Len() - 1] != u'"')
        path << u"\"";
    return path;
}

String FilterPathReversals(String path) {
    return WithoutReversals(std::move(path), SystemSeparator());
}

} // namespace QMT

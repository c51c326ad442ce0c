// What String refuses: lines that would compile to something else than they say.
#include "qmt/general/string.h"

void Allowed(QMT::String& text, QMT::CodeUnit unit) {
    text << u"letter " << unit << 1;
    text = text + u"tail";
    static_cast<void>(text.IsEmpty());
}

void Forbidden([[maybe_unused]] QMT::String& text) {
#if QMT_FORBIDDEN == 1
    text << 'c'; // would go in as a number
#elif QMT_FORBIDDEN == 2
    text + 1; // would step through the text
#elif QMT_FORBIDDEN == 3
    if (text) // would always be true
        return;
#endif
}

#include "qmt/general/errors.h"

#include "support/text.h"
#include "support/this_system.h"

namespace QMT {

namespace {

TEST(Errors, DebugOutputGetsWholeLines) {
    DebugOutput output;
    LogToIDE(u"one \u20AC");
    LogToIDE(u"");
    EXPECT_EQ(output.Take(), "one \xE2\x82\xAC\n\n");
}

} // namespace

} // namespace QMT

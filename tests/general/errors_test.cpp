#include "qmt/general/errors.h"

#include <cerrno>
#include <gtest/gtest.h>

#include "general/system_error_text.h"
#include "support/text.h"

namespace QMT {

namespace {

TEST(Errors, JoinMessageAndDetailStraight) {
    EXPECT_EQ(TakeError(MakeError(u"Disc full")), u"Disc full");
    EXPECT_EQ(TakeError(MakeError(u"Couldn't open x:", u" Error code = 5")),
              u"Couldn't open x: Error code = 5");
}

TEST(Errors, SystemTextHasCodeAndText) {
    EXPECT_EQ(SystemErrorText(2).Left(24), u" Error code = 00000002. ");
    EXPECT_GT(SystemErrorText(2).Len(), 24u);
    EXPECT_EQ(SystemErrorText(0xABCDEF01), u" Error code = ABCDEF01. ");
    errno = ENOENT;
    EXPECT_EQ(LastSystemErrorText(), SystemErrorText(ENOENT));
}

TEST(Errors, DebugOutputGetsWholeLines) {
    testing::internal::CaptureStderr();
    LogToIDE(u"one \u20AC");
    LogToIDE(u"");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "one \xE2\x82\xAC\n\n");
}

} // namespace

} // namespace QMT

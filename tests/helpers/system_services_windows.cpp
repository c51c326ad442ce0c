// What the system's own services make of the calls.
#include <windows.h>

#include "helpers/code_page_text.h"
#include "qmt/platform/message_queue.h"

namespace QMT {
namespace {

TEST(SystemErrors, AreThoseOfTheCallingThread) {
    String const start = u" Error code = 00000002. ";
    String const missing = GetSystemErrMsge(ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(missing.Left(start.Len()), start);
    EXPECT_GT(missing.Len(), start.Len());
    ::SetLastError(ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(GetSystemErrMsge(), missing);
}

TEST(MessageQueue, HoldsThePostedAndTheSystemsInOrder) {
    ThreadQueue const queue = ThreadQueue::OfThisThread();
    DWORD const thread = ::GetCurrentThreadId();
    static String seen;
    CheckQueueDuringLengthyOperation(nullptr);
    for (unsigned int number = 1; number < 4; ++number) {
        ASSERT_TRUE(::PostThreadMessageW(thread, WM_APP, number, 0));
        EXPECT_TRUE(
            queue.Post({[](QueueMessage const& message) { seen << message.number << u"h"; }, number}));
    }
    CheckQueueDuringLengthyOperation([](tagMSG* message) {
        seen << (message->message == WM_APP ? static_cast<unsigned int>(message->wParam)
                                            : GetQueueMessage(*message).number + 10);
        return 0;
    });
    EXPECT_EQ(seen, u"1111h2122h3133h");
    // An application's own loop takes the marks; a full queue refuses them.
    EXPECT_TRUE(queue.Post({nullptr, 4}));
    for (MSG message; ::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE);)
        EXPECT_EQ(GetQueueMessage(message).number, 0U);
    CheckQueueDuringLengthyOperation([](tagMSG* message) {
        seen << GetQueueMessage(*message).number;
        return 1;
    });
    EXPECT_EQ(seen, u"1111h2122h3133h4");
}

TEST(KernelObjects, AreOpenedToAllByAnAccessListOfNull) {
    HANDLE const event = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
    HANDLE lesser = nullptr;
    HANDLE const process = ::GetCurrentProcess();
    ASSERT_TRUE(::DuplicateHandle(process, event, process, &lesser, SYNCHRONIZE, FALSE, 0));
    String const refused = u"Couldn't reset kernel object security to open access:";
    for (auto const& [object, error] :
         {std::pair{lesser, 5U}, {nullptr, 6U}}) // access denied, invalid handle
        EXPECT_EQ(TakeError(AllowAccessToKernelObject(object)), refused + GetSystemErrMsge(error));
    EXPECT_EQ(TakeError(AllowAccessToKernelObject(event)), u"");
    std::array<unsigned char, 1000> descriptor;
    DWORD size = descriptor.size();
    ASSERT_TRUE(::GetKernelObjectSecurity(event, DACL_SECURITY_INFORMATION, descriptor.data(), size, &size));
    BOOL isPresent = FALSE, isDefault = FALSE;
    ACL* list = reinterpret_cast<ACL*>(descriptor.data());
    EXPECT_TRUE(::GetSecurityDescriptorDacl(descriptor.data(), &isPresent, &list, &isDefault));
    EXPECT_TRUE(isPresent && !list);
    ::CloseHandle(lesser);
    ::CloseHandle(event);
}

TEST(CodePages, ZeroIsTheSystems) {
    EXPECT_EQ(Bytes(u"\u00E4\u0416", 0), Bytes(u"\u00E4\u0416", ::GetACP()));
}

TEST(User, HasTheNameAndTheCurrencyOfTheSession) {
    String const expected = DecodeFromUTF8(std::getenv("USERNAME"), false);
    EXPECT_EQ(GetFixedDeviceIdentifier(), expected);
    WriteUserName(u"somebody else");
    EXPECT_EQ(GetUserNameW() + GetFixedDeviceIdentifier(), expected + expected);
    EXPECT_EQ(GetOSCurrency().Len(), 3U);
}

} // namespace
} // namespace QMT

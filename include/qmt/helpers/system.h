// A thin layer over services of the operating system.
#pragma once

#include "qmt/export.h"
#include "qmt/general/code_unit.h"
#include "qmt/general/errors.h"
#include "qmt/general/string.h"

// One message of a thread's queue. Where the system has none, qmt/platform/message_queue.h tells what is in
// it.
struct tagMSG; // NOLINT(readability-identifier-naming): the name is fixed

namespace QMT {

// " Error code = ", the code as 8 hexadecimal digits, ". " and the system's own text for it, which is empty
// when there is none. It begins with a blank, so that a message is joined straight in front. Without an
// argument for the calling thread's last system error: call it before anything else enters the system.
QMT_UTILU_API String GetSystemErrMsge();
QMT_UTILU_API String GetSystemErrMsge(unsigned long int code);

// Empties the calling thread's message queue, so that an application stays alive in a long operation: each
// message goes to the filter, and is handled in the system's way when that gives 0 or is null. Returns when
// the queue is empty; never waits for a message. Filter and handlers run on this thread. On Windows a window
// whose WM_PAINT the filter takes counts as painted.
QMT_UTILU_API void CheckQueueDuringLengthyOperation(int (*filter)(tagMSG*));

// Opens an object of the system to all users. Where that is a file descriptor, converted to a pointer,
// everybody may then read and write the file behind it. Null for success; after an error, which the caller
// owns, the object is as it was.
QMT_UTILU_API ErrorInfo* AllowAccessToKernelObject(void* handle);

// Text to bytes of a code page, and back: zero-terminated, made with new[]; the caller deletes it with
// delete[]. 65001 is UTF-8, 0 the encoding of the user's locale. The length, unless its pointer is null,
// becomes the number of bytes or units with the terminator. A unit without counterpart becomes "?", a byte
// that belongs to no character U+FFFD. Null and a length of 0 for null, and for a code page that the system
// does not know.
QMT_UTILU_API char* ConvertToMultibyte(CodeUnit const* text, unsigned int codePage, unsigned int* length);
QMT_UTILU_API CodeUnit* ConvertFromMultibyte(char const* text, unsigned int codePage, unsigned int* length);

// Starts the process-wide millisecond clock; only the first start sets its zero. False when the system has
// no counter. From any thread.
QMT_UTILU_API bool StartMillisecsCount();

// Milliseconds since the clock was started, 0 before that. It goes on from 0 after 4294967295, and is one
// behind the true count, modulo 2 to the power 32, for each time it has done so. From any thread: it takes no
// lock, allocates nothing and does not enter the system where that can be avoided.
QMT_UTILU_API unsigned int GetMillisecsCount();

// Sleeps in steps of 20 milliseconds, at least one, and calls stop(context) behind each. True as soon as that
// gives true; false once the time is up, which may be one step late. Starts the clock if need be.
QMT_UTILU_API bool Interruptable_MS_Sleep(unsigned int milliseconds, void* context, bool (*stop)(void*));

// The name of the user who runs the process; empty when it cannot be had or has more than 79 units.
QMT_UTILU_API String GetUserNameW();

// Does nothing.
QMT_UTILU_API void WriteUserName(String name);

// The identifier of this machine for the process: the user's name at the first call, the same ever after.
QMT_UTILU_API String GetFixedDeviceIdentifier();

// The international symbol of the currency of the user's locale, such as "USD"; "EUR" when it has none.
QMT_UTILU_API String GetOSCurrency();

} // namespace QMT

// Places in the library at which a test can hold a thread or force a fault. They vanish from builds without
// QMT_SYNC_POINTS.
#pragma once

#if defined(QMT_SYNC_POINTS)

#include <functional>

#include "qmt/export.h"

namespace QMT {

// Runs what a test has installed for the named point; false when there is nothing, or it said so.
QMT_GENU_API bool ReachSyncPoint(char const* name);

// Installs what happens at a point, on the thread that reaches it, with no lock held by the table; an empty
// function removes it. A result of true forces the fault that the point stands for.
QMT_GENU_API void SetSyncPoint(char const* name, std::function<bool()> action);

} // namespace QMT

#define QMT_SYNC_POINT(name) static_cast<void>(::QMT::ReachSyncPoint(name))
#define QMT_FAULT_POINT(name) (::QMT::ReachSyncPoint(name))

#else

#define QMT_SYNC_POINT(name) static_cast<void>(0)
#define QMT_FAULT_POINT(name) false

#endif

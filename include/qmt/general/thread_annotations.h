// Tells clang's thread-safety analysis which lock guards what. Other compilers see nothing.
#pragma once

#if defined(__clang__)
#define QMT_THREAD_ATTRIBUTE(x) __attribute__((x))
#else
#define QMT_THREAD_ATTRIBUTE(x)
#endif

#define QMT_CAPABILITY(name) QMT_THREAD_ATTRIBUTE(capability(name))
#define QMT_SCOPED_CAPABILITY QMT_THREAD_ATTRIBUTE(scoped_lockable)
#define QMT_GUARDED_BY(lock) QMT_THREAD_ATTRIBUTE(guarded_by(lock))
#define QMT_REQUIRES(...) QMT_THREAD_ATTRIBUTE(requires_capability(__VA_ARGS__))
#define QMT_EXCLUDES(...) QMT_THREAD_ATTRIBUTE(locks_excluded(__VA_ARGS__))
#define QMT_ACQUIRE(...) QMT_THREAD_ATTRIBUTE(acquire_capability(__VA_ARGS__))
#define QMT_RELEASE(...) QMT_THREAD_ATTRIBUTE(release_capability(__VA_ARGS__))
#define QMT_NO_THREAD_SAFETY_ANALYSIS QMT_THREAD_ATTRIBUTE(no_thread_safety_analysis)

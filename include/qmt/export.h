// Marks what the two libraries export. Everything that carries no mark is hidden.
#pragma once

#if defined(QMT_STATIC)
#define QMT_EXPORTED
#define QMT_IMPORTED
#elif defined(_WIN32)
#define QMT_EXPORTED __declspec(dllexport)
#define QMT_IMPORTED __declspec(dllimport)
#else
#define QMT_EXPORTED __attribute__((visibility("default")))
#define QMT_IMPORTED __attribute__((visibility("default")))
#endif

// The general library, libqmtgenu. Its build defines qmtgenu_EXPORTS.
#if defined(qmtgenu_EXPORTS)
#define QMT_GENU_API QMT_EXPORTED
#else
#define QMT_GENU_API QMT_IMPORTED
#endif

// The utility library, libqmtutilu. Its build defines qmtutilu_EXPORTS.
#if defined(qmtutilu_EXPORTS)
#define QMT_UTILU_API QMT_EXPORTED
#else
#define QMT_UTILU_API QMT_IMPORTED
#endif

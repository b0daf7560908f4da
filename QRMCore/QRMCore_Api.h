#ifndef QRMCORE_API_H
#define QRMCORE_API_H

/// Marks what the library exports; everything else stays inside it.
#if defined(__GNUC__)
#define QRMCORE_API __attribute__((visibility("default")))
#else
#define QRMCORE_API
#endif

#endif

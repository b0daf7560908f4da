#ifndef QRMIDOM_API_H
#define QRMIDOM_API_H

/// Marks what the library exports; everything else stays inside it.
#if defined(__GNUC__)
#define QRMIDOM_API __attribute__((visibility("default")))
#else
#define QRMIDOM_API
#endif

#endif

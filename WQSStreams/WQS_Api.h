#ifndef WQS_API_H
#define WQS_API_H

/// Marks what the library exports; everything else stays inside it.
#if defined(__GNUC__)
#define WQS_API __attribute__((visibility("default")))
#else
#define WQS_API
#endif

#endif

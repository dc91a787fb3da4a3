// NVSHARED_API marks the classes and functions that libnvshared.so exports.
// The library is built with hidden visibility, so whatever lacks the mark
// stays internal to it.
#ifndef NVSHARED_EXPORT_H_
#define NVSHARED_EXPORT_H_

#if defined(NVSHARED_BUILDING)
#define NVSHARED_API __attribute__((visibility("default")))
#else
#define NVSHARED_API
#endif

#endif  // NVSHARED_EXPORT_H_

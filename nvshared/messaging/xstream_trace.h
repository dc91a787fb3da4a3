// nv_ns::XStreamTrace reports, while it lives, every object header and item
// that tagged objects read on the constructing thread: what a support tool
// needs to show a captured buffer item by item. Other threads are not
// watched. Objects being written are never reported, so writing stays free
// of the hook.
#ifndef NVSHARED_MESSAGING_XSTREAM_TRACE_H_
#define NVSHARED_MESSAGING_XSTREAM_TRACE_H_

#include <cstdint>
#include <functional>
#include <string>

#include "nvshared/export.h"

namespace nv_ns {

struct XStreamTraceEvent {
  enum Kind { kObject, kItem };
  Kind kind = kItem;
  // 0 for the object being read, 1 for objects nested in it, and so on. An
  // item has the depth of the object it belongs to.
  int depth = 0;

  // kObject: the header as read.
  std::uint8_t protocol = 0;
  std::uint16_t totalLength = 0;
  std::uint32_t version = 0;
  // The name up to its first NUL (at most 5 characters).
  std::string objectName;

  // kItem: the item's number in its object, the name the record gives it,
  // its tag ('T', 'S', 'C', 'V', 'E', 'I') and its value as text. A scalar
  // is shown as a number (bool as true/false, double with all its digits),
  // a string or char array quoted with C escapes, an int vector as
  // [a, b, ...], and the containers by their counts.
  std::uint16_t itemNumber = 0;
  const char* itemName = "";
  char tag = 0;
  std::string value;
};

class NVSHARED_API XStreamTrace {
 public:
  using Sink = std::function<void(const XStreamTraceEvent&)>;

  // Starts reporting to `sink` on this thread; a trace already active on it
  // is suspended until this one ends.
  explicit XStreamTrace(Sink sink);
  ~XStreamTrace();
  XStreamTrace(const XStreamTrace&) = delete;
  XStreamTrace& operator=(const XStreamTrace&) = delete;

  // For the stream: the trace active on this thread, or null.
  static XStreamTrace* Current();
  void Report(XStreamTraceEvent& event) { m_sink(event); }
  int m_depth = 0;

 private:
  Sink m_sink;
  XStreamTrace* m_previous;
};

// Quotes `text` with C escapes (\", \\, \n, \t, \xNN for other bytes outside
// printable ASCII).
NVSHARED_API std::string QuoteBytes(const char* text, std::size_t length);

}  // namespace nv_ns

#endif  // NVSHARED_MESSAGING_XSTREAM_TRACE_H_

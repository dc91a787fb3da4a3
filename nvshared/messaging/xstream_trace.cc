#include "nvshared/messaging/xstream_trace.h"

#include <atomic>
#include <cstdio>
#include <utility>

namespace nv_ns {
namespace {

// Traces alive in the process. Reading checks this first, so that the
// common case of no trace costs one relaxed load and no thread-local lookup.
std::atomic<int> g_activeTraces{0};
thread_local XStreamTrace* t_current = nullptr;

}  // namespace

XStreamTrace::XStreamTrace(Sink sink)
    : m_sink(std::move(sink)), m_previous(t_current) {
  t_current = this;
  g_activeTraces.fetch_add(1, std::memory_order_relaxed);
}

XStreamTrace::~XStreamTrace() {
  t_current = m_previous;
  g_activeTraces.fetch_sub(1, std::memory_order_relaxed);
}

XStreamTrace* XStreamTrace::Current() {
  if (g_activeTraces.load(std::memory_order_relaxed) == 0) return nullptr;
  return t_current;
}

std::string QuoteBytes(const char* text, std::size_t length) {
  std::string out;
  out.reserve(length + 2);
  out += '"';
  for (std::size_t i = 0; i < length; ++i) {
    const auto c = static_cast<unsigned char>(text[i]);
    switch (c) {
      case '"':
        out += "\\\"";
        break;
      case '\\':
        out += "\\\\";
        break;
      case '\n':
        out += "\\n";
        break;
      case '\t':
        out += "\\t";
        break;
      default:
        if (c < 0x20 || c > 0x7E) {
          char hex[5];
          std::snprintf(hex, sizeof hex, "\\x%02x", c);
          out += hex;
        } else {
          out += static_cast<char>(c);
        }
    }
  }
  out += '"';
  return out;
}

}  // namespace nv_ns

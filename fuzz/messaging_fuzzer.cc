// Reads arbitrary bytes as tagged objects: the connection key, the spread
// record, the version-request parameters, and a record with one item of
// every kind (vectors and nested objects included). The first byte picks the
// record and whether a trace watches; the rest is the buffer. Every failure
// must be the format's own exception; anything else, a crash or a sanitizer
// report is a finding. An object that reads must write back, and what it
// writes must read and write again to the same bytes.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include "nvshared/messaging/connection_key.h"
#include "nvshared/messaging/server_version_request_params.h"
#include "nvshared/messaging/spread_info.h"
#include "nvshared/messaging/xstream_trace.h"

namespace {

struct Inner final : nv_ns::XStreamable {
  static constexpr char kName[kNameLength] = {'I', 'N', 0, 0, 0};
  int m_v = 0;
  std::string m_s;
  Inner() : XStreamable(kName, 2) {}
  void Transfer() override {
    TransferScalar("m_v", m_v);
    TransferString("m_s", m_s);
  }
  std::uint64_t Measure() const override { return 10 + m_s.size(); }
};

struct Kinds final : nv_ns::XStreamable {
  static constexpr char kName[kNameLength] = {'K', 'I', 'N', 'D', 'S'};
  bool m_flag = false;
  short m_short = 0;
  double m_double = 0;
  long long m_long = 0;
  std::string m_text;
  char m_code[4] = {};
  std::vector<int> m_ints;
  std::vector<std::string> m_words;
  Inner m_inner;
  std::vector<Inner> m_list;

  Kinds() : XStreamable(kName, 3) {}
  void Transfer() override {
    TransferScalar("m_flag", m_flag);
    TransferScalar("m_short", m_short);
    TransferScalar("m_double", m_double);
    TransferScalar("m_long", m_long);
    TransferString("m_text", m_text);
    TransferCharArray("m_code", m_code, sizeof m_code);
    CountItem();
    TransferIntVector("m_ints", m_ints);
    TransferStringVector("m_words", m_words);
    TransferObject("m_inner", m_inner);
    TransferObjectVector("m_list", m_list);
  }
  std::uint64_t Measure() const override { return 0; }
};

template <typename T>
void Check(const char* data, std::size_t size) {
  T record;
  try {
    const std::size_t total = record.ReadFrom(data, size);
    if (total > size) std::abort();
  } catch (const nv_ns::StreamingException&) {
    if (!record.HasFailed()) {
      // Only an inner object may fail without marking the outer one.
      if (std::is_same_v<T, Kinds>) return;
      std::abort();
    }
    return;
  }
  // Read: write it back; that must read, and write the same bytes again.
  T copy = record;
  std::string first;
  try {
    copy.WriteToString(first);
  } catch (const nv_ns::StreamingException&) {
    return;  // larger than WriteToString's 32768 bytes
  }
  T again;
  again.ReadFrom(first.data(), first.size());
  std::string second;
  again.WriteToString(second);
  if (first != second) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data,
                                      std::size_t size) {
  if (size == 0) return 0;
  const std::uint8_t selector = data[0];
  const char* bytes = reinterpret_cast<const char*>(data + 1);
  const std::size_t length = size - 1;
  // A trace on some inputs, so that its formatting is fuzzed too.
  std::size_t events = 0;
  auto run = [&] {
    switch (selector % 4) {
      case 0:
        Check<nv_ns::ConnectionKey>(bytes, length);
        break;
      case 1:
        Check<nv_ns::SpreadInfo>(bytes, length);
        break;
      case 2:
        Check<nv_ns::ServerVersionRequestParams>(bytes, length);
        break;
      default:
        Check<Kinds>(bytes, length);
    }
  };
  if (selector & 4) {
    nv_ns::XStreamTrace trace([&events](const nv_ns::XStreamTraceEvent& e) {
      events += e.value.size();
    });
    run();
  } else {
    run();
  }
  return 0;
}

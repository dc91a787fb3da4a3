// Reads arbitrary bytes as a price column's settings (CUDPData with its
// key-values), then uses what was read: the checks, the comparisons and one
// conversion each way through the converter the settings select. Every
// failure of the bytes must be the format's own exception; anything else, a
// crash or a sanitizer report is a finding. Settings that read must write
// back, and what they write must read and write again to the same bytes.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <stdexcept>
#include <string>

#include "nvshared/udp/udp_data.h"
#include "nvshared/udp/udp_price.h"

namespace {

// Converts once each way; dates outside the calendar are the calculator's
// documented exception.
void Exercise(CUDPData& data) {
  try {
    (void)data.ValidateData();
  } catch (const std::out_of_range&) {
  }
  (void)data.CompareTo(CUDPData());
  (void)data.Measure();
  data.m_bEnableUDP = 1;
  CUDPrice* price = nullptr;
  try {
    price = CUDPriceFactory::GetUDPrice(&data);
  } catch (const std::out_of_range&) {
    return;
  }
  if (price == nullptr) return;
  double out = 0.0;
  (void)price->GetUDPFromPrice(data.m_dCoupon + 90.0, out);
  (void)price->GetPriceFromUDP(data.m_dStripBase, out);
  CUDPriceFactory::ReleaseUDPrice(price);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data,
                                      std::size_t size) {
  const char* bytes = reinterpret_cast<const char*>(data);
  CUDPData first;
  try {
    first.ReadFrom(bytes, size);
  } catch (const nv_ns::StreamingException&) {
    return 0;
  }
  std::string written;
  try {
    first.WriteToString(written);
  } catch (const nv_ns::StreamingException&) {
    return 0;  // read within 64 KiB, but too long for the string buffer
  }
  CUDPData second;
  std::string again;
  try {
    if (second.ReadFrom(written.data(), written.size()) != written.size()) {
      std::abort();
    }
    second.WriteToString(again);
  } catch (const nv_ns::StreamingException&) {
    std::abort();  // its own output must read back
  }
  if (again != written) std::abort();
  Exercise(second);
  return 0;
}

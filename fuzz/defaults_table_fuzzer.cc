// Reads arbitrary bytes as a defaults table and, when they parse, runs a
// selection over it. Every input must end in a table or a clear error;
// nothing may crash or leak.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "nvshared/defaults/default_key.h"
#include "nvshared/defaults/defaults_table.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data,
                                      std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  auto parsed = nv_ns::ParseDefaultsTable(text);
  if (!parsed.ok()) {
    if (parsed.status().message().empty()) std::abort();
    return 0;
  }
  nv_ns::DefaultsTable table(std::move(parsed).value());
  // A key on a market, so the selection reads every field of an entry but
  // the gateway's exchange (no reference data is installed here).
  const CDefaultKey key("", 0, static_cast<nv_ns::MarketType::Value>(6),
                        nv_ns::ExchangeIds::Invalid, -1,
                        static_cast<nv_ns::ProductType::Value>(1), "ZN");
  int score = -1;
  if (key.MatchScored(table, score) && (score < 0 || score > 63)) std::abort();
  return 0;
}

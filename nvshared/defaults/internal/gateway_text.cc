#include "nvshared/defaults/internal/gateway_text.h"

#include "nvshared/market/exchange_names.h"
#include "nvshared/platform/core/consumer.h"

namespace nv_defaults_internal {

std::string GatewaySubstring(const std::string& text) {
  const std::string first = text.substr(0, text.find(' '));
  const int id = dv_core_ns::CDVConsumer::GetExchangeId(first.c_str());
  return nv_fmt::GetExchangeName(id, true);
}

std::string AliasSuffixSubstring(const std::string& text) {
  const std::string gateway = GatewaySubstring(text);
  // An empty gateway is found at the start, so the suffix of a text whose
  // first word names no exchange is the text from its second character on.
  // Kept as it is: hosts store "*" and read back an empty suffix.
  const std::size_t found = text.find(gateway);
  if (found == std::string::npos) return "";
  const std::size_t p = found + gateway.size() + 1;
  if (p > text.size()) return "";
  return text.substr(p);
}

}  // namespace nv_defaults_internal

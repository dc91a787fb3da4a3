// The gateway text of the default records: a gateway's flavoured name,
// optionally followed by a blank and an alias suffix ("CME-A (Globex) Fast").
#ifndef NVSHARED_DEFAULTS_INTERNAL_GATEWAY_TEXT_H_
#define NVSHARED_DEFAULTS_INTERNAL_GATEWAY_TEXT_H_

#include <string>

namespace nv_defaults_internal {

// The flavoured name of the exchange named by the text's first word; "" if
// the word names no exchange.
std::string GatewaySubstring(const std::string& text);

// What follows the gateway's flavoured name and one blank; "" if the text
// does not contain that name or nothing follows it.
std::string AliasSuffixSubstring(const std::string& text);

}  // namespace nv_defaults_internal

#endif  // NVSHARED_DEFAULTS_INTERNAL_GATEWAY_TEXT_H_

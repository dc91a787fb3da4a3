#include <arpa/inet.h>

#include "nvshared/platform/os/inet_address.h"

namespace nvshared::os {

std::uint32_t InetAddr(const char* text) {
  if (text == nullptr) return 0xFFFFFFFFu;
  return static_cast<std::uint32_t>(inet_addr(text));
}

}  // namespace nvshared::os

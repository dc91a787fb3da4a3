// The IPv4 text-to-address conversion of the C library, for code above the
// platform layer that must judge a server address the way the socket layer
// will read it.
//
// Threads: a pure function, safe anywhere.
#ifndef NVSHARED_PLATFORM_OS_INET_ADDRESS_H_
#define NVSHARED_PLATFORM_OS_INET_ADDRESS_H_

#include <cstdint>

#include "nvshared/export.h"

namespace nvshared::os {

// What inet_addr answers for `text`: the address in network byte order, or
// 0xFFFFFFFF when the text is no address (the same value as the broadcast
// address 255.255.255.255, which callers therefore cannot tell apart). A
// null text yields 0xFFFFFFFF.
std::uint32_t InetAddr(const char* text);

}  // namespace nvshared::os

#endif  // NVSHARED_PLATFORM_OS_INET_ADDRESS_H_

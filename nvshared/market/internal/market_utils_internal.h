// Library-internal access to the private name caches of MarketUtils, for the
// formatters and comparators inside the library. Not installed.
#ifndef NVSHARED_MARKET_INTERNAL_MARKET_UTILS_INTERNAL_H_
#define NVSHARED_MARKET_INTERNAL_MARKET_UTILS_INTERNAL_H_

#include <string>

#include "nvshared/market/market_utils.h"

namespace nv_ns {

class MarketUtilsInternal {
 public:
  // MarketUtils::_GetExchangeName through the instance; "" once the library
  // is shutting down.
  static const std::string& ExchangeName(int exchangeId);
  // MarketUtils::_GetMarketName through the instance; "" once the library is
  // shutting down.
  static const std::string& MarketName(int marketId);
};

}  // namespace nv_ns

#endif  // NVSHARED_MARKET_INTERNAL_MARKET_UTILS_INTERNAL_H_

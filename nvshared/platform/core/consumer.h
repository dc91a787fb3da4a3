// The core client library's static lookups, answered from the current
// reference-data store (reference_data.h). All are safe from any thread and
// never call back into the rest of the library.
#ifndef NVSHARED_PLATFORM_CORE_CONSUMER_H_
#define NVSHARED_PLATFORM_CORE_CONSUMER_H_

#include <string>

#include "nvshared/export.h"
#include "nvshared/platform/core/ids.h"
#include "nvshared/platform/core/legs.h"

namespace dv_core_ns {

class NVSHARED_API CDVConsumer {
 public:
  // The exchange's name ("CME-A"); null for an unknown id. The pointer stays
  // valid for the life of the process.
  static const char* GetExchangeName(int exchangeId);
  // The id of an exchange name, compared with case; -1 if none. A market's
  // name finds the market's plain exchange, the one named like the market.
  static int GetExchangeId(const char* name);
  // The id of a market name from the compiled table; -1 if none.
  static int GetMarketId(const char* name);
  // The name of a market id from the compiled table; "" for an unknown id.
  static std::string GetMarketName(int marketId);
  // The market that owns the exchange; -1 for an unknown id.
  static int GetMarketFromExch(int exchangeId);
};

class NVSHARED_API CDVBasePriceConsumer {
 public:
  // The product's display alias; null if it has none or is unknown.
  static const char* GetAlias(const ProdID* product);
  // The product's currency code; null if it has none or is unknown.
  static const char* GetCurrencyCode(const ProdID* product);
  // Replaces `list` with the legs of a spread or strategy series. False, with
  // `list` untouched, if the legs are not known.
  static bool CopyLegList(const SeriesID* series, LegList& list);
  // An opaque handle of the product's price table; null if it has none.
  static void* GetPriceTableHandle(ProdID* product);
};

class NVSHARED_API DVTick {
 public:
  // `price`, in the tick units of the series, as decimal text with the
  // product's price decimals: 12345 with 2 decimals is "123.45". A series of
  // an unknown product renders with no decimals. `flag` is always true here.
  static std::string PriceIntToString(long long price, const SeriesID* series,
                                      bool flag);
};

}  // namespace dv_core_ns

#endif  // NVSHARED_PLATFORM_CORE_CONSUMER_H_

// nv_ns::MarketUtils: cached answers to "which market owns this exchange"
// and "what is this exchange or market called", and the exchange
// classifications (synthetic, FIX, eCBOT). The core's lookups behind them are
// slow in production; these caches make a repeated question a vector index
// or a map find, so sort comparators and matching loops can ask freely.
//
// The caches fill on demand and are never refreshed: an exchange keeps the
// name and market it had when first asked. The core's reference data must be
// loaded before the first call.
//
// Threads: every operation is safe from any thread. The singleton and each
// name cache have their own lock; the market vector is filled without one.
#ifndef NVSHARED_MARKET_MARKET_UTILS_H_
#define NVSHARED_MARKET_MARKET_UTILS_H_

#include <map>
#include <mutex>
#include <string>

#include "nvshared/export.h"
#include "nvshared/market/market_types.h"

namespace nv_ns {

class MarketUtilsInternal;

class NVSHARED_API MarketUtils {
 public:
  // The process-wide instance, built on first use and never freed. Null once
  // the library has started shutting down (OnLibraryShutdown).
  static MarketUtils* Instance();

  // The market that owns the exchange; -1 for an id outside
  // 0..EnumMax()-1 or one the core does not know. Exchange 0 counts as the
  // Legwise market (84) without asking the core.
  static MarketType::Value GetMarketFromExchange(int exchangeId);

  // True if the exchange's market is 84 (Legwise), 85 (SSE) or 88 (AlgoSE).
  // The argument is an exchange id, not a market id.
  static bool IsSyntheticMarket(int exchangeId);
  // True for a fixed set of exchange ids that does not follow the market
  // table.
  static bool IsFIXExchangeID(int exchangeId);
  // True if the exchange's market is 6 (CBOT) and its plain name begins with
  // "eCBOT", compared with case.
  static bool IsECBOTExchangeID(int exchangeId);

  // Stops new instances from being built; Instance() yields null from then
  // on. The library calls this as it is unloaded; hosts need not.
  static void OnLibraryShutdown();

  MarketUtils(const MarketUtils&) = delete;
  MarketUtils& operator=(const MarketUtils&) = delete;

 private:
  friend class MarketUtilsInternal;
  MarketUtils() = default;
  ~MarketUtils() = default;

  // The exchange's name from the cache, "" if the core has none. The
  // reference stays valid for the life of the process.
  const std::string& _GetExchangeName(int exchangeId);
  // The market's name from the cache, "" for an unknown id.
  const std::string& _GetMarketName(int marketId);

  std::recursive_mutex exchangeNamesLock_;
  std::map<int, std::string> exchangeNames_;
  std::recursive_mutex marketNamesLock_;
  std::map<int, std::string> marketNames_;
};

}  // namespace nv_ns

#endif  // NVSHARED_MARKET_MARKET_UTILS_H_

#include "nvshared/market/market_utils.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstring>
#include <memory>

#include "nvshared/market/internal/market_utils_internal.h"
#include "nvshared/platform/core/agile_enums.h"
#include "nvshared/platform/core/consumer.h"

namespace nv_ns {
namespace {

using dv_core_ns::CDVConsumer;

std::atomic<MarketUtils*> g_instance{nullptr};
std::atomic<bool> g_shutting_down{false};
std::recursive_mutex g_instance_lock;

// Sets the shut-down flag when the library's statics are torn down.
struct ShutdownFlagSetter {
  ~ShutdownFlagSetter() { MarketUtils::OnLibraryShutdown(); }
} g_shutdown_flag_setter;

// The market of each exchange id, -1 meaning not asked yet. Created once,
// sized to EnumMax() at that moment. The cells are filled without a lock:
// every writer of a cell writes the same value, and relaxed atomics make that
// well-defined at the cost of a plain load and store. Never freed, so late
// callers during exit still find it.
std::recursive_mutex g_market_cache_lock;
std::atomic<bool> g_market_cache_made{false};
std::atomic<int>* g_market_cache = nullptr;
int g_market_cache_size = 0;

constexpr std::array<int, 27> kFixExchangeIds = {
    9,   12,  98,  99,  100, 101, 108, 109, 110, 111, 112, 113, 114, 115,
    122, 123, 132, 133, 134, 135, 138, 139, 169, 170, 171, 172, 173};

const std::string& EmptyName() {
  static const std::string* const empty = new std::string();
  return *empty;
}

}  // namespace

MarketUtils* MarketUtils::Instance() {
  if (g_shutting_down.load()) return nullptr;
  MarketUtils* instance = g_instance.load(std::memory_order_acquire);
  if (instance != nullptr) return instance;
  std::lock_guard<std::recursive_mutex> lock(g_instance_lock);
  instance = g_instance.load(std::memory_order_relaxed);
  if (instance == nullptr) {
    // Never freed: pointers into the caches are handed out for the life of
    // the process.
    instance = new MarketUtils();
    g_instance.store(instance, std::memory_order_release);
  }
  return instance;
}

void MarketUtils::OnLibraryShutdown() { g_shutting_down.store(true); }

MarketType::Value MarketUtils::GetMarketFromExchange(int exchangeId) {
  const int enumMax = dv_core_ns::AEnum_ExchIds::EnumMax();
  if (exchangeId < 0 || exchangeId >= enumMax) return MarketType::Value(-1);
  if (!g_market_cache_made.load(std::memory_order_acquire)) {
    std::lock_guard<std::recursive_mutex> lock(g_market_cache_lock);
    if (!g_market_cache_made.load(std::memory_order_relaxed)) {
      g_market_cache = new std::atomic<int>[static_cast<std::size_t>(enumMax)];
      for (int i = 0; i < enumMax; ++i) g_market_cache[i].store(-1);
      g_market_cache_size = enumMax;
      g_market_cache_made.store(true, std::memory_order_release);
    }
  }
  // Reference data installed later may count more ids than the cache was
  // made for; those are not cached and have no market here.
  if (exchangeId >= g_market_cache_size) return MarketType::Value(-1);
  std::atomic<int>& cell = g_market_cache[exchangeId];
  int market = cell.load(std::memory_order_relaxed);
  if (market == -1) {
    // Exchange 0 (DV) counts as the Legwise market. A -1 from the core is
    // stored as it is, and so asked again next time.
    market = exchangeId == 0 ? static_cast<int>(MarketType::Legwise)
                             : CDVConsumer::GetMarketFromExch(exchangeId);
    cell.store(market, std::memory_order_relaxed);
  }
  return MarketType::Value(market);
}

bool MarketUtils::IsSyntheticMarket(int exchangeId) {
  const int market = GetMarketFromExchange(exchangeId);
  return market == MarketType::Legwise || market == MarketType::SSE ||
         market == MarketType::AlgoSE;
}

bool MarketUtils::IsFIXExchangeID(int exchangeId) {
  return std::binary_search(kFixExchangeIds.begin(), kFixExchangeIds.end(),
                            exchangeId);
}

bool MarketUtils::IsECBOTExchangeID(int exchangeId) {
  if (GetMarketFromExchange(exchangeId) != MarketType::CBOT) return false;
  const std::string& name = MarketUtilsInternal::ExchangeName(exchangeId);
  return name.compare(0, 5, "eCBOT") == 0;
}

const std::string& MarketUtils::_GetExchangeName(int exchangeId) {
  std::lock_guard<std::recursive_mutex> lock(exchangeNamesLock_);
  auto it = exchangeNames_.find(exchangeId);
  if (it == exchangeNames_.end()) {
    const char* name = CDVConsumer::GetExchangeName(exchangeId);
    it = exchangeNames_.emplace(exchangeId, name == nullptr ? "" : name).first;
  }
  return it->second;
}

const std::string& MarketUtils::_GetMarketName(int marketId) {
  std::lock_guard<std::recursive_mutex> lock(marketNamesLock_);
  auto it = marketNames_.find(marketId);
  if (it == marketNames_.end()) {
    it = marketNames_.emplace(marketId, CDVConsumer::GetMarketName(marketId))
             .first;
  }
  return it->second;
}

const std::string& MarketUtilsInternal::ExchangeName(int exchangeId) {
  MarketUtils* utils = MarketUtils::Instance();
  return utils == nullptr ? EmptyName() : utils->_GetExchangeName(exchangeId);
}

const std::string& MarketUtilsInternal::MarketName(int marketId) {
  MarketUtils* utils = MarketUtils::Instance();
  return utils == nullptr ? EmptyName() : utils->_GetMarketName(marketId);
}

}  // namespace nv_ns

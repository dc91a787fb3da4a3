// The market model's small value types: nv_ns::MarketType::Value,
// ExchangeIds::Value and ProductType::Value, each one signed 32-bit number,
// and nv_ns::BuySell, a character code. Values; thread-safe.
#ifndef NVSHARED_MARKET_MARKET_TYPES_H_
#define NVSHARED_MARKET_MARKET_TYPES_H_

#include <cstdint>

namespace nv_ns {

// A market id of the compiled market table. The named values are the ones
// the logic tests by number; every other id in -1..104 is valid too.
struct MarketType {
  enum Value : std::int32_t {
    DV_INVALID_MARKET_ID = -1,  // also the wild market of a default key
    CBOT = 6,
    BTec = 22,
    ICE_IPE = 32,
    TOCOM = 68,
    LME = 79,
    Legwise = 84,
    SSE = 85,
    AlgoSE = 88,
  };
};

// An exchange id; -1 is also the wild exchange of a default key.
struct ExchangeIds {
  enum Value : std::int32_t { Invalid = -1 };
};

// A product type as AEnum_ProdIDs numbers it; 0 is also the wild type of a
// default key.
struct ProductType {
  enum Value : std::int32_t { Invalid = 0 };
};

// The side of an order: 'B' or 'S'.
struct BuySell {
  enum Value : char { Buy = 'B', Sell = 'S' };

  BuySell() = default;
  BuySell(Value v) : code(v) {}           // NOLINT: implicit by design
  operator char() const { return code; }  // NOLINT: implicit by design

  char code = Buy;
};

}  // namespace nv_ns

#endif  // NVSHARED_MARKET_MARKET_TYPES_H_

// nv_ns::CoreProductID, a thin reference to a core product, and CNVConsumer,
// the exported wrappers of two core lookups. The referenced product must
// outlive the CoreProductID. Thread-safe as the lookups they call.
#ifndef NVSHARED_MARKET_CORE_PRODUCT_ID_H_
#define NVSHARED_MARKET_CORE_PRODUCT_ID_H_

#include "nvshared/export.h"
#include "nvshared/market/market_types.h"
#include "nvshared/platform/core/ids.h"
#include "nvshared/platform/core/legs.h"

namespace nv_ns {

class NVSHARED_API CoreProductID {
 public:
  explicit CoreProductID(const dv_core_ns::ProdID& product)
      : m_product(product) {}

  const dv_core_ns::ProdID& GetProdID() const { return m_product; }
  // The market of the product's exchange, asked of the core directly, past
  // the MarketUtils cache.
  MarketType::Value GetMarketType() const;
  // The core's currency code of the product; null if it has none.
  const char* GetCurrencyCode() const;

 private:
  const dv_core_ns::ProdID& m_product;
};

}  // namespace nv_ns

class NVSHARED_API CNVConsumer {
 public:
  // MarketUtils::GetMarketFromExchange as an int.
  static int GetMarketFromExch(int exchangeId);
  // The core's CopyLegList under another name.
  static bool GetPriceConsumerLegList(dv_core_ns::SeriesID* series,
                                      dv_core_ns::LegList& list);
};

#endif  // NVSHARED_MARKET_CORE_PRODUCT_ID_H_

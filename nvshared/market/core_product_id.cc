#include "nvshared/market/core_product_id.h"

#include "nvshared/market/market_utils.h"
#include "nvshared/platform/core/consumer.h"

namespace nv_ns {

MarketType::Value CoreProductID::GetMarketType() const {
  return MarketType::Value(
      dv_core_ns::CDVConsumer::GetMarketFromExch(m_product.exchange));
}

const char* CoreProductID::GetCurrencyCode() const {
  return dv_core_ns::CDVBasePriceConsumer::GetCurrencyCode(&m_product);
}

}  // namespace nv_ns

int CNVConsumer::GetMarketFromExch(int exchangeId) {
  return nv_ns::MarketUtils::GetMarketFromExchange(exchangeId);
}

bool CNVConsumer::GetPriceConsumerLegList(dv_core_ns::SeriesID* series,
                                          dv_core_ns::LegList& list) {
  return dv_core_ns::CDVBasePriceConsumer::CopyLegList(series, list);
}

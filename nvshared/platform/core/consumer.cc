#include "nvshared/platform/core/consumer.h"

#include <cstdlib>

#include "nvshared/platform/core/market_table.h"
#include "nvshared/platform/core/reference_data.h"

namespace dv_core_ns {
namespace {

const ReferenceData& Data() { return ReferenceData::Current(); }

}  // namespace

const char* CDVConsumer::GetExchangeName(int exchangeId) {
  const ExchangeRecord* e = Data().FindExchange(exchangeId);
  return e == nullptr ? nullptr : e->name.c_str();
}

int CDVConsumer::GetExchangeId(const char* name) {
  return name == nullptr ? -1 : Data().FindExchangeId(name);
}

int CDVConsumer::GetMarketId(const char* name) {
  return name == nullptr ? -1 : MarketTableId(name);
}

std::string CDVConsumer::GetMarketName(int marketId) {
  const char* name = MarketTableName(marketId);
  return name == nullptr ? std::string() : std::string(name);
}

int CDVConsumer::GetMarketFromExch(int exchangeId) {
  const ExchangeRecord* e = Data().FindExchange(exchangeId);
  return e == nullptr ? -1 : e->marketId;
}

const char* CDVBasePriceConsumer::GetAlias(const ProdID* product) {
  if (product == nullptr) return nullptr;
  const ProductRecord* p = Data().FindProduct(*product);
  return p == nullptr || !p->alias ? nullptr : p->alias->c_str();
}

const char* CDVBasePriceConsumer::GetCurrencyCode(const ProdID* product) {
  if (product == nullptr) return nullptr;
  const ProductRecord* p = Data().FindProduct(*product);
  return p == nullptr || !p->currency ? nullptr : p->currency->c_str();
}

bool CDVBasePriceConsumer::CopyLegList(const SeriesID* series, LegList& list) {
  if (series == nullptr) return false;
  const SeriesRecord* s =
      Data().FindSeries(series->product.exchange, series->seriesKey);
  if (s == nullptr || !s->legs) return false;
  list.ReferenceData(*s->legs);
  return true;
}

void* CDVBasePriceConsumer::GetPriceTableHandle(ProdID* product) {
  if (product == nullptr) return nullptr;
  const ProductRecord* p = Data().FindProduct(*product);
  // The record itself serves as the handle: stores are never freed, so it
  // stays valid, and callers only test it for null.
  return p == nullptr || !p->priceTable ? nullptr
                                        : const_cast<ProductRecord*>(p);
}

std::string DVTick::PriceIntToString(long long price, const SeriesID* series,
                                     bool /*flag*/) {
  int decimals = 0;
  if (series != nullptr) {
    if (const ProductRecord* p = Data().FindProduct(series->product)) {
      decimals = p->priceDecimals;
    }
  }
  // Work on the magnitude as unsigned, so the lowest value does not overflow.
  const bool negative = price < 0;
  unsigned long long magnitude =
      negative ? 0ULL - static_cast<unsigned long long>(price)
               : static_cast<unsigned long long>(price);
  std::string digits = std::to_string(magnitude);
  if (decimals > 0) {
    const auto width = static_cast<std::size_t>(decimals);
    if (digits.size() <= width)
      digits.insert(0, width + 1 - digits.size(), '0');
    digits.insert(digits.size() - width, 1, '.');
  }
  return negative ? "-" + digits : digits;
}

}  // namespace dv_core_ns

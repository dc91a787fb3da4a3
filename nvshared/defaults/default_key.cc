#include "nvshared/defaults/default_key.h"

#include <utility>

#include "nvshared/internal/ascii.h"
#include "nvshared/market/exchange_names.h"
#include "nvshared/market/market_utils.h"

bool CDefaultKey::m_bMultiBrokerMode = false;

CriteriaKeyParams::CriteriaKeyParams(std::string templateName,
                                     unsigned short brokerId,
                                     nv_ns::MarketType::Value market,
                                     nv_ns::ExchangeIds::Value exchange,
                                     int gmId, nv_ns::ProductType::Value type,
                                     std::string productName)
    : m_templateName(std::move(templateName)),
      m_brokerId(brokerId),
      m_marketId(market),
      m_exchangeId(exchange),
      m_gmId(gmId),
      m_productType(type),
      m_productName(std::move(productName)) {}

CriteriaKeyParams::CriteriaKeyParams(std::string templateName,
                                     const dv_core_ns::SeriesID* series,
                                     unsigned short brokerId,
                                     nv_ns::ExchangeIds::Value exchange,
                                     int gmId)
    : m_templateName(std::move(templateName)),
      m_brokerId(brokerId),
      m_exchangeId(exchange),
      m_gmId(gmId) {
  if (series == nullptr || series->seriesKey[0] == '\0') return;
  if (m_exchangeId == -1) {
    m_exchangeId =
        static_cast<nv_ns::ExchangeIds::Value>(int(series->product.exchange));
  }
  m_productType =
      static_cast<nv_ns::ProductType::Value>(int(series->product.productType));
  m_productName = series->product.productName;
}

CDefaultKey::CDefaultKey() : m_brokerId(0) {}

CDefaultKey::CDefaultKey(const std::string& templateName,
                         unsigned short brokerId)
    : m_templateName(templateName), m_brokerId(brokerId) {}

CDefaultKey::CDefaultKey(unsigned short brokerId,
                         const nv_ns::MarketType::Value& marketId,
                         const nv_ns::ExchangeIds::Value& exchangeId, int gmId,
                         const nv_ns::ProductType::Value& productType,
                         const std::string& productName)
    : CriteriaKey(marketId, exchangeId, gmId, productType, productName),
      m_brokerId(brokerId) {}

CDefaultKey::CDefaultKey(const std::string& templateName,
                         unsigned short brokerId,
                         const nv_ns::MarketType::Value& marketId,
                         const nv_ns::ExchangeIds::Value& exchangeId, int gmId,
                         const nv_ns::ProductType::Value& productType,
                         const std::string& productName)
    : CriteriaKey(marketId, exchangeId, gmId, productType, productName),
      m_templateName(templateName),
      m_brokerId(brokerId) {}

CDefaultKey::CDefaultKey(const CriteriaKeyParams& params)
    : CriteriaKey(params.m_marketId, params.m_exchangeId, params.m_gmId,
                  params.m_productType, params.m_productName),
      m_templateName(params.m_templateName),
      m_brokerId(params.m_brokerId) {}

CDefaultKey::~CDefaultKey() = default;

bool CDefaultKey::DoMatch(DefaultsEntryIterator& iterator, int marketId) const {
  int bestScore = -1;
  return ScorePass(iterator, marketId, bestScore);
}

bool CDefaultKey::MatchScored(DefaultsEntryIterator& iterator,
                              int& score) const {
  int best = -1;
  const bool found = SearchMarkets(
      iterator, [&](int market) { return ScorePass(iterator, market, best); });
  if (found) score = best;
  return found;
}

namespace {

bool EqualNoCase(const char* a, const std::string& b) {
  if (a == nullptr) return b.empty();
  return nvshared::internal::AsciiEqualIgnoreCase(a, b);
}

}  // namespace

bool CDefaultKey::ScorePass(DefaultsEntryIterator& iterator, int marketId,
                            int& bestScore) const {
  const bool keyWild = m_marketId == -1 && m_exchangeId == -1;
  int best = -1;
  bool bestIsFallback = false;
  iterator.Reset();
  if (!iterator.HasEntry()) {
    bestScore = best;
    return false;
  }
  // The gateway name of the key, asked once per pass.
  const char* keyGateway =
      m_exchangeId == -1 ? "" : nv_fmt::GetExchangeName(m_exchangeId, true);

  for (; iterator.HasEntry(); iterator.Next()) {
    if (iterator.IsExcluded()) continue;
    int score = 0;
    if (m_bMultiBrokerMode && m_brokerId != 0) {
      if (iterator.GetBrokerId() != m_brokerId) continue;
      score += kBrokerWeight;
    }
    if (!m_templateName.empty()) {
      if (!EqualNoCase(iterator.GetTemplateName(), m_templateName)) continue;
      score += kTemplateWeight;
    }
    if (!iterator.IsWildProductName() && !m_productName.empty()) {
      if (!MatchProduct(iterator.GetProductNames())) continue;
      score += kProductWeight;
    }
    const bool wildGateway = iterator.IsWildGateway();
    if (!wildGateway && m_exchangeId != -1) {
      const std::string gateway = iterator.GetGatewayName();
      if (gateway.empty() || gateway != keyGateway) continue;
      const int entryGm = iterator.GetGMId();
      if (m_gmId != -1 && entryGm != -1 && m_gmId != entryGm) continue;
      score += kGatewayWeight;
    }
    if (!keyWild) {
      if (!iterator.IsWildMarketId()) {
        if (iterator.GetMarketId() != marketId) continue;
        score += kMarketWeight;
      } else if (!wildGateway) {
        // An entry that names a gateway but no market belongs to the
        // gateway's market.
        const int exchange =
            nv_fmt::GetExchangeID(iterator.GetGatewayName().c_str(), true);
        if (nv_ns::MarketUtils::GetMarketFromExchange(exchange) != marketId)
          continue;
        score += kMarketWeight;
      }
    }
    if (!iterator.IsWildProductType() && m_productType != 0) {
      if (iterator.GetProductType() != m_productType) continue;
      score += kProductTypeWeight;
    }
    if (score > best) {
      best = score;
      bestIsFallback = iterator.IsFallback();
      iterator.SaveBest();
    } else if (score == best && bestIsFallback && !iterator.IsFallback()) {
      bestIsFallback = false;
      iterator.SaveBest();
    }
  }
  bestScore = best;
  return best >= 0;
}

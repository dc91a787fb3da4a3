// CDefaultKey: a CriteriaKey with a template name and a broker id, and the
// scoring by which a default is chosen; CriteriaKeyParams carries its seven
// arguments.
//
// Scoring. Every entry that passes all tests scores the sum of the weights
// of the fields that both the key and the entry name:
//   broker 32 (only in multi-broker mode), template 16, product 8,
//   gateway 4, market 2, product type 1.
// Each weight outranks all weaker ones together. The highest score wins; at
// equal score the first entry in table order wins, except that a fallback
// entry gives way once to the first non-fallback entry after it.
//
// Threads: a key is a value. m_bMultiBrokerMode is the host's switch, read
// without a lock: set it before searching.
#ifndef NVSHARED_DEFAULTS_DEFAULT_KEY_H_
#define NVSHARED_DEFAULTS_DEFAULT_KEY_H_

#include <string>

#include "nvshared/defaults/criteria_key.h"
#include "nvshared/export.h"
#include "nvshared/market/market_types.h"
#include "nvshared/platform/core/ids.h"

// The arguments of a CDefaultKey. Plain data.
struct NVSHARED_API CriteriaKeyParams {
  std::string m_templateName;
  unsigned short m_brokerId = 0;
  nv_ns::MarketType::Value m_marketId = nv_ns::MarketType::DV_INVALID_MARKET_ID;
  nv_ns::ExchangeIds::Value m_exchangeId = nv_ns::ExchangeIds::Invalid;
  int m_gmId = -1;
  nv_ns::ProductType::Value m_productType = nv_ns::ProductType::Invalid;
  std::string m_productName;

  CriteriaKeyParams() = default;
  CriteriaKeyParams(std::string templateName, unsigned short brokerId,
                    nv_ns::MarketType::Value market,
                    nv_ns::ExchangeIds::Value exchange, int gmId,
                    nv_ns::ProductType::Value type, std::string productName);
  // Market wild, exchange and GM id as given. A series with a key supplies
  // the product type and name, and its exchange where `exchange` is -1.
  CriteriaKeyParams(std::string templateName,
                    const dv_core_ns::SeriesID* series, unsigned short brokerId,
                    nv_ns::ExchangeIds::Value exchange, int gmId);
};

class NVSHARED_API CDefaultKey : public CriteriaKey {
 public:
  CDefaultKey();
  CDefaultKey(const std::string& templateName, unsigned short brokerId);
  CDefaultKey(unsigned short brokerId, const nv_ns::MarketType::Value& marketId,
              const nv_ns::ExchangeIds::Value& exchangeId, int gmId,
              const nv_ns::ProductType::Value& productType,
              const std::string& productName);
  CDefaultKey(const std::string& templateName, unsigned short brokerId,
              const nv_ns::MarketType::Value& marketId,
              const nv_ns::ExchangeIds::Value& exchangeId, int gmId,
              const nv_ns::ProductType::Value& productType,
              const std::string& productName);
  explicit CDefaultKey(const CriteriaKeyParams& params);
  CDefaultKey(const CDefaultKey&) = default;
  CDefaultKey& operator=(const CDefaultKey&) = default;
  ~CDefaultKey() override;

  // When false (the start), broker ids play no part in matching. The host
  // sets it; the library only reads it.
  static bool m_bMultiBrokerMode;

  // Match, also giving the winner's score, 0 to 63, on a true result. For
  // tools that explain a choice; the choice is the one Match makes.
  bool MatchScored(DefaultsEntryIterator& iterator, int& score) const;

  // Weights of the fields in a score.
  static constexpr int kBrokerWeight = 32;
  static constexpr int kTemplateWeight = 16;
  static constexpr int kProductWeight = 8;
  static constexpr int kGatewayWeight = 4;
  static constexpr int kMarketWeight = 2;
  static constexpr int kProductTypeWeight = 1;

 protected:
  bool DoMatch(DefaultsEntryIterator& iterator, int marketId) const override;

  bool IsWildTemplateName() const { return m_templateName.empty(); }
  bool IsWildBrokerId() const { return m_brokerId == 0; }
  const std::string& GetTemplateName() const { return m_templateName; }
  unsigned short GetBrokerId() const { return m_brokerId; }

  std::string m_templateName;
  unsigned short m_brokerId;

 private:
  // The pass of DoMatch; `bestScore` receives the best score found.
  bool ScorePass(DefaultsEntryIterator& iterator, int marketId,
                 int& bestScore) const;
};

#endif  // NVSHARED_DEFAULTS_DEFAULT_KEY_H_

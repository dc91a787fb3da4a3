// ICriteriaKey and CriteriaKey: a description of the situation an order
// ticket is filled for (market, gateway, GM id, product type and product),
// any field of which may be left open, and the search for the stored default
// that fits it best. CDefaultKey (default_key.h) adds template and broker
// and does the scoring.
//
// CriteriaKey keeps a process-wide cache from exchange id to market id,
// guarded by its own lock; that lock is held across the call into
// MarketUtils, so the order is this lock, then MarketUtils' locks.
//
// Threads: Match and DoMatch take no lock of their own; a key is a value and
// may be used from any thread, one search per iterator.
#ifndef NVSHARED_DEFAULTS_CRITERIA_KEY_H_
#define NVSHARED_DEFAULTS_CRITERIA_KEY_H_

#include <map>
#include <mutex>
#include <string>

#include "nvshared/defaults/defaults_entry_iterator.h"
#include "nvshared/export.h"
#include "nvshared/market/market_types.h"

class NVSHARED_API ICriteriaKey {
 public:
  virtual ~ICriteriaKey();
  // Finds the entry of the table that fits the key best. True if one does;
  // the winner is the entry last marked with SaveBest, and RestoreBest moves
  // the iterator to it.
  virtual bool Match(DefaultsEntryIterator& iterator) const = 0;
};

class NVSHARED_API CriteriaKey : public ICriteriaKey {
 public:
  CriteriaKey(const CriteriaKey&) = default;
  CriteriaKey& operator=(const CriteriaKey&) = default;
  ~CriteriaKey() override;

  // Chooses the market to look for and runs DoMatch. An eCBOT key (market
  // CBOT, flavoured gateway name beginning with "eCBOT") first looks for
  // entries of market 200, which stands for eCBOT alone; if that finds
  // nothing, or only an entry that fitted through a wild market, it searches
  // again for plain CBOT and that result stands. A LEGWISE product type with
  // no market looks for the Legwise market.
  bool Match(DefaultsEntryIterator& iterator) const override;

  // The market that stands for eCBOT alone in default entries. It is in no
  // table of market ids.
  static constexpr int kECBOTMarketId = 200;

 protected:
  // All fields wild. The GM id is -1 too, though a key with a wild exchange
  // never reads it.
  CriteriaKey();
  CriteriaKey(const nv_ns::MarketType::Value& marketId,
              const nv_ns::ExchangeIds::Value& exchangeId, int gmId,
              const nv_ns::ProductType::Value& productType,
              const std::string& productName);

  // One pass over the table, scoring every entry against `marketId`.
  virtual bool DoMatch(DefaultsEntryIterator& iterator, int marketId) const = 0;

  // The markets Match looks for: `target` first and, when `retry` comes
  // back true (an eCBOT key), `second` if the first pass found nothing or
  // only an entry that did not name the target market.
  void ChooseMarkets(int& target, int& second, bool& retry) const;

  // The search of Match with the pass over the table supplied, so that a
  // derived key can run the same search with its own bookkeeping. `pass`
  // takes a market id and returns whether it found an entry.
  template <typename Pass>
  bool SearchMarkets(DefaultsEntryIterator& iterator, Pass&& pass) const {
    int target = -1;
    int second = -1;
    bool retry = false;
    ChooseMarkets(target, second, retry);
    const bool found = pass(target);
    if (found) {
      iterator.RestoreBest();
      if (iterator.GetMarketId() == target) return true;
    }
    if (!retry) return found;
    return pass(second);
  }

  bool IsWildMarketId() const { return m_marketId == -1; }
  bool IsWildExchangeId() const { return m_exchangeId == -1; }
  bool IsWildProductType() const { return m_productType == 0; }
  bool IsWildProductName() const { return m_productName.empty(); }
  nv_ns::MarketType::Value GetMarketId() const { return m_marketId; }
  nv_ns::ExchangeIds::Value GetExchangeId() const { return m_exchangeId; }
  int GetGMId() const { return m_gmId; }
  nv_ns::ProductType::Value GetProductType() const { return m_productType; }
  const std::string& GetProductName() const { return m_productName; }

  // True if the key's product is one of the comma-separated names of
  // `list`, blanks around a name and case ignored. Empty names (",,") are
  // skipped. Never allocates.
  bool MatchProduct(const std::string& list) const;
  // The same over a C string, as entries hand out their lists; null is an
  // empty list.
  bool MatchProduct(const char* list) const;

  // MarketUtils::GetMarketFromExchange through the key's own cache. An id
  // with no market is cached as -1 too.
  static int GetMarketIdFromExch(int exchangeId);

  nv_ns::MarketType::Value m_marketId;
  nv_ns::ExchangeIds::Value m_exchangeId;
  int m_gmId;
  nv_ns::ProductType::Value m_productType;
  std::string m_productName;

  // The exchange-to-market map of keys, guarded by s_mapExchId2MktIdLock.
  // Built on first use and never destroyed, so keys matched while the
  // process exits still find it.
  static std::map<int, int>& s_mapExchId2MktId();
  static std::recursive_mutex s_mapExchId2MktIdLock;
};

#endif  // NVSHARED_DEFAULTS_CRITERIA_KEY_H_

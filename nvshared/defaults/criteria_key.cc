#include "nvshared/defaults/criteria_key.h"

#include <cstring>
#include <string_view>

#include "nvshared/internal/ascii.h"
#include "nvshared/market/exchange_names.h"
#include "nvshared/market/market_utils.h"
#include "nvshared/platform/core/agile_enums.h"

std::map<int, int>& CriteriaKey::s_mapExchId2MktId() {
  static std::map<int, int>* const map = new std::map<int, int>();
  return *map;
}
std::recursive_mutex CriteriaKey::s_mapExchId2MktIdLock;

ICriteriaKey::~ICriteriaKey() = default;
DefaultsEntryIterator::~DefaultsEntryIterator() = default;

CriteriaKey::CriteriaKey()
    : m_marketId(nv_ns::MarketType::DV_INVALID_MARKET_ID),
      m_exchangeId(nv_ns::ExchangeIds::Invalid),
      m_gmId(-1),
      m_productType(nv_ns::ProductType::Invalid) {}

CriteriaKey::CriteriaKey(const nv_ns::MarketType::Value& marketId,
                         const nv_ns::ExchangeIds::Value& exchangeId, int gmId,
                         const nv_ns::ProductType::Value& productType,
                         const std::string& productName)
    : m_marketId(marketId),
      m_exchangeId(exchangeId),
      m_gmId(gmId),
      m_productType(productType),
      m_productName(productName) {}

CriteriaKey::~CriteriaKey() = default;

void CriteriaKey::ChooseMarkets(int& target, int& second, bool& retry) const {
  target = -1;
  second = -1;
  retry = false;
  int market = m_marketId;
  if (market == -1) {
    // A legwise product is looked for in the Legwise market; the eCBOT test
    // does not apply to it.
    if (static_cast<int>(m_productType) == dv_core_ns::LEGWISE) {
      target = nv_ns::MarketType::Legwise;
      return;
    }
    if (m_exchangeId == -1) return;
    market = GetMarketIdFromExch(m_exchangeId);
  }
  target = market;
  if (market == nv_ns::MarketType::CBOT &&
      std::strncmp(nv_fmt::GetExchangeName(m_exchangeId, true), "eCBOT", 5) ==
          0) {
    target = kECBOTMarketId;
    second = nv_ns::MarketType::CBOT;
    retry = true;
  }
}

bool CriteriaKey::Match(DefaultsEntryIterator& iterator) const {
  return SearchMarkets(iterator,
                       [&](int market) { return DoMatch(iterator, market); });
}

namespace {

// The single-byte white space of the C locale: blank, tab, line feed,
// vertical tab, form feed and carriage return.
bool IsBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

using nvshared::internal::AsciiEqualIgnoreCase;

}  // namespace

// Tokens are read in place as views of `list` rather than copied into a
// shared static buffer and cut with strtok: the result is the same, nothing
// is allocated at any length, and concurrent calls share no state.
bool CriteriaKey::MatchProduct(const std::string& list) const {
  // The list ends at its first NUL, as a C string would.
  return MatchProduct(list.c_str());
}

bool CriteriaKey::MatchProduct(const char* list) const {
  if (list == nullptr) return false;
  const std::string_view text(list);
  std::size_t pos = 0;
  while (pos < text.size()) {
    const std::size_t comma = text.find(',', pos);
    const std::size_t end =
        comma == std::string_view::npos ? text.size() : comma;
    std::string_view token = text.substr(pos, end - pos);
    pos = end + 1;
    if (token.empty()) continue;
    while (!token.empty() && IsBlank(token.front())) token.remove_prefix(1);
    while (!token.empty() && IsBlank(token.back())) token.remove_suffix(1);
    if (AsciiEqualIgnoreCase(token, m_productName)) return true;
  }
  return false;
}

int CriteriaKey::GetMarketIdFromExch(int exchangeId) {
  std::lock_guard<std::recursive_mutex> lock(s_mapExchId2MktIdLock);
  std::map<int, int>& map = s_mapExchId2MktId();
  const auto found = map.find(exchangeId);
  if (found != map.end()) return found->second;
  const int market = nv_ns::MarketUtils::GetMarketFromExchange(exchangeId);
  map.emplace(exchangeId, market);
  return market;
}

// Names of leg lists, and the conversions and comparisons around legs:
// expanding nested spreads, unflavouring exchanges, equivalence across
// flavours.
#include <array>
#include <atomic>
#include <cctype>
#include <limits>
#include <map>
#include <memory>
#include <shared_mutex>

#include "nvshared/market/exchange_names.h"
#include "nvshared/market/internal/market_utils_internal.h"
#include "nvshared/market/market_utils.h"
#include "nvshared/naming/internal/text_piece.h"
#include "nvshared/naming/series_name_formatter.h"
#include "nvshared/platform/core/consumer.h"
#include "nvshared/platform/core/market_table.h"

namespace nv_fmt {
namespace {

using dv_core_ns::AEnum_ExchIds;
using dv_core_ns::CDVBasePriceConsumer;
using dv_core_ns::FullLegList;
using dv_core_ns::Leg;
using dv_core_ns::LegList;
using dv_core_ns::ProdID;
using dv_core_ns::SeriesID;

constexpr short kCustomMarketPriceTag = 1003;

bool IsSpreadOrStrategyType(int type) {
  return type == dv_core_ns::SPREAD || type == dv_core_ns::STRATEGY;
}

// Appends each leg of `series`, its ratio multiplied by `outerRatio`. A
// series whose legs are unknown adds nothing.
void AppendInnerLegs(const SeriesID& series, int outerRatio,
                     std::vector<Leg>& out) {
  LegList inner;
  if (!CDVBasePriceConsumer::CopyLegList(&series, inner)) return;
  for (const Leg& leg : inner.legs) {
    Leg copy(leg);
    copy.ratio *= outerRatio;
    out.push_back(std::move(copy));
  }
}

// The cache of MakeUnflavoredExchangeID. Ids below kDirectIds (all that
// exchange tables use) are answered from an array of atomics without a lock,
// since every look-up of a name asks; others from a map whose readers share
// the lock. A miss is resolved outside any lock and then stored; two threads
// that miss together store the same answer.
constexpr int kDirectIds = 1024;
constexpr int kNotCached = std::numeric_limits<int>::min();

struct UnflavoredCache {
  UnflavoredCache() {
    for (auto& cell : direct) cell.store(kNotCached);
  }
  std::array<std::atomic<int>, kDirectIds> direct;
  std::shared_mutex lock;
  std::map<int, int> ids;
};

UnflavoredCache& Cache() {
  // Never freed: comparisons may run while statics are torn down.
  static UnflavoredCache* const cache = new UnflavoredCache();
  return *cache;
}

const std::string* Tag1003(const Leg& leg) {
  return leg.FindAgileData(kCustomMarketPriceTag);
}

}  // namespace

bool SeriesNameFormatter::FormatLeg(const Leg& leg, std::string& out,
                                    int combCode,
                                    const FormatContractConfig& config) const {
  out.clear();
  const char* prefix = " ";
  bool ratioText = true;
  if (config.compact) {
    switch (leg.ratio) {
      case -1:
        prefix = "-";
        ratioText = false;
        break;
      case 0:
        return true;
      case 1:
        if (config.showRatioSign) prefix = "+";
        ratioText = false;
        break;
      default:
        break;
    }
  }
  if (ratioText) {
    // "%+dx" with the sign, "%dx" without.
    internal::TextPiece piece;
    piece.Int(leg.ratio, 0, false, config.showRatioSign).Char('x');
    piece.AppendTo(out, 20);
  }

  FormatContractConfig copy = config;
  std::string productText;
  if (config.compact && config.showProduct) {
    const SeriesID* series = leg.GetSharedSeriesID().get();
    if (series != nullptr && FormatProductInternal(series->product, productText,
                                                   config.productNameStyle)) {
      copy.showProduct = false;
    }
  }
  copy.useCustomName = false;
  std::string body;
  FormatContract(leg, body, copy);

  if (combCode == dv_core_ns::COMB_CODE_CUSTOM_MARKET) {
    // A leg without the price tag leaves nothing behind the "@".
    body += '@';
    if (const std::string* price = Tag1003(leg)) body += *price;
  }

  if (config.compact) {
    // The compact form has no room for a ratio text: "ES-H4", not "3xES H4".
    out = productText;
    out += prefix;
    out += body;
  } else {
    out += body;
  }
  return true;
}

bool SeriesNameFormatter::VerifySameProduct(
    const std::vector<Leg>& legs) const {
  if (legs.size() < 2) return true;
  const SeriesID* first = legs.front().GetSharedSeriesID().get();
  for (std::size_t i = 1; i < legs.size(); ++i) {
    const SeriesID* other = legs[i].GetSharedSeriesID().get();
    if (first == nullptr || other == nullptr) {
      if (first != other) return false;
      continue;
    }
    if (!(other->product == first->product)) return false;
  }
  return true;
}

bool SeriesNameFormatter::AppendLegs(const LegList& list, std::string& out,
                                     const FormatContractConfig& config) const {
  const std::size_t start = out.size();
  const bool sameProduct = VerifySameProduct(list.legs);
  std::string text;
  for (std::size_t i = 0; i < list.legs.size(); ++i) {
    FormatContractConfig legConfig = config;
    legConfig.showProduct = config.repeatProduct || i == 0 || !sameProduct;
    legConfig.showRatioSign = config.showRatioSign && i != 0;
    if (FormatLeg(list.legs[i], text, list.combCode, legConfig)) out += text;
    if (i + 1 < list.legs.size() && !config.compact) out += ':';
  }
  // Trim the legs' text at both ends, in place.
  auto blank = [](char c) {
    return std::isspace(static_cast<unsigned char>(c)) != 0;
  };
  std::size_t end = out.size();
  while (end > start && blank(out[end - 1])) --end;
  out.erase(end);
  std::size_t first = start;
  while (first < end && blank(out[first])) ++first;
  out.erase(start, first - start);
  return true;
}

bool SeriesNameFormatter::FormatLegList(
    const LegList& list, std::string& exchange, std::string& spreadType,
    std::string& legs, const FormatContractConfig& config) const {
  exchange.clear();
  spreadType.clear();
  legs.clear();
  if (list.legs.empty()) return false;
  if (const SeriesID* first = list.legs.front().GetSharedSeriesID().get()) {
    exchange = GetExchangeName(first->product.exchange, true);
  }
  if (!config.compact) FormatSpreadType(list.combCode, spreadType);
  return AppendLegs(list, legs, config);
}

bool SeriesNameFormatter::AppendLegList(
    const LegList& list, std::string& out,
    const FormatContractConfig& config) const {
  // The same text as the three-part form gives, built in place: the exchange
  // name, which this form does not print, is not looked up.
  if (list.legs.empty()) return false;
  if (!config.compact) {
    std::string_view type = dv_core_ns::CombCodeName(list.combCode);
    if (list.combCode == dv_core_ns::COMB_CODE_SPREAD) type = {};
    if (!type.empty()) {
      out += type;
      out += ": ";
    }
  }
  return AppendLegs(list, out, config);
}

bool SeriesNameFormatter::FormatLegList(
    const LegList& list, std::string& out,
    const FormatContractConfig& config) const {
  out.clear();
  return AppendLegList(list, out, config);
}

bool SeriesNameFormatter::FormatLegList(
    const FullLegList& list, std::string& out,
    const FormatContractConfig& config) const {
  LegList legs;
  legs.ReferenceData(list);
  return FormatLegList(legs, out, config);
}

bool SeriesNameFormatter::FormatLegList(
    const FullLegList& list, std::string& exchange, std::string& spreadType,
    std::string& legs, const FormatContractConfig& config) const {
  LegList referenced;
  referenced.ReferenceData(list);
  return FormatLegList(referenced, exchange, spreadType, legs, config);
}

bool SeriesNameFormatter::IsStrategyOrSpread(const Leg& leg) {
  const SeriesID* series = leg.GetSharedSeriesID().get();
  return series != nullptr && isStrategy(*series);
}

bool SeriesNameFormatter::isStrategy(const ProdID& product) {
  return IsSpreadOrStrategyType(product.productType);
}

bool SeriesNameFormatter::isStrategy(const SeriesID& series) {
  return isStrategy(series.product);
}

void SeriesNameFormatter::ExpandLegLists(const FullLegList& full,
                                         LegList& out) {
  out.combCode = full.combCode;
  for (const auto& leg : full.legs) {
    SplitLegsForSpreadOrStrategy(leg, out.legs);
  }
}

void SeriesNameFormatter::SplitLegsForSpreadOrStrategy(const Leg& leg,
                                                       std::vector<Leg>& out) {
  if (!IsStrategyOrSpread(leg)) {
    out.emplace_back(leg);
    return;
  }
  AppendInnerLegs(*leg.GetSharedSeriesID(), leg.ratio, out);
}

void SeriesNameFormatter::MakeUnflavoredExchangeID(AEnum_ExchIds& id) {
  UnflavoredCache& cache = Cache();
  const int key = id;
  const bool direct = key >= 0 && key < kDirectIds;
  if (direct) {
    const int cached = cache.direct[static_cast<std::size_t>(key)].load(
        std::memory_order_relaxed);
    if (cached != kNotCached) {
      id = cached;
      return;
    }
  } else {
    std::shared_lock<std::shared_mutex> reader(cache.lock);
    const auto it = cache.ids.find(key);
    if (it != cache.ids.end()) {
      id = it->second;
      return;
    }
  }
  int result = -1;
  const int market = nv_ns::MarketUtils::GetMarketFromExchange(key);
  if (market >= 0) {
    result = dv_core_ns::CDVConsumer::GetExchangeId(
        nv_ns::MarketUtilsInternal::MarketName(market).c_str());
  }
  if (direct) {
    cache.direct[static_cast<std::size_t>(key)].store(
        result, std::memory_order_relaxed);
  } else {
    std::unique_lock<std::shared_mutex> writer(cache.lock);
    cache.ids.emplace(key, result);
  }
  id = result;
}

void SeriesNameFormatter::MakeUnflavoredProductID(ProdID& product) {
  MakeUnflavoredExchangeID(product.exchange);
}

void SeriesNameFormatter::MakeUnflavoredSeriesID(SeriesID& series) {
  MakeUnflavoredProductID(series.product);
}

void SeriesNameFormatter::MakeUnflavoredLegList(FullLegList& list) {
  for (auto& leg : list.legs) {
    const SeriesID* series = leg.GetSharedSeriesID().get();
    if (series == nullptr) continue;
    SeriesID unflavored(*series);
    MakeUnflavoredSeriesID(unflavored);
    dv_core_ns::FullLeg replaced(unflavored, leg.ratio, leg.strike);
    // The leg's own agile data (a Custom Market leg's price) stays with it.
    for (const auto& [tag, value] : leg.AgileData()) {
      replaced.StoreAgileData(tag, value);
    }
    leg = std::move(replaced);
  }
}

bool SeriesNameFormatter::EquivalentProductIDs(const ProdID& a,
                                               const ProdID& b) {
  ProdID left(a);
  ProdID right(b);
  MakeUnflavoredProductID(left);
  MakeUnflavoredProductID(right);
  return left == right;
}

bool SeriesNameFormatter::EquivalentSeriesIDs(const SeriesID& a,
                                              const SeriesID& b) {
  SeriesID left(a);
  SeriesID right(b);
  MakeUnflavoredSeriesID(left);
  MakeUnflavoredSeriesID(right);
  return left == right;
}

bool SeriesNameFormatter::EquivalentLegLists(const LegList& a, const LegList& b,
                                             bool relaxed) {
  auto loose = [](int code) {
    return code == dv_core_ns::COMB_CODE_COMBO ||
           code == dv_core_ns::COMB_CODE_COVERED ||
           code == dv_core_ns::COMB_CODE_NON_STANDARD_COMBINATION ||
           code == dv_core_ns::COMB_CODE_CUSTOM_CARRY;
  };
  const bool isLoose = relaxed && (loose(a.combCode) || loose(b.combCode));
  if (a.combCode != b.combCode && !isLoose) return false;
  if (a.legs.size() != b.legs.size()) return false;

  std::size_t matches = 0;
  for (std::size_t i = 0; i < a.legs.size(); ++i) {
    const Leg& left = a.legs[i];
    for (const Leg& right : b.legs) {
      if (left.ratio != right.ratio || left.strike != right.strike) continue;
      const SeriesID* ls = left.GetSharedSeriesID().get();
      const SeriesID* rs = right.GetSharedSeriesID().get();
      if (ls == nullptr || rs == nullptr) {
        if (ls != rs) continue;
      } else if (!EquivalentSeriesIDs(*ls, *rs)) {
        continue;
      }
      if (a.combCode == dv_core_ns::COMB_CODE_CUSTOM_MARKET) {
        // The price tag is compared with the leg of `b` at the index of the
        // `a` leg, not with the candidate: the lists are expected in the
        // same order.
        const std::string* mine = Tag1003(left);
        const std::string* theirs = Tag1003(b.legs[i]);
        if (mine == nullptr || theirs == nullptr || *mine != *theirs) continue;
      }
      ++matches;
      break;
    }
  }
  return matches == a.legs.size();
}

bool SeriesNameFormatter::EquivalentLegLists(const FullLegList& a,
                                             const LegList& b, bool relaxed) {
  LegList left;
  left.ReferenceData(a);
  return EquivalentLegLists(left, b, relaxed);
}

bool SeriesNameFormatter::EquivalentLegLists(const LegList& a,
                                             const FullLegList& b,
                                             bool relaxed) {
  LegList right;
  right.ReferenceData(b);
  return EquivalentLegLists(a, right, relaxed);
}

bool SeriesNameFormatter::EquivalentLegLists(const FullLegList& a,
                                             const FullLegList& b,
                                             bool relaxed) {
  LegList left;
  LegList right;
  left.ReferenceData(a);
  right.ReferenceData(b);
  return EquivalentLegLists(left, right, relaxed);
}

}  // namespace nv_fmt

namespace nv_ns {

dv_core_ns::SeriesID* GetEarliestExpiringLeg(dv_core_ns::SeriesID* series) {
  if (series == nullptr || !series->IsSpreadOrStrategy()) return nullptr;
  dv_core_ns::LegList list;
  if (!dv_core_ns::CDVBasePriceConsumer::CopyLegList(series, list)) {
    return nullptr;
  }
  const dv_core_ns::SeriesID* earliest = nullptr;
  for (const auto& leg : list.legs) {
    const dv_core_ns::SeriesID* candidate = leg.GetSharedSeriesID().get();
    if (candidate == nullptr) continue;
    if (earliest == nullptr || candidate->expiry < earliest->expiry) {
      earliest = candidate;
    }
  }
  return earliest == nullptr ? nullptr : new dv_core_ns::SeriesID(*earliest);
}

}  // namespace nv_ns

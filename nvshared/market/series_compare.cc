#include "nvshared/market/series_compare.h"

#include <atomic>
#include <cstdio>
#include <cstring>
#include <limits>
#include <map>
#include <memory>
#include <shared_mutex>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_map>

#include "nvshared/market/exchange_names.h"
#include "nvshared/market/internal/market_utils_internal.h"
#include "nvshared/market/internal/series_compare_internal.h"
#include "nvshared/market/market_types.h"
#include "nvshared/market/market_utils.h"
#include "nvshared/naming/series_name_formatter.h"
#include "nvshared/platform/core/consumer.h"
#include "nvshared/platform/core/reference_data.h"

namespace nv_ns {

using dv_core_ns::CDVBasePriceConsumer;
using dv_core_ns::Leg;
using dv_core_ns::LegList;
using dv_core_ns::ProdID;
using dv_core_ns::SeriesID;

namespace {

constexpr int kCombCodeCustom = 552;
constexpr short kTagTermKey = 1038;
constexpr short kTagIssueKey = 1039;
constexpr short kTagIssueDate = 1012;
constexpr short kTagMaturityDate = 1014;
constexpr short kTagLegText = 1003;

std::atomic<std::uint64_t> g_coreLookups{0};

void CountCoreLookup() {
  g_coreLookups.fetch_add(1, std::memory_order_relaxed);
}

// A difference of 64-bit numbers as an int of the same sign.
int Clamp(long long value) {
  if (value > std::numeric_limits<int>::max()) {
    return std::numeric_limits<int>::max();
  }
  if (value < std::numeric_limits<int>::min()) {
    return std::numeric_limits<int>::min();
  }
  return static_cast<int>(value);
}

int Sign(int value) { return (value > 0) - (value < 0); }

unsigned char Lower(char c) {
  const auto u = static_cast<unsigned char>(c);
  return (u >= 'A' && u <= 'Z') ? static_cast<unsigned char>(u + 32) : u;
}

// Compares as the C library's case-blind compare does: lower-cased bytes.
int CompareNoCase(const char* a, const char* b) {
  for (;; ++a, ++b) {
    const int d = Lower(*a) - Lower(*b);
    if (d != 0 || *a == '\0') return d;
  }
}

// --- Kept answers of the core ------------------------------------------------

// A whole decimal number, or false.
bool ToInteger(const std::string* text, long long& value) {
  if (text == nullptr || text->empty()) return false;
  std::size_t i = (*text)[0] == '-' || (*text)[0] == '+' ? 1 : 0;
  if (i == text->size()) return false;
  long long v = 0;
  for (; i < text->size(); ++i) {
    const char c = (*text)[i];
    if (c < '0' || c > '9' ||
        v > (std::numeric_limits<long long>::max() / 10) - 9) {
      return false;
    }
    v = v * 10 + (c - '0');
  }
  value = (*text)[0] == '-' ? -v : v;
  return true;
}

// The first number of a "%d/%d/%d" date, if all three are there.
bool FirstOfDate(const std::string* text, int& first) {
  if (text == nullptr) return false;
  int second = 0, third = 0;
  return std::sscanf(text->c_str(), "%d/%d/%d", &first, &second, &third) == 3;
}

// A bond's sort keys, read from its agile data: the term key (tag 1038),
// the issue key (1039), and the span of its dates (1014 less 1012, first
// numbers only).
struct BondKeys {
  bool hasTerm = false;
  bool hasIssue = false;
  bool hasSpan = false;
  long long term = 0;
  long long issue = 0;
  long long span = 0;
};

BondKeys ReadBondKeys(const dv_core_ns::CoreClass* tags) {
  BondKeys keys;
  if (tags == nullptr) return keys;
  keys.hasTerm = ToInteger(tags->FindAgileData(kTagTermKey), keys.term);
  keys.hasIssue = ToInteger(tags->FindAgileData(kTagIssueKey), keys.issue);
  int issued = 0, matures = 0;
  if (FirstOfDate(tags->FindAgileData(kTagIssueDate), issued) &&
      FirstOfDate(tags->FindAgileData(kTagMaturityDate), matures)) {
    keys.hasSpan = true;
    keys.span = static_cast<long long>(matures) - issued;
  }
  return keys;
}

// What the comparisons need of a bond beyond the object itself: its
// currency, and the keys of the core's record of it, which stand in where
// the object carries no agile data (as a series' own copy of its product
// does not).
struct ProductFacts {
  const char* currency = nullptr;
  BondKeys keys;
};

class KeptAnswers {
 public:
  static KeptAnswers& Instance() {
    static KeptAnswers* kept = new KeptAnswers();  // never freed: used at exit
    return *kept;
  }

  const ProductFacts& Product(const ProdID& product) {
    const ProductView view{static_cast<int>(product.exchange),
                           static_cast<int>(product.productType),
                           product.productName};
    {
      std::shared_lock<std::shared_mutex> read(lock_);
      const auto it = products_.find(view);
      if (it != products_.end()) return it->second;
    }
    ProductFacts facts;
    CountCoreLookup();
    facts.currency = CDVBasePriceConsumer::GetCurrencyCode(&product);
    CountCoreLookup();
    const auto* record =
        dv_core_ns::ReferenceData::Current().FindProduct(product);
    facts.keys = ReadBondKeys(record != nullptr ? &record->id : nullptr);
    std::unique_lock<std::shared_mutex> write(lock_);
    return products_
        .emplace(ProductKey{view.exchange, view.type, std::string(view.name)},
                 facts)
        .first->second;
  }

  // The legs of a spread or strategy; null if the core does not know them.
  const LegList* Legs(const SeriesID& series) {
    const SeriesView view{static_cast<int>(series.product.exchange),
                          series.seriesKey};
    {
      std::shared_lock<std::shared_mutex> read(lock_);
      const auto it = legs_.find(view);
      if (it != legs_.end()) return it->second.get();
    }
    auto list = std::make_unique<LegList>();
    CountCoreLookup();
    if (!CDVBasePriceConsumer::CopyLegList(&series, *list)) list.reset();
    std::unique_lock<std::shared_mutex> write(lock_);
    return legs_
        .emplace(SeriesKey{view.exchange, std::string(view.key)},
                 std::move(list))
        .first->second.get();
  }

 private:
  struct ProductView {
    int exchange;
    int type;
    std::string_view name;
  };
  struct ProductKey {
    int exchange;
    int type;
    std::string name;
  };
  struct SeriesView {
    int exchange;
    std::string_view key;
  };
  struct SeriesKey {
    int exchange;
    std::string key;
  };
  // Hashing and equality over both the owned keys and their views, so that
  // a look-up copies nothing.
  struct Hash {
    using is_transparent = void;
    std::size_t operator()(const ProductView& v) const {
      return std::hash<std::string_view>()(v.name) ^
             (static_cast<std::size_t>(v.exchange) * 31 +
              static_cast<std::size_t>(v.type));
    }
    std::size_t operator()(const ProductKey& k) const {
      return (*this)(ProductView{k.exchange, k.type, k.name});
    }
    std::size_t operator()(const SeriesView& v) const {
      return std::hash<std::string_view>()(v.key) ^
             static_cast<std::size_t>(v.exchange);
    }
    std::size_t operator()(const SeriesKey& k) const {
      return (*this)(SeriesView{k.exchange, k.key});
    }
  };
  struct Equal {
    using is_transparent = void;
    static ProductView View(const ProductView& v) { return v; }
    static ProductView View(const ProductKey& k) {
      return {k.exchange, k.type, k.name};
    }
    static SeriesView View(const SeriesView& v) { return v; }
    static SeriesView View(const SeriesKey& k) { return {k.exchange, k.key}; }
    template <typename A, typename B>
    bool operator()(const A& a, const B& b) const {
      const auto va = View(a);
      const auto vb = View(b);
      if constexpr (std::is_same_v<decltype(va), const ProductView>) {
        return va.exchange == vb.exchange && va.type == vb.type &&
               va.name == vb.name;
      } else {
        return va.exchange == vb.exchange && va.key == vb.key;
      }
    }
  };

  std::shared_mutex lock_;
  std::unordered_map<ProductKey, ProductFacts, Hash, Equal> products_;
  std::unordered_map<SeriesKey, std::unique_ptr<LegList>, Hash, Equal> legs_;
};

// --- Products ----------------------------------------------------------------

// The digits that lead a name once its leading 'W' and '_' are dropped.
long long LeadingTerm(const char* name) {
  while (*name == 'W' || *name == '_') ++name;
  long long value = 0;
  for (; *name >= '0' && *name <= '9' && value < 100000000; ++name) {
    value = value * 10 + (*name - '0');
  }
  return value;
}

bool EndsWithFF(const char* name) {
  const std::size_t n = std::strlen(name);
  return n >= 2 && name[n - 2] == 'F' && name[n - 1] == 'F';
}

// Which of a BTec pair is the when-issued one ('W...') or the front/front
// one ('...FF'); 0 if that does not tell them apart.
int CompareSuffixes(const ProdID& a, const ProdID& b) {
  const bool wa = a.productName[0] == 'W';
  const bool wb = b.productName[0] == 'W';
  if (wa != wb) return wa ? 1 : -1;
  const bool fa = EndsWithFF(a.productName);
  const bool fb = EndsWithFF(b.productName);
  if (fa != fb) return fa ? -1 : 1;
  return 0;
}

// --- Series ------------------------------------------------------------------

// An LME prompt: the attribute behind the first comma is 'R'.
bool HasLmeMark(const SeriesID& series) {
  if (!series.seriesAttributes.IsPresent()) return false;
  const char* comma = std::strchr(series.seriesAttributes.c_str(), ',');
  return comma != nullptr && comma[1] == 'R';
}

int MonthOf(std::string_view text) {
  static constexpr const char* kMonths[] = {"jan", "feb", "mar", "apr",
                                            "may", "jun", "jul", "aug",
                                            "sep", "oct", "nov", "dec"};
  if (text.size() < 3) return -1;
  for (int m = 0; m < 12; ++m) {
    if (Lower(text[0]) == kMonths[m][0] && Lower(text[1]) == kMonths[m][1] &&
        Lower(text[2]) == kMonths[m][2]) {
      return m + 1;
    }
  }
  return -1;
}

long long YearOf(std::string_view text) {
  long long year = 0;
  for (std::size_t i = 3; i < text.size() && text[i] >= '0' && text[i] <= '9';
       ++i) {
    year = year * 10 + (text[i] - '0');
  }
  return year;
}

int CompareMonthYears(std::string_view a, std::string_view b) {
  const int ma = MonthOf(a);
  const int mb = MonthOf(b);
  if (ma == -1 || mb == -1) {
    if (ma == mb) return 0;
    return ma == -1 ? -1 : 1;
  }
  if (const long long d = YearOf(a) - YearOf(b); d != 0) return Clamp(d);
  return ma - mb;
}

int ByteCompare(const dv_coreutils_ns::CharPtrWrapper& a,
                const dv_coreutils_ns::CharPtrWrapper& b) {
  return Sign(std::strcmp(a.c_str(), b.c_str()));
}

// `legA` and `legB` bring the strikes of legs; null means the series' own.
// The strikes are read only when the order gets to them: a sort touches the
// fewest lines of memory so.
int CompareSeriesCore(const SeriesID* a, const Leg* legA, const SeriesID* b,
                      const Leg* legB) {
  if (a == nullptr || b == nullptr) {
    if (a == b) return 0;
    return a == nullptr ? -1 : 1;
  }
  const int exchangeA = a->product.exchange;
  const int exchangeB = b->product.exchange;
  const int marketA = MarketUtils::GetMarketFromExchange(exchangeA);
  const int marketB = exchangeB == exchangeA
                          ? marketA
                          : MarketUtils::GetMarketFromExchange(exchangeB);
  if (marketA != marketB) return marketA - marketB;  // by number here
  const int type = a->productType();
  if (type != b->productType()) return type - b->productType();

  int r = type == dv_core_ns::LEGWISE
              ? ByteCompare(a->seriesName, b->seriesName)
              : ProductsCompare(a->product, b->product);
  if (r != 0) return r;

  // Marks are read on LME alone, the only market where they count.
  if (marketA == MarketType::LME && marketB == MarketType::LME) {
    const bool markA = HasLmeMark(*a);
    const bool markB = HasLmeMark(*b);
    if (markA != markB) return markA ? -1 : 1;
  }

  if (!a->IsSpreadOrStrategy()) {
    if (a->expiry.year != b->expiry.year) {
      return a->expiry.year - b->expiry.year;
    }
    if (a->expiry.month != b->expiry.month) {
      return a->expiry.month - b->expiry.month;
    }
    if (a->expiry.day != b->expiry.day) return a->expiry.day - b->expiry.day;

    const int strikeA = legA != nullptr ? legA->strike : a->strike;
    const int strikeB = legB != nullptr ? legB->strike : b->strike;
    const long long divA = a->strikeDivisor;
    const long long divB = b->strikeDivisor;
    if (divA == divB) {
      if (strikeA != strikeB) {
        return Clamp(static_cast<long long>(strikeA) - strikeB);
      }
    } else if (divA != 0 && divB != 0) {
      // Exact fractions: whole parts first, then the remainders over the
      // common divisor. No rounding.
      const long long wholeA = strikeA / divA;
      const long long wholeB = strikeB / divB;
      if (wholeA != wholeB) return Clamp(wholeA - wholeB);
      r = Clamp((strikeA % divA) * divB - (strikeB % divB) * divA);
      if (r != 0) return r;
    }
    if (a->callPut != b->callPut) return a->callPut - b->callPut;
    if (a->versionCode != b->versionCode) {
      return a->versionCode - b->versionCode;
    }
    if (marketA == MarketType::ICE_IPE) {
      const std::string_view na = a->seriesName.c_str();
      const std::string_view nb = b->seriesName.c_str();
      if (internal::IsStrip(na) && internal::IsStrip(nb)) {
        r = internal::CompareStrips(na, nb);
        if (r != 0) return r;
      }
    }
    if (type != dv_core_ns::INDEX &&
        !nv_fmt::SeriesNameFormatter::Instance().IsSeriesNameEnabled(
            a->product.exchange)) {
      return 0;
    }
    return std::strcmp(a->seriesName.c_str(), b->seriesName.c_str());
  }

  if (a->combCode == kCombCodeCustom && b->combCode == kCombCodeCustom) {
    r = ByteCompare(a->seriesName, b->seriesName);
    if (r != 0) return r;
  }
  const LegList* legsA = KeptAnswers::Instance().Legs(*a);
  const LegList* legsB = KeptAnswers::Instance().Legs(*b);
  if (legsA == nullptr || legsB == nullptr) return 0;
  return LegListCompare(legsA, legsB);
}

}  // namespace

namespace internal {

std::uint64_t CoreLookupCount() {
  return g_coreLookups.load(std::memory_order_relaxed);
}

bool IsStrip(std::string_view name) {
  return name.size() == 11 && name.find('-') == 5;
}

int CompareStrips(std::string_view a, std::string_view b) {
  const int r = CompareMonthYears(a.substr(0, 5), b.substr(0, 5));
  if (r != 0) return r;
  return CompareMonthYears(a.substr(6), b.substr(6));
}

}  // namespace internal

int ExchangeCompare(int a, int b) {
  if (a == b) return 0;
  const char* nameA = nv_fmt::GetExchangeName(a, true);
  const char* nameB = nv_fmt::GetExchangeName(b, true);
  if (nameA == nullptr || nameB == nullptr) {
    return Clamp(static_cast<long long>(a) - b);
  }
  return CompareNoCase(nameA, nameB);
}

int MarketCompare(int a, int b) {
  if (a == b) return 0;
  const std::string& nameA = MarketUtilsInternal::MarketName(a);
  const std::string& nameB = MarketUtilsInternal::MarketName(b);
  if (nameA.empty() || nameB.empty()) {
    return Clamp(static_cast<long long>(a) - b);
  }
  return CompareNoCase(nameA.c_str(), nameB.c_str());
}

int ProductsCompare(const ProdID& a, const ProdID& b) {
  const bool bonds =
      a.productType == dv_core_ns::BOND && b.productType == dv_core_ns::BOND;
  // Keys and currencies are read for bonds alone: nothing else has them.
  if (bonds) {
    const ProductFacts& factsA = KeptAnswers::Instance().Product(a);
    const ProductFacts& factsB = KeptAnswers::Instance().Product(b);
    if (factsA.currency != nullptr && factsB.currency != nullptr) {
      if (const int r = std::strcmp(factsA.currency, factsB.currency); r != 0) {
        return r;
      }
    }
    // The market from the kept answers; it differs from the core's only for
    // exchange 0, which is not BTec either way.
    const bool btec =
        MarketUtils::GetMarketFromExchange(a.exchange) == MarketType::BTec &&
        MarketUtils::GetMarketFromExchange(b.exchange) == MarketType::BTec;
    // The object's own keys, or its record's where it carries none.
    const BondKeys ka = a.AgileData().empty() ? factsA.keys : ReadBondKeys(&a);
    const BondKeys kb = b.AgileData().empty() ? factsB.keys : ReadBondKeys(&b);
    if (ka.hasTerm && kb.hasTerm) {
      if (ka.term != kb.term) return Clamp(ka.term - kb.term);
    } else if (btec) {
      const long long d =
          ka.hasSpan && kb.hasSpan
              ? ka.span - kb.span
              : LeadingTerm(a.productName) - LeadingTerm(b.productName);
      if (d != 0) return Clamp(d);
    }
    if (ka.hasIssue && kb.hasIssue) {
      if (ka.issue != kb.issue) return Clamp(ka.issue - kb.issue);
    } else if (btec) {
      if (const int r = CompareSuffixes(a, b); r != 0) return r;
    }
  }
  if (const int r = CompareNoCase(a.productName, b.productName); r != 0) {
    return r;
  }
  if (a.productType == b.productType) return 0;
  return a.productType < b.productType ? -1 : 1;
}

int ProductsExchCompare(const ProdID& a, const ProdID& b) {
  if (a.exchange != b.exchange) {
    const int r = CompareNoCase(nv_fmt::GetExchangeName(a.exchange, true),
                                nv_fmt::GetExchangeName(b.exchange, true));
    if (r != 0) return r;
  }
  return ProductsCompare(a, b);
}

int ProductsMarketCompare(const ProdID& a, int marketA, const ProdID& b,
                          int marketB) {
  if (const int r = MarketCompare(marketA, marketB); r != 0) return r;
  return ProductsCompare(a, b);
}

int SeriesCompare(const SeriesID* a, const SeriesID* b) {
  return CompareSeriesCore(a, nullptr, b, nullptr);
}

int SeriesCompare(const Leg* a, const Leg* b) {
  const SeriesID* sa = a != nullptr ? a->GetSharedSeriesID().get() : nullptr;
  const SeriesID* sb = b != nullptr ? b->GetSharedSeriesID().get() : nullptr;
  return CompareSeriesCore(sa, a, sb, b);
}

bool SeriesLessThan(const SeriesID& a, const SeriesID& b) {
  return SeriesCompare(&a, &b) < 0;
}

bool SeriesGreaterThan(const SeriesID& a, const SeriesID& b) {
  return SeriesCompare(&a, &b) > 0;
}

int LegCompare(const Leg* a, const Leg* b) {
  if (const int r = SeriesCompare(a, b); r != 0) return r;
  if (a == nullptr || b == nullptr) return 0;
  return Clamp(static_cast<long long>(a->ratio) - b->ratio);
}

int LegListCompare(const LegList* a, const LegList* b) {
  if (a == nullptr || b == nullptr) {
    if (a == b) return 0;
    return a == nullptr ? -1 : 1;
  }
  if (a->legs.size() != b->legs.size()) {
    return a->legs.size() < b->legs.size() ? -1 : 1;
  }
  if (a->combCode != b->combCode) return a->combCode - b->combCode;
  for (std::size_t i = 0; i < a->legs.size(); ++i) {
    const Leg& la = a->legs[i];
    const Leg& lb = b->legs[i];
    if (const int r = SeriesCompare(&la, &lb); r != 0) return r;
    if (la.ratio != lb.ratio) {
      return Clamp(static_cast<long long>(la.ratio) - lb.ratio);
    }
    if (a->combCode == kCombCodeCustom) {
      const std::string* ta = la.FindAgileData(kTagLegText);
      const std::string* tb = lb.FindAgileData(kTagLegText);
      const int r = std::strcmp(ta ? ta->c_str() : "", tb ? tb->c_str() : "");
      if (r != 0) return r;
    }
  }
  return 0;
}

int SpreadNameCompare(const char* a, const char* b) {
  if (a == nullptr || b == nullptr) {
    if (a == b) return 0;
    return a == nullptr ? -1 : 1;
  }
  if (const int r = CompareNoCase(a, b); r != 0) return r;
  // Same letters in another case: the lower byte (upper case) sorts after,
  // the reverse of strcmp, so that the lower-case spelling leads. Deliberate.
  for (; *a != '\0'; ++a, ++b) {
    const auto ca = static_cast<unsigned char>(*a);
    const auto cb = static_cast<unsigned char>(*b);
    if (ca != cb) return ca < cb ? 1 : -1;
  }
  return 0;
}

}  // namespace nv_ns

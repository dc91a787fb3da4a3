// The in-process reference-data store behind the core lookups
// (CDVConsumer, CDVBasePriceConsumer, AEnum_ExchIds, AEnum_ExchNameAliases,
// DVTick): exchanges, products and series, built in code with
// ReferenceDataBuilder or loaded from the JSON format of
// docs/formats/reference-data.md.
//
// A ReferenceData is immutable once built. One of them is current; Install
// swaps in a new one atomically. A store that is replaced is kept, not freed,
// so every pointer and reference handed out (names, aliases, records) stays
// valid for the life of the process, as the core's lookups promise.
//
// Threads: any number of readers, with no lock; Install and the loaders may
// run beside them.
#ifndef NVSHARED_PLATFORM_CORE_REFERENCE_DATA_H_
#define NVSHARED_PLATFORM_CORE_REFERENCE_DATA_H_

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <vector>

#include <boost/shared_ptr.hpp>

#include "nvshared/export.h"
#include "nvshared/platform/core/ids.h"
#include "nvshared/platform/core/legs.h"
#include "nvshared/status.h"

namespace dv_core_ns {

struct ExchangeRecord {
  int id = -1;
  std::string name;
  int marketId = -1;
  // Absent: the exchange has no alias.
  std::optional<std::string> alias;
};

struct ProductRecord {
  ProdID id;
  std::optional<std::string> alias;
  std::optional<std::string> currency;
  // False: the product has no price table.
  bool priceTable = false;
  // How DVTick::PriceIntToString renders prices of the product's series.
  int priceDecimals = 0;
};

struct SeriesRecord {
  boost::shared_ptr<const SeriesID> series;
  // Set for spreads and strategies whose legs are known.
  std::optional<FullLegList> legs;
};

class NVSHARED_API ReferenceData {
 public:
  // An empty store: no exchanges, EnumMax() 0.
  ReferenceData() = default;
  ReferenceData(const ReferenceData&) = delete;
  ReferenceData& operator=(const ReferenceData&) = delete;

  // --- The current store -------------------------------------------------

  // The store the core lookups answer from; an empty one until a store is
  // installed. The reference is valid for the life of the process.
  static const ReferenceData& Current();
  // Makes `data` current. The previous store is retired, never freed.
  static void Install(std::unique_ptr<const ReferenceData> data);
  // Parses a file or a text and installs it. On failure the current store is
  // left as it was and the status names the file and the offending item,
  // or the system's reason when the file cannot be read.
  static nvshared::Status LoadFile(const std::string& path);
  static nvshared::Status LoadJson(std::string_view json,
                                   std::string_view sourceName = "<text>");
  // Parses without installing.
  static nvshared::StatusOr<std::unique_ptr<const ReferenceData>> ParseJson(
      std::string_view json);

  // --- Queries ------------------------------------------------------------

  // Bounds every valid exchange id: valid ids are 0 to this minus 1.
  int ExchangeIdCount() const { return exchangeIdCount_; }
  // Null for an id that names no exchange.
  const ExchangeRecord* FindExchange(int id) const;
  // The id of an exchange name, compared with case; -1 if none.
  int FindExchangeId(std::string_view name) const;
  // By exchange, type and name; null if unknown.
  const ProductRecord* FindProduct(const ProdID& product) const;
  // By exchange and key; null if unknown.
  const SeriesRecord* FindSeries(int exchangeId, std::string_view key) const;
  // Every series with this key, on any exchange.
  std::vector<const SeriesRecord*> FindSeriesByKey(std::string_view key) const;

  // In id order.
  const std::vector<ExchangeRecord>& exchanges() const { return exchanges_; }
  // In file (or building) order.
  const std::vector<ProductRecord>& products() const { return products_; }
  const std::vector<SeriesRecord>& series() const { return series_; }

 private:
  friend class ReferenceDataBuilder;
  using ProductKey = std::tuple<int, int, std::string>;
  using SeriesKey = std::pair<int, std::string>;

  int exchangeIdCount_ = 0;
  std::vector<ExchangeRecord> exchanges_;
  // Exchange id to index in exchanges_, -1 where no exchange has the id.
  std::vector<int> exchangeIndex_;
  std::unordered_map<std::string, int> exchangeIdByName_;
  std::vector<ProductRecord> products_;
  std::map<ProductKey, std::size_t, std::less<>> productIndex_;
  std::vector<SeriesRecord> series_;
  std::map<SeriesKey, std::size_t, std::less<>> seriesIndex_;
};

// Builds a store in code. Each Add checks what it can at once (ranges,
// duplicates) and returns a precise error; Build checks the references
// between items. A failed Add leaves the builder as it was.
class NVSHARED_API ReferenceDataBuilder {
 public:
  struct LegSpec {
    int exchange = -1;
    std::string seriesKey;
    int ratio = 0;
    int strike = 0;
    std::vector<std::pair<short, std::string>> agile;
  };

  ReferenceDataBuilder();
  ~ReferenceDataBuilder();

  // Sets EnumMax(). Without it, the highest exchange id + 1.
  void SetExchangeIdCount(int count) { exchangeIdCount_ = count; }

  nvshared::Status AddExchange(int id, std::string name, int marketId,
                               std::optional<std::string> alias = {});
  nvshared::Status AddProduct(ProductRecord product);
  // `legs`, where given, makes the series' leg list known (CopyLegList);
  // each leg names its series by exchange and key, which may be added later.
  // Only a spread or a strategy has legs; its combCode is the list's.
  nvshared::Status AddSeries(SeriesID series,
                             std::optional<std::vector<LegSpec>> legs = {});

  // Resolves the legs and checks that every product names a known exchange
  // and every series a known product. The builder is spent afterwards.
  nvshared::StatusOr<std::unique_ptr<const ReferenceData>> Build();

 private:
  struct PendingSeries {
    SeriesID series;
    std::optional<std::vector<LegSpec>> legs;
  };

  int exchangeIdCount_ = -1;
  std::unique_ptr<ReferenceData> data_;
  std::vector<PendingSeries> pending_;
};

}  // namespace dv_core_ns

#endif  // NVSHARED_PLATFORM_CORE_REFERENCE_DATA_H_

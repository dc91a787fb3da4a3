#include "nvshared/platform/core/reference_data.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <mutex>
#include <sstream>
#include <utility>

#include <boost/make_shared.hpp>

#include "nvshared/platform/core/market_table.h"

namespace dv_core_ns {
namespace {

using nvshared::Status;

// The current store: null until the first lookup or install, then never
// freed. Constant-initialised, so no static initialiser can see it unset.
std::atomic<const ReferenceData*> g_current{nullptr};

// Stores replaced by Install. Reachable from here for the life of the
// process, so the pointers handed out from them never dangle.
std::mutex g_retired_mutex;
std::vector<const ReferenceData*>* g_retired = nullptr;

std::string ProductLabel(const ProdID& p) {
  std::ostringstream out;
  const char* type = AEnum_ProdIDs::Name(p.productType);
  out << "product " << static_cast<int>(p.exchange) << '/'
      << (*type ? type : std::to_string(p.productType).c_str()) << '/'
      << p.productName;
  return out.str();
}

// "<path>: <what>: <the system's reason>", the reason left out when the
// system gave none.
Status FileError(const std::string& path, const char* what, int error) {
  std::string message = path + ": " + what;
  if (error != 0) message += std::string(": ") + std::strerror(error);
  return Status::Error(message);
}

std::string SeriesLabel(int exchange, std::string_view key) {
  return "series " + std::to_string(exchange) + "/" + std::string(key);
}

}  // namespace

// --- ReferenceData -------------------------------------------------------

const ReferenceData& ReferenceData::Current() {
  const ReferenceData* current = g_current.load(std::memory_order_acquire);
  if (current != nullptr) [[likely]]
    return *current;
  // Nothing installed yet: an empty store, never freed.
  static const ReferenceData* const empty = new ReferenceData();
  return *empty;
}

void ReferenceData::Install(std::unique_ptr<const ReferenceData> data) {
  if (!data) return;
  std::lock_guard<std::mutex> lock(g_retired_mutex);
  const ReferenceData* old =
      g_current.exchange(data.release(), std::memory_order_acq_rel);
  if (old == nullptr) return;
  if (g_retired == nullptr) g_retired = new std::vector<const ReferenceData*>();
  g_retired->push_back(old);
}

nvshared::Status ReferenceData::LoadFile(const std::string& path) {
  // The stream keeps no reason of its own; errno, taken at once, holds the
  // system's.
  errno = 0;
  std::ifstream in(path, std::ios::binary);
  if (!in) return FileError(path, "cannot open the file", errno);
  std::ostringstream text;
  errno = 0;
  text << in.rdbuf();
  if (in.bad() || errno == EISDIR) {
    return FileError(path, "cannot read the file", errno);
  }
  return LoadJson(text.str(), path);
}

nvshared::Status ReferenceData::LoadJson(std::string_view json,
                                         std::string_view sourceName) {
  auto parsed = ParseJson(json);
  if (!parsed.ok()) {
    return Status::Error(std::string(sourceName) + ": " +
                         parsed.status().message());
  }
  Install(std::move(parsed).value());
  return Status::Ok();
}

const ExchangeRecord* ReferenceData::FindExchange(int id) const {
  if (id < 0 || id >= static_cast<int>(exchangeIndex_.size())) return nullptr;
  const int index = exchangeIndex_[static_cast<std::size_t>(id)];
  return index < 0 ? nullptr : &exchanges_[static_cast<std::size_t>(index)];
}

int ReferenceData::FindExchangeId(std::string_view name) const {
  auto it = exchangeIdByName_.find(std::string(name));
  return it == exchangeIdByName_.end() ? -1 : it->second;
}

const ProductRecord* ReferenceData::FindProduct(const ProdID& product) const {
  auto it = productIndex_.find(std::make_tuple(
      static_cast<int>(product.exchange), static_cast<int>(product.productType),
      std::string(product.productName)));
  return it == productIndex_.end() ? nullptr : &products_[it->second];
}

const SeriesRecord* ReferenceData::FindSeries(int exchangeId,
                                              std::string_view key) const {
  auto it = seriesIndex_.find(std::make_pair(exchangeId, std::string(key)));
  return it == seriesIndex_.end() ? nullptr : &series_[it->second];
}

std::vector<const SeriesRecord*> ReferenceData::FindSeriesByKey(
    std::string_view key) const {
  std::vector<const SeriesRecord*> found;
  for (const SeriesRecord& record : series_) {
    if (key == record.series->seriesKey) found.push_back(&record);
  }
  return found;
}

// --- ReferenceDataBuilder --------------------------------------------------

ReferenceDataBuilder::ReferenceDataBuilder()
    : data_(std::make_unique<ReferenceData>()) {}

ReferenceDataBuilder::~ReferenceDataBuilder() = default;

nvshared::Status ReferenceDataBuilder::AddExchange(
    int id, std::string name, int marketId, std::optional<std::string> alias) {
  const std::string label = "exchange " + std::to_string(id);
  if (id < 0 || id > 32767) {
    return Status::Error(label + ": the id must be from 0 to 32767");
  }
  if (name.empty()) return Status::Error(label + ": the name is empty");
  if (marketId < 0 || MarketTableName(marketId) == nullptr) {
    return Status::Error(label + " (" + name + "): unknown market id " +
                         std::to_string(marketId));
  }
  if (alias && alias->empty()) {
    return Status::Error(label + " (" + name + "): the alias is empty");
  }
  for (const ExchangeRecord& e : data_->exchanges_) {
    if (e.id == id) return Status::Error(label + ": duplicate exchange id");
    if (e.name == name) {
      return Status::Error(label + ": duplicate exchange name \"" + name +
                           "\" (also exchange " + std::to_string(e.id) + ")");
    }
  }
  data_->exchanges_.push_back(
      ExchangeRecord{id, std::move(name), marketId, std::move(alias)});
  return Status::Ok();
}

nvshared::Status ReferenceDataBuilder::AddProduct(ProductRecord product) {
  const std::string label = ProductLabel(product.id);
  if (product.id.productName[0] == '\0') {
    return Status::Error(label + ": the name is empty");
  }
  if (*AEnum_ProdIDs::Name(product.id.productType) == '\0') {
    return Status::Error(label + ": unknown product type " +
                         std::to_string(product.id.productType));
  }
  if (product.priceDecimals < 0 || product.priceDecimals > 9) {
    return Status::Error(label + ": priceDecimals must be from 0 to 9");
  }
  auto key = std::make_tuple(static_cast<int>(product.id.exchange),
                             static_cast<int>(product.id.productType),
                             std::string(product.id.productName));
  if (data_->productIndex_.count(key) != 0) {
    return Status::Error(label + ": duplicate product");
  }
  data_->productIndex_.emplace(std::move(key), data_->products_.size());
  data_->products_.push_back(std::move(product));
  return Status::Ok();
}

nvshared::Status ReferenceDataBuilder::AddSeries(
    SeriesID series, std::optional<std::vector<LegSpec>> legs) {
  const std::string label =
      SeriesLabel(series.product.exchange, series.seriesKey);
  if (series.seriesKey[0] == '\0') {
    return Status::Error(label + ": the key is empty");
  }
  if (legs && !series.IsSpreadOrStrategy()) {
    return Status::Error(label +
                         ": only a SPREAD or STRATEGY series can have legs");
  }
  for (const PendingSeries& p : pending_) {
    if (p.series.product.exchange == series.product.exchange &&
        std::string_view(p.series.seriesKey) == series.seriesKey) {
      return Status::Error(label + ": duplicate series");
    }
  }
  pending_.push_back(PendingSeries{std::move(series), std::move(legs)});
  return Status::Ok();
}

nvshared::StatusOr<std::unique_ptr<const ReferenceData>>
ReferenceDataBuilder::Build() {
  ReferenceData& d = *data_;

  // Exchanges, in id order, with the id and name indexes.
  std::sort(d.exchanges_.begin(), d.exchanges_.end(),
            [](const auto& a, const auto& b) { return a.id < b.id; });
  const int highest = d.exchanges_.empty() ? -1 : d.exchanges_.back().id;
  if (exchangeIdCount_ >= 0 && exchangeIdCount_ <= highest) {
    return Status::Error("exchangeIdCount " + std::to_string(exchangeIdCount_) +
                         " does not cover exchange id " +
                         std::to_string(highest));
  }
  d.exchangeIdCount_ = exchangeIdCount_ >= 0 ? exchangeIdCount_ : highest + 1;
  d.exchangeIndex_.assign(static_cast<std::size_t>(highest + 1), -1);
  for (std::size_t i = 0; i < d.exchanges_.size(); ++i) {
    d.exchangeIndex_[static_cast<std::size_t>(d.exchanges_[i].id)] =
        static_cast<int>(i);
    d.exchangeIdByName_.emplace(d.exchanges_[i].name, d.exchanges_[i].id);
  }

  for (const ProductRecord& p : d.products_) {
    if (d.FindExchange(p.id.exchange) == nullptr) {
      return Status::Error(ProductLabel(p.id) + ": unknown exchange " +
                           std::to_string(static_cast<int>(p.id.exchange)));
    }
  }

  // Series first, so that legs may name series listed after them.
  d.series_.reserve(pending_.size());
  for (const PendingSeries& p : pending_) {
    if (d.FindProduct(p.series.product) == nullptr) {
      return Status::Error(
          SeriesLabel(p.series.product.exchange, p.series.seriesKey) + ": " +
          ProductLabel(p.series.product) + " is not defined");
    }
    d.seriesIndex_.emplace(
        std::make_pair(static_cast<int>(p.series.product.exchange),
                       std::string(p.series.seriesKey)),
        d.series_.size());
    d.series_.push_back(
        SeriesRecord{boost::make_shared<const SeriesID>(p.series), {}});
  }
  for (std::size_t i = 0; i < pending_.size(); ++i) {
    const PendingSeries& p = pending_[i];
    if (!p.legs) continue;
    FullLegList list;
    list.combCode = p.series.combCode;
    for (std::size_t n = 0; n < p.legs->size(); ++n) {
      const LegSpec& legRef = (*p.legs)[n];
      const SeriesRecord* target =
          d.FindSeries(legRef.exchange, legRef.seriesKey);
      if (target == nullptr) {
        return Status::Error(
            SeriesLabel(p.series.product.exchange, p.series.seriesKey) +
            ": leg " + std::to_string(n + 1) + " refers to unknown " +
            SeriesLabel(legRef.exchange, legRef.seriesKey));
      }
      FullLeg leg(*target->series, legRef.ratio, legRef.strike);
      for (const auto& [tag, value] : legRef.agile) {
        leg.StoreAgileData(tag, value);
      }
      list.legs.push_back(std::move(leg));
    }
    d.series_[i].legs = std::move(list);
  }
  pending_.clear();
  return std::unique_ptr<const ReferenceData>(std::move(data_));
}

}  // namespace dv_core_ns

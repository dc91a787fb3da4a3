// The singleton, its switches and the custom-name lookup. Formatting lives in
// contract_formatting.cc and leg_naming.cc.
#include "nvshared/naming/series_name_formatter.h"

#include <atomic>
#include <cctype>

#include "nvshared/market/internal/market_utils_internal.h"

namespace nv_fmt {
namespace {

std::atomic<bool> g_has_instance{false};

FormatContractConfig MakeLogConfig(bool useCustomName) {
  FormatContractConfig config = DefaultFormatContractConfig;
  config.showMarket = true;
  config.useCustomName = useCustomName;
  return config;
}

bool ContainsLiffe(const std::string& name) {
  static constexpr std::string_view kLiffe = "LIFFE";
  if (name.size() < kLiffe.size()) return false;
  for (std::size_t i = 0; i + kLiffe.size() <= name.size(); ++i) {
    std::size_t j = 0;
    while (j < kLiffe.size() &&
           std::toupper(static_cast<unsigned char>(name[i + j])) == kLiffe[j]) {
      ++j;
    }
    if (j == kLiffe.size()) return true;
  }
  return false;
}

}  // namespace

const FormatContractConfig DefaultFormatContractConfig = [] {
  FormatContractConfig config;
  config.flavoredExchange = true;
  config.showProduct = true;
  config.showRatioSign = true;
  config.useCustomName = true;
  return config;
}();

// --- FormattedNameData and the registry's hashing ------------------------

FormattedNameData::FormattedNameData(const FormattedNameData& other)
    : SeriesID(other),
      expiration(other.expiration),
      hasExpiration(other.hasExpiration),
      name(other.name),
      legs(other.legs ? std::make_unique<dv_core_ns::FullLegList>(*other.legs)
                      : nullptr) {}

FormattedNameData& FormattedNameData::operator=(
    const FormattedNameData& other) {
  if (this != &other) {
    FormattedNameData copy(other);
    *this = std::move(copy);
  }
  return *this;
}

FormattedNameData::~FormattedNameData() = default;

std::size_t RegistryHash(std::string_view text) {
  std::uint32_t hash = 2166136261u;
  const std::size_t step = text.size() / 10 + 1;
  for (std::size_t i = 0; i < text.size(); i += step) {
    const auto c = static_cast<std::int32_t>(static_cast<signed char>(text[i]));
    hash = (hash * 16777619u) ^ static_cast<std::uint32_t>(c);
  }
  return hash;
}

bool SeriesKeyEqual::operator()(const dv_core_ns::SeriesID& a,
                                const dv_core_ns::SeriesID& b) const {
  if (ContainsLiffe(
          nv_ns::MarketUtilsInternal::ExchangeName(a.product.exchange)) &&
      ContainsLiffe(
          nv_ns::MarketUtilsInternal::ExchangeName(b.product.exchange))) {
    return std::string_view(a.seriesKey) == std::string_view(b.seriesKey);
  }
  return a == b;
}

// --- The singleton ----------------------------------------------------------

SeriesNameFormatter& SeriesNameFormatter::Instance() {
  // Built once even when the first calls race, and never freed: names may
  // be asked for while the process exits, from another static's destructor.
  static SeriesNameFormatter* const instance = new SeriesNameFormatter();
  // Observers still hear at exit that the formatter ends, at the moment a
  // destroyed singleton's destructor would have run.
  struct ExitNotice {
    ~ExitNotice() { instance->NotifyDestroy(); }
  };
  static ExitNotice notice;
  return *instance;
}

bool SeriesNameFormatter::HasInstance() { return g_has_instance.load(); }

SeriesNameFormatter::SeriesNameFormatter()
    : observers_(
          std::make_unique<
              std::map<SeriesNameFormatterObserver*,
                       boost::shared_ptr<SeriesNameFormatterObserverData>>>()),
      logConfig_(MakeLogConfig(false)),
      customConfig_(MakeLogConfig(true)) {
  g_has_instance.store(true);
}

SeriesNameFormatter::~SeriesNameFormatter() { NotifyDestroy(); }

bool SeriesNameFormatter::IsSeriesNameEnabled() const {
  std::lock_guard<std::recursive_mutex> guard(lock_);
  return seriesNameEnabled_;
}

void SeriesNameFormatter::SetSeriesNameEnabled(bool enable) {
  {
    std::lock_guard<std::recursive_mutex> guard(lock_);
    if (seriesNameEnabled_ == enable) return;
    seriesNameEnabled_ = enable;
  }
  NotifySeriesNameUpdate(UpdateHint());
}

bool SeriesNameFormatter::IsSeriesNameEnabled(int exchangeId) const {
  dv_core_ns::AEnum_ExchIds id(exchangeId);
  MakeUnflavoredExchangeID(id);
  if (id >= 0 && id < kFastExchangeIds) {
    return seriesNameFast_[static_cast<std::size_t>(static_cast<int>(id))].load(
        std::memory_order_relaxed);
  }
  std::lock_guard<std::recursive_mutex> guard(lock_);
  return seriesNameExchanges_.count(id) != 0;
}

void SeriesNameFormatter::SetSeriesNameEnabled(int exchangeId, bool enable) {
  dv_core_ns::AEnum_ExchIds id(exchangeId);
  MakeUnflavoredExchangeID(id);
  bool changed = false;
  {
    std::lock_guard<std::recursive_mutex> guard(lock_);
    changed = enable ? seriesNameExchanges_.insert(id).second
                     : seriesNameExchanges_.erase(id) != 0;
    if (id >= 0 && id < kFastExchangeIds) {
      seriesNameFast_[static_cast<std::size_t>(static_cast<int>(id))].store(
          enable, std::memory_order_relaxed);
    }
  }
  if (changed) NotifySeriesNameUpdate(UpdateHint(id));
}

bool SeriesNameFormatter::IsProductNameEnabled() const {
  std::lock_guard<std::recursive_mutex> guard(lock_);
  return productNameEnabled_;
}

void SeriesNameFormatter::SetProductNameEnabled(bool enable) {
  {
    std::lock_guard<std::recursive_mutex> guard(lock_);
    if (productNameEnabled_ == enable) return;
    productNameEnabled_ = enable;
  }
  NotifySeriesNameUpdate(UpdateHint());
}

const char* SeriesNameFormatter::GetCustomName(
    const dv_core_ns::SeriesID& series) const {
  // Most users name nothing; skip the copy and the unflavouring then.
  if (entries_.empty()) return nullptr;
  dv_core_ns::SeriesID key(series);
  MakeUnflavoredSeriesID(key);
  const auto it = entries_.find(key);
  return it == entries_.end() ? nullptr : it->second.name.c_str();
}

const char* SeriesNameFormatter::CustomNameFor(
    const dv_core_ns::SeriesID& series,
    const FormatContractConfig& config) const {
  return config.useCustomName ? GetCustomName(series) : nullptr;
}

}  // namespace nv_fmt

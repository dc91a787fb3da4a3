// The custom-name registry of the formatter: Add, Change, Remove, the
// look-ups, and the observers that hear of every change.
#include <cstdarg>
#include <cstdio>
#include <memory>
#include <string>
#include <utility>

#include "nvshared/app/error_log.h"
#include "nvshared/naming/internal/name_text.h"
#include "nvshared/naming/series_name_formatter.h"
#include "nvshared/platform/core/consumer.h"

namespace nv_fmt {

using dv_core_ns::CDVBasePriceConsumer;
using dv_core_ns::FullLegList;
using dv_core_ns::LegList;
using dv_core_ns::SeriesID;
using Guard = std::lock_guard<std::recursive_mutex>;

// One attached observer with the lock that its calls run under.
struct SeriesNameFormatterObserverData {
  explicit SeriesNameFormatterObserverData(SeriesNameFormatterObserver* o)
      : observer(o) {}
  SeriesNameFormatterObserver* observer;
  std::recursive_mutex lock;
  bool detached = false;
};

namespace {

// The registry's log lines: printf-style, at code 0, severity 2.
void LogLine(const char* format, ...) __attribute__((format(printf, 1, 2)));
void LogLine(const char* format, ...) {
  va_list args;
  va_start(args, format);
  va_list copy;
  va_copy(copy, args);
  const int size = std::vsnprintf(nullptr, 0, format, copy);
  va_end(copy);
  std::string text(size > 0 ? static_cast<std::size_t>(size) : 0, '\0');
  if (size > 0) std::vsnprintf(text.data(), text.size() + 1, format, args);
  va_end(args);
  CDVNVErrorLog::LogMessage(text.c_str(), 0, 2);
}

SeriesID KeyOf(const SeriesID& series) {
  SeriesID key(series);
  SeriesNameFormatter::MakeUnflavoredSeriesID(key);
  return key;
}

}  // namespace

const unsigned SeriesNameFormatter::CURRENT_VERSION = 10000;

std::string SeriesNameFormatter::LogText(
    const SeriesID& key, const FormatContractConfig& config) const {
  std::string text;
  if (const char* custom = CustomNameFor(key, config)) {
    text = custom;
  } else if (key.IsSpreadOrStrategy()) {
    FormatLegs(key, text, config);
  } else {
    FormatSeriesInternal(key, text, config, key.strike);
  }
  return text;
}

// --- Observers --------------------------------------------------------------

bool SeriesNameFormatter::Attach(SeriesNameFormatterObserver* observer) {
  if (observer == nullptr) return false;  // nothing to call
  Guard guard(lock_);
  if (observers_->count(observer) != 0) return false;
  observers_->emplace(observer,
                      boost::shared_ptr<SeriesNameFormatterObserverData>(
                          new SeriesNameFormatterObserverData(observer)));
  return true;
}

bool SeriesNameFormatter::Detach(SeriesNameFormatterObserver* observer) {
  boost::shared_ptr<SeriesNameFormatterObserverData> data;
  {
    Guard guard(lock_);
    const auto it = observers_->find(observer);
    if (it == observers_->end()) return false;
    data = it->second;
    observers_->erase(it);
  }
  // A notification that copied the map before the erase may be calling the
  // observer now; its holder lock makes this wait for that call to end.
  std::lock_guard<std::recursive_mutex> holder(data->lock);
  data->detached = true;
  return true;
}

void SeriesNameFormatter::NotifyObservers(
    const std::function<void(SeriesNameFormatterObserver&)>& call) {
  std::map<SeriesNameFormatterObserver*,
           boost::shared_ptr<SeriesNameFormatterObserverData>>
      copy;
  {
    Guard guard(lock_);
    copy = *observers_;
  }
  for (const auto& [observer, data] : copy) {
    std::lock_guard<std::recursive_mutex> holder(data->lock);
    if (!data->detached) call(*observer);
  }
}

void SeriesNameFormatter::NotifySeriesNameUpdate(const UpdateHint& hint) {
  NotifyObservers([&](SeriesNameFormatterObserver& observer) {
    observer.OnSeriesNameUpdate(*this, hint);
  });
}

void SeriesNameFormatter::NotifyDestroy() {
  NotifyObservers([&](SeriesNameFormatterObserver& observer) {
    observer.OnSeriesNameFormatterDestroy(*this);
  });
}

// --- Add, Change, Remove ----------------------------------------------------

bool SeriesNameFormatter::IsValidName(const char* name) {
  return name != nullptr && !internal::TrimName(name).empty();
}

bool SeriesNameFormatter::IsValidName(const std::string& name) {
  return !internal::TrimName(name).empty();
}

bool SeriesNameFormatter::AddCustomSeriesName(const SeriesID& series,
                                              const char* name) {
  if (name == nullptr) return false;
  const SeriesID key = KeyOf(series);
  const std::string trimmed = internal::TrimName(name);
  const std::string text = LogText(key, logConfig_);

  if (!IsValidName(trimmed)) {
    LogLine(
        "ME - AddCustomSeriesName - Contract Name: %s, Custom Name: %s -- Add "
        "Failed: Invalid name",
        text.c_str(), trimmed.c_str());
    return false;
  }
  if (entries_.count(key) != 0) {
    LogLine(
        "ME - AddCustomSeriesName - Contract Name: %s, Custom Name: %s -- Add "
        "Failed: Contract already has a custom name assigned: %s",
        text.c_str(), trimmed.c_str(), LogText(key, customConfig_).c_str());
    return false;
  }
  if (const auto holder = names_.find(trimmed); holder != names_.end()) {
    std::string holderText;
    FormatContract(holder->second, holderText, logConfig_);
    LogLine(
        "ME - AddCustomSeriesName - Contract Name: %s, Custom Name: %s -- Add "
        "Failed: Custom name already in use by contract: %s",
        text.c_str(), trimmed.c_str(), holderText.c_str());
    return false;
  }

  FormattedNameData entry(key);
  entry.name = trimmed;
  if (key.IsSpreadOrStrategy()) {
    SeriesID copy(key);
    std::unique_ptr<SeriesID> earliest(nv_ns::GetEarliestExpiringLeg(&copy));
    if (earliest) {
      entry.hasExpiration = true;
      entry.expiration = earliest->expiry;
    }
  } else if (series.expiry.year >= 1900) {
    // The day is not checked: the test of it can never be true, and any day
    // value is accepted on purpose.
    entry.hasExpiration = true;
    entry.expiration = series.expiry;
  }
  LegList list;
  if (series.IsSpreadOrStrategy() &&
      CDVBasePriceConsumer::CopyLegList(&series, list)) {
    entry.legs = std::make_unique<FullLegList>();
    *entry.legs = list;
    MakeUnflavoredLegList(*entry.legs);
  }
  const auto stored = entries_.insert_or_assign(key, std::move(entry)).first;
  names_.insert_or_assign(trimmed, key);

  Save();
  NotifySeriesNameUpdate(UpdateHint(key, stored->second.legs.get()));
  LogLine(
      "ME - AddCustomSeriesName - Contract Name: %s, Custom Name: %s -- Name "
      "successfully added",
      text.c_str(), trimmed.c_str());
  return true;
}

bool SeriesNameFormatter::ChangeCustomSeriesName(const SeriesID& series,
                                                 const char* name) {
  if (name == nullptr) return false;
  const SeriesID key = KeyOf(series);
  const std::string trimmed = internal::TrimName(name);
  const std::string text = LogText(key, logConfig_);
  const std::string oldText = LogText(key, customConfig_);

  if (!IsValidName(trimmed)) {
    LogLine(
        "ME - ChangeCustomSeriesName - Contract Name: %s, Old Custom Name: %s, "
        "New Custom Name: %s -- Change failed: Invalid name",
        text.c_str(), oldText.c_str(), trimmed.c_str());
    return false;
  }
  // The name is looked up before the contract, the reverse of Add's order,
  // so a change to the contract's own present name is refused with this
  // line. Deliberate: hosts show this message for both cases.
  if (const auto holder = names_.find(trimmed); holder != names_.end()) {
    std::string holderText;
    FormatContract(holder->second, holderText, logConfig_);
    LogLine(
        "ME - ChangeCustomSeriesName - Contract Name: %s, Old Custom Name: %s, "
        "New Custom Name: %s -- Change failed: Custom name already assigned to "
        "contract: %s",
        text.c_str(), oldText.c_str(), trimmed.c_str(), holderText.c_str());
    return false;
  }
  const auto it = entries_.find(key);
  if (it == entries_.end()) {
    LogLine(
        "ME - ChangeCustomSeriesName - Contract Name: %s, Old Custom Name: %s, "
        "New Custom Name: %s -- Change failed: Contract does not have a custom "
        "name to change",
        text.c_str(), oldText.c_str(), trimmed.c_str());
    return false;
  }

  names_.erase(it->second.name);
  it->second.name = trimmed;
  names_.insert_or_assign(trimmed, it->first);

  Save();
  NotifySeriesNameUpdate(UpdateHint(it->first, it->second.legs.get()));
  LogLine(
      "ME - ChangeCustomSeriesName - Contract Name: %s, Old Custom Name: %s, "
      "New Custom Name: %s -- Name change successful",
      text.c_str(), oldText.c_str(), trimmed.c_str());
  return true;
}

bool SeriesNameFormatter::AddOrChangeCustomSeriesName(
    const SeriesID& series, const char* name, const char* title,
    const char* text, const char* textWithOldName, bool prompt, HWND parent) {
  if (name == nullptr) return false;
  if (AddCustomSeriesName(series, name) ||
      ChangeCustomSeriesName(series, name)) {
    return true;
  }
  if (!prompt) return false;
  if (!PromptToReplaceUserName(series, name, title, text, textWithOldName,
                               parent, false)) {
    return false;
  }
  RemoveCustomSeriesName(name);
  return AddCustomSeriesName(series, name) ||
         ChangeCustomSeriesName(series, name);
}

void SeriesNameFormatter::RemoveEntry(const SeriesID& key,
                                      const std::string& line) {
  const auto it = entries_.find(key);
  UpdateHint hint(it->first, it->second.legs.get());
  names_.erase(it->second.name);
  entries_.erase(it);
  Save();
  NotifySeriesNameUpdate(hint);
  CDVNVErrorLog::LogMessage(line.c_str(), 0, 2);
}

bool SeriesNameFormatter::RemoveCustomSeriesName(const SeriesID& series) {
  const SeriesID key = KeyOf(series);
  const std::string text = LogText(key, logConfig_);
  const auto it = entries_.find(key);
  if (it == entries_.end()) {
    LogLine(
        "ME - RemoveCustomSeriesName(seriesID) Contract Name: %s, failed: No "
        "custom name found",
        text.c_str());
    return false;
  }
  // "sucessfully" is the spelling hosts and log readers match on; kept.
  std::string line =
      "ME - RemoveCustomSeriesName(seriesID) Contract Name: " + text +
      ", Custom Name: " + it->second.name + ", -- removed sucessfully";
  RemoveEntry(key, line);
  return true;
}

bool SeriesNameFormatter::RemoveCustomSeriesName(const char* name) {
  if (name == nullptr) return false;
  const std::string trimmed = internal::TrimName(name);
  const auto holder = names_.find(trimmed);
  if (holder == names_.end() || entries_.count(holder->second) == 0) {
    LogLine(
        "ME - RemoveCustomSeriesName(pName) Custom Name: %s, failed: No "
        "seriesID found for custom name",
        trimmed.c_str());
    return false;
  }
  const SeriesID key = holder->second;
  const std::string line =
      "ME - RemoveCustomSeriesName(pName) Contract Name: " +
      LogText(key, logConfig_) + ", Custom Name: " + trimmed +
      ", -- removed sucessfully";
  RemoveEntry(key, line);
  return true;
}

void SeriesNameFormatter::RemoveAllCustomSeriesNames() {
  SeriesNameAssocVector pairs;
  if (!GetCustomSeriesNames(pairs)) return;
  std::vector<std::string> names;
  names.reserve(pairs.size());
  for (const SeriesNameAssoc& pair : pairs) names.emplace_back(pair.name);
  for (const std::string& name : names) RemoveCustomSeriesName(name.c_str());
}

// --- Look-ups ---------------------------------------------------------------

const SeriesID* SeriesNameFormatter::GetSeries(const char* name) const {
  if (name == nullptr) return nullptr;
  const std::string trimmed = internal::TrimName(name);
  Guard guard(lock_);
  const auto it = names_.find(trimmed);
  return it == names_.end() ? nullptr : &it->second;
}

const FullLegList* SeriesNameFormatter::GetLegList(const char* name) const {
  if (name == nullptr) return nullptr;
  const std::string trimmed = internal::TrimName(name);
  Guard guard(lock_);
  const auto it = names_.find(trimmed);
  if (it == names_.end() || !it->second.IsSpreadOrStrategy()) return nullptr;
  const auto entry = entries_.find(it->second);
  return entry == entries_.end() ? nullptr : entry->second.legs.get();
}

bool SeriesNameFormatter::GetDefaultName(const char* name, std::string& out,
                                         bool flavored) const {
  out.clear();
  if (name == nullptr) return false;
  const std::string trimmed = internal::TrimName(name);
  Guard guard(lock_);
  const auto it = names_.find(trimmed);
  if (it == names_.end()) return false;
  const auto entry = entries_.find(it->second);
  if (entry == entries_.end()) return false;
  GetDefaultName(it->second, entry->second.legs.get(), out, flavored);
  return true;
}

bool SeriesNameFormatter::GetCustomSeriesNames(
    SeriesNameAssocVector& out) const {
  Guard guard(lock_);
  out.clear();
  for (const auto& [key, entry] : entries_) {
    out.emplace_back(&key, entry.name.c_str());
  }
  return !out.empty();
}

bool SeriesNameFormatter::GetCustomSeriesNames(
    int exchangeId, SeriesNameAssocVector& out) const {
  dv_core_ns::AEnum_ExchIds id(exchangeId);
  MakeUnflavoredExchangeID(id);
  Guard guard(lock_);
  out.clear();
  for (const auto& [key, entry] : entries_) {
    if (key.product.exchange == id) out.emplace_back(&key, entry.name.c_str());
  }
  return !out.empty();
}

bool SeriesNameFormatter::GetCustomSeriesNames(
    const dv_core_ns::ProdID& product, SeriesNameAssocVector& out) const {
  dv_core_ns::ProdID unflavored(product);
  MakeUnflavoredProductID(unflavored);
  Guard guard(lock_);
  out.clear();
  for (const auto& [key, entry] : entries_) {
    if (key.product == unflavored) out.emplace_back(&key, entry.name.c_str());
  }
  return !out.empty();
}

bool SeriesNameFormatter::GetCustomSeriesNames(
    const dv_core_ns::AEnum_ProdIDs& productType,
    SeriesNameAssocVector& out) const {
  Guard guard(lock_);
  out.clear();
  for (const auto& [key, entry] : entries_) {
    if (key.product.productType == productType) {
      out.emplace_back(&key, entry.name.c_str());
    }
  }
  return !out.empty();
}

bool SeriesNameFormatter::IsProductAvailable(
    const dv_core_ns::ProdID& product) {
  dv_core_ns::ProdID copy(product);
  return CDVBasePriceConsumer::GetPriceTableHandle(&copy) != nullptr;
}

}  // namespace nv_fmt

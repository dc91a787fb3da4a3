// The custom-names file: loading, saving, the expiry of old names, and the
// prompt that offers a name held by another contract.
#include <ctime>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "nvshared/app/error_log.h"
#include "nvshared/market/internal/market_utils_internal.h"
#include "nvshared/naming/internal/name_text.h"
#include "nvshared/naming/series_name_formatter.h"
#include "nvshared/platform/core/consumer.h"

namespace nv_fmt {

using dv_core_ns::Date;
using dv_core_ns::FullLegList;
using dv_core_ns::SeriesID;
using Guard = std::lock_guard<std::recursive_mutex>;

namespace {

// Prompt texts expand into a buffer of this many characters.
constexpr std::size_t kPromptCapacity = 2048;

// The market name of the exchange contains `what`.
bool MarketNameHas(int exchangeId, const char* what) {
  const int market = nv_ns::MarketUtils::GetMarketFromExchange(exchangeId);
  return nv_ns::MarketUtilsInternal::MarketName(market).find(what) !=
         std::string::npos;
}

}  // namespace

void SeriesNameFormatter::SetArchiverFactory(IArchiverFactory& factory) {
  archiverFactory_ = &factory;
}

void SeriesNameFormatter::SetArchivePath(const char* path) {
  if (path == nullptr || archivePath_ == path) return;
  archivePath_ = path;
  Load();
}

void SeriesNameFormatter::SetPromptCallback(SeriesNamePromptCallback callback) {
  prompt_ = std::move(callback);
}

bool SeriesNameFormatter::Load() {
  if (archivePath_.empty() || archiverFactory_ == nullptr) return false;
  suppressSave_ = true;
  RemoveAllCustomSeriesNames();
  suppressSave_ = false;

  IArchiver* archiver = archiverFactory_->Create();
  if (archiver == nullptr) return false;
  bool loaded = false;
  if (archiver->Open(archivePath_.c_str(), 0)) {
    Serialize(*archiver);
    archiver->Close();
    // What survived the load (no expired or damaged entries) is what the
    // file holds from now on.
    Save();
    loaded = true;
  }
  archiverFactory_->Destroy(archiver);
  return loaded;
}

void SeriesNameFormatter::Save() {
  if (suppressSave_ || archivePath_.empty() || archiverFactory_ == nullptr) {
    return;
  }
  IArchiver* archiver = archiverFactory_->Create();
  if (archiver == nullptr) return;
  if (archiver->Open(archivePath_.c_str(), 1)) {
    Serialize(*archiver);
    archiver->Close();
  }
  archiverFactory_->Destroy(archiver);
}

void SeriesNameFormatter::Serialize(IArchiver& archiver) {
  try {
    if (archiver.IsStoring()) {
      archiver.WriteVersion(CURRENT_VERSION);
      archiver.WriteCount(entries_.size());
      for (auto& [key, entry] : entries_) {
        archiver.WriteSeriesID(key);
        // Entries gain a date at the first save that can find one.
        if (!entry.hasExpiration) {
          entry.hasExpiration = SetExpiration(key, entry.expiration);
        }
        archiver.WriteDate(entry.expiration);
        archiver.WriteBool(entry.hasExpiration);
        archiver.WriteString(entry.name);
        if (key.IsSpreadOrStrategy()) archiver.WriteLegList(entry.legs.get());
      }
      return;
    }

    entries_.clear();
    names_.clear();
    unsigned version = 0;  // Read but not checked: every version reads alike.
    archiver.ReadVersion(version);
    int count = 0;
    archiver.ReadCount(count);
    // A negative count reads nothing.
    for (; count > 0; --count) {
      FormattedNameData entry;
      archiver.ReadSeriesID(entry);
      archiver.ReadDate(entry.expiration);
      archiver.ReadBool(entry.hasExpiration);
      archiver.ReadString(entry.name);
      if (entry.IsSpreadOrStrategy()) {
        entry.legs = std::make_unique<FullLegList>();
        archiver.ReadLegList(entry.legs.get());
      }
      // Names of a simulated market or of LME never expire.
      const int exchange = entry.product.exchange;
      if (!entry.hasExpiration || !isDateExpired(entry.expiration, 2) ||
          MarketNameHas(exchange, "DVSIM") || MarketNameHas(exchange, "LME")) {
        AddCustomSeriesNameFromFile(entry);
      }
    }
  } catch (const std::bad_alloc&) {
    throw;
  } catch (...) {
    // The entries read so far stay; Load then rewrites the file without the
    // rest.
    CDVNVErrorLog::LogMessage(
        "Series Names.dat file has corruption data, which will be discarded.",
        0, 0);
  }
}

void SeriesNameFormatter::AddCustomSeriesNameFromFile(
    const FormattedNameData& data) {
  Guard guard(lock_);
  // The file is trusted: no trimming, no validity test, no unflavouring.
  const SeriesID key(static_cast<const SeriesID&>(data));
  const auto stored = entries_.insert_or_assign(key, data).first;
  names_.insert_or_assign(data.name, key);
  // Observers are called with the formatter lock held here, and only here.
  NotifySeriesNameUpdate(UpdateHint(key, stored->second.legs.get()));
  std::string text;
  GetDefaultName(key, stored->second.legs.get(), text, true);
  const std::string line =
      "ME - AddCustomSeriesNameFromFile - Contract Name: " + text +
      ", Custom Name: " + data.name;
  CDVNVErrorLog::LogMessage(line.c_str(), 0, 2);
}

bool SeriesNameFormatter::SetExpiration(const SeriesID& series,
                                        Date& date) const {
  if (series.IsSpreadOrStrategy()) {
    SeriesID copy(series);
    const std::unique_ptr<SeriesID> earliest(
        nv_ns::GetEarliestExpiringLeg(&copy));
    if (!earliest) return false;
    date = earliest->expiry;
    return true;
  }
  if (series.expiry.year < 1900) return false;
  // The tests of day and month that belong here were joined with "and"
  // where "or" was needed and never refused anything; a series of 1900 or
  // later keeps any day and month on purpose, as stored files rely on it.
  date = series.expiry;
  return true;
}

bool SeriesNameFormatter::isDateExpired(const Date& date, int months) const {
  int month = date.month + months + (date.day == 0 ? 1 : 0);
  int year = date.year;
  // Rolled over once only: `months` stays within 12.
  if (month > 12) {
    month -= 12;
    year += 1;
  }
  std::tm when{};
  when.tm_year = year - 1900;
  when.tm_mon = month - 1;
  when.tm_mday = date.day == 0 ? 1 : date.day;
  when.tm_hour = 23;
  when.tm_min = 59;
  when.tm_sec = 59;
  when.tm_isdst = -1;
  // mktime normalises a day past the month's end (31 February is early
  // March).
  const std::time_t end = std::mktime(&when);
  const std::time_t now = clock_ != nullptr ? clock_() : std::time(nullptr);
  return end < now;
}

bool SeriesNameFormatter::PromptToReplaceUserName(
    const SeriesID& series, const char* name, const char* title,
    const char* text, const char* textWithOldName, HWND parent,
    bool ignoreOldName) {
  std::string holderDefault;
  GetDefaultName(name, holderDefault, false);
  dv_core_ns::LegList legs;
  const bool haveLegs =
      series.IsSpreadOrStrategy() &&
      dv_core_ns::CDVBasePriceConsumer::CopyLegList(&series, legs);
  std::string thisDefault;
  GetDefaultName(series, haveLegs ? &legs : nullptr, thisDefault, false);
  const char* current = GetCustomName(series);

  const std::string nameText = name != nullptr ? name : "";
  std::string message;
  if (ignoreOldName || current == nullptr) {
    message = internal::ExpandInserts(text != nullptr ? text : "",
                                      {nameText, holderDefault, thisDefault},
                                      kPromptCapacity);
  } else {
    message = internal::ExpandInserts(
        textWithOldName != nullptr ? textWithOldName : "",
        {nameText, holderDefault, current, thisDefault}, kPromptCapacity);
  }
  if (!prompt_) return false;
  try {
    return prompt_(parent, title != nullptr ? title : "", message);
  } catch (...) {
    return false;  // No exception crosses a host callback.
  }
}

}  // namespace nv_fmt

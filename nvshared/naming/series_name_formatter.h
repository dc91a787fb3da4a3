// nv_fmt::SeriesNameFormatter: the names by which every window shows a
// contract. It turns a SeriesID, a Leg or a leg list into text from its
// pieces (exchange or market, product, expiry, call or put, strike), names
// spreads and strategies by their legs, and compares identifiers, products
// and leg lists across the flavours of an exchange.
//
// Pass DefaultFormatContractConfig (format_contract_config.h) unless a
// window needs otherwise: a default-constructed FormatContractConfig prints
// no product.
//
// The formatter is a process-wide singleton (Instance()) because it also
// holds the user's switches: whether exchanges' own series names and
// products' codes are shown, and the user's custom names, which replace a
// contract's formatted name where the config asks for them.
//
// Custom names are trimmed of the white space of the process's multibyte
// encoding (LC_CTYPE), walked character by character; while the process runs
// in the plain "C" locale the text is taken as UTF-8 and Unicode white space
// (U+00A0, U+3000, ...) is trimmed too.
//
// The names file: the host sets an archiver factory, then a path, which
// loads the file at once; every change rewrites it whole. Observers hear of
// every change (update_hint.h).
//
// Threads: formatting is safe from any thread. It takes the formatter lock
// only to read one switch at a time, never across a reference-data lookup.
// Add, Change, Remove and GetCustomName take no lock over the tables: the
// registry is written from one thread, the user's. The other readers of the
// tables, Attach, Detach and the switches take the formatter lock; observers
// are called with their own lock held and, but for entries loaded from the
// file, without the formatter lock.
#ifndef NVSHARED_NAMING_SERIES_NAME_FORMATTER_H_
#define NVSHARED_NAMING_SERIES_NAME_FORMATTER_H_

#include <array>
#include <atomic>
#include <ctime>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include <boost/shared_ptr.hpp>

#include "nvshared/export.h"
#include "nvshared/naming/archiver.h"
#include "nvshared/naming/format_contract_config.h"
#include "nvshared/naming/formatted_name_data.h"
#include "nvshared/naming/update_hint.h"
#include "nvshared/platform/core/agile_enums.h"
#include "nvshared/platform/core/date_time.h"
#include "nvshared/platform/core/ids.h"
#include "nvshared/platform/core/legs.h"

namespace nv_fmt {

class SeriesNameFormatterPeer;
struct SeriesNameFormatterObserverData;

// The handle of the window a prompt belongs to; opaque to the library.
using HWND = void*;

// The host's yes/no question: shows `message` under `title`, with `parent`
// as the owning window, and returns true for yes. It must not throw; an
// exception counts as no.
using SeriesNamePromptCallback = std::function<bool(
    HWND parent, const std::string& title, const std::string& message)>;

class NVSHARED_API SeriesNameFormatter {
 public:
  // Passing this as the strike of FormatStrike means "the series' own".
  static constexpr int kSeriesStrike = static_cast<int>(0xF0000000u);

  // The singleton, built on first use and destroyed at process exit.
  static SeriesNameFormatter& Instance();
  // True from the first Instance() on, also after destruction.
  static bool HasInstance();

  SeriesNameFormatter(const SeriesNameFormatter&) = delete;
  SeriesNameFormatter& operator=(const SeriesNameFormatter&) = delete;

  // --- Switches ---------------------------------------------------------

  // Show exchanges' own series names everywhere.
  bool IsSeriesNameEnabled() const;
  void SetSeriesNameEnabled(bool enable);
  // Show the series names of one exchange and its flavours.
  bool IsSeriesNameEnabled(int exchangeId) const;
  void SetSeriesNameEnabled(int exchangeId, bool enable);
  // Show products by their code rather than their alias.
  bool IsProductNameEnabled() const;
  void SetProductNameEnabled(bool enable);

  // --- Observers --------------------------------------------------------

  // False for null and for an observer that is attached already.
  bool Attach(SeriesNameFormatterObserver* observer);
  // False if it was not attached. Once Detach returns, no call into the
  // observer is running on any thread, and none will start.
  bool Detach(SeriesNameFormatterObserver* observer);

  // --- Custom names -----------------------------------------------------
  // Names are trimmed first. Each refusal returns false and logs one line.

  // The version written at the head of the names file.
  static const unsigned CURRENT_VERSION;

  // Gives the series a name; false if the name is blank, the series has a
  // name or another series has this one.
  bool AddCustomSeriesName(const dv_core_ns::SeriesID& series,
                           const char* name);
  // Renames a series that has a name. Refused when any series (this one
  // included) already has the new name.
  bool ChangeCustomSeriesName(const dv_core_ns::SeriesID& series,
                              const char* name);
  // Add, else Change. With `prompt`, a name that another series holds is
  // offered to the user through the prompt callback (`title`, `text` and
  // `textWithOldName` as in PromptToReplaceUserName), and taken on yes.
  bool AddOrChangeCustomSeriesName(const dv_core_ns::SeriesID& series,
                                   const char* name, const char* title,
                                   const char* text,
                                   const char* textWithOldName, bool prompt,
                                   HWND parent);
  bool RemoveCustomSeriesName(const dv_core_ns::SeriesID& series);
  bool RemoveCustomSeriesName(const char* name);
  // Removes every name, one by one, each saved, notified and logged.
  void RemoveAllCustomSeriesNames();

  // The user's name for the series (or for the same series of another
  // flavour of its exchange); null if it has none. Valid until that name
  // is changed or removed.
  const char* GetCustomName(const dv_core_ns::SeriesID& series) const;
  // The series that holds the name; null if none. Valid until that entry
  // changes.
  const dv_core_ns::SeriesID* GetSeries(const char* name) const;
  // The legs of the spread or strategy that holds the name; null for an
  // outright or an unknown name. Valid until that entry changes.
  const dv_core_ns::FullLegList* GetLegList(const char* name) const;
  // The name, without custom names, of the series that holds `name`.
  bool GetDefaultName(const char* name, std::string& out, bool flavored) const;
  // All pairs; those of an exchange (flavours included); of a product; of a
  // product type. True if the vector is not empty.
  bool GetCustomSeriesNames(SeriesNameAssocVector& out) const;
  bool GetCustomSeriesNames(int exchangeId, SeriesNameAssocVector& out) const;
  bool GetCustomSeriesNames(const dv_core_ns::ProdID& product,
                            SeriesNameAssocVector& out) const;
  bool GetCustomSeriesNames(const dv_core_ns::AEnum_ProdIDs& productType,
                            SeriesNameAssocVector& out) const;
  // True if the product has a price table.
  static bool IsProductAvailable(const dv_core_ns::ProdID& product);
  // False for null or for a name that trims to nothing.
  static bool IsValidName(const char* name);
  static bool IsValidName(const std::string& name);

  // --- The names file ---------------------------------------------------

  // Stores the factory; call it before SetArchivePath.
  void SetArchiverFactory(IArchiverFactory& factory);
  // Null or the present path does nothing; otherwise the names in memory
  // are dropped and the file at `path` is loaded.
  void SetArchivePath(const char* path);
  // Where the prompt of AddOrChangeCustomSeriesName goes; without one the
  // answer is no.
  void SetPromptCallback(SeriesNamePromptCallback callback);
  // Whether a date kept `months` past it (at most 12) lies in the past.
  bool isDateExpired(const dv_core_ns::Date& date, int months) const;
  // Asks whether `name`, held by another series, should pass to `series`.
  // `text` (inserts %1 name, %2 holder, %3 this series) serves when the
  // series has no name or `ignoreOldName` is set, else `textWithOldName`
  // (%3 the series' present name, %4 this series).
  bool PromptToReplaceUserName(const dv_core_ns::SeriesID& series,
                               const char* name, const char* title,
                               const char* text, const char* textWithOldName,
                               HWND parent, bool ignoreOldName);

  // --- Contract names ---------------------------------------------------
  // Each clears `out` first and returns true on success.

  // The full name of a contract, spread or strategy: "ES Mar14",
  // "ES Mar14 C1500", "Calendar: 1xES Mar14:-1xJun14".
  bool FormatContract(const dv_core_ns::SeriesID& series, std::string& out,
                      const FormatContractConfig& config) const;
  // The same with the leg's strike in place of the series' own.
  bool FormatContract(const dv_core_ns::Leg& leg, std::string& out,
                      const FormatContractConfig& config) const;
  // The expiry piece: the computed month, or the series name where that is
  // shown. With expiryOnly, always the computed month.
  bool FormatExpiry(const dv_core_ns::SeriesID& series, std::string& out,
                    const FormatContractConfig& config) const;
  // The month of the contract's own second date.
  bool FormatContrExpiry(const dv_core_ns::SeriesID& series, std::string& out,
                         bool monthCode, bool noDay) const;
  // "15Mar14", or "Mar14" for day 0. False (empty) for a month outside
  // 1..12.
  bool FormatDayMonthAndYear(int day, int month, int year,
                             std::string& out) const;
  bool FormatProduct(const dv_core_ns::ProdID& product, std::string& out,
                     NameStyle::Enum style) const;
  bool FormatProduct(const dv_core_ns::SeriesID& series, std::string& out,
                     NameStyle::Enum style) const;
  // The product by its alias (true) or its code (false).
  bool FormatAlias(const dv_core_ns::ProdID& product, std::string& out,
                   bool useAlias) const;
  // "C" or "P" of an option; empty for anything else and for an option
  // whose legs bring their own strikes.
  bool FormatCallPut(const dv_core_ns::SeriesID& series, std::string& out,
                     int strike) const;
  // An option's strike ("1500", "150.50"), or a future's or stock's fixed
  // price ("@98.50"; no "@" when compact). False where nothing prints.
  bool FormatStrike(const dv_core_ns::SeriesID& series, std::string& out,
                    bool compact, int strike) const;
  // The spread type's name; "" for none (500) and plain spreads (539).
  bool FormatSpreadType(int combCode, std::string& out) const;

  // --- Leg lists --------------------------------------------------------

  // Spread type and legs in one text: "Calendar: 1xES Mar14:-1xJun14", or
  // the legs alone where the type has no name. False for an empty list.
  bool FormatLegList(const dv_core_ns::LegList& list, std::string& out,
                     const FormatContractConfig& config) const;
  // The flavoured exchange name, the spread type (empty when compact) and
  // the legs, apart.
  bool FormatLegList(const dv_core_ns::LegList& list, std::string& exchange,
                     std::string& spreadType, std::string& legs,
                     const FormatContractConfig& config) const;
  bool FormatLegList(const dv_core_ns::FullLegList& list, std::string& out,
                     const FormatContractConfig& config) const;
  bool FormatLegList(const dv_core_ns::FullLegList& list, std::string& exchange,
                     std::string& spreadType, std::string& legs,
                     const FormatContractConfig& config) const;

  // The leg's series is a spread or strategy.
  static bool IsStrategyOrSpread(const dv_core_ns::Leg& leg);
  // Product type SPREAD or STRATEGY (both count, whatever the name says).
  static bool isStrategy(const dv_core_ns::ProdID& product);
  static bool isStrategy(const dv_core_ns::SeriesID& series);
  // Appends the legs of `full` to `out`, replacing each spread or strategy
  // leg by its own legs with the ratios multiplied. One level only; `out`
  // is not cleared, and a leg whose legs are unknown adds nothing.
  static void ExpandLegLists(const dv_core_ns::FullLegList& full,
                             dv_core_ns::LegList& out);
  // The same for one leg, appended to `out`.
  static void SplitLegsForSpreadOrStrategy(const dv_core_ns::Leg& leg,
                                           std::vector<dv_core_ns::Leg>& out);

  // Replaces an exchange id by that of the exchange named like its market
  // ("CME-A" becomes "CME"), or -1 where there is none. Results are cached
  // for the life of the process; safe from any thread.
  static void MakeUnflavoredExchangeID(dv_core_ns::AEnum_ExchIds& id);
  static void MakeUnflavoredProductID(dv_core_ns::ProdID& product);
  static void MakeUnflavoredSeriesID(dv_core_ns::SeriesID& series);
  static void MakeUnflavoredLegList(dv_core_ns::FullLegList& list);

  // Equal after unflavouring both. Two ids that both unflavour to -1 count
  // as the same exchange.
  static bool EquivalentProductIDs(const dv_core_ns::ProdID& a,
                                   const dv_core_ns::ProdID& b);
  static bool EquivalentSeriesIDs(const dv_core_ns::SeriesID& a,
                                  const dv_core_ns::SeriesID& b);
  // Same spread type (or, with `relaxed`, either is a Combo, Covered, Non
  // Standard Combination or Custom Carry), same leg count, and every leg of
  // `a` matched by some leg of `b` in any order. Duplicates are not tracked.
  static bool EquivalentLegLists(const dv_core_ns::LegList& a,
                                 const dv_core_ns::LegList& b, bool relaxed);
  static bool EquivalentLegLists(const dv_core_ns::FullLegList& a,
                                 const dv_core_ns::LegList& b, bool relaxed);
  static bool EquivalentLegLists(const dv_core_ns::LegList& a,
                                 const dv_core_ns::FullLegList& b,
                                 bool relaxed);
  static bool EquivalentLegLists(const dv_core_ns::FullLegList& a,
                                 const dv_core_ns::FullLegList& b,
                                 bool relaxed);

 private:
  friend class SeriesNameFormatterPeer;
  SeriesNameFormatter();
  ~SeriesNameFormatter();

  // Calls `call` for each attached observer, on a copy of the table taken
  // under the formatter lock, each under its holder lock.
  void NotifyObservers(
      const std::function<void(SeriesNameFormatterObserver&)>& call);
  void NotifySeriesNameUpdate(const UpdateHint& hint);
  void NotifyDestroy();
  bool Load();
  void Save();
  void Serialize(IArchiver& archiver);
  void AddCustomSeriesNameFromFile(const FormattedNameData& data);
  bool SetExpiration(const dv_core_ns::SeriesID& series,
                     dv_core_ns::Date& date) const;
  // The text of a contract for log lines: the series or its legs.
  std::string LogText(const dv_core_ns::SeriesID& key,
                      const FormatContractConfig& config) const;
  // Removes the entry of `key` (which the tables hold) and logs `line`.
  void RemoveEntry(const dv_core_ns::SeriesID& key, const std::string& line);

  bool FormatSeries(const dv_core_ns::SeriesID& series, std::string& out,
                    const FormatContractConfig& config) const;
  bool FormatSeries(const dv_core_ns::Leg& leg, std::string& out,
                    const FormatContractConfig& config) const;
  bool FormatSeriesInternal(const dv_core_ns::SeriesID& series,
                            std::string& out,
                            const FormatContractConfig& config,
                            int strike) const;
  bool FormatContractInternal(const dv_core_ns::SeriesID& series,
                              std::string& out, bool& handled,
                              const FormatContractConfig& config) const;
  bool FormatExpiryInternal(const dv_core_ns::SeriesID& series,
                            std::string& out, bool& usedSeriesName,
                            const FormatContractConfig& config) const;
  bool FormatMonth(const dv_core_ns::SeriesID& series,
                   const dv_core_ns::Date& date, std::string& out,
                   bool monthCode, bool noDay) const;
  bool FormatLegs(const dv_core_ns::SeriesID& series, std::string& out,
                  const FormatContractConfig& config) const;
  bool FormatProductInternal(const dv_core_ns::ProdID& product,
                             std::string& out, NameStyle::Enum style) const;
  bool FormatLeg(const dv_core_ns::Leg& leg, std::string& out, int combCode,
                 const FormatContractConfig& config) const;
  bool VerifySameProduct(const std::vector<dv_core_ns::Leg>& legs) const;
  // FormatLegList's one-text form, appended to `out`.
  bool AppendLegList(const dv_core_ns::LegList& list, std::string& out,
                     const FormatContractConfig& config) const;
  // The legs' text, trimmed, appended to `out`.
  bool AppendLegs(const dv_core_ns::LegList& list, std::string& out,
                  const FormatContractConfig& config) const;
  // The name a contract has without its custom name: market, product and
  // expiry for an outright; market and legs for a spread or strategy.
  bool GetDefaultName(const dv_core_ns::SeriesID& series,
                      const dv_core_ns::LegList* legs, std::string& out,
                      bool flavored) const;
  bool GetDefaultName(const dv_core_ns::SeriesID& series,
                      const dv_core_ns::FullLegList* legs, std::string& out,
                      bool flavored) const;
  // The custom name, when the config asks for one and the series has it.
  const char* CustomNameFor(const dv_core_ns::SeriesID& series,
                            const FormatContractConfig& config) const;

  std::string archivePath_;
  IArchiverFactory* archiverFactory_ = nullptr;
  // Set while Load empties the registry, so that nothing is saved then.
  bool suppressSave_ = false;
  SeriesNamePromptCallback prompt_;
  // The present time for isDateExpired; null for the system clock. Tests
  // set it.
  std::time_t (*clock_)() = nullptr;
  std::unique_ptr<std::map<SeriesNameFormatterObserver*,
                           boost::shared_ptr<SeriesNameFormatterObserverData>>>
      observers_;
  // The formatter lock. Re-entrant, like the critical section it stands
  // for.
  mutable std::recursive_mutex lock_;
  // Exchanges whose series names are shown, always unflavoured ids.
  std::set<int> seriesNameExchanges_;
  // The same for ids below kFastExchangeIds, read without the lock: sort
  // comparators ask for every pair of series alike in all else.
  static constexpr int kFastExchangeIds = 1024;
  std::array<std::atomic<bool>, kFastExchangeIds> seriesNameFast_{};
  // For contract names in log lines, and for the old custom name in them.
  FormatContractConfig logConfig_;
  FormatContractConfig customConfig_;
  bool seriesNameEnabled_ = false;
  bool productNameEnabled_ = false;
  // Custom name to series, and series (exchange unflavoured) to entry.
  std::unordered_map<std::string, dv_core_ns::SeriesID, NameHash> names_;
  std::unordered_map<dv_core_ns::SeriesID, FormattedNameData, SeriesKeyHash,
                     SeriesKeyEqual>
      entries_;
};

}  // namespace nv_fmt

namespace nv_ns {

// A new copy, owned by the caller, of the series of the leg that expires
// first (the earlier leg where two expire together). Null for a null or
// outright series, or one whose legs are unknown. One level only.
NVSHARED_API dv_core_ns::SeriesID* GetEarliestExpiringLeg(
    dv_core_ns::SeriesID* series);

}  // namespace nv_ns

#endif  // NVSHARED_NAMING_SERIES_NAME_FORMATTER_H_

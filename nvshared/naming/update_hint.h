// What a change of the custom-name registry or of the formatter's switches
// touched (nv_fmt::UpdateHint), the interface by which windows hear of it
// (SeriesNameFormatterObserver), and the pairs GetCustomSeriesNames lists
// (SeriesNameAssoc, SeriesNameAssocVector).
//
// Ownership: an UpdateHint owns deep copies of its series and legs. A
// SeriesNameAssoc points into the registry and holds until that entry is
// changed or removed. Observers are owned by the host.
// Threads: hints and pairs are values for one thread at a time; observers are
// called on the thread that made the change (see SeriesNameFormatter).
#ifndef NVSHARED_NAMING_UPDATE_HINT_H_
#define NVSHARED_NAMING_UPDATE_HINT_H_

#include <vector>

#include "nvshared/export.h"
#include "nvshared/platform/core/ids.h"
#include "nvshared/platform/core/legs.h"

namespace nv_fmt {

class SeriesNameFormatter;

class NVSHARED_API UpdateHint {
 public:
  // Everything changed: sent when a global switch changes.
  UpdateHint();
  // Everything of one exchange.
  explicit UpdateHint(int exchangeId);
  // One series; both arguments are copied, the list only if not null.
  UpdateHint(const dv_core_ns::SeriesID& series,
             const dv_core_ns::FullLegList* legs);
  UpdateHint(const UpdateHint& other);
  UpdateHint& operator=(const UpdateHint& other);
  ~UpdateHint();

  // Null for "any series".
  const dv_core_ns::SeriesID* GetSeriesID() const { return series; }
  const dv_core_ns::FullLegList* GetLegList() const { return legs; }
  // -1 for "any exchange".
  int GetExchangeID() const { return exchangeId; }

  // Whether the change may concern the series, the product or the exchange.
  // The argument's exchange is unflavoured before it is compared.
  bool IsUpdated(const dv_core_ns::SeriesID& other) const;
  bool IsUpdated(const dv_core_ns::ProdID& product) const;
  bool IsUpdated(int otherExchangeId) const;

  int exchangeId = -1;
  dv_core_ns::SeriesID* series = nullptr;
  dv_core_ns::FullLegList* legs = nullptr;
};

// Implemented by windows that show contract names. Both calls come with the
// observer's own lock held; an observer may call back into the formatter, but
// must not wait for another thread that is notifying the same observer.
class NVSHARED_API SeriesNameFormatterObserver {
 public:
  virtual ~SeriesNameFormatterObserver();
  // A custom name or a switch changed; `hint` says what.
  virtual void OnSeriesNameUpdate(SeriesNameFormatter& formatter,
                                  const UpdateHint& hint) = 0;
  // The formatter is being destroyed at process exit.
  virtual void OnSeriesNameFormatterDestroy(SeriesNameFormatter& formatter) = 0;
};

// A series and its custom name, both pointing into the registry.
struct NVSHARED_API SeriesNameAssoc {
  SeriesNameAssoc(const dv_core_ns::SeriesID* s, const char* n)
      : series(s), name(n) {}
  const dv_core_ns::SeriesID* series;
  const char* name;
};

class NVSHARED_API SeriesNameAssocVector : public std::vector<SeriesNameAssoc> {
};

}  // namespace nv_fmt

#endif  // NVSHARED_NAMING_UPDATE_HINT_H_

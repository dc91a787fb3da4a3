// The legs of spreads and strategies: dv_core_ns::Leg, LegList, FullLeg and
// FullLegList, and CrossOrder. A Leg shares one immutable SeriesID with its
// copies; a FullLeg owns its own copy, so a FullLegList stands on its own.
#ifndef NVSHARED_PLATFORM_CORE_LEGS_H_
#define NVSHARED_PLATFORM_CORE_LEGS_H_

#include <cstdint>
#include <vector>

#include <boost/shared_ptr.hpp>

#include "nvshared/export.h"
#include "nvshared/platform/core/core_class.h"
#include "nvshared/platform/core/ids.h"

namespace dv_core_ns {

class NVSHARED_API Leg : public CoreClass {
 public:
  // How many of the series per unit of the spread; negative for the other
  // side.
  std::int32_t ratio = 0;
  // The leg's strike for an option, or a fixed price for a future or stock.
  // It stands in place of the series' own strike wherever the leg is named
  // or compared.
  std::int32_t strike = 0;

  Leg() = default;
  Leg(boost::shared_ptr<const SeriesID> series, int ratio, int strike);
  Leg(const Leg&) = default;
  Leg& operator=(const Leg&) = default;
  ~Leg() override;

  // The leg's series, shared with every copy of the leg. Null only for a
  // default-built leg.
  const boost::shared_ptr<const SeriesID>& GetSharedSeriesID() const {
    return series_;
  }

 protected:
  void SetSharedSeriesID(boost::shared_ptr<const SeriesID> series) {
    series_ = std::move(series);
  }

 private:
  boost::shared_ptr<const SeriesID> series_;
};

class FullLegList;

class NVSHARED_API LegList : public CoreClass {
 public:
  // In spread order.
  std::vector<Leg> legs;
  std::int16_t combCode = 500;

  LegList() = default;
  ~LegList() override;

  // Fills this list from `full`: its combCode and one Leg per FullLeg, each
  // sharing the FullLeg's series. The legs keep those series alive, so the
  // list stays usable after `full` is gone.
  void ReferenceData(const FullLegList& full);
};

// A leg that holds its own SeriesID: copying a FullLeg copies the series.
class NVSHARED_API FullLeg : public Leg {
 public:
  FullLeg() = default;
  // Deep-copies the leg's series.
  explicit FullLeg(const Leg& leg);
  FullLeg(const SeriesID& series, int ratio, int strike);
  FullLeg(const FullLeg& other);
  FullLeg& operator=(const FullLeg& other);
  ~FullLeg() override;
};

class NVSHARED_API FullLegList : public CoreClass {
 public:
  std::int16_t combCode = 500;
  std::vector<FullLeg> legs;

  FullLegList() = default;
  FullLegList(const FullLegList&) = default;
  FullLegList& operator=(const FullLegList&) = default;
  // Deep-copies each leg's series into a FullLeg.
  FullLegList& operator=(const LegList& list);
  ~FullLegList() override;
};

// Used by other records only as a member.
class NVSHARED_API CrossOrder : public CoreClass {
 public:
  CrossOrder() = default;
  ~CrossOrder() override;
};

}  // namespace dv_core_ns

#endif  // NVSHARED_PLATFORM_CORE_LEGS_H_

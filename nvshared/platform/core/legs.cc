#include "nvshared/platform/core/legs.h"

#include <utility>

#include <boost/make_shared.hpp>

namespace dv_core_ns {
namespace {

boost::shared_ptr<const SeriesID> CopyOf(
    const boost::shared_ptr<const SeriesID>& series) {
  if (!series) return nullptr;
  return boost::make_shared<const SeriesID>(*series);
}

}  // namespace

Leg::Leg(boost::shared_ptr<const SeriesID> series, int ratio_, int strike_)
    : ratio(ratio_), strike(strike_), series_(std::move(series)) {}

Leg::~Leg() = default;

LegList::~LegList() = default;

void LegList::ReferenceData(const FullLegList& full) {
  combCode = full.combCode;
  legs.clear();
  legs.reserve(full.legs.size());
  for (const FullLeg& leg : full.legs) legs.emplace_back(leg);
}

FullLeg::FullLeg(const Leg& leg) : Leg(leg) {
  SetSharedSeriesID(CopyOf(leg.GetSharedSeriesID()));
}

FullLeg::FullLeg(const SeriesID& series, int ratio_, int strike_)
    : Leg(boost::make_shared<const SeriesID>(series), ratio_, strike_) {}

FullLeg::FullLeg(const FullLeg& other) : Leg(other) {
  SetSharedSeriesID(CopyOf(other.GetSharedSeriesID()));
}

FullLeg& FullLeg::operator=(const FullLeg& other) {
  if (this == &other) return *this;
  Leg::operator=(other);
  SetSharedSeriesID(CopyOf(other.GetSharedSeriesID()));
  return *this;
}

FullLeg::~FullLeg() = default;

FullLegList& FullLegList::operator=(const LegList& list) {
  CoreClass::operator=(list);
  combCode = list.combCode;
  legs.clear();
  legs.reserve(list.legs.size());
  for (const Leg& leg : list.legs) legs.emplace_back(leg);
  return *this;
}

FullLegList::~FullLegList() = default;

CrossOrder::~CrossOrder() = default;

}  // namespace dv_core_ns

#include "nvshared/naming/update_hint.h"

#include "nvshared/naming/series_name_formatter.h"

namespace nv_fmt {

using dv_core_ns::FullLegList;
using dv_core_ns::SeriesID;

UpdateHint::UpdateHint() = default;

UpdateHint::UpdateHint(int id) : exchangeId(id) {}

UpdateHint::UpdateHint(const SeriesID& s, const FullLegList* l)
    : exchangeId(s.product.exchange),
      series(new SeriesID(s)),
      legs(l ? new FullLegList(*l) : nullptr) {}

UpdateHint::UpdateHint(const UpdateHint& other)
    : exchangeId(other.exchangeId),
      series(other.series ? new SeriesID(*other.series) : nullptr),
      legs(other.legs ? new FullLegList(*other.legs) : nullptr) {}

UpdateHint& UpdateHint::operator=(const UpdateHint& other) {
  if (this != &other) {
    UpdateHint copy(other);
    std::swap(exchangeId, copy.exchangeId);
    std::swap(series, copy.series);
    std::swap(legs, copy.legs);
  }
  return *this;
}

UpdateHint::~UpdateHint() {
  delete series;
  delete legs;
}

bool UpdateHint::IsUpdated(const SeriesID& other) const {
  SeriesID copy(other);
  SeriesNameFormatter::MakeUnflavoredSeriesID(copy);
  if (exchangeId != -1 && exchangeId != static_cast<int>(copy.product.exchange))
    return false;
  if (series != nullptr && !(*series == copy)) return false;
  return true;
}

bool UpdateHint::IsUpdated(const dv_core_ns::ProdID& product) const {
  dv_core_ns::ProdID copy(product);
  SeriesNameFormatter::MakeUnflavoredProductID(copy);
  if (exchangeId != -1 && exchangeId != static_cast<int>(copy.exchange))
    return false;
  if (series != nullptr && !(series->product == copy)) return false;
  return true;
}

bool UpdateHint::IsUpdated(int otherExchangeId) const {
  dv_core_ns::AEnum_ExchIds id(otherExchangeId);
  SeriesNameFormatter::MakeUnflavoredExchangeID(id);
  return exchangeId == -1 || exchangeId == static_cast<int>(id);
}

SeriesNameFormatterObserver::~SeriesNameFormatterObserver() = default;

}  // namespace nv_fmt

#include "nvshared/platform/core/ids.h"

#include <algorithm>
#include <cstring>

namespace dv_core_ns {
namespace {

// Copies `text` into a fixed array, cut so that a NUL always fits.
template <std::size_t N>
bool CopyCut(char (&dest)[N], std::string_view text) {
  const std::size_t n = std::min(text.size(), N - 1);
  std::memcpy(dest, text.data(), n);
  std::memset(dest + n, 0, N - n);
  return n == text.size();
}

}  // namespace

ProdID::ProdID(int exchangeId, int type, std::string_view name)
    : exchange(exchangeId), productType(type) {
  SetProductName(name);
}

ProdID::~ProdID() = default;

bool ProdID::SetProductName(std::string_view name) {
  return CopyCut(productName, name);
}

bool ProdID::operator==(const ProdID& o) const {
  return exchange == o.exchange && productType == o.productType &&
         std::strcmp(productName, o.productName) == 0;
}

SeriesID::~SeriesID() = default;

bool SeriesID::SetSeriesKey(std::string_view key) {
  return CopyCut(seriesKey, key);
}

bool SeriesID::operator==(const SeriesID& o) const {
  return product == o.product && std::strcmp(seriesKey, o.seriesKey) == 0 &&
         expiry == o.expiry && contractExpiry == o.contractExpiry &&
         strike == o.strike && strikeDivisor == o.strikeDivisor &&
         callPut == o.callPut && versionCode == o.versionCode &&
         combCode == o.combCode;
}

}  // namespace dv_core_ns

#include "nvshared/testing/reference_fixture.h"

#include <mutex>
#include <stdexcept>

namespace nvshared::testing {
namespace {

using dv_core_ns::ProdID;
using dv_core_ns::ProductRecord;
using dv_core_ns::ReferenceDataBuilder;
using dv_core_ns::SeriesID;

void Must(const nvshared::Status& status) {
  if (!status.ok()) throw std::logic_error("test fixture: " + status.message());
}

SeriesID Series(int exchange, int type, const char* product, const char* key,
                dv_core_ns::Date expiry) {
  SeriesID s;
  s.product = ProdID(exchange, type, product);
  s.SetSeriesKey(key);
  s.expiry = expiry;
  return s;
}

}  // namespace

std::unique_ptr<const dv_core_ns::ReferenceData> BuildTestReferenceData() {
  ReferenceDataBuilder b;
  b.SetExchangeIdCount(kTestExchangeIdCount);
  Must(b.AddExchange(0, "DV", 31));
  Must(b.AddExchange(1, "CBOT", 6));
  Must(b.AddExchange(2, "CBOT-A", 6));
  Must(b.AddExchange(3, "eCBOT-A", 6, "Electronic"));
  Must(b.AddExchange(4, "ecbot", 6));
  Must(b.AddExchange(5, "eCBOT", 32));
  Must(b.AddExchange(7, "CME-A", 7, "Globex"));
  Must(b.AddExchange(8, "CME-B", 7));
  Must(b.AddExchange(9, "FIX-A", 34));
  Must(b.AddExchange(10, "CME", 7));
  Must(b.AddExchange(20, "SSE-1", 85));
  Must(b.AddExchange(21, "ALGO-1", 88));
  Must(b.AddExchange(22, "LW", 84));
  Must(b.AddExchange(30, "LIFFE", 3, "London"));
  Must(b.AddExchange(40, "NOMKT", 79));

  ProductRecord es;
  es.id = ProdID(7, dv_core_ns::FUTURE, "ES");
  es.alias = "E-mini S&P";
  es.currency = "USD";
  es.priceTable = true;
  es.priceDecimals = 2;
  Must(b.AddProduct(es));
  ProductRecord spread;
  spread.id = ProdID(7, dv_core_ns::SPREAD, "ES");
  Must(b.AddProduct(spread));

  Must(b.AddSeries(Series(7, dv_core_ns::FUTURE, "ES", "ESH4", {0, 3, 2014})));
  Must(b.AddSeries(Series(7, dv_core_ns::FUTURE, "ES", "ESM4", {0, 6, 2014})));
  SeriesID calendar =
      Series(7, dv_core_ns::SPREAD, "ES", "ESH4-ESM4", {0, 3, 2014});
  calendar.combCode = 516;
  std::vector<ReferenceDataBuilder::LegSpec> legs(2);
  legs[0] = {7, "ESH4", 1, 0, {}};
  legs[1] = {7, "ESM4", -1, 0, {{1003, "far"}}};
  Must(b.AddSeries(calendar, legs));
  // A spread whose legs the data does not know.
  Must(b.AddSeries(
      Series(7, dv_core_ns::SPREAD, "ES", "ESU4-ESZ4", {0, 9, 2014})));

  auto built = b.Build();
  if (!built.ok()) throw std::logic_error(built.status().message());
  return std::move(built).value();
}

void InstallTestReferenceData() {
  static std::once_flag once;
  std::call_once(once, [] {
    dv_core_ns::ReferenceData::Install(BuildTestReferenceData());
  });
}

}  // namespace nvshared::testing

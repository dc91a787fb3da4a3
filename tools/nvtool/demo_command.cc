// nvtool demo: plays a host application starting up on the bundled data,
// then tours what the library answers.
#include <ostream>

#include "nvshared/market/exchange_names.h"
#include "nvshared/market/market_utils.h"
#include "nvshared/platform/core/consumer.h"
#include "nvshared/platform/core/reference_data.h"
#include "tools/nvtool/context.h"

namespace nvtool {
namespace {

void TourReferenceData(std::ostream& out) {
  const auto& data = dv_core_ns::ReferenceData::Current();
  out << "Reference data: " << data.exchanges().size() << " exchanges, "
      << data.products().size() << " products, " << data.series().size()
      << " series.\n";
  for (int id : {7, 8, 3, 21, 0}) {
    if (data.FindExchange(id) == nullptr) continue;
    const int market = nv_ns::MarketUtils::GetMarketFromExchange(id);
    out << "  exchange " << id << ": " << nv_fmt::GetExchangeName(id, true)
        << ", market " << market << " ("
        << dv_core_ns::CDVConsumer::GetMarketName(market) << ")"
        << (nv_ns::MarketUtils::IsECBOTExchangeID(id) ? ", eCBOT" : "")
        << (nv_ns::MarketUtils::IsSyntheticMarket(id) ? ", synthetic" : "")
        << "\n";
  }
  for (const auto& record : data.series()) {
    const dv_core_ns::SeriesID& s = *record.series;
    char date[8];
    if (!nv_fmt::FormatDate(s.contractExpiry, date)) continue;
    out << "  " << s.seriesKey << " on " << nv_fmt::GetExchangeName(
                                              s.product.exchange, true)
        << " expires " << date << "\n";
    break;
  }
}

}  // namespace

void AddDemoCommand(CLI::App& app, Context& context) {
  CLI::App* sub = app.add_subcommand(
      "demo",
      "Play a host application on the reference data: start-up (application "
      "name, error log, exception reports), then a short tour of what the "
      "library answers.");
  sub->callback([&context] {
    const nvshared::Status loaded = context.LoadReferenceData();
    if (!loaded.ok()) throw CLI::RuntimeError(loaded.message(), 1);
    TourReferenceData(*context.out);
  });
}

}  // namespace nvtool

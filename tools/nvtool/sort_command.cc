// nvtool sort: the series of the reference data in the order every contract
// list of the front end shows them.
#include <algorithm>
#include <cstdlib>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "nvshared/market/series_compare.h"
#include "nvshared/naming/series_name_formatter.h"
#include "nvshared/platform/core/consumer.h"
#include "nvshared/platform/core/reference_data.h"
#include "tools/nvtool/context.h"

namespace nvtool {
namespace {

using dv_core_ns::SeriesID;

struct SortOptions {
  std::string exchange;
  std::string product;
  bool seriesNames = false;
};

// An exchange by id or name; throws a one-line error if it names none.
int ExchangeArgument(const std::string& text) {
  char* end = nullptr;
  const long id = std::strtol(text.c_str(), &end, 10);
  if (!text.empty() && *end == '\0' &&
      dv_core_ns::ReferenceData::Current().FindExchange(static_cast<int>(id)) !=
          nullptr) {
    return static_cast<int>(id);
  }
  const int named = dv_core_ns::CDVConsumer::GetExchangeId(text.c_str());
  if (named < 0)
    throw CLI::RuntimeError("unknown exchange \"" + text + "\"", 1);
  return named;
}

void RunSort(const SortOptions& options, std::ostream& out) {
  const int exchange =
      options.exchange.empty() ? -1 : ExchangeArgument(options.exchange);
  std::vector<const SeriesID*> series;
  for (const auto& record : dv_core_ns::ReferenceData::Current().series()) {
    const SeriesID& s = *record.series;
    if (exchange >= 0 && static_cast<int>(s.product.exchange) != exchange) {
      continue;
    }
    if (!options.product.empty() && options.product != s.product.productName) {
      continue;
    }
    series.push_back(&s);
  }
  if (series.empty()) throw CLI::RuntimeError("no series to sort", 1);

  auto& formatter = nv_fmt::SeriesNameFormatter::Instance();
  formatter.SetSeriesNameEnabled(options.seriesNames);
  // A stable sort: the order is not strict everywhere (a spread whose legs
  // are unknown equals every spread of its product), and equal series keep
  // the data's order.
  std::stable_sort(series.begin(), series.end(),
                   [](const SeriesID* a, const SeriesID* b) {
                     return nv_ns::SeriesCompare(a, b) < 0;
                   });
  std::string name;
  for (const SeriesID* s : series) {
    formatter.FormatContract(*s, name, nv_fmt::DefaultFormatContractConfig);
    out << s->seriesKey << '\t' << name << '\n';
  }
}

}  // namespace

void AddSortCommand(CLI::App& app, Context& context) {
  auto options = std::make_shared<SortOptions>();
  CLI::App* sub = app.add_subcommand(
      "sort",
      "Print the series of the reference data in screen order.\n"
      "One line per series: the key, a tab, the name. The order is by "
      "market, product, date, strike, call before put; BTec bonds by their "
      "keys, LME prompts first, ICE strips as month ranges.");
  sub->add_option("--exchange", options->exchange,
                  "Only the series of this exchange (id or name); default: "
                  "every exchange")
      ->type_name("ID");
  sub->add_option("--product", options->product,
                  "Only the series of products with this code, e.g. ES; "
                  "default: every product")
      ->type_name("CODE");
  sub->add_flag("--series-names", options->seriesNames,
                "Show exchanges' own series names, which then also order "
                "series alike in everything else; default: off");
  sub->footer(
      "nvtool sort --exchange CME-A --product ES\n"
      "prints the ES series of CME-A as a host's window lists them.");
  sub->callback([&context, options] {
    const nvshared::Status loaded = context.LoadReferenceData();
    if (!loaded.ok()) throw CLI::RuntimeError(loaded.message(), 1);
    RunSort(*options, *context.out);
  });
}

}  // namespace nvtool

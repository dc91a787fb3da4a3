// nvtool name: the names of series of the reference data, as a host's
// windows show them, with every field of the format config and the
// formatter's switches at hand.
#include <cstdlib>
#include <map>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "nvshared/naming/binary_archiver.h"
#include "nvshared/naming/series_name_formatter.h"
#include "nvshared/platform/core/consumer.h"
#include "nvshared/platform/core/reference_data.h"
#include "nvshared/platform/log/logger.h"
#include "nvshared/platform/log/memory_sink.h"
#include "tools/nvtool/context.h"

namespace nvtool {
namespace {

using dv_core_ns::SeriesID;
using nv_fmt::FormatContractConfig;
using nv_fmt::SeriesNameFormatter;

struct Options {
  std::vector<std::string> keys;
  std::string exchange;
  bool all = false;
  bool legs = false;
  FormatContractConfig config = nv_fmt::DefaultFormatContractConfig;
  bool plainExchange = false;
  bool noProduct = false;
  bool noRatioSign = false;
  bool noCustomName = false;
  bool seriesNames = false;
  std::vector<std::string> seriesNamesFor;
  bool productNames = false;
  std::string namesFile;
};

// An exchange given by id or by name; -1 if it names none.
int ParseExchange(const std::string& text) {
  char* end = nullptr;
  const long id = std::strtol(text.c_str(), &end, 10);
  if (!text.empty() && *end == '\0') {
    return dv_core_ns::ReferenceData::Current().FindExchange(
               static_cast<int>(id)) != nullptr
               ? static_cast<int>(id)
               : -1;
  }
  return dv_core_ns::CDVConsumer::GetExchangeId(text.c_str());
}

int RequireExchange(const std::string& text) {
  const int id = ParseExchange(text);
  if (id < 0) throw CLI::RuntimeError("unknown exchange \"" + text + "\"", 1);
  return id;
}

std::vector<const SeriesID*> SelectSeries(const Options& options) {
  const auto& data = dv_core_ns::ReferenceData::Current();
  std::vector<const SeriesID*> selected;
  if (options.all) {
    for (const auto& record : data.series()) {
      selected.push_back(record.series.get());
    }
    return selected;
  }
  const int exchange =
      options.exchange.empty() ? -1 : RequireExchange(options.exchange);
  for (const std::string& key : options.keys) {
    if (exchange >= 0) {
      const auto* record = data.FindSeries(exchange, key);
      if (record == nullptr) {
        throw CLI::RuntimeError(
            "no series \"" + key + "\" on exchange " + std::to_string(exchange),
            1);
      }
      selected.push_back(record->series.get());
      continue;
    }
    const auto records = data.FindSeriesByKey(key);
    if (records.empty()) {
      throw CLI::RuntimeError("unknown series key \"" + key + "\"", 1);
    }
    if (records.size() > 1) {
      std::string ids;
      for (const auto* record : records) {
        ids += (ids.empty() ? "" : ", ") +
               std::to_string(record->series->product.exchange);
      }
      throw CLI::RuntimeError("series key \"" + key +
                                  "\" is on several exchanges (" + ids +
                                  "); choose one with --exchange",
                              1);
    }
    selected.push_back(records.front()->series.get());
  }
  return selected;
}

void Run(const Options& options, std::ostream& out) {
  FormatContractConfig config = options.config;
  if (options.plainExchange) config.flavoredExchange = false;
  if (options.noProduct) config.showProduct = false;
  if (options.noRatioSign) config.showRatioSign = false;
  if (options.noCustomName) config.useCustomName = false;

  SeriesNameFormatter& formatter = SeriesNameFormatter::Instance();
  if (!options.namesFile.empty()) {
    // The load's log lines are for 'nvtool names'; keep them off the output.
    const auto previous =
        dv_log::GetCustomLog()->SetSink(std::make_shared<dv_log::MemorySink>());
    static nv_fmt::BinaryArchiverFactory factory;
    formatter.SetArchiverFactory(factory);
    formatter.SetArchivePath(options.namesFile.c_str());
    dv_log::GetCustomLog()->SetSink(previous);
  }
  formatter.SetSeriesNameEnabled(options.seriesNames);
  formatter.SetProductNameEnabled(options.productNames);
  for (const std::string& exchange : options.seriesNamesFor) {
    formatter.SetSeriesNameEnabled(RequireExchange(exchange), true);
  }

  std::string name;
  for (const SeriesID* series : SelectSeries(options)) {
    formatter.FormatContract(*series, name, config);
    out << series->seriesKey << '\t' << name;
    dv_core_ns::LegList legs;
    if (options.legs && series->IsSpreadOrStrategy() &&
        dv_core_ns::CDVBasePriceConsumer::CopyLegList(series, legs)) {
      std::string exchange;
      std::string spreadType;
      std::string legText;
      formatter.FormatLegList(legs, exchange, spreadType, legText, config);
      out << '\t' << exchange << '\t' << spreadType << '\t' << legText;
    }
    out << '\n';
  }
}

}  // namespace

void AddNameCommand(CLI::App& app, Context& context) {
  auto options = std::make_shared<Options>();
  FormatContractConfig& config = options->config;
  CLI::App* sub = app.add_subcommand(
      "name",
      "Print the names a host shows for series of the reference data.\n"
      "One line per series: the key, a tab, the name. Starts from the default "
      "format config "
      "(flavoured exchange, product, ratio signs and custom names on); the "
      "flags change one field each. A series the formatter cannot name "
      "prints an empty name.");
  sub->add_option("KEY", options->keys,
                  "Series keys to name, e.g. ESH4; or give --all")
      ->type_name("KEY");
  sub->add_flag("--all", options->all,
                "Name every series of the data; not with KEY");
  sub->add_option("--exchange", options->exchange,
                  "Look the keys up on this exchange (id or name); needed "
                  "where a key is listed by several exchanges; default: the "
                  "only exchange that lists it")
      ->type_name("ID");
  sub->add_flag("--legs", options->legs,
                "For spreads and strategies with known legs, add three "
                "tab-separated columns: the flavoured exchange, the spread "
                "type and the legs");
  sub->add_flag("--show-exchange", config.showExchange,
                "Lead with the exchange name; default: off");
  sub->add_flag("--show-market", config.showMarket,
                "Lead with the market name (wins over --show-exchange); "
                "default: off");
  sub->add_flag("--plain-exchange", options->plainExchange,
                "Exchange lead without its flavour");
  sub->add_flag("--no-product", options->noProduct, "Leave out the product");
  sub->add_flag("--compact", config.compact,
                "Month codes (H4), no '@' before prices, compact legs");
  sub->add_flag("--expiry-only", config.expiryOnly,
                "The expiry piece is always the computed month");
  sub->add_flag("--repeat-product", config.repeatProduct,
                "Print the product on every leg");
  sub->add_flag("--no-ratio-sign", options->noRatioSign,
                "No '+' or '-' in front of leg ratios");
  sub->add_flag("--no-custom-name", options->noCustomName,
                "Ignore the user's custom names");
  sub->add_flag("--strike-with-series-name", config.strikeWithSeriesName,
                "Print the strike although the series name was used");
  sub->add_option("--series-name-mode", config.seriesNameMode,
                  "0: series names as the switches say; 1: always; other: "
                  "never because of the switches; default: 0")
      ->type_name("N");
  sub->add_option("--product-style", config.productNameStyle,
                  "How products print, in any case: default (alias unless "
                  "--product-names), name (code) or alias; default: default")
      ->transform(
          OneOfNamed({{"default", std::to_string(nv_fmt::NameStyle::Default)},
                      {"name", std::to_string(nv_fmt::NameStyle::Name)},
                      {"alias", std::to_string(nv_fmt::NameStyle::Alias)}}))
      ->type_name("STYLE");
  sub->add_flag("--strategy-name-fallback", config.strategyNameFallback,
                "Set the strategy-name fallback field (kept, no effect)");
  sub->add_flag("--series-names", options->seriesNames,
                "Switch on exchanges' own series names everywhere");
  sub->add_option("--series-names-for", options->seriesNamesFor,
                  "Switch on series names for one exchange (id or name) and "
                  "its flavours; repeatable; default: none")
      ->type_name("ID");
  sub->add_flag("--product-names", options->productNames,
                "Show products by their code rather than their alias");
  sub->add_option("--names", options->namesFile,
                  "Custom names from this names file (see 'nvtool names'); "
                  "default: none")
      ->type_name("FILE");
  sub->footer(
      "nvtool name --product-names --legs \"ES CM1\"\n"
      "prints the calendar spread ES CM1 by product code, with its "
      "exchange, spread type and legs.");
  sub->callback([&context, options] {
    if (options->all == !options->keys.empty()) {
      throw CLI::ValidationError("name", "give series keys or --all, not both");
    }
    const nvshared::Status loaded = context.LoadReferenceData();
    if (!loaded.ok()) throw CLI::RuntimeError(loaded.message(), 1);
    Run(*options, *context.out);
  });
}

}  // namespace nvtool

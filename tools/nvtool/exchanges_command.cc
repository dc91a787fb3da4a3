// nvtool exchanges: every exchange of the reference data with its flavoured
// name, its market and the library's classifications.
#include <algorithm>
#include <ostream>
#include <string>
#include <vector>

#include "nvshared/market/exchange_names.h"
#include "nvshared/market/market_utils.h"
#include "nvshared/platform/core/consumer.h"
#include "nvshared/platform/core/reference_data.h"
#include "tools/nvtool/context.h"

namespace nvtool {
namespace {

struct Options {
  bool tsv = false;
  bool noHeader = false;
};

std::vector<std::vector<std::string>> Rows() {
  std::vector<std::vector<std::string>> rows;
  auto yesNo = [](bool b) { return std::string(b ? "yes" : "no"); };
  for (const auto& e : dv_core_ns::ReferenceData::Current().exchanges()) {
    const int market = nv_ns::MarketUtils::GetMarketFromExchange(e.id);
    rows.push_back({std::to_string(e.id), nv_fmt::GetExchangeName(e.id, false),
                    nv_fmt::GetExchangeName(e.id, true), std::to_string(market),
                    dv_core_ns::CDVConsumer::GetMarketName(market),
                    yesNo(nv_ns::MarketUtils::IsSyntheticMarket(e.id)),
                    yesNo(nv_ns::MarketUtils::IsFIXExchangeID(e.id)),
                    yesNo(nv_ns::MarketUtils::IsECBOTExchangeID(e.id))});
  }
  return rows;
}

void Print(std::ostream& out, const Options& options) {
  const std::vector<std::string> header = {
      "ID",        "NAME", "FLAVOURED NAME", "MARKET", "MARKET NAME",
      "SYNTHETIC", "FIX",  "ECBOT"};
  std::vector<std::vector<std::string>> rows = Rows();
  if (!options.noHeader) rows.insert(rows.begin(), header);
  if (options.tsv) {
    for (const auto& row : rows) {
      for (std::size_t i = 0; i < row.size(); ++i) {
        out << (i ? "\t" : "") << row[i];
      }
      out << '\n';
    }
    return;
  }
  std::vector<std::size_t> widths(header.size(), 0);
  for (const auto& row : rows) {
    for (std::size_t i = 0; i < row.size(); ++i) {
      widths[i] = std::max(widths[i], row[i].size());
    }
  }
  for (const auto& row : rows) {
    std::string line;
    for (std::size_t i = 0; i < row.size(); ++i) {
      line += row[i];
      if (i + 1 < row.size()) line.append(widths[i] - row[i].size() + 2, ' ');
    }
    out << line << '\n';
  }
}

}  // namespace

void AddExchangesCommand(CLI::App& app, Context& context) {
  auto options = std::make_shared<Options>();
  CLI::App* sub = app.add_subcommand(
      "exchanges",
      "List every exchange of the reference data.\n"
      "One line per exchange: id, name, flavoured name, market id and name, "
      "and whether the library counts it as synthetic, FIX or eCBOT.");
  sub->add_flag("--tsv", options->tsv,
                "Tab-separated columns; default: columns aligned with blanks");
  sub->add_flag("--no-header", options->noHeader,
                "Leave out the header line; default: a header line first");
  sub->footer(
      "nvtool exchanges --tsv --no-header\n"
      "prints the exchanges of the bundled sample, ready for other tools.");
  sub->callback([&context, options] {
    const nvshared::Status loaded = context.LoadReferenceData();
    if (!loaded.ok()) throw CLI::RuntimeError(loaded.message(), 1);
    Print(*context.out, *options);
  });
}

}  // namespace nvtool

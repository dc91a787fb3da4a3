// nvtool match: which entry of a defaults table a key selects, and with
// what score. The table is a JSON file (docs/formats/defaults-table.md); the
// key is given by options, each left open when not given.
#include <cstdlib>
#include <memory>
#include <ostream>
#include <string>

#include "nvshared/defaults/default_key.h"
#include "nvshared/defaults/defaults_table.h"
#include "nvshared/market/exchange_names.h"
#include "nvshared/platform/core/agile_enums.h"
#include "nvshared/platform/core/consumer.h"
#include "nvshared/platform/core/reference_data.h"
#include "nvshared/platform/os/atomic_file.h"
#include "tools/nvtool/context.h"

namespace nvtool {
namespace {

struct MatchOptions {
  std::string table;
  std::string templateName;
  int broker = 0;
  std::string market;
  std::string exchange;
  int gmId = -1;
  std::string productType;
  std::string product;
  bool multiBroker = false;
};

// A whole decimal number, or nothing.
bool ParseNumber(const std::string& text, long& out) {
  if (text.empty()) return false;
  char* end = nullptr;
  out = std::strtol(text.c_str(), &end, 10);
  return *end == '\0';
}

// An exchange by id, plain name or flavoured name.
int RequireExchange(const std::string& text) {
  const auto& data = dv_core_ns::ReferenceData::Current();
  long id = -1;
  if (ParseNumber(text, id)) {
    if (id >= 0 && id <= 0x7FFFFFFF &&
        data.FindExchange(static_cast<int>(id)) != nullptr)
      return static_cast<int>(id);
  } else {
    const int plain = dv_core_ns::CDVConsumer::GetExchangeId(text.c_str());
    if (plain >= 0) return plain;
    for (const auto& e : data.exchanges()) {
      if (text == nv_fmt::GetExchangeName(e.id, true)) return e.id;
    }
  }
  throw CLI::RuntimeError("unknown exchange \"" + text + "\"", 1);
}

int RequireMarket(const std::string& text) {
  long id = -1;
  if (ParseNumber(text, id)) {
    if (id >= 0 && id <= 0x7FFFFFFF) return static_cast<int>(id);
  } else {
    const int market = dv_core_ns::CDVConsumer::GetMarketId(text.c_str());
    if (market >= 0) return market;
  }
  throw CLI::RuntimeError("unknown market \"" + text + "\"", 1);
}

int RequireProductType(const std::string& text) {
  long id = -1;
  if (ParseNumber(text, id)) {
    if (id >= 1 && id <= 0x7FFFFFFF) return static_cast<int>(id);
  } else {
    const int type = dv_core_ns::AEnum_ProdIDs::FromName(text);
    if (type >= 1) return type;
  }
  throw CLI::RuntimeError("unknown product type \"" + text + "\"", 1);
}

void Run(const Context& context, const MatchOptions& o) {
  const nvshared::Status loaded = context.LoadReferenceData();
  if (!loaded.ok()) throw CLI::RuntimeError(loaded.message(), 1);
  // A flavoured gateway name is known to the library only once it has been
  // made; a host has shown its gateways by the time it fills a ticket, so
  // make them all first, lest an entry's gateway find no market.
  for (const auto& e : dv_core_ns::ReferenceData::Current().exchanges()) {
    nv_fmt::GetExchangeName(e.id, true);
  }
  const auto text = nvshared::os::ReadWholeFile(o.table);
  if (!text.ok()) throw CLI::RuntimeError(text.status().message(), 1);
  auto entries = nv_ns::ParseDefaultsTable(*text);
  if (!entries.ok())
    throw CLI::RuntimeError(o.table + ": " + entries.status().message(), 1);

  const CriteriaKeyParams params(
      o.templateName, static_cast<unsigned short>(o.broker),
      static_cast<nv_ns::MarketType::Value>(
          o.market.empty() ? -1 : RequireMarket(o.market)),
      static_cast<nv_ns::ExchangeIds::Value>(
          o.exchange.empty() ? -1 : RequireExchange(o.exchange)),
      o.gmId,
      static_cast<nv_ns::ProductType::Value>(
          o.productType.empty() ? 0 : RequireProductType(o.productType)),
      o.product);
  const CDefaultKey key(params);
  CDefaultKey::m_bMultiBrokerMode = o.multiBroker;

  nv_ns::DefaultsTable table(std::move(entries).value());
  int score = -1;
  if (!key.MatchScored(table, score)) {
    *context.out << "no entry fits\n";
    return;
  }
  table.RestoreBest();
  const auto& winner = table.entries()[table.position()];
  *context.out << "entry " << table.position() << "\tscore " << score;
  if (!winner.name.empty()) *context.out << '\t' << winner.name;
  *context.out << '\n';
}

}  // namespace

void AddMatchCommand(CLI::App& app, Context& context) {
  auto o = std::make_shared<MatchOptions>();
  CLI::App* sub = app.add_subcommand(
      "match",
      "Choose the entry of a defaults table that fits a key best.\n"
      "Does what a host does to fill an order ticket. Prints the winner's "
      "index (from 0), its "
      "score (broker 32, template 16, product 8, gateway 4, market 2, product "
      "type 1) and its name, or \"no entry fits\". Key fields not given are "
      "open.");
  sub->add_option(
         "TABLE", o->table,
         "The defaults table, a JSON file (docs/formats/defaults-table.md)")
      ->required()
      ->type_name("TABLE");
  sub->add_option("--template", o->templateName, "Template name; default: any")
      ->type_name("NAME");
  sub->add_option("--broker", o->broker,
                  "Broker id, 0 to 65535; counts only with --multi-broker; "
                  "default: 0")
      ->check(CLI::Range(0, 65535))
      ->type_name("ID");
  sub->add_option("--market", o->market, "Market id or name; default: any")
      ->type_name("MARKET");
  sub->add_option("--exchange", o->exchange,
                  "Gateway: exchange id, name or flavoured name; default: "
                  "any")
      ->type_name("EXCHANGE");
  sub->add_option("--gm-id", o->gmId, "GM id; -1 for any; default: -1")
      ->type_name("ID");
  sub->add_option("--product-type", o->productType,
                  "Product type name (FUTURE, LEGWISE, ...) or number; "
                  "default: any")
      ->type_name("TYPE");
  sub->add_option("--product", o->product, "Product code; default: any")
      ->type_name("CODE");
  sub->add_flag("--multi-broker", o->multiBroker,
                "Multi-broker mode: broker ids take part in matching; "
                "default: off");
  sub->footer(
      "nvtool match defaults.json --exchange CME-A --product ES\n"
      "prints the entry of defaults.json that fills a ticket for ES on "
      "CME-A.");
  sub->callback([&context, o] { Run(context, *o); });
}

}  // namespace nvtool

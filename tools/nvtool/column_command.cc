// nvtool column: sets up a user-defined price column from a settings store
// file and/or options, checks its terms, and converts a stream of exchange
// prices (one per line on standard input) into user-defined prices, or back.
#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "nvshared/platform/utils/registry_mgr.h"
#include "nvshared/platform/utils/udp_date_time.h"
#include "nvshared/udp/custom_price_model.h"
#include "nvshared/udp/udp_data.h"
#include "nvshared/udp/udp_enums.h"
#include "nvshared/udp/udp_price.h"
#include "tools/nvtool/bond_terms.h"
#include "tools/nvtool/context.h"

namespace nvtool {
namespace {

struct ColumnOptions {
  std::string settings, save;
  std::string settle, maturity, issue, firstCoupon;
  double coupon = 0.0;
  int frequency = 2;
  std::string dayCount = "0";
  int endOfMonth = 1;
  bool optional = false;
  double factor = 1.0;
  int type = 3;
  int yieldType = 2;
  double stripBase = 0.0;
  double pv01 = 1.0;
  bool convert365 = false;
  bool reverse = false;
  int decimals = 6;
  std::string model, configDir;
  std::vector<std::string> params;
};

const char* VerdictMeaning(int code) {
  switch (code) {
    case 0:
      return "valid";
    case 1:
      return "settlement date not before maturity, or not after now";
    case 2:
      return "conversion factor outside 0.1 to 5.0";
    case 3:
      return "issue date not valid";
    case 4:
      return "issue date not before the first coupon date";
    case 5:
      return "first coupon date not valid, or issue date missing";
    case 6:
      return "first coupon date not before maturity";
    case 7:
      return "first coupon date outside the span from issue to maturity";
    case 8:
      return "first coupon date not on the coupon calendar";
    default:
      return "unknown";
  }
}

const char* ConverterName(const CUDPrice* p) {
  if (dynamic_cast<const CCustomUDPrice*>(p)) {
    return "CCustomUDPrice (custom price model)";
  }
  if (dynamic_cast<const CUDPYield2Maturity*>(p)) {
    return "CUDPYield2Maturity (yield to maturity in percent)";
  }
  if (dynamic_cast<const CUDPriceYield*>(p)) {
    return "CUDPriceYield (simple yield)";
  }
  if (dynamic_cast<const CUDPriceParRate*>(p)) {
    return "CUDPriceParRate (par rate)";
  }
  return "unknown";
}

// Binds the user's store to `path` after clearing it.
void BindStore(const std::string& path) {
  CRegistryMgr& store = CRegistryMgr::Instance(CRegistryMgr::kUser);
  store.Clear();
  const nvshared::Status status = store.SetFilePath(path);
  if (!status.ok()) throw CLI::RuntimeError(status.message(), 1);
}

// The settings: the file's, then every option given on the command line.
CUDPData BuildSettings(const CLI::App& sub, const ColumnOptions& o) {
  CUDPData d;
  if (!o.settings.empty()) {
    std::error_code ec;
    if (!std::filesystem::is_regular_file(o.settings, ec)) {
      throw CLI::RuntimeError("no settings file " + o.settings, 1);
    }
    BindStore(o.settings);
    const bool loaded = d.LoadSaveSettings(true) == 1;
    CRegistryMgr::Instance(CRegistryMgr::kUser).Clear();
    if (!loaded) {
      throw CLI::RuntimeError("cannot load the settings of " + o.settings, 1);
    }
  }
  auto given = [&sub](const char* name) { return sub.count(name) > 0; };
  if (given("--settle")) {
    d.SetSettlementDate(ParseDate("--settle", o.settle), false);
  }
  if (given("--maturity")) {
    d.SetMaturityDate(ParseDate("--maturity", o.maturity), false);
  }
  if (given("--issue")) d.SetIssueDate(ParseDate("--issue", o.issue), false);
  if (given("--first-coupon")) {
    d.SetFirstCouponDate(ParseDate("--first-coupon", o.firstCoupon));
  }
  if (given("--coupon")) d.SetCoupon(o.coupon, false);
  if (given("--freq")) d.SetCouponFreq(o.frequency, false);
  if (given("--daycount")) d.m_iDayCount = ParseDayCount(o.dayCount);
  if (given("--eom")) d.m_bEOMConversion = o.endOfMonth;
  if (given("--optional")) d.m_bYTMOptionalSettings = o.optional ? 1 : 0;
  if (given("--factor")) d.m_dConvFactor = o.factor;
  if (given("--type")) d.m_UDPriceType = o.type;
  if (given("--yield-type")) d.m_YieldType = o.yieldType;
  if (given("--strip-base")) d.m_dStripBase = o.stripBase;
  if (given("--pv01")) d.m_dPV01 = o.pv01;
  if (given("--convert-365")) d.m_bConvertTo365 = o.convert365 ? 1 : 0;
  if (o.settings.empty() && !given("--type")) d.m_UDPriceType = 3;
  if (given("--model")) d.m_sCustomPriceModelName = o.model;
  if (given("--param")) {
    d.m_vectUDPKeyValue.clear();
    for (const std::string& item : o.params) {
      const auto equals = item.find('=');
      if (equals == std::string::npos || equals == 0) {
        throw CLI::ValidationError("--param " + item, "expected KEY=VALUE");
      }
      d.m_vectUDPKeyValue.emplace_back("string", item.substr(0, equals),
                                       item.substr(equals + 1), "", "", "");
    }
  }
  d.m_bEnableUDP = 1;
  return d;
}

// Blanks around a line are ignored; the rest must be one number.
bool ParseNumber(const std::string& line, double& value) {
  const char* begin = line.c_str();
  char* end = nullptr;
  value = std::strtod(begin, &end);
  if (end == begin) return false;
  while (*end == ' ' || *end == '\t' || *end == '\r') ++end;
  return *end == '\0';
}

bool IsBlank(const std::string& line) {
  return line.find_first_not_of(" \t\r") == std::string::npos;
}

void Run(const CLI::App& sub, const ColumnOptions& o, Context& context) {
  CUDPData d = BuildSettings(sub, o);
  std::ostream& out = *context.out;

  int verdict = -1;
  try {
    verdict = d.ValidateData();
  } catch (const std::out_of_range&) {
    throw CLI::RuntimeError(
        "a date is outside the calendar (years 1400 to 9999)", 1);
  }
  out << "verdict: " << verdict << ' ' << VerdictMeaning(verdict) << '\n';

  if (!o.save.empty()) {
    BindStore(o.save);
    const bool saved = d.LoadSaveSettings(false) == 1;
    const nvshared::Status bound =
        CRegistryMgr::Instance(CRegistryMgr::kUser).SetFilePath("");
    (void)bound;
    if (!saved) throw CLI::RuntimeError("cannot save to " + o.save, 1);
    out << "saved: " << o.save << '\n';
  }

  if (d.m_UDPriceType == nv_ns::UDPPriceType::CustomModel) {
    const std::string dir =
        o.configDir.empty() ? DefaultPriceModelDir() : o.configDir;
    if (!LoadPriceModels(dir).CustomModelNameExists(
            d.m_sCustomPriceModelName)) {
      throw CLI::RuntimeError("no price model named '" +
                                  d.m_sCustomPriceModelName + "' in " + dir +
                                  "/pricemodels",
                              1);
    }
  }
  CUDPrice* raw = nullptr;
  try {
    raw = CUDPriceFactory::GetUDPrice(&d);
  } catch (const std::out_of_range&) {
    throw CLI::RuntimeError(
        "a date is outside the calendar (years 1400 to 9999)", 1);
  }
  std::unique_ptr<CUDPrice, void (*)(CUDPrice*)> price(
      raw, [](CUDPrice* p) { CUDPriceFactory::ReleaseUDPrice(p); });
  if (!price) {
    throw CLI::RuntimeError("price type " + std::to_string(d.m_UDPriceType) +
                                " (" +
                                CUDPData::GetPriceTypeNameEx(d.m_UDPriceType) +
                                ") has no converter: types 2, 3 and 6 have one",
                            1);
  }
  out << "converter: " << ConverterName(price.get()) << '\n';

  std::string line;
  int lineNumber = 0;
  bool allGood = true;
  while (std::getline(std::cin, line)) {
    ++lineNumber;
    if (IsBlank(line)) continue;
    double value = 0.0;
    if (!ParseNumber(line, value)) {
      *context.err << "nvtool: line " << lineNumber
                   << ": not a number: " << line << '\n';
      allGood = false;
      continue;
    }
    double result = 0.0;
    const bool ok = o.reverse ? price->GetPriceFromUDP(value, result)
                              : price->GetUDPFromPrice(value, result);
    if (!ok) {
      *context.err << "nvtool: line " << lineNumber << ": no "
                   << (o.reverse ? "exchange price" : "user-defined price")
                   << " for " << Fixed(value, o.decimals) << '\n';
      allGood = false;
      continue;
    }
    out << Fixed(value, o.decimals) << '\t' << Fixed(result, o.decimals)
        << '\n';
  }
  out.flush();
  if (!allGood) throw CLI::RuntimeError("some lines were not converted", 1);
}

}  // namespace

void AddColumnCommand(CLI::App& app, Context& context) {
  auto o = std::make_shared<ColumnOptions>();
  CLI::App* sub = app.add_subcommand(
      "column",
      "Turn exchange prices into user-defined prices, or back.\n"
      "Sets up the column from a settings file and/or options (options "
      "given override the file; the column is switched on), prints the "
      "verdict of its terms' check and the converter chosen, then reads "
      "exchange prices from standard input, one per line, and prints each "
      "with its user-defined price, or with --reverse user-defined prices "
      "with their exchange prices. Dates are written YYYY-MM-DD.");
  sub->add_option("--settings", o->settings,
                  "Settings store file to load (section [UserDefinedPrice]); "
                  "default: none, the record's defaults")
      ->type_name("FILE");
  sub->add_option("--save", o->save,
                  "Write the settings to this store file; default: none")
      ->type_name("FILE");
  sub->add_option("--settle", o->settle,
                  "Settlement date; default: from the file, else today")
      ->type_name("DATE");
  sub->add_option("--maturity", o->maturity,
                  "Maturity date; default: from the file, else today")
      ->type_name("DATE");
  sub->add_option("--issue", o->issue,
                  "Issue (dated) date; default: from the file, else today")
      ->type_name("DATE");
  sub->add_option("--first-coupon", o->firstCoupon,
                  "First coupon date; default: from the file, else today")
      ->type_name("DATE");
  sub->add_option("--coupon", o->coupon,
                  "Annual coupon in percent; default: from the file, else 8.5")
      ->check(FiniteNumber())
      ->type_name("PERCENT");
  sub->add_option("--freq", o->frequency,
                  "Coupons a year: 1, 2, 4 or 12; default: from the file, "
                  "else 2")
      ->transform(OneOf({"1", "2", "4", "12"}))
      ->type_name("N");
  AddDayCountOption(*sub, o->dayCount, "from the file, else 0, Actual/Actual");
  sub->add_option("--eom", o->endOfMonth,
                  "End-of-month rule, 0 or 1; default: from the file, else 1")
      ->transform(OneOf({"0", "1"}))
      ->type_name("0|1");
  sub->add_flag("--optional", o->optional,
                "Use --issue and --first-coupon for an odd first period; "
                "default: from the file, else off");
  sub->add_option("--factor", o->factor,
                  "Futures conversion factor; default: from the file, else 1")
      ->check(FiniteNumber())
      ->type_name("FACTOR");
  sub->add_option("--type", o->type,
                  "Price type, 1 to 6: 2 yield, 3 yield to maturity, 6 par "
                  "rate, 4 a custom model (see --model); 1 and 5 have no "
                  "converter; default: from the file, else 3")
      ->check(CLI::Range(1, 6))
      ->type_name("TYPE");
  sub->add_option("--yield-type", o->yieldType,
                  "Yield of type 2: 1 price, 2 100-price, 3 (10000-price)/100, "
                  "4 (10000-(price+strip base))/100, 5 (100000-price)/1000; "
                  "default: from the file, else 2")
      ->check(CLI::Range(1, 5))
      ->type_name("N");
  sub->add_option("--strip-base", o->stripBase,
                  "Strip base of yield type 4; default: from the file, else 0")
      ->check(FiniteNumber())
      ->type_name("NUMBER");
  sub->add_option("--pv01", o->pv01,
                  "Divisor of the par rate conversion; default: 1")
      ->check(FiniteNumber())
      ->type_name("NUMBER");
  sub->add_flag("--convert-365", o->convert365,
                "Show simple yields on a 365-day basis; default: from the "
                "file, else off");
  sub->add_flag("--reverse", o->reverse,
                "Read user-defined prices and print exchange prices; "
                "default: off");
  sub->add_option("--model", o->model,
                  "Name of the custom price model of type 4; default: from "
                  "the file, else none")
      ->type_name("NAME");
  sub->add_option("--config-dir", o->configDir,
                  "Configuration directory whose pricemodels/ holds the "
                  "plug-ins of type 4; default: the one installed with nvtool")
      ->type_name("DIR");
  sub->add_option("--param", o->params,
                  "A parameter of the custom model, KEY=VALUE, repeatable; "
                  "without any, the model gets the bond terms; default: none")
      ->type_name("KEY=VALUE")
      ->allow_extra_args(false);
  sub->add_option("--decimals", o->decimals,
                  "Decimals printed, 0 to 15; default: 6")
      ->check(CLI::Range(0, 15))
      ->type_name("N");
  sub->footer(
      "nvtool column --settings column.ini < prices.txt\n"
      "prints each futures price of prices.txt with its yield to maturity, "
      "on the terms saved in column.ini.");
  sub->callback([sub, o, &context] { Run(*sub, *o, context); });
}

}  // namespace nvtool

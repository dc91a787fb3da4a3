// nvtool yield and nvtool price: a bond's yield to maturity from its clean
// price, and back, through the library's yield calculator.
#include <cmath>
#include <cstdio>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>

#include "nvshared/platform/utils/udp_date_time.h"
#include "nvshared/udp/udp_enums.h"
#include "nvshared/udp/udp_ytm_calc.h"
#include "tools/nvtool/bond_terms.h"
#include "tools/nvtool/context.h"

namespace nvtool {
namespace {

struct BondOptions {
  std::string settle, maturity, issue, firstCoupon;
  double coupon = 0.0;
  int frequency = 2;
  std::string dayCount = "0";
  bool endOfMonth = false;
  bool optional = false;
  double factor = 1.0;
  bool explain = false;
  double value = 0.0;  // the price for `yield`, the yield for `price`
};

const char* ValidationMeaning(int code) {
  switch (code) {
    case 1:
      return "settlement date not before maturity";
    case 2:
      return "coupon out of range (above 0 and below 100)";
    case 3:
      return "conversion factor out of range (0.1 up to, not including, 5.0)";
    case 4:
      return "coupon frequency zero";
    default:
      return "unknown";
  }
}

const char* FirstCouponMeaning(int code) {
  switch (code) {
    case 5:
      return "first coupon date or issue date missing";
    case 7:
      return "first coupon date outside the span from issue to maturity";
    case 8:
      return "first coupon date not on the coupon calendar counted back from "
             "maturity, after the issue date";
    default:
      return "unknown";
  }
}

// Builds the calculator from the options, or throws the refusal.
void Initialize(const BondOptions& o, CUDPYTMCalc& calc) {
  if (!o.optional && (!o.issue.empty() || !o.firstCoupon.empty())) {
    throw CLI::RuntimeError(
        "--issue and --first-coupon are used only with --optional", 1);
  }
  const nv_ns::UDPDateTime settle = ParseDate("--settle", o.settle);
  const nv_ns::UDPDateTime maturity = ParseDate("--maturity", o.maturity);
  // An absent optional date is an invalid value, which the calculator takes
  // as "not given".
  const nv_ns::UDPDateTime absent(-1e12);
  const nv_ns::UDPDateTime issue =
      o.issue.empty() ? absent : ParseDate("--issue", o.issue);
  const nv_ns::UDPDateTime first =
      o.firstCoupon.empty() ? absent
                            : ParseDate("--first-coupon", o.firstCoupon);

  CUDPYTMCalc::CalcParams p;
  p.m_pSettlement = &settle;
  p.m_pMaturity = &maturity;
  p.m_pIssue = &issue;
  p.m_pFirstCoupon = &first;
  p.m_CouponFreq = o.frequency;
  p.m_DayCount = ParseDayCount(o.dayCount);
  p.m_dCoupon = o.coupon;
  p.m_dConvFactor = o.factor;
  p.m_bEOMConversion = o.endOfMonth;
  p.m_bYTMOptionalSettings = o.optional;

  const int code = CUDPYTMCalc::ValidateValues(p);
  if (code != 0) {
    throw CLI::RuntimeError("refused: validation code " + std::to_string(code) +
                                ", " + ValidationMeaning(code),
                            1);
  }
  try {
    if (o.optional) {
      const int check = CUDPYTMCalc::IsValidFirstCouponDate(
          issue, first, maturity, o.frequency, o.endOfMonth);
      if (check != 0) {
        throw CLI::RuntimeError("refused: first coupon code " +
                                    std::to_string(check) + ", " +
                                    FirstCouponMeaning(check),
                                1);
      }
    }
    if (!calc.Initialize(p)) {
      throw CLI::RuntimeError("refused: the terms give no coupon calendar", 1);
    }
  } catch (const std::out_of_range& e) {
    throw CLI::RuntimeError(
        std::string("a date is outside the calendar (years 1400 to 9999): ") +
            e.what(),
        1);
  }
}

void Explain(std::ostream& out, const CUDPYTMCalc& calc) {
  out << "shape: " << calc.GetShapeName() << '\n'
      << "N: " << calc.GetPeriods() << '\n'
      << "C: " << Fixed(calc.GetPeriodCoupon(), 10) << '\n'
      << "AI: " << Fixed(calc.GetAccrued(), 10) << '\n'
      << "w: " << Fixed(calc.GetFraction(), 10) << '\n'
      << "Cl: " << Fixed(calc.GetLongCoupon(), 10) << '\n'
      << "Cs: " << Fixed(calc.GetShortCoupon(), 10) << '\n';
}

CLI::App* AddBondCommand(CLI::App& app, const std::string& name,
                         const std::string& description, BondOptions& o) {
  CLI::App* sub = app.add_subcommand(name, description);
  sub->add_option("--settle", o.settle, "Settlement date")
      ->type_name("DATE")
      ->required();
  sub->add_option("--maturity", o.maturity, "Maturity date")
      ->type_name("DATE")
      ->required();
  sub->add_option("--coupon", o.coupon, "Annual coupon in percent, e.g. 4.25")
      ->check(FiniteNumber())
      ->type_name("PERCENT")
      ->required();
  sub->add_option("--freq", o.frequency, "Coupons a year: 1, 2, 4 or 12")
      ->transform(OneOf({"1", "2", "4", "12"}))
      ->type_name("N")
      ->capture_default_str();
  AddDayCountOption(*sub, o.dayCount, "0, Actual/Actual");
  sub->add_flag("--eom", o.endOfMonth,
                "End-of-month rule: coupons of a month-end maturity stay on "
                "month ends, and 30/360 counts February's last day as the "
                "30th; default: off");
  sub->add_flag("--optional", o.optional,
                "Use --issue and --first-coupon for an odd first period; "
                "default: off, a regular calendar counted back from maturity");
  sub->add_option("--issue", o.issue,
                  "Issue (dated) date; only with --optional")
      ->type_name("DATE");
  sub->add_option("--first-coupon", o.firstCoupon,
                  "First coupon date; only with --optional")
      ->type_name("DATE");
  sub->add_option("--factor", o.factor,
                  "Conversion factor: prices are futures prices, the bond's "
                  "price divided by it")
      ->check(FiniteNumber())
      ->type_name("FACTOR")
      ->capture_default_str();
  sub->add_flag("--explain", o.explain,
                "Also print the bond's shape and its reduced terms N, C, AI, "
                "w, Cl, Cs");
  return sub;
}

}  // namespace

void AddYieldCommand(CLI::App& app, Context& context) {
  auto o = std::make_shared<BondOptions>();
  CLI::App* sub = AddBondCommand(
      app, "yield",
      "A bond's yield to maturity from its clean price.\n"
      "Prints the yield in percent with 10 decimals. Dates are written "
      "YYYY-MM-DD.",
      *o);
  sub->add_option("--price", o->value, "Clean price per 100, at least 1.0")
      ->check(FiniteNumber())
      ->type_name("PRICE")
      ->required();
  sub->footer(
      "nvtool yield --settle 2024-03-15 --maturity 2029-03-15 --coupon 4 "
      "--price 100\n"
      "prints 4.0000000000: settled on a coupon date, a bond priced at par "
      "yields its coupon.");
  sub->callback([&context, o] {
    CUDPYTMCalc calc;
    Initialize(*o, calc);
    if (o->explain) Explain(*context.out, calc);
    double yield = 0.0;
    if (!calc.CalcYieldToMaturity(o->value, yield)) {
      throw CLI::RuntimeError(
          o->value < 1.0 ? "refused: a price below 1.0 has no yield"
                         : "no yield found for price " + Fixed(o->value, 10),
          1);
    }
    *context.out << (o->explain ? "yield: " : "") << Fixed(yield, 10) << '\n';
  });
}

void AddPriceCommand(CLI::App& app, Context& context) {
  auto o = std::make_shared<BondOptions>();
  CLI::App* sub = AddBondCommand(
      app, "price",
      "A bond's clean price from its yield to maturity.\n"
      "Prints the clean price per 100 with 10 decimals. Dates are written "
      "YYYY-MM-DD.",
      *o);
  sub->add_option("--yield", o->value, "Yield to maturity in percent")
      ->check(FiniteNumber())
      ->type_name("PERCENT")
      ->required();
  sub->footer(
      "nvtool price --settle 2024-03-15 --maturity 2029-03-15 --coupon 4 "
      "--yield 5\n"
      "prints 95.6239680345, the clean price of a 4% bond five years from "
      "maturity at a yield of 5%.");
  sub->callback([&context, o] {
    CUDPYTMCalc calc;
    Initialize(*o, calc);
    if (o->explain) Explain(*context.out, calc);
    double price = 0.0;
    if (!calc.CalcPriceFromYield(o->value, price)) {
      throw CLI::RuntimeError("no price for yield " + Fixed(o->value, 10) +
                                  " (at a yield of 0 the formula has no value)",
                              1);
    }
    *context.out << (o->explain ? "price: " : "") << Fixed(price, 10) << '\n';
  });
}

}  // namespace nvtool

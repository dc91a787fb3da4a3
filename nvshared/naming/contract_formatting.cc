// Names of single contracts: exchange or market, product, expiry, call or put
// and strike, and the hand-over to the leg list for spreads and strategies.
#include <algorithm>
#include <cstdlib>
#include <cstring>

#include <strings.h>

#include "nvshared/market/exchange_names.h"
#include "nvshared/market/internal/market_utils_internal.h"
#include "nvshared/market/market_utils.h"
#include "nvshared/naming/internal/text_piece.h"
#include "nvshared/naming/series_name_formatter.h"
#include "nvshared/platform/core/consumer.h"
#include "nvshared/platform/core/market_table.h"

namespace nv_fmt {
namespace {

using dv_core_ns::CDVBasePriceConsumer;
using dv_core_ns::Date;
using dv_core_ns::Leg;
using dv_core_ns::LegList;
using dv_core_ns::ProdID;
using dv_core_ns::SeriesID;

constexpr char kMonthLetters[] = "FGHJKMNQUVXZ";
// The month names, printed with a two-digit year ("Mar14") or with a
// two-digit day in front ("15Mar14"). Row 0 is never reached: month 0 is
// filtered first.
constexpr std::string_view kMonthNames[13] = {"???", "Jan", "Feb", "Mar", "Apr",
                                              "May", "Jun", "Jul", "Aug", "Sep",
                                              "Oct", "Nov", "Dec"};

constexpr int kMarketIceIpe = 32;
constexpr int kMarketTocom = 68;

// Appends a piece of a name, with one blank ahead of it unless the name is
// still empty.
void AppendPiece(std::string& out, std::string_view piece) {
  if (!out.empty()) out += ' ';
  out += piece;
}

// "%02d": at least two digits, zero-padded after any sign.
internal::TextPiece& TwoDigits(internal::TextPiece& piece, int value) {
  return piece.Int(value, 2, true);
}

const std::string& MarketNameOfExchange(int exchangeId) {
  return nv_ns::MarketUtilsInternal::MarketName(
      nv_ns::MarketUtils::GetMarketFromExchange(exchangeId));
}

bool IsOneOf(int type, std::initializer_list<int> types) {
  return std::find(types.begin(), types.end(), type) != types.end();
}

}  // namespace

bool SeriesNameFormatter::FormatContract(
    const SeriesID& series, std::string& out,
    const FormatContractConfig& config) const {
  bool handled = false;
  const bool result = FormatContractInternal(series, out, handled, config);
  if (handled) return result;
  // The custom name has been looked for already.
  FormatContractConfig copy = config;
  copy.useCustomName = false;
  return FormatSeries(series, out, copy);
}

bool SeriesNameFormatter::FormatContract(
    const Leg& leg, std::string& out,
    const FormatContractConfig& config) const {
  out.clear();
  const SeriesID* series = leg.GetSharedSeriesID().get();
  if (series == nullptr) return false;
  bool handled = false;
  const bool result = FormatContractInternal(*series, out, handled, config);
  if (handled) return result;
  FormatContractConfig copy = config;
  copy.useCustomName = false;
  return FormatSeries(leg, out, copy);
}

bool SeriesNameFormatter::FormatSeries(
    const SeriesID& series, std::string& out,
    const FormatContractConfig& config) const {
  return FormatSeriesInternal(series, out, config, series.strike);
}

bool SeriesNameFormatter::FormatSeries(
    const Leg& leg, std::string& out,
    const FormatContractConfig& config) const {
  const SeriesID* series = leg.GetSharedSeriesID().get();
  if (series == nullptr) {
    out.clear();
    return false;
  }
  return FormatSeriesInternal(*series, out, config, leg.strike);
}

bool SeriesNameFormatter::FormatContractInternal(
    const SeriesID& series, std::string& out, bool& handled,
    const FormatContractConfig& config) const {
  out.clear();
  handled = true;
  if (const char* custom = CustomNameFor(series, config)) {
    out = custom;
    return true;
  }
  if (series.IsSpreadOrStrategy()) return FormatLegs(series, out, config);
  handled = false;
  return false;
}

bool SeriesNameFormatter::FormatSeriesInternal(
    const SeriesID& series, std::string& out,
    const FormatContractConfig& config, int strike) const {
  out.clear();
  if (const char* custom = CustomNameFor(series, config)) {
    out = custom;
    return true;
  }

  const int exchange = series.product.exchange;
  if (config.showMarket) {
    out = MarketNameOfExchange(exchange);
  } else if (config.showExchange) {
    out = GetExchangeName(exchange, config.flavoredExchange);
  }

  const int type = series.productType();
  std::string productText;
  if (config.showProduct) {
    const bool seriesNamed = type == dv_core_ns::STOCK ||
                             type == dv_core_ns::FOREX ||
                             (type == dv_core_ns::BOND &&
                              strcasecmp(series.product.productName,
                                         series.seriesName.c_str()) == 0);
    if (!(seriesNamed && series.seriesName.IsPresent())) {
      FormatProductInternal(series.product, productText,
                            config.productNameStyle);
      AppendPiece(out, productText);
    }
  }

  std::string expiryText;
  bool usedSeriesName = false;
  if (FormatExpiryInternal(series, expiryText, usedSeriesName, config)) {
    AppendPiece(out, expiryText);
  }

  if (type == dv_core_ns::STOCK && expiryText.empty() && productText.empty()) {
    FormatProductInternal(series.product, out, config.productNameStyle);
  }

  const bool strikeWanted = !usedSeriesName || config.strikeWithSeriesName ||
                            (type == dv_core_ns::FUTURE && strike != 0);
  if (strikeWanted) {
    std::string piece;
    FormatCallPut(series, piece, strike);
    if (!piece.empty()) AppendPiece(out, piece);
    // The strike or price goes straight behind: "Mar14 C1500", "Mar14@98.50".
    if (FormatStrike(series, piece, config.compact, strike)) out += piece;
  }
  return !out.empty();
}

bool SeriesNameFormatter::FormatExpiry(
    const SeriesID& series, std::string& out,
    const FormatContractConfig& config) const {
  if (config.expiryOnly) {
    return FormatMonth(series, series.expiry, out, config.compact, false);
  }
  bool usedSeriesName = false;
  return FormatExpiryInternal(series, out, usedSeriesName, config);
}

bool SeriesNameFormatter::FormatExpiryInternal(
    const SeriesID& series, std::string& out, bool& usedSeriesName,
    const FormatContractConfig& config) const {
  out.clear();
  usedSeriesName = false;
  if (const char* custom = CustomNameFor(series, config)) {
    out = custom;
    usedSeriesName = true;
    return true;
  }

  if (series.IsSpreadOrStrategy()) {
    FormatContractConfig legConfig;
    legConfig.flavoredExchange = true;
    legConfig.showRatioSign = true;
    legConfig.useCustomName = true;
    legConfig.compact = config.compact;
    legConfig.strategyNameFallback = config.strategyNameFallback;
    return FormatLegs(series, out, legConfig);
  }

  if (series.seriesName.IsPresent()) {
    const int type = series.productType();
    const int exchange = series.product.exchange;
    bool useSeriesName =
        type == dv_core_ns::BOND || type == dv_core_ns::STOCK ||
        type == dv_core_ns::INDEX || config.seriesNameMode == 1 ||
        (config.seriesNameMode == 0 &&
         (IsSeriesNameEnabled() || IsSeriesNameEnabled(exchange)));
    if (!useSeriesName) {
      const int market = nv_ns::MarketUtils::GetMarketFromExchange(exchange);
      if (market == kMarketTocom || market == kMarketIceIpe) {
        ProdID product = series.product;
        useSeriesName =
            CDVBasePriceConsumer::GetPriceTableHandle(&product) == nullptr;
      }
    }
    if (useSeriesName) {
      out = series.seriesName.c_str();
      usedSeriesName = true;
      return true;
    }
  }
  return FormatMonth(series, series.expiry, out, config.compact, false);
}

bool SeriesNameFormatter::FormatContrExpiry(const SeriesID& series,
                                            std::string& out, bool monthCode,
                                            bool noDay) const {
  return FormatMonth(series, series.contractExpiry, out, monthCode, noDay);
}

bool SeriesNameFormatter::FormatMonth(const SeriesID& series, const Date& date,
                                      std::string& out, bool monthCode,
                                      bool noDay) const {
  out.clear();
  const int type = series.productType();
  if (date.month < 0 || date.month > 12 || date.year < 100 ||
      date.year > 9999 ||
      !IsOneOf(type, {dv_core_ns::OPTION, dv_core_ns::FUTURE,
                      dv_core_ns::ENERGY, dv_core_ns::FOREX, dv_core_ns::BOND,
                      dv_core_ns::SPREAD, dv_core_ns::STRATEGY})) {
    return false;
  }

  if (monthCode) {
    if (type != dv_core_ns::FUTURE && type != dv_core_ns::OPTION) return true;
    // Month 0 has no letter. Where the letter table would be read one
    // before its start, the text stays empty instead.
    if (date.month == 0) return true;
    internal::TextPiece piece;
    if (date.day != 0 && !noDay) TwoDigits(piece, date.day);
    piece.Char(kMonthLetters[date.month - 1]).Int(date.year % 10);
    piece.AppendTo(out, 20);
    return true;
  }

  if (!noDay && date.day >= 1 && date.day <= 31) {
    FormatDayMonthAndYear(date.day, date.month, date.year, out);
  } else if (date.month >= 1 && date.month <= 12) {
    internal::TextPiece piece;
    TwoDigits(piece.Text(kMonthNames[date.month]), date.year % 100);
    piece.AppendTo(out, 10);
  }
  if (type == dv_core_ns::OPTION && series.versionCode != '0' &&
      series.versionCode != ' ') {
    out.insert(out.begin(), series.versionCode);
  }
  return true;
}

bool SeriesNameFormatter::FormatDayMonthAndYear(int day, int month, int year,
                                                std::string& out) const {
  out.clear();
  if (month >= 1 && month <= 12) {
    internal::TextPiece piece;
    if (day != 0) TwoDigits(piece, day);
    TwoDigits(piece.Text(kMonthNames[month]), year % 100);
    piece.AppendTo(out, 10);
  }
  return !out.empty();
}

bool SeriesNameFormatter::FormatProduct(const ProdID& product, std::string& out,
                                        NameStyle::Enum style) const {
  out.clear();
  return FormatProductInternal(product, out, style);
}

bool SeriesNameFormatter::FormatProduct(const SeriesID& series,
                                        std::string& out,
                                        NameStyle::Enum style) const {
  out.clear();
  return FormatProductInternal(series.product, out, style);
}

bool SeriesNameFormatter::FormatAlias(const ProdID& product, std::string& out,
                                      bool useAlias) const {
  out.clear();
  return FormatProductInternal(product, out,
                               useAlias ? NameStyle::Default : NameStyle::Name);
}

bool SeriesNameFormatter::FormatProductInternal(const ProdID& product,
                                                std::string& out,
                                                NameStyle::Enum style) const {
  out.clear();
  if (style == NameStyle::Alias ||
      (style == NameStyle::Default && !IsProductNameEnabled())) {
    if (const char* alias = CDVBasePriceConsumer::GetAlias(&product)) {
      out = alias;
    }
  }
  if (out.empty()) out = product.productName;
  return true;
}

bool SeriesNameFormatter::FormatCallPut(const SeriesID& series,
                                        std::string& out, int strike) const {
  out.clear();
  if (series.productType() != dv_core_ns::OPTION) return true;
  if (series.strike == 1 && strike != 1) return true;
  // A NUL call/put would put a NUL byte into the name; it prints nothing.
  if (series.callPut != '\0') out.assign(1, series.callPut);
  return true;
}

bool SeriesNameFormatter::FormatStrike(const SeriesID& series, std::string& out,
                                       bool compact, int strike) const {
  out.clear();
  if (strike == kSeriesStrike) strike = series.strike;
  const int type = series.productType();
  const bool legPriced =
      type == dv_core_ns::OPTION && strike != 1 && series.strike == 1;

  if (type == dv_core_ns::OPTION && !legPriced) {
    const int divisor = series.strikeDivisor;
    if (divisor <= 0) return false;
    const int whole = strike / divisor;
    const int rest = std::abs(strike % divisor);
    const int decimals = series.strikeDecimals;
    internal::TextPiece piece;
    if (rest == 0 && strike != 0 && decimals == 0) {
      piece.Int(whole).AppendTo(out, 20);
      return true;
    }
    // "%d.%0*d", or "-%d.%0*d" for a negative strike, which prints the whole
    // part with its own sign as well: -150 over 100 gives "--1.50". Hosts
    // rely on the text as it stands. The text is cut to 20 characters, so a
    // wider field than that changes nothing; bounding it keeps a corrupt
    // decimal count from costing time.
    const int width = std::clamp(decimals, -21, 21);
    if (strike < 0) piece.Char('-');
    piece.Int(whole).Char('.').Int(rest, width, true).AppendTo(out, 20);
    return true;
  }

  const bool printable =
      legPriced ||
      (strike > 0 && (type == dv_core_ns::FUTURE || type == dv_core_ns::STOCK));
  if (!printable) return false;
  out = dv_core_ns::DVTick::PriceIntToString(strike, &series, true);
  if (!out.empty() && !compact) out.insert(out.begin(), '@');
  return true;
}

bool SeriesNameFormatter::FormatSpreadType(int combCode,
                                           std::string& out) const {
  out.clear();
  if (combCode != dv_core_ns::COMB_CODE_NONE &&
      combCode != dv_core_ns::COMB_CODE_SPREAD) {
    out = dv_core_ns::CombCodeName(combCode);
  }
  return true;
}

bool SeriesNameFormatter::FormatLegs(const SeriesID& series, std::string& out,
                                     const FormatContractConfig& config) const {
  out.clear();
  LegList list;
  const bool legsCame = CDVBasePriceConsumer::CopyLegList(&series, list);

  const int exchange = series.product.exchange;
  if (config.showMarket) {
    out = MarketNameOfExchange(exchange);
    out += ' ';
  } else if (config.showExchange) {
    out = GetExchangeName(exchange, true);
    out += ' ';
  }

  if (series.combCode == dv_core_ns::COMB_CODE_CUSTOM_MARKET) {
    out = series.seriesName.c_str();
    return true;
  }

  if (series.seriesName.IsPresent() &&
      (config.seriesNameMode == 1 ||
       (config.seriesNameMode == 0 &&
        (IsSeriesNameEnabled() || IsSeriesNameEnabled(exchange) ||
         !legsCame)))) {
    if (config.showProduct) {
      std::string product;
      FormatProductInternal(series.product, product, config.productNameStyle);
      out += product;
      out += ' ';
    }
    out += series.seriesName.c_str();
    return true;
  }

  if (!legsCame) {
    // The lead of the exchange or market is dropped here, and a spread type
    // without a name leaves the message alone with its leading blank.
    FormatSpreadType(series.combCode, out);
    out += " (Contract name not available)";
    return true;
  }

  if (!AppendLegList(list, out, config)) {
    out.clear();
    return false;
  }
  return true;
}

bool SeriesNameFormatter::GetDefaultName(const SeriesID& series,
                                         const LegList* legs, std::string& out,
                                         bool flavored) const {
  out.clear();
  if (!series.IsSpreadOrStrategy()) {
    FormatContractConfig config;
    config.showMarket = true;
    config.showProduct = true;
    config.showRatioSign = true;
    config.flavoredExchange = flavored;
    return FormatSeriesInternal(series, out, config, series.strike);
  }
  out = MarketNameOfExchange(series.product.exchange);
  out += ' ';
  if (legs != nullptr) AppendLegList(*legs, out, DefaultFormatContractConfig);
  return true;
}

bool SeriesNameFormatter::GetDefaultName(const SeriesID& series,
                                         const dv_core_ns::FullLegList* legs,
                                         std::string& out,
                                         bool flavored) const {
  if (legs == nullptr) {
    return GetDefaultName(series, static_cast<const LegList*>(nullptr), out,
                          flavored);
  }
  LegList list;
  list.ReferenceData(*legs);
  return GetDefaultName(series, &list, out, flavored);
}

}  // namespace nv_fmt

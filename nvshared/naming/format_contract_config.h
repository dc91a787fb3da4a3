// How a contract name is put together: nv_fmt::FormatContractConfig, the
// exported default, and the product-name styles. A plain value, passed by
// const reference to every formatting call.
//
// Hosts want DefaultFormatContractConfig ("E-mini S&P 500 Mar14"), changed
// where a window needs it. A default-constructed FormatContractConfig has
// every flag clear and so prints no product ("Mar14"), no flavour and no
// custom name.
#ifndef NVSHARED_NAMING_FORMAT_CONTRACT_CONFIG_H_
#define NVSHARED_NAMING_FORMAT_CONTRACT_CONFIG_H_

#include "nvshared/export.h"

namespace nv_fmt {

struct NameStyle {
  enum Enum {
    // The alias unless product names are switched on, then the code.
    Default = 0,
    // Always the exchange's product code.
    Name = 1,
    // The alias where the product has one.
    Alias = 2,
  };
};

struct FormatContractConfig {
  // Lead with the exchange name.
  bool showExchange = false;
  // Lead with the market name; wins over showExchange.
  bool showMarket = false;
  // The exchange name with its flavour, "CME-A (Globex)".
  bool flavoredExchange = false;
  // Print the product.
  bool showProduct = false;
  // Month codes instead of month names, no "@" before a price, and the
  // compact leg form ("ES-H4").
  bool compact = false;
  // FormatExpiry prints the computed month, never the series name.
  bool expiryOnly = false;
  // Print the product on every leg of a spread, not just the first.
  bool repeatProduct = false;
  // Print a sign with each leg's ratio ("+1x"); the first leg never has one.
  bool showRatioSign = false;
  // A custom name, where the user gave one, replaces the whole text.
  bool useCustomName = false;
  // Print the strike although the series name was used.
  bool strikeWithSeriesName = false;
  // 0: the series name is used as the switches of the formatter say;
  // 1: always; anything else: never because of the switches.
  int seriesNameMode = 0;
  NameStyle::Enum productNameStyle = NameStyle::Default;
  // Kept and copied with the rest; no path's result depends on it.
  bool strategyNameFallback = false;
};

// flavoredExchange, showProduct, showRatioSign and useCustomName set; every
// other flag clear, both numbers 0.
NVSHARED_API extern const FormatContractConfig DefaultFormatContractConfig;

}  // namespace nv_fmt

#endif  // NVSHARED_NAMING_FORMAT_CONTRACT_CONFIG_H_

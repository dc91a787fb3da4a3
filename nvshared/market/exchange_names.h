// Exchange names with and without flavour, and the small text formatters of
// nv_fmt: dates, times, addresses and exchanges.
//
// A flavoured name is the plain name followed by the exchange's alias in
// parentheses, "CME-A (Globex)". Flavoured names are made on first request
// and kept; only from then on does GetExchangeID(name, true) know them.
//
// Threads: safe from any thread. The flavoured-name maps share one lock,
// taken only on the flavoured path and never while a name cache lock of
// MarketUtils is held.
#ifndef NVSHARED_MARKET_EXCHANGE_NAMES_H_
#define NVSHARED_MARKET_EXCHANGE_NAMES_H_

#include <string>

#include "nvshared/export.h"
#include "nvshared/platform/core/date_time.h"
#include "nvshared/platform/core/ids.h"

namespace nv_fmt {

// The exchange id of a plain name, or with `flavored` of a flavoured name
// made earlier by GetExchangeName (falling back to the plain lookup). -1 if
// there is none.
NVSHARED_API int GetExchangeID(const char* name, bool flavored);

// The exchange's name, flavoured if asked and the exchange has an alias.
// Never null; "" for an unknown id. The text stays valid for the life of the
// process and must not be freed. Without an alias the flavoured and plain
// forms are the same pointer.
NVSHARED_API const char* GetExchangeName(int exchangeId, bool flavored);

// DDMonYY ("05Mar14") into `buffer`, which must hold 8 characters. A date
// without a day, month or year writes "" and returns false.
NVSHARED_API bool FormatDate(const dv_core_ns::Date& date, char* buffer);

// HH:MM:SS.mmm into `buffer`, which must hold 13 characters. Each field is
// printed modulo 100 (milliseconds modulo 1000); a negative field writes ""
// and returns false.
NVSHARED_API bool FormatTime(const dv_core_ns::Time& time, char* buffer);

// The dotted quad of an IPv4 address given in network byte order. True if
// the text is not empty.
NVSHARED_API bool FormatIP(int address, std::string& out);

// The flavoured name of the series' exchange. True if it is not empty.
NVSHARED_API bool FormatExchange(const dv_core_ns::SeriesID& series,
                                 std::string& out);

}  // namespace nv_fmt

#endif  // NVSHARED_MARKET_EXCHANGE_NAMES_H_

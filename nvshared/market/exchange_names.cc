#include "nvshared/market/exchange_names.h"

#include <cstdio>
#include <cstring>
#include <map>
#include <mutex>

#include "nvshared/market/internal/market_utils_internal.h"
#include "nvshared/platform/core/agile_enums.h"
#include "nvshared/platform/core/consumer.h"

namespace nv_fmt {
namespace {

// The flavoured-name caches. Never freed and never erased from, so the texts
// handed out stay valid for the life of the process.
struct FlavouredNames {
  std::recursive_mutex lock;
  std::map<int, std::string> byId;
  std::map<std::string, int> byName;
};

FlavouredNames& Flavoured() {
  static FlavouredNames* const names = new FlavouredNames();
  return *names;
}

constexpr const char* kMonths[12] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                     "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

}  // namespace

int GetExchangeID(const char* name, bool flavored) {
  if (name == nullptr) return -1;
  if (!flavored) return dv_core_ns::CDVConsumer::GetExchangeId(name);
  {
    FlavouredNames& names = Flavoured();
    std::lock_guard<std::recursive_mutex> lock(names.lock);
    auto it = names.byName.find(name);
    if (it != names.byName.end()) return it->second;
  }
  return dv_core_ns::CDVConsumer::GetExchangeId(name);
}

const char* GetExchangeName(int exchangeId, bool flavored) {
  // The plain name first, outside the flavoured lock, so the two locks never
  // nest the other way round.
  const std::string& plain =
      nv_ns::MarketUtilsInternal::ExchangeName(exchangeId);
  if (plain.empty()) return "";
  const dv_core_ns::AEnum_ExchNameAliases alias(exchangeId);
  if (!flavored || alias == -1 ||
      !dv_core_ns::AEnum_ExchNameAliases::IsValidValue(exchangeId)) {
    return plain.c_str();
  }
  FlavouredNames& names = Flavoured();
  std::lock_guard<std::recursive_mutex> lock(names.lock);
  auto it = names.byId.find(exchangeId);
  if (it == names.byId.end()) {
    std::string name = plain + " (" + alias.Enum2AuxStr() + ")";
    names.byName.emplace(name, exchangeId);
    it = names.byId.emplace(exchangeId, std::move(name)).first;
  }
  return it->second.c_str();
}

bool FormatDate(const dv_core_ns::Date& date, char* buffer) {
  if (buffer == nullptr) return false;
  if (date.day <= 0 || date.month < 1 || date.month > 12 || date.year <= 0) {
    buffer[0] = '\0';
    return false;
  }
  std::snprintf(buffer, 8, "%02u%s%02u", static_cast<unsigned>(date.day % 100),
                kMonths[date.month - 1],
                static_cast<unsigned>(date.year % 100));
  return true;
}

bool FormatTime(const dv_core_ns::Time& time, char* buffer) {
  if (buffer == nullptr) return false;
  if (time.hour < 0 || time.minute < 0 || time.second < 0 ||
      time.millisecond < 0) {
    buffer[0] = '\0';
    return false;
  }
  // The fields are known non-negative here; unsigned tells the compiler so.
  std::snprintf(buffer, 13, "%02u:%02u:%02u.%03u",
                static_cast<unsigned>(time.hour % 100),
                static_cast<unsigned>(time.minute % 100),
                static_cast<unsigned>(time.second % 100),
                static_cast<unsigned>(time.millisecond % 1000));
  return true;
}

bool FormatIP(int address, std::string& out) {
  out.clear();
  // Network byte order: the octets stand in memory in the order printed.
  unsigned char octets[4];
  std::memcpy(octets, &address, sizeof octets);
  char buffer[24] = {};
  std::snprintf(buffer, sizeof buffer, "%u.%u.%u.%u", octets[0], octets[1],
                octets[2], octets[3]);
  out = buffer;
  return !out.empty();
}

bool FormatExchange(const dv_core_ns::SeriesID& series, std::string& out) {
  out.clear();
  out = GetExchangeName(series.product.exchange, true);
  return !out.empty();
}

}  // namespace nv_fmt

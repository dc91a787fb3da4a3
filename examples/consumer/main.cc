// The smallest host: load reference data, ask the library about an exchange.
#include <cstdio>

#include "nvshared/nvshared.h"

int main() {
  const nvshared::Status loaded = dv_core_ns::ReferenceData::LoadJson(R"({
    "exchanges": [
      {"id": 7, "name": "CME-A", "market": "CME", "alias": "Globex"}
    ]})");
  if (!loaded.ok()) {
    std::fprintf(stderr, "%s\n", loaded.message().c_str());
    return 1;
  }
  const int market = nv_ns::MarketUtils::GetMarketFromExchange(7);
  std::printf("%s is on market %s (nvshared %s)\n",
              nv_fmt::GetExchangeName(7, true),
              dv_core_ns::CDVConsumer::GetMarketName(market).c_str(),
              NVSHARED_VERSION_STRING);
  return 0;
}

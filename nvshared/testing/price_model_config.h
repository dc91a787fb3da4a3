// PriceModelConfig: a configuration directory for price-model plug-ins as a
// host finds it — a temporary directory with a pricemodels/ folder, named by
// "NVConfigDir" under "Software\Dravane\" in the machine settings store. The
// destructor ends the manager and clears the machine store. KeyValues makes
// a column's parameters from "key=value" texts.
#ifndef NVSHARED_TESTING_PRICE_MODEL_CONFIG_H_
#define NVSHARED_TESTING_PRICE_MODEL_CONFIG_H_

#include <filesystem>
#include <string>
#include <vector>

#include "nvshared/testing/temp_dir.h"
#include "nvshared/udp/custom_price_model.h"

namespace nvshared::testing {

class PriceModelConfig {
 public:
  PriceModelConfig();
  ~PriceModelConfig();
  PriceModelConfig(const PriceModelConfig&) = delete;
  PriceModelConfig& operator=(const PriceModelConfig&) = delete;

  const TempDir& dir() const { return dir_; }
  std::filesystem::path models() const { return dir_.path() / "pricemodels"; }
  // Copies the built plug-in at `source` into pricemodels/ as `file`.
  void Install(const std::string& source, const std::string& file) const;
  // A fresh manager that has reserved `builtIns` and loaded the directory.
  CCustomPriceModelManager& Load(const std::vector<std::string>& builtIns = {},
                                 unsigned long flags = 0) const;

 private:
  TempDir dir_;
};

std::vector<UDPKeyValue> KeyValues(const std::vector<std::string>& pairs);

}  // namespace nvshared::testing

#endif  // NVSHARED_TESTING_PRICE_MODEL_CONFIG_H_

// The example price model ("Forward Yield") loaded into the price-model
// manager as a host finds it: a scratch configuration directory whose
// pricemodels/ holds the plug-in, named by the machine store's NVConfigDir.
#ifndef NVSHARED_BENCH_EXAMPLE_MODEL_H_
#define NVSHARED_BENCH_EXAMPLE_MODEL_H_

#include <filesystem>

#include <stdlib.h>

#include "nvshared/platform/utils/registry_mgr.h"
#include "nvshared/udp/custom_price_model.h"

namespace nvshared_bench {

// Returns the scratch directory, which the caller removes; empty if none
// could be made. Whether the model loaded is CustomModelNameExists's to say.
inline std::filesystem::path LoadExampleModel() {
  namespace fs = std::filesystem;
  char pattern[] = "/tmp/nvshared-bench-XXXXXX";
  if (::mkdtemp(pattern) == nullptr) return {};
  const fs::path dir = pattern;
  fs::create_directory(dir / "pricemodels");
  fs::copy_file(NVSHARED_FORWARD_YIELD_PLUGIN,
                dir / "pricemodels" / "forward_yield.so");
  CRegistryMgr& store = CRegistryMgr::Instance(CRegistryMgr::kMachine);
  store.SetRegistryKey("Software\\Dravane\\");
  store.WriteRegString("NVConfigDir", "NVConfigDir", dir.string());
  CCustomPriceModelManager::Instance()->Init(0);
  return dir;
}

}  // namespace nvshared_bench

#endif  // NVSHARED_BENCH_EXAMPLE_MODEL_H_

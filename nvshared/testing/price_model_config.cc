#include "nvshared/testing/price_model_config.h"

#include "nvshared/platform/utils/registry_mgr.h"

namespace nvshared::testing {

PriceModelConfig::PriceModelConfig() {
  std::filesystem::create_directory(models());
}

PriceModelConfig::~PriceModelConfig() {
  CCustomPriceModelManager::Destroy(false);
  CRegistryMgr::Instance(CRegistryMgr::kMachine).Clear();
}

void PriceModelConfig::Install(const std::string& source,
                               const std::string& file) const {
  std::filesystem::copy_file(source, models() / file);
}

CCustomPriceModelManager& PriceModelConfig::Load(
    const std::vector<std::string>& builtIns, unsigned long flags) const {
  CRegistryMgr& store = CRegistryMgr::Instance(CRegistryMgr::kMachine);
  store.SetRegistryKey("Software\\Dravane\\");
  store.WriteRegString("NVConfigDir", "NVConfigDir", dir_.path().string());
  CCustomPriceModelManager::Destroy(false);
  CCustomPriceModelManager* manager = CCustomPriceModelManager::Instance();
  for (const std::string& name : builtIns) {
    manager->InitializePricingModeNames(name);
  }
  manager->Init(flags);
  return *manager;
}

std::vector<UDPKeyValue> KeyValues(const std::vector<std::string>& pairs) {
  std::vector<UDPKeyValue> items;
  for (const std::string& pair : pairs) {
    const auto equals = pair.find('=');
    items.emplace_back("string", pair.substr(0, equals),
                       pair.substr(equals + 1), "", "", "");
  }
  return items;
}

}  // namespace nvshared::testing

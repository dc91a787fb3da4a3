// nvtool models: loads the price-model plug-ins of a configuration
// directory as a host does at start-up, and lists the libraries and models
// found, in the manager's order, with each model's parameters; or asks one
// model for its verdict on a set of parameters.
#include <filesystem>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "nvshared/platform/utils/registry_mgr.h"
#include "nvshared/udp/custom_price_model.h"
#include "nvshared/udp/udp_key_value.h"
#include "tools/nvtool/context.h"

namespace nvtool {

std::string DefaultPriceModelDir() {
  std::error_code ec;
  const std::filesystem::path self =
      std::filesystem::read_symlink("/proc/self/exe", ec);
  if (ec) return "";
  return (self.parent_path().parent_path() / NVTOOL_PLUGIN_CONFIG_DIR)
      .lexically_normal()
      .string();
}

CCustomPriceModelManager& LoadPriceModels(const std::string& configDir) {
  std::error_code ec;
  if (!std::filesystem::is_directory(
          std::filesystem::path(configDir) / "pricemodels", ec)) {
    throw CLI::RuntimeError("no directory " + configDir + "/pricemodels", 1);
  }
  CRegistryMgr& store = CRegistryMgr::Instance(CRegistryMgr::kMachine);
  store.SetRegistryKey("Software\\Dravane\\");
  store.WriteRegString("NVConfigDir", "NVConfigDir", configDir);
  CCustomPriceModelManager* manager = CCustomPriceModelManager::Instance();
  if (manager == nullptr) throw CLI::RuntimeError("price models shut down", 1);
  manager->Init(0);
  return *manager;
}

namespace {

struct ModelsOptions {
  std::string configDir;
  std::string validate;
  std::vector<std::string> params;
};

void List(CCustomPriceModelManager& manager, const std::string& configDir,
          std::ostream& out) {
  if (manager.GetTypeLibs().empty()) {
    out << "no price models in " << configDir << "/pricemodels\n";
    return;
  }
  for (const auto& [path, library] : manager.GetTypeLibs()) {
    out << "library " << path << '\n';
    for (const auto& model : library->m_mapModels) {
      out << "  model " << model.first << '\n';
      std::vector<UDPKeyValue> params;
      if (!manager.GetCustomPriceModelParams(model.first, params)) {
        out << "    (no parameters)\n";
        continue;
      }
      for (const UDPKeyValue& p : params) {
        out << "    " << p.GetKey() << " = " << p.GetValue() << " ("
            << p.GetType();
        if (!p.GetConstraints().empty()) out << "; " << p.GetConstraints();
        out << ")";
        if (!p.GetDispName().empty()) out << " \"" << p.GetDispName() << '"';
        if (!p.GetTooltip().empty()) out << ": " << p.GetTooltip();
        out << '\n';
      }
    }
  }
}

void Validate(CCustomPriceModelManager& manager, const ModelsOptions& o,
              std::ostream& out) {
  if (!manager.CustomModelNameExists(o.validate)) {
    throw CLI::RuntimeError("no price model named '" + o.validate + "' in " +
                                o.configDir + "/pricemodels",
                            1);
  }
  std::vector<UDPKeyValue> params;
  for (const std::string& item : o.params) {
    const auto equals = item.find('=');
    if (equals == std::string::npos || equals == 0) {
      throw CLI::ValidationError("parameter '" + item + "'",
                                 "expected KEY=VALUE");
    }
    params.emplace_back("string", item.substr(0, equals),
                        item.substr(equals + 1), "", "", "");
  }
  std::string message;
  const bool valid =
      manager.ValidateCustomPricingModelParams(o.validate, params, message);
  out << "valid: " << (valid ? "yes" : "no") << '\n'
      << "message: " << message << '\n';
}

}  // namespace

void AddModelsCommand(CLI::App& app, Context& context) {
  auto o = std::make_shared<ModelsOptions>();
  CLI::App* sub = app.add_subcommand(
      "models",
      "List the price-model plug-ins of a configuration directory.\n\n"
      "Loads the plug-ins (*.so) of DIR/pricemodels as a host does at "
      "start-up and lists each library by path and its models by name, with "
      "each model's parameters: key = default value (type; constraints) "
      "\"display name\": tooltip. With --validate, asks the model instead "
      "for its verdict on KEY=VALUE parameters. Problems of the plug-ins go "
      "to standard error as the library logs them.");
  sub->footer(
      "nvtool models --config-dir /srv/desk --validate \"Forward Yield\" "
      "Coupon=6.5\n"
      "asks the model Forward Yield of /srv/desk/pricemodels whether a 6.5% "
      "coupon is valid.");
  sub->add_option("--config-dir", o->configDir,
                  "Configuration directory that holds pricemodels/; "
                  "default: the one installed with nvtool")
      ->type_name("DIR");
  sub->add_option("--validate", o->validate,
                  "Name of the model to ask for a verdict; default: none, "
                  "list the models")
      ->type_name("NAME");
  sub->add_option("params", o->params,
                  "With --validate: the parameters, each KEY=VALUE; "
                  "default: none")
      ->type_name("KEY=VALUE")
      ->default_str("");
  sub->callback([sub, o, &context] {
    if (o->configDir.empty()) o->configDir = DefaultPriceModelDir();
    if (!o->params.empty() && o->validate.empty()) {
      throw CLI::ValidationError("parameters", "need --validate NAME");
    }
    CCustomPriceModelManager& manager = LoadPriceModels(o->configDir);
    if (o->validate.empty()) {
      List(manager, o->configDir, *context.out);
    } else {
      Validate(manager, *o, *context.out);
    }
    (void)sub;
  });
}

}  // namespace nvtool

#include "nvshared/udp/custom_price_model.h"

#include <algorithm>
#include <cstdio>
#include <memory>
#include <new>

#include "nvshared/app/error_log.h"
#include "nvshared/app/exception_report.h"
#include "nvshared/platform/os/shared_object.h"
#include "nvshared/platform/utils/registry_mgr.h"
#include "nvshared/udp/internal/plugin_host.h"
#include "nvshared/udp/udp_enums.h"

using nvshared::udp_internal::Check;
using nvshared::udp_internal::HostTable;
using nvshared::udp_internal::HostText;
using nvshared::udp_internal::IsValidUtf8;
using nvshared::udp_internal::PluginError;
using nvshared::udp_internal::StatusText;

namespace {

// How an operation that touched a plug-in reports a failure: the report
// code after a failed status (0: the status is only logged) and after any
// other failure, and the report's type (2000 a handled exception, 3000 a
// plain report).
struct FailureReport {
  unsigned statusCode;
  unsigned otherCode;
  unsigned type;
};
constexpr FailureReport kPriceFromUDPFailure{0x2CFA, 0x2CFB, 3000};
constexpr FailureReport kUDPFromPriceFailure{0x2CFC, 0x2CFD, 3000};
// Initialising a model, reading or validating its parameters.
constexpr FailureReport kModelCallFailure{0x2CFE, 0x2CFF, 3000};
constexpr FailureReport kAddFactoryFailure{0x2D00, 0x2D01, 3000};
constexpr FailureReport kRegisterFailure{0x2D02, 0x2D03, 2000};
// A library's look-up: creating a model, finding its parameters or its
// validation.
constexpr FailureReport kLookupFailure{0, 0x2D03, 2000};

// Model names are converted into a buffer of this many bytes, terminator
// included; a longer one does not fit and becomes the empty name.
constexpr std::size_t kNameBuffer = 4096;
// A factory that names members without end is read this far and no further.
constexpr int32_t kMaxMembers = 1024;

CCustomPriceModelManager* s_pInstance = nullptr;
bool s_bDestroyed = false;

void Log(const std::string& text) {
  CDVNVErrorLog::LogMessage(text.c_str(), 3000, 3);
}

void Report(unsigned code, unsigned type) {
  CDVNVExpRpt::ProcessException(code, type, "");
}

// The description, when the error has one, then the status's text. (An error
// without a description logs no line for it rather than a null text.)
void LogError(const PluginError& error) {
  if (error.description()) Log(*error.description());
  Log(error.ErrorMessage());
}

// Runs `body`, which touches a plug-in, and gives its result. A failed status
// (PluginError) is logged, and either failure is reported as `report` says;
// the result is then `failed`.
template <typename Result, typename Body>
Result Contained(const FailureReport& report, Result failed, Body body) {
  try {
    return body();
  } catch (const PluginError& error) {
    LogError(error);
    if (report.statusCode != 0) Report(report.statusCode, report.type);
  } catch (...) {
    Report(report.otherCode, report.type);
  }
  return failed;
}

// Gives back a reference where no failure may escape: a Release that throws
// is ignored.
template <typename T>
void SafeRelease(T* object) noexcept {
  if (object == nullptr) return;
  try {
    object->Release();
  } catch (...) {
  }
}

std::string FileName(const std::string& path) {
  const auto slash = path.find_last_of('/');
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

// True if the factory's type information names the member.
bool HasMember(nv_pm::IPluginObject* object, const char* name) {
  for (int32_t id = 1; id <= kMaxMembers; ++id) {
    HostText member;
    if (nv_pm::Failed(object->GetMemberName(id, &member)) ||
        member.value.empty()) {
      return false;
    }
    if (member.value == name) return true;
  }
  return false;
}

std::string FormatF(double value) {
  const int size = std::snprintf(nullptr, 0, "%f", value);
  std::string text(size > 0 ? static_cast<std::size_t>(size) : 0, '\0');
  std::snprintf(text.data(), text.size() + 1, "%f", value);
  return text;
}

void SetRow(HostTable& table, int32_t row, const std::string& key,
            const std::string& value) {
  Check(table.Set(row, 0, key.c_str()));
  Check(table.Set(row, 1, value.c_str()));
}

// Rows of key and value.
void KeyValueTable(const std::vector<UDPKeyValue>& items, HostTable& table) {
  if (items.size() > static_cast<std::size_t>(HostTable::kMaxCells / 2)) {
    throw PluginError(nv_pm::kOutOfMemory);
  }
  Check(table.Resize(static_cast<int32_t>(items.size()), 2));
  for (std::size_t i = 0; i < items.size(); ++i) {
    SetRow(table, static_cast<int32_t>(i), items[i].GetKey(),
           items[i].GetValue());
  }
}

// The bond terms a model gets when the column holds no parameters of its
// own.
void BondTermsTable(const CUDPData& data, HostTable& table) {
  using nv_ns::UDPDateTime;
  using nv_ns::UDPEnumNames;
  constexpr unsigned long kDateOnly = UDPDateTime::kDateValueOnly;
  constexpr unsigned long kLocale = UDPDateTime::kUserDefaultLocale;
  const std::pair<const char*, std::string> rows[] = {
      {"Coupon Frequency",
       UDPEnumNames::GetCouponFreqString(data.m_CouponFreq)},
      {"Coupon", FormatF(data.m_dCoupon)},
      {"Day Count Type", UDPEnumNames::GetDayCountTypeString(data.m_iDayCount)},
      {"Settlement Date", data.GetSettlementDate().Format(kDateOnly, kLocale)},
      {"Maturity Date", data.GetMaturityDate().Format(kDateOnly, kLocale)},
      {"Conversion Factor", FormatF(data.m_dConvFactor)},
      {"EOM Conversion", data.m_bEOMConversion ? "true" : "false"},
      {"Optional", data.m_bYTMOptionalSettings ? "true" : "false"},
      {"First Coupon Date",
       data.GetFirstCouponDate().Format(kDateOnly, kLocale)},
      {"Dated Date", data.GetIssueDate().Format(kDateOnly, kLocale)},
  };
  Check(table.Resize(10, 2));
  for (int32_t row = 0; row < 10; ++row) {
    SetRow(table, row, rows[row].first, rows[row].second);
  }
}

// The parameters a factory declares for a model, as key-values.
bool ReadModelParams(nv_pm::IPriceModelFactory* factory, int32_t index,
                     std::vector<UDPKeyValue>& out) {
  return Contained(kModelCallFailure, false, [&]() -> bool {
    HostTable table;
    Check(factory->GetPriceModelParams(index, &table));
    if (table.Rows() < 1 || table.Columns() < 6) return false;
    // The six texts outlive the row: a failed read of column 3, 4 or 5
    // leaves the previous row's text standing for it. Deliberate; hosts
    // have shown the earlier tooltip and constraints in that case.
    std::string texts[6];
    HostText cell;
    for (int32_t row = 0; row < table.Rows(); ++row) {
      bool skip = false;
      for (int32_t column = 0; column < 6; ++column) {
        if (nv_pm::Failed(table.Get(row, column, &cell))) {
          if (column < 3) {
            skip = true;
            break;
          }
          continue;
        }
        texts[column] = cell.value;
      }
      if (skip) continue;
      out.emplace_back(texts[0], texts[1], texts[2], texts[3], texts[4],
                       texts[5]);
    }
    return true;
  });
}

bool CallValidateParams(nv_pm::IPriceModelFactory* factory, int32_t index,
                        const std::vector<UDPKeyValue>& params,
                        std::string& message) {
  return Contained(kModelCallFailure, false, [&]() -> bool {
    HostTable table;
    KeyValueTable(params, table);
    HostText text;
    int32_t valid = 0;
    Check(factory->ValidateParams(index, &table, &text, &valid));
    message = text.value;
    return valid > 0;
  });
}

}  // namespace

// ---------------------------------------------------------------------------
// CCustomUDPTypeLib

CCustomUDPTypeLib::CCustomUDPTypeLib(const std::string& path)
    : m_sTypeLibPath(path) {}

CCustomUDPTypeLib::~CCustomUDPTypeLib() { Clear(); }

bool CCustomUDPTypeLib::HasModel(const std::string& name) const {
  return m_mapModels.count(name) != 0;
}

bool CCustomUDPTypeLib::Holds(const nv_pm::IPriceModelFactory* factory) const {
  return std::any_of(
      m_mapModels.begin(), m_mapModels.end(),
      [factory](const auto& entry) { return entry.second.first == factory; });
}

// Each factory is released once. (Releasing at the entry of index 0 alone
// would leak a factory whose first name was refused as a repeat.)
void CCustomUDPTypeLib::Clear() {
  std::vector<nv_pm::IPriceModelFactory*> factories;
  for (auto& entry : m_mapModels) {
    if (std::find(factories.begin(), factories.end(), entry.second.first) ==
        factories.end()) {
      factories.push_back(entry.second.first);
    }
  }
  m_mapModels.clear();
  for (nv_pm::IPriceModelFactory* factory : factories) SafeRelease(factory);
}

void CCustomUDPTypeLib::AddFactory(
    nv_pm::IPriceModelFactory* factory,
    const std::function<bool(const std::string&)>& taken) {
  // False once a conflict has cleared the library and released the factory.
  const bool added = Contained(kAddFactoryFailure, true, [&] {
    int32_t count = 0;
    Check(factory->GetPriceModelCount(&count));
    for (int32_t index = 0; index < count; ++index) {
      HostText name;
      Check(factory->GetPriceModelName(index, &name));
      // A name that does not convert (too long for the buffer, or not
      // UTF-8) becomes the empty name.
      const std::string narrow =
          name.value.size() < kNameBuffer && IsValidUtf8(name.value)
              ? name.value
              : std::string();
      if (taken(narrow)) {
        Log("Price Model Name conflicts are not allowed. Type Library: '" +
            FileName(m_sTypeLibPath) + "' registration failed!");
        const bool held = Holds(factory);
        Clear();
        if (!held) SafeRelease(factory);
        return false;
      }
      m_mapModels.emplace(narrow, std::make_pair(factory, index));
    }
    return true;
  });
  // A factory that gave no model is not kept.
  if (added && !Holds(factory)) SafeRelease(factory);
}

CUDPrice* CCustomUDPTypeLib::GetCustomPriceModel(const std::string& name) {
  return Contained<CUDPrice*>(kLookupFailure, nullptr, [&]() -> CUDPrice* {
    const auto found = m_mapModels.find(name);
    if (found == m_mapModels.end()) return nullptr;
    nv_pm::IPluginObject* object = nullptr;
    Check(found->second.first->CreatePriceModel(found->second.second, &object));
    if (object == nullptr) throw PluginError(nv_pm::kInvalidPointer);
    void* model = nullptr;
    if (nv_pm::Failed(
            object->QueryInterface(nv_pm::kIID_IPriceModel, &model)) ||
        model == nullptr) {
      object->Release();
      return nullptr;
    }
    auto* typed = static_cast<nv_pm::IPriceModel*>(model);
    std::unique_ptr<CCustomUDPrice> price;
    try {
      price = std::make_unique<CCustomUDPrice>(nullptr, typed);
    } catch (...) {
      SafeRelease(typed);
      SafeRelease(object);
      throw;
    }
    typed->Release();
    object->Release();
    return price.release();
  });
}

bool CCustomUDPTypeLib::GetCustomPriceModelParams(
    const std::string& name, std::vector<UDPKeyValue>& out) {
  return Contained(kLookupFailure, false, [&]() -> bool {
    const auto found = m_mapModels.find(name);
    if (found == m_mapModels.end()) return false;
    out.clear();
    nv_pm::IPriceModelFactory* factory = found->second.first;
    if (!HasMember(factory, "GetPriceModelParams")) return false;
    return ReadModelParams(factory, found->second.second, out);
  });
}

bool CCustomUDPTypeLib::ValidateCustomPricingModelParams(
    const std::string& name, const std::vector<UDPKeyValue>& params,
    std::string& message) {
  return Contained(kLookupFailure, false, [&]() -> bool {
    const auto found = m_mapModels.find(name);
    if (found == m_mapModels.end()) return false;
    nv_pm::IPriceModelFactory* factory = found->second.first;
    if (!HasMember(factory, "ValidateParams")) return true;
    if (params.empty()) return true;
    return CallValidateParams(factory, found->second.second, params, message);
  });
}

// ---------------------------------------------------------------------------
// CCustomPriceModelManager

CCustomPriceModelManager* CCustomPriceModelManager::Instance() {
  if (s_pInstance == nullptr && !s_bDestroyed) {
    s_pInstance = new CCustomPriceModelManager();
  }
  return s_pInstance;
}

const CCustomPriceModelManager* CCustomPriceModelManager::ConstInstance() {
  return Instance();
}

bool CCustomPriceModelManager::HasInstance() { return s_pInstance != nullptr; }

void CCustomPriceModelManager::Destroy(bool setDestroyed) {
  delete s_pInstance;
  s_pInstance = nullptr;
  if (setDestroyed) s_bDestroyed = true;
}

void CCustomPriceModelManager::Shutdown() { Destroy(true); }

CCustomPriceModelManager::~CCustomPriceModelManager() {
  for (auto& entry : m_mapTypeLibs) delete entry.second;
  m_mapTypeLibs.clear();
  m_listBuiltInNames.clear();
}

void CCustomPriceModelManager::Init(unsigned long threadingFlags) {
  m_threadingFlags = threadingFlags;
  LoadTypelibs();
}

void CCustomPriceModelManager::InitializePricingModeNames(
    const std::string& name) {
  m_listBuiltInNames.push_back(name);
}

const std::list<std::string>&
CCustomPriceModelManager::GetBuiltInPricingModelNames() const {
  return m_listBuiltInNames;
}

void CCustomPriceModelManager::GetCustomPriceModelNames(
    std::vector<std::string>& names) const {
  for (const auto& library : m_mapTypeLibs) {
    for (const auto& model : library.second->m_mapModels) {
      names.push_back(model.first);
    }
  }
}

bool CCustomPriceModelManager::ModelNameExists(const std::string& name) const {
  return std::find(m_listBuiltInNames.begin(), m_listBuiltInNames.end(),
                   name) != m_listBuiltInNames.end() ||
         CustomModelNameExists(name);
}

bool CCustomPriceModelManager::CustomModelNameExists(
    const std::string& name) const {
  return std::any_of(
      m_mapTypeLibs.begin(), m_mapTypeLibs.end(),
      [&name](const auto& library) { return library.second->HasModel(name); });
}

CUDPrice* CCustomPriceModelManager::GetCustomPriceModel(
    const std::string& name) {
  if (name.empty()) return nullptr;
  for (auto& library : m_mapTypeLibs) {
    if (CUDPrice* price = library.second->GetCustomPriceModel(name)) {
      return price;
    }
  }
  return nullptr;
}

bool CCustomPriceModelManager::GetCustomPriceModelParams(
    const std::string& name, std::vector<UDPKeyValue>& out) {
  if (name.empty()) return false;
  for (auto& library : m_mapTypeLibs) {
    if (library.second->GetCustomPriceModelParams(name, out)) return true;
  }
  return false;
}

bool CCustomPriceModelManager::ValidateCustomPricingModelParams(
    const std::string& name, const std::vector<UDPKeyValue>& params,
    std::string& message) {
  if (name.empty()) return false;
  if (m_mapTypeLibs.empty()) return true;
  bool valid = false;
  for (auto& library : m_mapTypeLibs) {
    valid =
        library.second->ValidateCustomPricingModelParams(name, params, message);
    if (valid) break;
  }
  return valid;
}

void CCustomPriceModelManager::LoadTypelibs() {
  try {
    CRegistryMgr& store = CRegistryMgr::Instance(CRegistryMgr::kMachine);
    store.SetRegistryKey("Software\\Dravane\\");
    if (!store.ExistRegValue("NVConfigDir", "NVConfigDir")) return;
    bool found = false;
    std::string base =
        store.ReadRegString("NVConfigDir", "NVConfigDir", "", 0, &found);
    if (!found) return;
    if (!base.empty() && base.back() == '/') base.pop_back();
    // One pass: a plug-in library is one shared object.
    const std::string directory = base + "/pricemodels/";
    ParseCustomPricingModelDirectory(directory + "*.so", directory);
  } catch (...) {
    // A failure ends the load silently; the libraries loaded so far stay.
  }
}

void CCustomPriceModelManager::ParseCustomPricingModelDirectory(
    const std::string& pattern, const std::string& directory) {
  const auto slash = pattern.find_last_of('/');
  const std::string wildcard =
      slash == std::string::npos ? pattern : pattern.substr(slash + 1);
  const std::string folder =
      slash == std::string::npos ? "." : pattern.substr(0, slash + 1);
  for (const std::string& name :
       nvshared::os::ListMatchingFiles(folder, wildcard)) {
    RegisterCustomTypeLib((directory + name).c_str());
  }
}

CCustomUDPTypeLib* CCustomPriceModelManager::RegisterCustomTypeLib(
    const char* path) {
  CCustomUDPTypeLib* latest = nullptr;
  if (path == nullptr) return nullptr;
  const std::string file = path;
  Contained(kRegisterFailure, false, [&] {
    std::string error;
    nv_pm::IPriceModelLibrary* library = nullptr;
    if (void* object = nvshared::os::LoadSharedObject(file, error)) {
      if (void* entry = nvshared::os::FindSymbol(
              object, NV_PRICE_MODEL_ENTRY_POINT, error)) {
        library = reinterpret_cast<NvPriceModelLibraryFn>(entry)();
        if (library == nullptr) error = StatusText(nv_pm::kInvalidPointer);
      }
    }
    if (library == nullptr) {
      Log("Failed to load typelib: " + file + " " + error);
      return false;
    }
    const int32_t count = library->GetClassCount();
    for (int32_t index = 0; index < count; ++index) {
      HostText info;
      nv_pm::NvStatus status = library->GetClassInfo(index, &info);
      if (nv_pm::Failed(status)) {
        Log("Failed to GetTypeInfo from " + file + ": " + StatusText(status));
        break;
      }
      HostText classId;
      status = library->GetClassId(index, &classId);
      if (nv_pm::Failed(status)) {
        Log("Failed to GetTypeAttr from " + file + ": " + StatusText(status));
        continue;
      }
      nv_pm::IPluginObject* base = nullptr;
      if (nv_pm::Failed(
              library->CreateInstance(classId.value.c_str(), &base)) ||
          base == nullptr) {
        continue;
      }
      void* factory = nullptr;
      if (nv_pm::Succeeded(
              base->QueryInterface(nv_pm::kIID_IPriceModelFactory, &factory)) &&
          factory != nullptr) {
        latest = LoadCustomPricingModels(
            static_cast<nv_pm::IPriceModelFactory*>(factory), file);
      }
      base->Release();
    }
    return true;
  });
  return latest;
}

CCustomUDPTypeLib* CCustomPriceModelManager::LoadCustomPricingModels(
    nv_pm::IPriceModelFactory* factory, const std::string& path) {
  const auto taken = [this](const std::string& name) {
    return std::find(m_listBuiltInNames.begin(), m_listBuiltInNames.end(),
                     name) != m_listBuiltInNames.end() ||
           CustomModelNameExists(name);
  };
  const auto known = m_mapTypeLibs.find(path);
  if (known != m_mapTypeLibs.end()) {
    known->second->AddFactory(factory, taken);
    return known->second;
  }
  auto library = std::make_unique<CCustomUDPTypeLib>(path);
  library->AddFactory(factory, taken);
  if (library->m_mapModels.empty()) return nullptr;
  CCustomUDPTypeLib* stored = library.get();
  m_mapTypeLibs.emplace(path, library.release());
  return stored;
}

// ---------------------------------------------------------------------------
// CCustomUDPrice

CCustomUDPrice::CCustomUDPrice(CUDPData* data, nv_pm::IPriceModel* model)
    : CUDPrice(data), m_pModel(model) {
  if (m_pModel != nullptr) m_pModel->AddRef();
}

CCustomUDPrice::~CCustomUDPrice() { SafeRelease(m_pModel); }

bool CCustomUDPrice::GetPriceFromUDP(double udp, double& price) {
  if (m_pModel == nullptr) return false;
  // Deliberate: a failed conversion still answers true with `price` as it
  // was, so the host keeps showing the old value.
  return Contained(kPriceFromUDPFailure, true, [&] {
    double local = 0.0;
    Check(m_pModel->ConvertUDPToPrice(udp, &local));
    price = local;
    return true;
  });
}

bool CCustomUDPrice::GetUDPFromPrice(double price, double& udp) {
  if (m_pModel == nullptr) return false;
  // Deliberate, as above.
  return Contained(kUDPFromPriceFailure, true, [&] {
    double local = 0.0;
    Check(m_pModel->ConvertPriceToUDP(price, &local));
    udp = local;
    return true;
  });
}

bool CCustomUDPrice::ApplyNewProperties(CUDPData* data) {
  m_pUDPData = data;
  if (data == nullptr || m_pModel == nullptr) return false;
  return Contained(kModelCallFailure, false, [&]() -> bool {
    const std::vector<UDPKeyValue> items = data->m_vectUDPKeyValue;
    HostTable table;
    if (data->m_UDPriceType == nv_ns::UDPPriceType::CustomModel &&
        !items.empty()) {
      KeyValueTable(items, table);
    } else {
      BondTermsTable(*data, table);
    }
    Check(m_pModel->Initialize(&table));
    return true;
  });
}

// Custom price models from plug-ins. CCustomPriceModelManager, a singleton,
// finds the plug-in libraries in <NVConfigDir>/pricemodels/ at Init, keeps
// each model's name with the factory that makes it, and refuses a name that
// is taken. CCustomUDPTypeLib is one loaded library; CCustomUDPrice wraps one
// model object behind the CUDPrice interface.
//
// Ownership: the manager owns its libraries; a library holds one reference
// per factory; GetCustomPriceModel hands a new converter to the caller, who
// deletes it (CUDPriceFactory::ReleaseUDPrice). Plug-ins stay loaded for the
// life of the process, so a converter may outlive the manager. Failures of a
// plug-in are contained where they happen: logged, reported through
// CDVNVExpRpt, and turned into a false or null result.
// Threads: no locks. Init and the look-ups run on the host's thread; a
// converter belongs to one thread at a time.
#ifndef NVSHARED_UDP_CUSTOM_PRICE_MODEL_H_
#define NVSHARED_UDP_CUSTOM_PRICE_MODEL_H_

#include <cstdint>
#include <functional>
#include <list>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "nvshared/export.h"
#include "nvshared/udp/price_model_sdk.h"
#include "nvshared/udp/udp_data.h"
#include "nvshared/udp/udp_key_value.h"
#include "nvshared/udp/udp_price.h"

// One plug-in library and the models its factories offer.
class NVSHARED_API CCustomUDPTypeLib {
 public:
  explicit CCustomUDPTypeLib(const std::string& path);
  CCustomUDPTypeLib(const CCustomUDPTypeLib&) = delete;
  CCustomUDPTypeLib& operator=(const CCustomUDPTypeLib&) = delete;
  // Releases each factory once.
  virtual ~CCustomUDPTypeLib();

  // True if the library offers the model.
  bool HasModel(const std::string& name) const;
  // Adds the models of `factory`, taking over the caller's reference (a
  // factory that ends up with no model is released). A name that `taken`
  // reports (built in, or held by any library) clears the whole library and
  // ends the adding; a name the library already has keeps its first entry.
  void AddFactory(nv_pm::IPriceModelFactory* factory,
                  const std::function<bool(const std::string&)>& taken);
  // Releases the factories and forgets every model.
  void Clear();
  // True if some model of the library comes from `factory`.
  bool Holds(const nv_pm::IPriceModelFactory* factory) const;

  // The look-ups of the manager for one library: null or false when the
  // library lacks the name.
  CUDPrice* GetCustomPriceModel(const std::string& name);
  bool GetCustomPriceModelParams(const std::string& name,
                                 std::vector<UDPKeyValue>& out);
  bool ValidateCustomPricingModelParams(const std::string& name,
                                        const std::vector<UDPKeyValue>& params,
                                        std::string& message);

  std::string m_sTypeLibPath;
  std::map<std::string, std::pair<nv_pm::IPriceModelFactory*, std::int32_t>>
      m_mapModels;
};

class NVSHARED_API CCustomPriceModelManager {
 public:
  // The singleton, made on first call unless the manager was shut down;
  // then null.
  static CCustomPriceModelManager* Instance();
  static const CCustomPriceModelManager* ConstInstance();
  static bool HasInstance();
  // Deletes the instance. With true, no new one is made afterwards; with
  // false that stays as it was.
  static void Destroy(bool setDestroyed);
  // Deletes the instance for good.
  static void Shutdown();

  CCustomPriceModelManager(const CCustomPriceModelManager&) = delete;
  CCustomPriceModelManager& operator=(const CCustomPriceModelManager&) = delete;

  // Keeps the host's threading flags (there is no component service to set
  // up on Linux) and loads the plug-ins.
  void Init(unsigned long threadingFlags);
  // Reserves a name; call before Init, as conflicts are decided at loading.
  void InitializePricingModeNames(const std::string& name);
  const std::list<std::string>& GetBuiltInPricingModelNames() const;
  // Appends the custom names, by library path and within it by name.
  void GetCustomPriceModelNames(std::vector<std::string>& names) const;
  bool ModelNameExists(const std::string& name) const;
  bool CustomModelNameExists(const std::string& name) const;
  // A new converter of the model, owned by the caller, with no settings yet
  // (ApplyNewProperties gives them), or null.
  CUDPrice* GetCustomPriceModel(const std::string& name);
  // The model's parameters, appended to `out` after clearing it. False if
  // no library gives them.
  bool GetCustomPriceModelParams(const std::string& name,
                                 std::vector<UDPKeyValue>& out);
  // The model's verdict on `params`, with its message. True with no
  // library at all; false for an empty name.
  bool ValidateCustomPricingModelParams(const std::string& name,
                                        const std::vector<UDPKeyValue>& params,
                                        std::string& message);

  // The libraries by full path.
  const std::map<std::string, CCustomUDPTypeLib*>& GetTypeLibs() const {
    return m_mapTypeLibs;
  }
  unsigned long GetThreadingFlags() const { return m_threadingFlags; }

 protected:
  CCustomPriceModelManager() = default;
  virtual ~CCustomPriceModelManager();

  void LoadTypelibs();
  void ParseCustomPricingModelDirectory(const std::string& pattern,
                                        const std::string& directory);
  CCustomUDPTypeLib* RegisterCustomTypeLib(const char* path);
  CCustomUDPTypeLib* LoadCustomPricingModels(nv_pm::IPriceModelFactory* factory,
                                             const std::string& path);

 private:
  std::map<std::string, CCustomUDPTypeLib*> m_mapTypeLibs;
  std::list<std::string> m_listBuiltInNames;
  unsigned long m_threadingFlags = 0;
};

// The converter of a custom model.
class NVSHARED_API CCustomUDPrice : public CUDPrice {
 public:
  // Takes a reference to `model`.
  CCustomUDPrice(CUDPData* data, nv_pm::IPriceModel* model);
  CCustomUDPrice(const CCustomUDPrice&) = delete;
  ~CCustomUDPrice() override;

  // False with no model. A failure of the model is reported and gives true
  // with `price` untouched.
  bool GetPriceFromUDP(double udp, double& price) override;
  bool GetUDPFromPrice(double price, double& udp) override;
  // Stores `data` and passes the parameters to the model: the key-values
  // of a custom column, else the ten bond terms. False for null `data` or a
  // failure of the model.
  bool ApplyNewProperties(CUDPData* data) override;

  nv_pm::IPriceModel* GetModel() const { return m_pModel; }

 private:
  nv_pm::IPriceModel* m_pModel;
};

#endif  // NVSHARED_UDP_CUSTOM_PRICE_MODEL_H_

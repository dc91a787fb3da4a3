// Plug-ins for the tests of the plug-in host, one source built once per
// behaviour: TEST_PLUGIN_KIND picks what the library does. Each is a small,
// honest implementation of the SDK with one fault (or none) built in.
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

#include "nvshared/udp/price_model_sdk.h"

#define KIND_GOOD 1            // "Alpha" and "Beta", every method
#define KIND_MINIMAL 2         // "Minimal", no optional methods
#define KIND_BUILTIN 3         // "Aardvark", then the reserved "Yield"
#define KIND_CLASH 4           // "Zeta", then "Alpha" of KIND_GOOD
#define KIND_TWO_FACTORIES 5   // two factories; the second repeats "Gamma"
#define KIND_FAULTY 6          // models named after their fault
#define KIND_COUNT_FAILS 7     // the model count fails
#define KIND_NAME_THROWS 8     // the second name throws
#define KIND_CLASSES 9         // classes that fail to describe themselves
#define KIND_CREATE_THROWS 10  // creating the factory object throws
#define KIND_NO_ENTRY 11       // no entry point
#define KIND_UNRESOLVED 12     // needs a symbol nobody defines
#define KIND_NULL_LIBRARY 13   // the entry point gives null
#define KIND_MEMBER_THROWS 14  // the type information throws

#ifndef TEST_PLUGIN_KIND
#error TEST_PLUGIN_KIND must be set
#endif

using namespace nv_pm;

namespace {

int g_liveObjects = 0;
std::string g_lastInitialize;

std::vector<std::string> ModelNames(int factory) {
  switch (TEST_PLUGIN_KIND) {
    case KIND_GOOD:
      return {"Alpha", "Beta"};
    case KIND_MINIMAL:
      return {"Minimal"};
    case KIND_BUILTIN:
      return {"Aardvark", "Yield"};
    case KIND_CLASH:
      return {"Zeta", "Alpha"};
    case KIND_TWO_FACTORIES:
      return factory == 0 ? std::vector<std::string>{"Gamma", "Delta"}
                          : std::vector<std::string>{"Epsilon", "Gamma"};
    case KIND_FAULTY:
      return {"Fails 80040201", "Fails 87654321", "Throws",      "Create Fails",
              "Create Throws",  "Null Model",     "Not A Model", "Five Columns",
              "Weak Cells",     "Shapeless",      "Zero Rows",   "Bad \xC3("};
    case KIND_NAME_THROWS:
      return {"Kappa", "Never"};
    case KIND_CLASSES:
      return {"Lambda"};
    case KIND_MEMBER_THROWS:
      return {"Nu"};
    default:
      return {"Unused"};
  }
}

// The status a "Fails XXXXXXXX" model returns from everything, or 0.
NvStatus FailureOf(const std::string& name) {
  if (name.rfind("Fails ", 0) != 0) return kOk;
  return static_cast<NvStatus>(std::strtoul(name.c_str() + 6, nullptr, 16));
}

template <typename Interface>
class Object : public Interface {
 public:
  Object() { ++g_liveObjects; }
  virtual ~Object() { --g_liveObjects; }
  uint32_t AddRef() override { return ++refs_; }
  uint32_t Release() override {
    const uint32_t left = --refs_;
    if (left == 0) delete this;
    return left;
  }

 protected:
  uint32_t refs_ = 1;
};

class Model final : public Object<IPriceModel> {
 public:
  explicit Model(std::string name) : name_(std::move(name)) {}
  NvStatus QueryInterface(const char* iid, void** object) override {
    if (std::strcmp(iid, kIID_IPluginObject) == 0 ||
        std::strcmp(iid, kIID_IPriceModel) == 0) {
      AddRef();
      *object = this;
      return kOk;
    }
    *object = nullptr;
    return kNoInterface;
  }
  NvStatus GetMemberName(int32_t, ITextOut*) override { return kBadIndex; }

  // Records the rows as "key=value;" and takes "Offset" if given.
  NvStatus Initialize(const IStringTable* params) override {
    if (NvStatus status = Fault()) return status;
    struct Text final : ITextOut {
      NvStatus Assign(const char* text) override {
        value = text;
        return kOk;
      }
      std::string value;
    } key, value;
    g_lastInitialize.clear();
    offset_ = 0.0;
    for (int32_t row = 0; row < params->Rows(); ++row) {
      if (Failed(params->Get(row, 0, &key)) ||
          Failed(params->Get(row, 1, &value))) {
        return kTypeMismatch;
      }
      g_lastInitialize += key.value + "=" + value.value + ";";
      if (key.value == "Offset") offset_ = std::atof(value.value.c_str());
    }
    return kOk;
  }
  // udp = 2 x price + offset.
  NvStatus ConvertPriceToUDP(double price, double* udp) override {
    if (NvStatus status = Fault()) return status;
    *udp = 2.0 * price + offset_;
    return kOk;
  }
  NvStatus ConvertUDPToPrice(double udp, double* price) override {
    if (NvStatus status = Fault()) return status;
    *price = (udp - offset_) / 2.0;
    return kOk;
  }

 private:
  NvStatus Fault() const {
    if (name_ == "Throws") throw std::runtime_error("model fault");
    return FailureOf(name_);
  }
  std::string name_;
  double offset_ = 0.0;
};

// An object that is no model.
class Stranger final : public Object<IPluginObject> {
 public:
  NvStatus QueryInterface(const char* iid, void** object) override {
    if (std::strcmp(iid, kIID_IPluginObject) == 0) {
      AddRef();
      *object = this;
      return kOk;
    }
    *object = nullptr;
    return kNoInterface;
  }
  NvStatus GetMemberName(int32_t, ITextOut*) override { return kBadIndex; }
};

class Factory final : public Object<IPriceModelFactory> {
 public:
  explicit Factory(int which) : names_(ModelNames(which)) {}
  NvStatus QueryInterface(const char* iid, void** object) override {
    if (std::strcmp(iid, kIID_IPluginObject) == 0 ||
        std::strcmp(iid, kIID_IPriceModelFactory) == 0) {
      AddRef();
      *object = this;
      return kOk;
    }
    *object = nullptr;
    return kNoInterface;
  }
  NvStatus GetMemberName(int32_t id, ITextOut* name) override {
    if (TEST_PLUGIN_KIND == KIND_MEMBER_THROWS) throw std::bad_alloc();
    static const char* const kAll[] = {"GetPriceModelCount",
                                       "GetPriceModelName", "CreatePriceModel",
                                       "GetPriceModelParams", "ValidateParams"};
    const int32_t members = TEST_PLUGIN_KIND == KIND_MINIMAL ? 3 : 5;
    if (id < 1 || id > members) return kBadIndex;
    return name->Assign(kAll[id - 1]);
  }
  NvStatus GetPriceModelCount(int32_t* count) override {
    if (TEST_PLUGIN_KIND == KIND_COUNT_FAILS) return kFirstInterfaceError + 1;
    *count = static_cast<int32_t>(names_.size());
    return kOk;
  }
  NvStatus GetPriceModelName(int32_t index, ITextOut* name) override {
    if (index < 0 || index >= static_cast<int32_t>(names_.size())) {
      return kBadIndex;
    }
    if (TEST_PLUGIN_KIND == KIND_NAME_THROWS && index == 1) {
      throw std::logic_error("no name");
    }
    return name->Assign(names_[index].c_str());
  }
  NvStatus CreatePriceModel(int32_t index, IPluginObject** model) override {
    const std::string& name = names_.at(index);
    *model = nullptr;
    if (name == "Create Fails") return kFail;
    if (name == "Create Throws") throw 42;
    if (name == "Null Model") return kOk;
    if (name == "Not A Model") {
      *model = new Stranger;
    } else {
      *model = new Model(name);
    }
    return kOk;
  }
  NvStatus GetPriceModelParams(int32_t index, IStringTable* params) override {
    const std::string& name = names_.at(index);
    if (name == "Throws") throw std::runtime_error("params fault");
    if (NvStatus status = FailureOf(name)) return status;
    if (name == "Shapeless") return kOk;
    if (name == "Zero Rows") return params->Resize(0, 6);
    if (name == "Five Columns") {
      params->Resize(1, 5);
      for (int32_t column = 0; column < 5; ++column)
        params->Set(0, column, "x");
      return kOk;
    }
    if (name == "Weak Cells") {
      // Row 1 lacks its display name, row 2 its tooltip and constraints,
      // row 3 its key.
      const char* const rows[4][6] = {
          {"double", "Rate", "1.5", "Repo rate", "Percent", "min=0;max=20"},
          {"int", "Days", "30", nullptr, "Days to delivery", "min=1"},
          {"string", "Note", "n", "Note", nullptr, nullptr},
          {"bool", nullptr, "true", "Flag", "A flag", ""}};
      params->Resize(4, 6);
      for (int32_t row = 0; row < 4; ++row) {
        for (int32_t column = 0; column < 6; ++column) {
          if (rows[row][column] != nullptr) {
            params->Set(row, column, rows[row][column]);
          }
        }
      }
      return kOk;
    }
    const char* const rows[2][6] = {
        {"double", "Offset", "0", "Offset", "Added to twice the price",
         "min=-100;max=100"},
        {"date", "Delivery Date", "2026-12-15", "Delivery", "Delivery date",
         ""}};
    params->Resize(2, 6);
    for (int32_t row = 0; row < 2; ++row) {
      for (int32_t column = 0; column < 6; ++column) {
        params->Set(row, column, rows[row][column]);
      }
    }
    return kOk;
  }
  // Accepts when every value is filled in.
  NvStatus ValidateParams(int32_t index, const IStringTable* params,
                          ITextOut* message, int32_t* valid) override {
    const std::string& name = names_.at(index);
    if (name == "Throws") throw std::runtime_error("validate fault");
    if (NvStatus status = FailureOf(name)) return status;
    struct Text final : ITextOut {
      NvStatus Assign(const char* text) override {
        value = text;
        return kOk;
      }
      std::string value;
    } key, value;
    for (int32_t row = 0; row < params->Rows(); ++row) {
      params->Get(row, 0, &key);
      if (Failed(params->Get(row, 1, &value)) || value.value.empty()) {
        *valid = 0;
        return message->Assign(("No value for " + key.value).c_str());
      }
    }
    *valid = 1;
    return message->Assign("Accepted");
  }

 private:
  std::vector<std::string> names_;
};

class Library final : public IPriceModelLibrary {
 public:
  int32_t GetClassCount() override {
    if (TEST_PLUGIN_KIND == KIND_TWO_FACTORIES) return 2;
    if (TEST_PLUGIN_KIND == KIND_CLASSES) return 5;
    return 1;
  }
  NvStatus GetClassInfo(int32_t index, ITextOut* description) override {
    if (TEST_PLUGIN_KIND == KIND_CLASSES && index == 3) return kFail;
    return description->Assign("test class");
  }
  // Class ids are "class-N". In KIND_CLASSES class 0 has none, class 2 is
  // no factory, class 3 cannot be described and class 4 is never reached.
  NvStatus GetClassId(int32_t index, ITextOut* classId) override {
    if (TEST_PLUGIN_KIND == KIND_CLASSES && index == 0) return kBadIndex;
    return classId->Assign(("class-" + std::to_string(index)).c_str());
  }
  NvStatus CreateInstance(const char* classId,
                          IPluginObject** object) override {
    if (TEST_PLUGIN_KIND == KIND_CREATE_THROWS) throw std::runtime_error("no");
    const int index = std::atoi(classId + 6);
    if (TEST_PLUGIN_KIND == KIND_CLASSES && index == 2) {
      *object = new Stranger;
      return kOk;
    }
    *object = static_cast<IPriceModelFactory*>(new Factory(index));
    return kOk;
  }
};

}  // namespace

#if TEST_PLUGIN_KIND == KIND_UNRESOLVED
extern "C" int nvTestSymbolNobodyDefines(void);
extern "C" NV_PRICE_MODEL_EXPORT int nvTestUseIt(void) {
  return nvTestSymbolNobodyDefines();
}
#endif

#if TEST_PLUGIN_KIND != KIND_NO_ENTRY
extern "C" NV_PRICE_MODEL_EXPORT IPriceModelLibrary* nvPriceModelLibrary(void) {
  static Library library;
  return TEST_PLUGIN_KIND == KIND_NULL_LIBRARY ? nullptr : &library;
}
#endif

// What the tests ask of a loaded test plug-in.
extern "C" NV_PRICE_MODEL_EXPORT const char* nvTestLastInitialize(void) {
  return g_lastInitialize.c_str();
}
extern "C" NV_PRICE_MODEL_EXPORT int nvTestLiveObjects(void) {
  return g_liveObjects;
}

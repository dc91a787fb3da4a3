#include "nvshared/udp/custom_price_model.h"

#include <cstdlib>
#include <filesystem>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include <dlfcn.h>
#include <gtest/gtest.h>

#include "nvshared/platform/utils/registry_mgr.h"
#include "nvshared/testing/report_capture.h"
#include "nvshared/testing/temp_dir.h"
#include "nvshared/udp/internal/plugin_host.h"

namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;
using nvshared::testing::ReportCapture;
using nvshared::testing::TempDir;

// A line of the plug-in host's log, and the line of a report.
std::string Log(const std::string& text) {
  return "Trader Client: " + text + "|3|3000";
}
std::string Report(unsigned code, unsigned type) {
  return "Trader Client|" + std::string(type == 2000 ? "0" : "2") + "|" +
         std::to_string(code);
}

Lines NamesOf(const std::vector<UDPKeyValue>& items) {
  Lines lines;
  for (const UDPKeyValue& item : items) {
    lines.push_back(item.GetType() + "|" + item.GetKey() + "|" +
                    item.GetValue() + "|" + item.GetDispName() + "|" +
                    item.GetTooltip() + "|" + item.GetConstraints());
  }
  return lines;
}

std::vector<UDPKeyValue> KeyValues(
    std::initializer_list<std::pair<const char*, const char*>> pairs) {
  std::vector<UDPKeyValue> items;
  for (const auto& pair : pairs) {
    items.emplace_back("string", pair.first, pair.second, "", "", "");
  }
  return items;
}

class PluginHostTest : public ::testing::Test {
 protected:
  PluginHostTest() { fs::create_directory(Models()); }
  ~PluginHostTest() override {
    CCustomPriceModelManager::Destroy(false);
    CRegistryMgr::Instance(CRegistryMgr::kMachine).Clear();
  }

  fs::path Models() const { return dir_.path() / "pricemodels"; }
  std::string PathOf(const std::string& file) const {
    return (Models() / file).string();
  }
  // Copies the test plug-in `kind` in as `file`. A fresh copy is a fresh
  // load, with state of its own.
  void Install(const std::string& kind, const std::string& file) {
    fs::copy_file(
        std::string(NVSHARED_TEST_PLUGIN_DIR) + "/nvtest_" + kind + ".so",
        Models() / file);
  }
  CCustomPriceModelManager& Load(
      std::initializer_list<const char*> builtIns = {}) {
    CRegistryMgr& store = CRegistryMgr::Instance(CRegistryMgr::kMachine);
    store.SetRegistryKey("Software\\Dravane\\");
    store.WriteRegString("NVConfigDir", "NVConfigDir", dir_.path().string());
    CCustomPriceModelManager::Destroy(false);
    CCustomPriceModelManager* manager = CCustomPriceModelManager::Instance();
    for (const char* name : builtIns) manager->InitializePricingModeNames(name);
    manager->Init(2);
    return *manager;
  }
  static Lines Names(const CCustomPriceModelManager& manager) {
    std::vector<std::string> names;
    manager.GetCustomPriceModelNames(names);
    return names;
  }
  // A function a loaded test plug-in exports for the tests.
  template <typename Fn>
  Fn TestHook(const std::string& file, const char* name) {
    void* object = ::dlopen(PathOf(file).c_str(), RTLD_NOW | RTLD_NOLOAD);
    if (object == nullptr) return nullptr;
    ::dlclose(object);
    return reinterpret_cast<Fn>(::dlsym(object, name));
  }
  std::string LastInitialize(const std::string& file) {
    auto hook = TestHook<const char* (*)()>(file, "nvTestLastInitialize");
    return hook != nullptr ? hook() : "<not loaded>";
  }
  int LiveObjects(const std::string& file) {
    auto hook = TestHook<int (*)()>(file, "nvTestLiveObjects");
    return hook != nullptr ? hook() : -1;
  }

  TempDir dir_;
  ReportCapture capture_;
};

TEST_F(PluginHostTest, NoConfigDirLoadsNothing) {
  Install("good", "good.so");
  CRegistryMgr::Instance(CRegistryMgr::kMachine)
      .WriteRegString("Elsewhere", "NVConfigDir", dir_.path().string());
  CCustomPriceModelManager::Destroy(false);
  CCustomPriceModelManager& manager = *CCustomPriceModelManager::Instance();
  manager.Init(0);
  EXPECT_TRUE(Names(manager).empty());
  EXPECT_EQ(manager.GetCustomPriceModel("Alpha"), nullptr);
  std::string message = "kept";
  EXPECT_TRUE(manager.ValidateCustomPricingModelParams(
      "Alpha", KeyValues({{"Offset", ""}}), message));
  EXPECT_FALSE(manager.ValidateCustomPricingModelParams("", {}, message));
  EXPECT_EQ(message, "kept");
  CUDPData data;
  data.m_bEnableUDP = 1;
  data.m_UDPriceType = nv_ns::UDPPriceType::CustomModel;
  data.m_sCustomPriceModelName = "Alpha";
  EXPECT_EQ(CUDPriceFactory::GetUDPrice(&data), nullptr);
  EXPECT_TRUE(capture_.Logged().empty());
}

// Which libraries register which models, and what the log says of the
// others. Libraries load in name order.
TEST_F(PluginHostTest, RegistrationOfEachLibrary) {
  struct Case {
    const char* name;
    std::vector<std::pair<const char*, const char*>> installs;
    Lines names;
    std::size_t libraries;
    std::function<Lines(const std::string&)> logged;
  };
  const auto none = [](const std::string&) { return Lines{}; };
  const auto conflict = [](const char* file) {
    return [file](const std::string&) {
      return Lines{Log(std::string("Price Model Name conflicts are not "
                                   "allowed. Type Library: '") +
                       file + "' registration failed!")};
    };
  };
  const std::vector<Case> cases = {
      {"good", {{"good", "a.so"}}, {"Alpha", "Beta"}, 1, none},
      {"reserved name",
       {{"good", "a.so"}, {"builtin", "b.so"}},
       {"Alpha", "Beta"},
       1,
       conflict("b.so")},
      {"another library's name",
       {{"good", "a.so"}, {"clash", "z.so"}},
       {"Alpha", "Beta"},
       1,
       conflict("z.so")},
      // The second factory's "Gamma" clears the first factory's models too;
      // the library was stored already and stays, empty.
      {"second factory",
       {{"two_factories", "two.so"}},
       {},
       1,
       conflict("two.so")},
      {"count fails",
       {{"count_fails", "c.so"}},
       {},
       0,
       [](const std::string&) {
         return Lines{Log("IDispatch error #1"), Report(0x2D00, 3000)};
       }},
      // The names before the throw stay.
      {"name throws",
       {{"name_throws", "n.so"}},
       {"Kappa"},
       1,
       [](const std::string&) { return Lines{Report(0x2D01, 3000)}; }},
      {"classes",
       {{"classes", "k.so"}},
       {"Lambda"},
       1,
       [](const std::string& dir) {
         return Lines{Log("Failed to GetTypeAttr from " + dir + "k.so" +
                          ": Invalid index."),
                      Log("Failed to GetTypeInfo from " + dir + "k.so" +
                          ": Unspecified error.")};
       }},
      {"create throws",
       {{"create_throws", "t.so"}},
       {},
       0,
       [](const std::string&) { return Lines{Report(0x2D03, 2000)}; }},
      {"null library",
       {{"null_library", "0.so"}},
       {},
       0,
       [](const std::string& dir) {
         return Lines{Log("Failed to load typelib: " + dir + "0.so" +
                          " Invalid pointer.")};
       }},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    fs::remove_all(Models());
    fs::create_directory(Models());
    for (const auto& install : c.installs) {
      Install(install.first, install.second);
    }
    const size_t before = capture_.Logged().size();
    CCustomPriceModelManager& manager = Load({"Yield", "Par Rate"});
    EXPECT_EQ(Names(manager), c.names);
    EXPECT_EQ(manager.GetTypeLibs().size(), c.libraries);
    const Lines all = capture_.Logged();
    EXPECT_EQ(Lines(all.begin() + before, all.end()),
              c.logged(Models().string() + "/"));
    for (const std::string& name : c.names) {
      EXPECT_TRUE(manager.CustomModelNameExists(name));
    }
  }
}

// Libraries the loader refuses: each is one line naming the file and the
// loader's reason, and the next library still loads.
TEST_F(PluginHostTest, LibrariesThatFailToLoadAreSkipped) {
  dir_.WriteFile("pricemodels/a_garbage.so", "not an object");
  Install("no_entry", "b_no_entry.so");
  Install("unresolved", "c_unresolved.so");
  Install("good", "d_good.so");
  dir_.WriteFile("pricemodels/e_notes.txt", "ignored");
  CCustomPriceModelManager& manager = Load();
  EXPECT_EQ(Names(manager), (Lines{"Alpha", "Beta"}));
  const Lines logged = capture_.Logged();
  ASSERT_EQ(logged.size(), 3u);
  const char* const files[] = {"a_garbage.so", "b_no_entry.so",
                               "c_unresolved.so"};
  const char* const reasons[] = {"", "nvPriceModelLibrary",
                                 "nvTestSymbolNobodyDefines"};
  for (int i = 0; i < 3; ++i) {
    SCOPED_TRACE(files[i]);
    EXPECT_EQ(logged[i].rfind("Trader Client: Failed to load typelib: " +
                                  PathOf(files[i]) + " ",
                              0),
              0u)
        << logged[i];
    EXPECT_NE(logged[i].find(reasons[i]), std::string::npos) << logged[i];
  }
}

TEST_F(PluginHostTest, NamesCompareExactlyAcrossBuiltInAndCustom) {
  Install("good", "good.so");
  CCustomPriceModelManager& manager = Load({"Yield"});
  EXPECT_EQ(manager.GetBuiltInPricingModelNames(),
            std::list<std::string>{"Yield"});
  struct Case {
    const char* name;
    bool exists, custom;
  } const cases[] = {{"Yield", true, false},  {"Alpha", true, true},
                     {"alpha", false, false}, {"yield", false, false},
                     {"", false, false},      {"Gamma", false, false}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(manager.ModelNameExists(c.name), c.exists);
    EXPECT_EQ(manager.CustomModelNameExists(c.name), c.custom);
  }
}

TEST_F(PluginHostTest, ParametersValidationAndConversion) {
  Install("good", "good.so");
  Install("minimal", "minimal.so");
  CCustomPriceModelManager& manager = Load();

  std::vector<UDPKeyValue> params(1);
  EXPECT_TRUE(manager.GetCustomPriceModelParams("Alpha", params));
  EXPECT_EQ(NamesOf(params),
            (Lines{"double|Offset|0|Offset|Added to twice the price|"
                   "min=-100;max=100",
                   "date|Delivery Date|2026-12-15|Delivery|Delivery date|"}));
  EXPECT_EQ(params[0].GetTypeEnum(), UDPKeyValue::eDouble);
  // No optional method: no parameters (the list cleared), and every set of
  // values is valid.
  EXPECT_FALSE(manager.GetCustomPriceModelParams("Minimal", params));
  EXPECT_TRUE(params.empty());
  EXPECT_FALSE(manager.GetCustomPriceModelParams("", params));
  EXPECT_FALSE(manager.GetCustomPriceModelParams("Nobody", params));

  struct Case {
    const char* name;
    std::vector<UDPKeyValue> params;
    bool valid;
    const char* message;
  } const cases[] = {
      {"Alpha", KeyValues({{"Offset", "1"}}), true, "Accepted"},
      {"Alpha", KeyValues({{"Offset", "1"}, {"Delivery Date", ""}}), false,
       "No value for Delivery Date"},
      {"Alpha", {}, true, "untouched"},
      {"Minimal", KeyValues({{"Anything", ""}}), true, "untouched"},
      {"Nobody", KeyValues({{"Offset", "1"}}), false, "untouched"},
      {"", {}, false, "untouched"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name + std::string(" ") + c.message);
    std::string message = "untouched";
    EXPECT_EQ(
        manager.ValidateCustomPricingModelParams(c.name, c.params, message),
        c.valid);
    EXPECT_EQ(message, c.message);
  }

  // Type 4 with key-values: the model gets those rows.
  CUDPData data;
  data.m_bEnableUDP = 1;
  data.m_UDPriceType = nv_ns::UDPPriceType::CustomModel;
  data.m_sCustomPriceModelName = "Alpha";
  data.m_vectUDPKeyValue = KeyValues({{"Offset", "1"}, {"Note", "a=b"}});
  CUDPrice* price = CUDPriceFactory::GetUDPrice(&data);
  ASSERT_NE(price, nullptr);
  EXPECT_EQ(LastInitialize("good.so"), "Offset=1;Note=a=b;");
  double out = 0.0;
  EXPECT_TRUE(price->GetUDPFromPrice(10.0, out));
  EXPECT_EQ(out, 21.0);
  EXPECT_TRUE(price->GetPriceFromUDP(21.0, out));
  EXPECT_EQ(out, 10.0);
  EXPECT_FALSE(price->ApplyNewProperties(nullptr));
  const int live = LiveObjects("good.so");
  CUDPriceFactory::ReleaseUDPrice(price);
  EXPECT_EQ(LiveObjects("good.so"), live - 1);  // the model is released
  EXPECT_TRUE(capture_.Logged().empty());

  // A converter with no model converts nothing.
  CCustomUDPrice empty(&data, nullptr);
  out = 7.0;
  EXPECT_FALSE(empty.GetUDPFromPrice(1.0, out));
  EXPECT_FALSE(empty.GetPriceFromUDP(1.0, out));
  EXPECT_EQ(out, 7.0);
}

// Without parameters of its own, or for a column of another type, a model
// gets the ten bond terms.
TEST_F(PluginHostTest, BondTermsGoToTheModelAsTenRows) {
  Install("good", "good.so");
  CCustomPriceModelManager& manager = Load();
  CUDPData data;
  data.m_dCoupon = 6.25;
  data.m_dConvFactor = 0.9123;
  data.m_CouponFreq = nv_ns::UDPCouponFreq::Quarterly;
  data.m_iDayCount = nv_ns::UDPDayCountType::Thirty360;
  data.m_bEOMConversion = 0;
  data.m_bYTMOptionalSettings = 1;
  data.SetSettlementDate(nv_ns::UDPDateTime(2026, 12, 15, 0, 0, 0), false);
  data.SetMaturityDate(nv_ns::UDPDateTime(2036, 11, 15, 0, 0, 0), false);
  data.SetFirstCouponDate(nv_ns::UDPDateTime(2007, 2, 15, 0, 0, 0));
  data.SetIssueDate(nv_ns::UDPDateTime(2006, 11, 15, 0, 0, 0), false);
  const std::string tenRows =
      "Coupon Frequency=Quarterly;Coupon=6.250000;Day Count Type=30/360;"
      "Settlement Date=12/15/2026;Maturity Date=11/15/2036;"
      "Conversion Factor=0.912300;EOM Conversion=false;Optional=true;"
      "First Coupon Date=02/15/2007;Dated Date=11/15/2006;";
  struct Case {
    nv_ns::UDPPriceType type;
    std::vector<UDPKeyValue> items;
    std::string rows;
  } const cases[] = {
      {nv_ns::UDPPriceType::CustomModel, {}, tenRows},
      {nv_ns::UDPPriceType::YieldToMaturity, KeyValues({{"Offset", "3"}}),
       tenRows},
      {nv_ns::UDPPriceType::CustomModel, KeyValues({{"Offset", "3"}}),
       "Offset=3;"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.rows);
    data.m_UDPriceType = c.type;
    data.m_vectUDPKeyValue = c.items;
    std::unique_ptr<CUDPrice> price(manager.GetCustomPriceModel("Alpha"));
    ASSERT_NE(price, nullptr);
    EXPECT_TRUE(price->ApplyNewProperties(&data));
    EXPECT_EQ(LastInitialize("good.so"), c.rows);
  }
}

// Models whose every call fails or throws: the host reports, and the two
// conversions answer true with the output untouched (kept on purpose).
TEST_F(PluginHostTest, FailingModelsAreReportedAndContained) {
  Install("faulty", "faulty.so");
  CCustomPriceModelManager& manager = Load();
  struct Case {
    const char* model;
    Lines error;  // logged lines of a failed status, before the report
    unsigned toPrice, toUDP, other;
  } const cases[] = {
      {"Fails 80040201", {Log("IDispatch error #1")}, 0x2CFA, 0x2CFC, 0x2CFE},
      {"Fails 87654321",
       {Log("Unknown error 0x87654321")},
       0x2CFA,
       0x2CFC,
       0x2CFE},
      {"Throws", {}, 0x2CFB, 0x2CFD, 0x2CFF},
  };
  CUDPData data;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.model);
    const auto since = capture_.Logged().size();
    const auto expect = [&](unsigned code) {
      Lines lines = c.error;
      lines.push_back(Report(code, 3000));
      return lines;
    };
    const auto take = [&]() {
      const Lines all = capture_.Logged();
      return Lines(all.begin() + since, all.end());
    };

    std::vector<UDPKeyValue> params(1);
    EXPECT_FALSE(manager.GetCustomPriceModelParams(c.model, params));
    EXPECT_TRUE(params.empty());
    std::string message = "untouched";
    EXPECT_FALSE(manager.ValidateCustomPricingModelParams(
        c.model, KeyValues({{"k", "v"}}), message));
    EXPECT_EQ(message, "untouched");
    std::unique_ptr<CUDPrice> price(manager.GetCustomPriceModel(c.model));
    ASSERT_NE(price, nullptr);
    EXPECT_FALSE(price->ApplyNewProperties(&data));
    double out = 5.0;
    EXPECT_TRUE(price->GetPriceFromUDP(1.0, out));
    EXPECT_TRUE(price->GetUDPFromPrice(1.0, out));
    EXPECT_EQ(out, 5.0);
    Lines expected;
    for (unsigned code : {c.other, c.other, c.other, c.toPrice, c.toUDP}) {
      const Lines lines = expect(code);
      expected.insert(expected.end(), lines.begin(), lines.end());
    }
    EXPECT_EQ(take(), expected);
  }
}

TEST_F(PluginHostTest, ModelsThatCannotBeMadeGiveNull) {
  Install("faulty", "faulty.so");
  CCustomPriceModelManager& manager = Load();
  struct Case {
    const char* model;
    Lines logged;
  } const cases[] = {
      {"Create Fails", {Log("Unspecified error.")}},
      {"Create Throws", {Report(0x2D03, 2000)}},
      {"Null Model", {Log("Invalid pointer.")}},
      {"Not A Model", {}},
      {"Nobody", {}},
      {"", {}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.model);
    const auto since = capture_.Logged().size();
    EXPECT_EQ(manager.GetCustomPriceModel(c.model), nullptr);
    const Lines all = capture_.Logged();
    EXPECT_EQ(Lines(all.begin() + since, all.end()), c.logged);
  }
  EXPECT_EQ(LiveObjects("faulty.so"), 1);  // only the factory is alive
}

TEST_F(PluginHostTest, ParameterTablesOfOddShapes) {
  Install("faulty", "faulty.so");
  Install("member_throws", "m.so");
  CCustomPriceModelManager& manager = Load();
  struct Case {
    const char* model;
    bool result;
    Lines items;
    Lines logged;
  } const cases[] = {
      {"Five Columns", false, {}, {}},
      {"Shapeless", false, {}, {}},
      {"Zero Rows", false, {}, {}},
      // A failed read of column 3, 4 or 5 leaves the previous row's text;
      // a failed read of column 1 skips the row.
      {"Weak Cells",
       true,
       {"double|Rate|1.5|Repo rate|Percent|min=0;max=20",
        "int|Days|30|Repo rate|Days to delivery|min=1",
        "string|Note|n|Note|Days to delivery|min=1"},
       {}},
      {"Nu", false, {}, {Report(0x2D03, 2000)}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.model);
    std::vector<UDPKeyValue> params(2);
    const auto since = capture_.Logged().size();
    EXPECT_EQ(manager.GetCustomPriceModelParams(c.model, params), c.result);
    EXPECT_EQ(NamesOf(params), c.items);
    const Lines all = capture_.Logged();
    EXPECT_EQ(Lines(all.begin() + since, all.end()), c.logged);
  }
  std::string message;
  EXPECT_FALSE(manager.ValidateCustomPricingModelParams(
      "Nu", KeyValues({{"k", "v"}}), message));
  EXPECT_EQ(capture_.LastLogged(), Report(0x2D03, 2000));
}

TEST(PluginStatusText, StandardTextsThenTheTwoForms) {
  using nvshared::udp_internal::StatusText;
  struct Case {
    std::uint32_t status;
    const char* text;
  } const cases[] = {
      {0x80004003u, "Invalid pointer."},
      {0x80070057u, "The parameter is incorrect."},
      {0x80040200u, "Unknown error 0x80040200"},  // offset 0
      {0x80040201u, "IDispatch error #1"},
      {0x8004FFFFu, "IDispatch error #65023"},
      {0x80050000u, "Unknown error 0x80050000"},
      {0x00000002u, "Unknown error 0x2"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(StatusText(static_cast<nv_pm::NvStatus>(c.status)), c.text);
  }
}

// The singleton's life, in a child process: once shut down it stays gone.
// A converter taken before outlives the manager, as plug-ins stay loaded.
TEST_F(PluginHostTest, ShutdownEndsTheSingletonForGood) {
  Install("good", "good.so");
  EXPECT_EXIT(
      {
        CCustomPriceModelManager* first = &Load();
        bool ok = CCustomPriceModelManager::HasInstance() &&
                  CCustomPriceModelManager::ConstInstance() == first;
        std::unique_ptr<CUDPrice> price(first->GetCustomPriceModel("Beta"));
        CCustomPriceModelManager::Destroy(false);
        ok = ok && !CCustomPriceModelManager::HasInstance() &&
             CCustomPriceModelManager::Instance() != nullptr;
        CCustomPriceModelManager::Shutdown();
        ok = ok && CCustomPriceModelManager::Instance() == nullptr &&
             CCustomPriceModelManager::ConstInstance() == nullptr &&
             !CCustomPriceModelManager::HasInstance();
        CUDPData data;
        data.m_bEnableUDP = 1;
        data.m_UDPriceType = nv_ns::UDPPriceType::CustomModel;
        data.m_sCustomPriceModelName = "Beta";
        ok = ok && CUDPriceFactory::GetUDPrice(&data) == nullptr;
        double out = 0.0;
        ok = ok && price != nullptr && price->GetUDPFromPrice(3.0, out) &&
             out == 6.0;
        price.reset();
        std::exit(ok ? 0 : 1);
      },
      ::testing::ExitedWithCode(0), "");
}

// The example model: a bond future's forward yield. Golden prices are the
// textbook sum of discounted coupons less accrued interest, worked apart.
TEST_F(PluginHostTest, ForwardYieldExample) {
  fs::copy_file(NVSHARED_FORWARD_YIELD_PLUGIN, Models() / "forward_yield.so");
  CCustomPriceModelManager& manager = Load();
  ASSERT_EQ(Names(manager), Lines{"Forward Yield"});
  std::vector<UDPKeyValue> params;
  ASSERT_TRUE(manager.GetCustomPriceModelParams("Forward Yield", params));
  ASSERT_EQ(params.size(), 10u);
  EXPECT_EQ(params[0].GetKey(), "Coupon Frequency");
  EXPECT_EQ(params[9].GetKey(), "Dated Date");

  struct Case {
    const char* delivery;
    double coupon, factor, yield, futures;
  } const cases[] = {
      // 20 whole periods, no accrued: at the coupon rate the bond is at par.
      {"12/15/2026", 6.0, 0.8, 6.0, 125.0},
      {"12/15/2026", 6.0, 0.8, 5.0, 134.7432264285},
      // Between coupons: 92 of 182 days left in the period.
      {"03/15/2027", 6.0, 0.9, 5.5, 115.2503071657},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.delivery + std::string(" ") + std::to_string(c.yield));
    CUDPData data;
    data.m_UDPriceType = nv_ns::UDPPriceType::CustomModel;
    data.m_vectUDPKeyValue = KeyValues({{"Settlement Date", c.delivery},
                                        {"Maturity Date", "12/15/2036"},
                                        {"Coupon", "6"},
                                        {"Conversion Factor", "0.8"}});
    data.m_vectUDPKeyValue[3].SetValue(std::to_string(c.factor));
    std::unique_ptr<CUDPrice> price(
        manager.GetCustomPriceModel("Forward Yield"));
    ASSERT_NE(price, nullptr);
    ASSERT_TRUE(price->ApplyNewProperties(&data));
    double futures = 0.0, yield = 0.0;
    EXPECT_TRUE(price->GetPriceFromUDP(c.yield, futures));
    EXPECT_NEAR(futures, c.futures, 1e-9);
    EXPECT_TRUE(price->GetUDPFromPrice(c.futures, yield));
    EXPECT_NEAR(yield, c.yield, 1e-9);
  }

  struct Refusal {
    std::vector<UDPKeyValue> params;
    const char* message;
  } const refusals[] = {
      {KeyValues({{"Settlement Date", "12/15/2026"},
                  {"Maturity Date", "12/15/2036"}}),
       ""},
      {KeyValues({{"Coupon Frequency", "Weekly"}}),
       "Unknown coupon frequency 'Weekly'"},
      {KeyValues({{"Coupon", "abc"}}), "Coupon must be a number from 0 to 100"},
      {KeyValues({{"Conversion Factor", "0"}}),
       "Conversion factor must be a positive number"},
      {KeyValues({{"Settlement Date", "2026-02-30"}}),
       "Settlement (delivery) date is missing or invalid"},
      {KeyValues({{"Settlement Date", "2036-12-15"},
                  {"Maturity Date", "2026-12-15"}}),
       "Maturity must follow delivery"},
  };
  for (const Refusal& r : refusals) {
    SCOPED_TRACE(r.message);
    std::string message = "untouched";
    EXPECT_EQ(manager.ValidateCustomPricingModelParams("Forward Yield",
                                                       r.params, message),
              *r.message == '\0');
    EXPECT_EQ(message, r.message);
  }
  EXPECT_TRUE(capture_.Logged().empty());
}

}  // namespace

#include "nvshared/udp/custom_price_model.h"

#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <memory>
#include <sstream>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <dlfcn.h>
#include <gtest/gtest.h>

#include "nvshared/testing/price_model_config.h"
#include "nvshared/testing/report_capture.h"
#include "nvshared/udp/internal/plugin_host.h"

namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

// A line of the plug-in host's log, and the line of a report.
std::string Log(const std::string& text) {
  return "Trader Client: " + text + "|3|3000";
}
std::string Report(unsigned code, unsigned type = 3000) {
  return "Trader Client|" + std::string(type == 2000 ? "0" : "2") + "|" +
         std::to_string(code);
}

// The words of `text`, split at blanks.
Lines Words(const std::string& text) {
  std::istringstream in(text);
  return Lines(std::istream_iterator<std::string>(in), {});
}

using nvshared::testing::KeyValues;

Lines Fields(const std::vector<UDPKeyValue>& items) {
  Lines lines;
  for (const UDPKeyValue& i : items) {
    lines.push_back(i.GetType() + "|" + i.GetKey() + "|" + i.GetValue() + "|" +
                    i.GetDispName() + "|" + i.GetTooltip() + "|" +
                    i.GetConstraints());
  }
  return lines;
}

// The test plug-ins (plugins/testing) are copied into a temporary
// configuration directory named by "NVConfigDir" in the machine store; a
// fresh copy is a fresh load, with state of its own.
class PluginHostTest : public ::testing::Test {
 protected:
  fs::path Models() const { return config_.models(); }
  void Install(const std::string& kind, const std::string& file) {
    config_.Install(
        std::string(NVSHARED_TEST_PLUGIN_DIR) + "/nvtest_" + kind + ".so",
        file);
  }
  CCustomPriceModelManager& Load(const Lines& builtIns = {}) {
    return config_.Load(builtIns, 2);
  }
  static Lines Names(const CCustomPriceModelManager& manager) {
    Lines names;
    manager.GetCustomPriceModelNames(names);
    return names;
  }
  // The lines logged since the last call.
  Lines NewLines() {
    const Lines all = capture_.Logged();
    Lines fresh(all.begin() + static_cast<long>(seen_), all.end());
    seen_ = all.size();
    return fresh;
  }
  // What a loaded test plug-in tells the tests.
  template <typename Result>
  Result Ask(const std::string& file, const char* name, Result otherwise) {
    void* object = ::dlopen((Models() / file).c_str(), RTLD_NOW | RTLD_NOLOAD);
    if (object == nullptr) return otherwise;
    ::dlclose(object);  // still loaded: plug-ins are never unmapped
    auto fn = reinterpret_cast<Result (*)()>(::dlsym(object, name));
    return fn != nullptr ? fn() : otherwise;
  }
  std::string LastInitialize(const std::string& file) {
    return Ask<const char*>(file, "nvTestLastInitialize", "<not loaded>");
  }

  nvshared::testing::PriceModelConfig config_;
  nvshared::testing::ReportCapture capture_;
  std::size_t seen_ = 0;
};

TEST_F(PluginHostTest, NoConfigDirLoadsNothing) {
  Install("good", "good.so");
  CCustomPriceModelManager& manager = *CCustomPriceModelManager::Instance();
  manager.Init(0);
  EXPECT_TRUE(Names(manager).empty());
  std::string message = "kept";
  EXPECT_TRUE(manager.ValidateCustomPricingModelParams(
      "Alpha", KeyValues({"Offset="}), message));
  EXPECT_FALSE(manager.ValidateCustomPricingModelParams("", {}, message));
  EXPECT_EQ(message, "kept");
  EXPECT_TRUE(capture_.Logged().empty());
}

// Which libraries register which models, in file-name order, and what the
// log says of the others. "@" in a line stands for the models directory.
TEST_F(PluginHostTest, RegistrationOfEachLibrary) {
  auto conflict = [](const std::string& file) {
    return Log("Price Model Name conflicts are not allowed. Type Library: '" +
               file + "' registration failed!");
  };
  auto unloaded = [](const std::string& file, const std::string& why) {
    return Log("Failed to load typelib: @" + file + " " + why);
  };
  struct Case {
    const char* installs;  // kind:file ...; no kind: a file of junk
    const char* names;
    std::size_t libraries;
    Lines logged;
  } const cases[] = {
      {"good:a.so", "Alpha Beta", 1, {}},
      {"good:a.so builtin:b.so", "Alpha Beta", 1, {conflict("b.so")}},
      {"good:a.so clash:z.so", "Alpha Beta", 1, {conflict("z.so")}},
      // The second factory's "Gamma" clears the first factory's models too;
      // the library was stored already and stays, empty.
      {"two_factories:two.so", "", 1, {conflict("two.so")}},
      {"count_fails:c.so", "", 0, {Log("IDispatch error #1"), Report(0x2D00)}},
      {"name_throws:n.so", "Kappa", 1, {Report(0x2D01)}},
      {"classes:k.so",
       "Lambda",
       1,
       {Log("Failed to GetTypeAttr from @k.so: Invalid index."),
        Log("Failed to GetTypeInfo from @k.so: Unspecified error.")}},
      {"create_throws:t.so", "", 0, {Report(0x2D03, 2000)}},
      {"null_library:0.so", "", 0, {unloaded("0.so", "Invalid pointer.")}},
      // The loader's own reason follows the path.
      {"no_entry:e.so",
       "",
       0,
       {unloaded("e.so", "@e.so: undefined symbol: nvPriceModelLibrary")}},
      {"unresolved:u.so",
       "",
       0,
       {unloaded("u.so",
                 "@u.so: undefined symbol: nvTestSymbolNobodyDefines")}},
      {":g.so", "", 0, {unloaded("g.so", "@g.so: file too short")}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.installs);
    fs::remove_all(Models());
    fs::create_directory(Models());
    for (const std::string& install : Words(c.installs)) {
      const auto colon = install.find(':');
      const std::string file = install.substr(colon + 1);
      if (colon == 0) {
        config_.dir().WriteFile("pricemodels/" + file, "not an object");
      } else {
        Install(install.substr(0, colon), file);
      }
    }
    Lines expected;
    for (std::string line : c.logged) {
      for (auto at = line.find('@'); at != std::string::npos;
           at = line.find('@')) {
        line.replace(at, 1, Models().string() + "/");
      }
      expected.push_back(line);
    }
    NewLines();
    CCustomPriceModelManager& manager = Load({"Yield", "Par Rate"});
    EXPECT_EQ(Names(manager), Words(c.names));
    EXPECT_EQ(manager.GetTypeLibs().size(), c.libraries);
    EXPECT_EQ(NewLines(), expected);
    for (const std::string& name : Words(c.names)) {
      EXPECT_TRUE(manager.CustomModelNameExists(name) &&
                  manager.ModelNameExists(name));
    }
  }
  const CCustomPriceModelManager& manager =
      *CCustomPriceModelManager::Instance();
  EXPECT_TRUE(manager.ModelNameExists("Yield"));
  EXPECT_FALSE(manager.CustomModelNameExists("Yield"));
  EXPECT_FALSE(manager.ModelNameExists("yield"));  // exact, case and all
}

TEST_F(PluginHostTest, GoodModelParametersPricesAndBondTerms) {
  Install("good", "good.so");
  Install("minimal", "minimal.so");
  CCustomPriceModelManager& manager = Load();
  std::vector<UDPKeyValue> params(1);
  EXPECT_TRUE(manager.GetCustomPriceModelParams("Alpha", params));
  EXPECT_EQ(Fields(params),
            (Lines{"double|Offset|0|Offset|Added to twice the price|"
                   "min=-100;max=100",
                   "date|Delivery Date|2026-12-15|Delivery|Delivery date|"}));
  // Without the optional method: no parameters, and the list cleared.
  EXPECT_FALSE(manager.GetCustomPriceModelParams("Minimal", params));
  EXPECT_TRUE(params.empty());

  struct Case {
    const char* name;
    Lines params;
    bool valid;
    const char* message;
  } const cases[] = {
      {"Alpha", {"Offset=1"}, true, "Accepted"},
      {"Alpha",
       {"Offset=1", "Delivery Date="},
       false,
       "No value for Delivery Date"},
      {"Alpha", {}, true, "untouched"},
      {"Minimal", {"Anything="}, true, "untouched"},  // no ValidateParams
      {"Nobody", {"Offset=1"}, false, "untouched"},
      {"", {}, false, "untouched"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name + std::string(" ") + c.message);
    std::string message = "untouched";
    EXPECT_EQ(manager.ValidateCustomPricingModelParams(
                  c.name, KeyValues(c.params), message),
              c.valid);
    EXPECT_EQ(message, c.message);
  }

  // The test model gives 2 x price + Offset.
  CUDPData data;
  data.m_bEnableUDP = 1;
  data.m_UDPriceType = nv_ns::UDPPriceType::CustomModel;
  data.m_sCustomPriceModelName = "Alpha";
  data.m_vectUDPKeyValue = KeyValues({"Offset=1", "Note=a=b"});
  const int live = Ask<int>("good.so", "nvTestLiveObjects", -1);
  CUDPrice* price = CUDPriceFactory::GetUDPrice(&data);
  ASSERT_NE(price, nullptr);
  EXPECT_EQ(LastInitialize("good.so"), "Offset=1;Note=a=b;");
  double out = 0.0;
  EXPECT_TRUE(price->GetUDPFromPrice(10.0, out));
  EXPECT_EQ(out, 21.0);
  EXPECT_TRUE(price->GetPriceFromUDP(23.0, out));
  EXPECT_EQ(out, 11.0);
  EXPECT_FALSE(price->ApplyNewProperties(nullptr));
  CUDPriceFactory::ReleaseUDPrice(price);
  EXPECT_EQ(Ask<int>("good.so", "nvTestLiveObjects", -1), live);
  EXPECT_TRUE(capture_.Logged().empty());

  // Without parameters of its own, or in a column of another type, a model
  // gets the ten bond terms.
  data = CUDPData();
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
  const std::tuple<nv_ns::UDPPriceType, Lines, std::string> terms[] = {
      {nv_ns::UDPPriceType::CustomModel, {}, tenRows},
      {nv_ns::UDPPriceType::YieldToMaturity, {"Offset=3"}, tenRows},
      {nv_ns::UDPPriceType::CustomModel, {"Offset=3"}, "Offset=3;"},
  };
  for (const auto& [type, items, rows] : terms) {
    SCOPED_TRACE(rows);
    data.m_UDPriceType = type;
    data.m_vectUDPKeyValue = KeyValues(items);
    std::unique_ptr<CUDPrice> model(manager.GetCustomPriceModel("Alpha"));
    ASSERT_NE(model, nullptr);
    EXPECT_TRUE(model->ApplyNewProperties(&data));
    EXPECT_EQ(LastInitialize("good.so"), rows);
  }
}

// Models whose every call fails or throws. Each failure is logged and
// reported where it happens; the two conversions answer true with the
// output untouched (kept on purpose: the host keeps showing the old value).
TEST_F(PluginHostTest, FailingAndOddModelsAreReportedAndContained) {
  Install("faulty", "faulty.so");
  Install("member_throws", "m.so");
  CCustomPriceModelManager& manager = Load();
  struct Case {
    const char* model;
    std::string error;  // the logged text of the failed status, if any
    unsigned toPrice, toUDP, other;
  } const cases[] = {
      {"Fails 80040201", "IDispatch error #1", 0x2CFA, 0x2CFC, 0x2CFE},
      {"Fails 87654321", "Unknown error 0x87654321", 0x2CFA, 0x2CFC, 0x2CFE},
      {"Throws", "", 0x2CFB, 0x2CFD, 0x2CFF},
  };
  CUDPData data;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.model);
    std::vector<UDPKeyValue> params(1);
    EXPECT_FALSE(manager.GetCustomPriceModelParams(c.model, params));
    EXPECT_TRUE(params.empty());
    std::string message = "untouched";
    EXPECT_FALSE(manager.ValidateCustomPricingModelParams(
        c.model, KeyValues({"k=v"}), message));
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
      if (!c.error.empty()) expected.push_back(Log(c.error));
      expected.push_back(Report(code));
    }
    EXPECT_EQ(NewLines(), expected);
  }

  // Models that cannot be made, and parameter tables of odd shapes.
  const std::pair<const char*, Lines> made[] = {
      {"Create Fails", {Log("Unspecified error.")}},
      {"Create Throws", {Report(0x2D03, 2000)}},
      {"Null Model", {Log("Invalid pointer.")}},
      {"Not A Model", {}},
      {"Nobody", {}},
      {"", {}},
  };
  for (const auto& [model, logged] : made) {
    SCOPED_TRACE(model);
    EXPECT_EQ(manager.GetCustomPriceModel(model), nullptr);
    EXPECT_EQ(NewLines(), logged);
  }
  EXPECT_EQ(Ask<int>("faulty.so", "nvTestLiveObjects", -1), 1);  // factory
  // A name that is not UTF-8 is entered as the empty name.
  EXPECT_TRUE(manager.CustomModelNameExists(""));

  struct Read {
    const char* model;
    bool result;
    Lines items, logged;
  } const reads[] = {
      {"Five Columns", false, {}, {}},
      {"Shapeless", false, {}, {}},
      {"Zero Rows", false, {}, {}},
      // A failed read of column 3, 4 or 5 leaves the previous row's text
      // (kept on purpose); a failed read of column 1 skips the row.
      {"Weak Cells",
       true,
       {"double|Rate|1.5|Repo rate|Percent|min=0;max=20",
        "int|Days|30|Repo rate|Days to delivery|min=1",
        "string|Note|n|Note|Days to delivery|min=1"},
       {}},
      // Type information that throws: the library's look-up reports.
      {"Nu", false, {}, {Report(0x2D03, 2000)}},
  };
  for (const Read& c : reads) {
    SCOPED_TRACE(c.model);
    std::vector<UDPKeyValue> params(2);
    EXPECT_EQ(manager.GetCustomPriceModelParams(c.model, params), c.result);
    EXPECT_EQ(Fields(params), c.items);
    EXPECT_EQ(NewLines(), c.logged);
  }
  std::string message;
  EXPECT_FALSE(manager.ValidateCustomPricingModelParams(
      "Nu", KeyValues({"k=v"}), message));
  EXPECT_EQ(NewLines(), Lines{Report(0x2D03, 2000)});
}

TEST(PluginStatusText, StandardTextsThenTheTwoForms) {
  const std::pair<std::uint32_t, const char*> cases[] = {
      {0x80004003u, "Invalid pointer."},
      {0x80040200u, "Unknown error 0x80040200"},  // offset 0
      {0x80040201u, "IDispatch error #1"},
      {0x8004FFFFu, "IDispatch error #65023"},
      {0x80050000u, "Unknown error 0x80050000"},
      {0x00000002u, "Unknown error 0x2"},
  };
  for (const auto& [status, text] : cases) {
    EXPECT_EQ(nvshared::udp_internal::StatusText(
                  static_cast<nv_pm::NvStatus>(status)),
              text);
  }
}

// Model names must convert: well-formed UTF-8 only.
TEST(PluginText, Utf8Validity) {
  const std::pair<const char*, bool> cases[] = {
      {"Forward Yield", true},
      {"\xE2\x82\xAC 5", true},
      {"\xF4\x8F\xBF\xBF", true},   // U+10FFFF
      {"\xC0\x80", false},          // overlong NUL
      {"\xED\xA0\x80", false},      // surrogate
      {"\xF4\x90\x80\x80", false},  // above U+10FFFF
      {"\xE2\x82", false},          // cut short
      {"\x80", false},              // stray continuation
  };
  for (const auto& [text, valid] : cases) {
    EXPECT_EQ(nvshared::udp_internal::IsValidUtf8(text), valid) << text;
  }
}

// In a child process, as the end is for good: once shut down the singleton
// stays gone, and a converter taken before outlives it.
TEST_F(PluginHostTest, ShutdownEndsTheSingletonForGood) {
  Install("good", "good.so");
  EXPECT_EXIT(
      {
        CCustomPriceModelManager* first = &Load();
        bool ok = CCustomPriceModelManager::ConstInstance() == first;
        std::unique_ptr<CUDPrice> price(first->GetCustomPriceModel("Beta"));
        CCustomPriceModelManager::Destroy(false);
        ok = ok && !CCustomPriceModelManager::HasInstance() &&
             CCustomPriceModelManager::Instance() != nullptr;
        CCustomPriceModelManager::Shutdown();
        ok = ok && CCustomPriceModelManager::Instance() == nullptr &&
             CCustomPriceModelManager::ConstInstance() == nullptr &&
             !CCustomPriceModelManager::HasInstance();
        double out = 0.0;
        ok = ok && price != nullptr && price->GetUDPFromPrice(3.0, out) &&
             out == 6.0;
        price.reset();
        std::exit(ok ? 0 : 1);
      },
      ::testing::ExitedWithCode(0), "");
}

}  // namespace

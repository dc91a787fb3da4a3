// A host's life with nvshared: see walkthrough.h. Each step prints what a
// host would show; the library's log lines, message boxes and observer calls
// appear in line, indented under the step that caused them.
#include "walkthrough.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iomanip>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <system_error>
#include <tuple>
#include <vector>

#include "nvshared/nvshared.h"

namespace example_host {
namespace {

namespace fs = std::filesystem;

// What the callbacks of the library (plain functions) and the exit handler
// need: the options, and the counts for the summary.
struct HostState {
  HostOptions options;
  int steps = 0;
  int failed = 0;
  std::string comm;
};
HostState* g_host = nullptr;

std::ostream& Out() { return *g_host->options.out; }
bool Quiet() { return g_host->options.quiet; }

// One line of the walk-through, indented under its step.
void Say(const std::string& text) {
  if (!Quiet()) Out() << "  " << text << "\n";
}

// What the library calls back with: a message box, an MGT loader line, a
// log record. A host draws or files them; here they are printed in line.
void ShowMessageBox(const char* text, unsigned int type, unsigned int) {
  std::ostringstream line;
  line << "    [message box, type 0x" << std::hex << type << "] " << text;
  if (!Quiet()) Out() << line.str() << "\n";
}

void MgtInfo(const std::string& text) {
  if (!Quiet()) Out() << "    [MGT] " << text << "\n";
}

// Every record goes to the host's log file; it is printed as well.
class HostLogSink : public dv_log::LogSink {
 public:
  explicit HostLogSink(std::shared_ptr<dv_log::FileSink> file)
      : file_(std::move(file)) {}
  void Write(const dv_log::LogRecord& record) override {
    file_->Write(record);
    if (!Quiet()) Out() << "    [log] " << record.text << "\n";
  }

 private:
  std::shared_ptr<dv_log::FileSink> file_;
};

// A window that shows contract names: it hears of every change of a custom
// name, and of the formatter's end at exit.
class NamesWindow : public nv_fmt::SeriesNameFormatterObserver {
 public:
  void OnSeriesNameUpdate(nv_fmt::SeriesNameFormatter&,
                          const nv_fmt::UpdateHint& hint) override {
    if (Quiet()) return;
    if (hint.GetSeriesID() != nullptr) {
      Out() << "    [names window] redraws " << hint.GetSeriesID()->seriesKey
            << "\n";
    } else {
      Out() << "    [names window] redraws every name\n";
    }
  }
  void OnSeriesNameFormatterDestroy(nv_fmt::SeriesNameFormatter&) override {
    if (!Quiet()) {
      Out() << "  the contract-name formatter tells its observers it ends "
               "(NotifyDestroy): the names window lets go of it\n";
    }
  }
};
NamesWindow g_namesWindow;

// The host's end of the message layer: the router keeps the factories that
// CommonMessages::Init hands it, by class id.
class HostRouter : public nv_ns::MessageRouterClient {
 public:
  bool RegisterMessageFactory(unsigned short id, const std::string& className,
                              dv_stream_ns::VIAFactoryBase* factory) override {
    factories_.emplace_back(
        id, className, std::unique_ptr<dv_stream_ns::VIAFactoryBase>(factory));
    return factory != nullptr;
  }
  std::string Describe() const {
    std::ostringstream text;
    for (const auto& [id, name, factory] : factories_) {
      text << (text.tellp() > 0 ? ", " : "") << name << " (0x" << std::hex
           << std::uppercase << id << std::dec << ")";
    }
    return text.str();
  }
  std::size_t size() const { return factories_.size(); }

 private:
  std::vector<std::tuple<unsigned short, std::string,
                         std::unique_ptr<dv_stream_ns::VIAFactoryBase>>>
      factories_;
};
HostRouter g_router;

// The library's own names-file format; it must outlive the formatter's use.
nv_fmt::BinaryArchiverFactory g_archiverFactory;

std::string DataFile(const char* name) {
  return (fs::path(g_host->options.dataDir) / name).string();
}
std::string WorkFile(const char* name) {
  return (fs::path(g_host->options.workDir) / name).string();
}

// A step fails by throwing; the walk-through goes on with the next one.
struct StepFailure : std::runtime_error {
  using std::runtime_error::runtime_error;
};
void Require(bool condition, const std::string& what) {
  if (!condition) throw StepFailure(what);
}

void Step(const std::string& title, const std::function<void()>& body) {
  ++g_host->steps;
  if (!Quiet()) Out() << title << "\n";
  try {
    body();
  } catch (const std::exception& e) {
    ++g_host->failed;
    Out() << "  FAILED: " << title << ": " << e.what() << "\n";
  }
}

const dv_core_ns::SeriesID& FindSeries(const char* key) {
  const auto found = dv_core_ns::ReferenceData::Current().FindSeriesByKey(key);
  Require(!found.empty(), std::string("no series ") + key);
  return *found.front()->series;
}

std::string NameOf(const dv_core_ns::SeriesID& series) {
  std::string name;
  if (!nv_fmt::SeriesNameFormatter::Instance().FormatContract(
          series, name, nv_fmt::DefaultFormatContractConfig)) {
    return "(no name)";
  }
  return name;
}

std::string Fixed(double value, int decimals) {
  std::ostringstream text;
  text << std::fixed << std::setprecision(decimals) << value;
  return text.str();
}

// ---- Start-up, in the library's order ------------------------------------

void LoadReferenceData() {
  const std::string path = g_host->options.refdataFile.empty()
                               ? DataFile("sample-refdata.json")
                               : g_host->options.refdataFile;
  const nvshared::Status loaded = dv_core_ns::ReferenceData::LoadFile(path);
  Require(loaded.ok(), loaded.message());
  const auto& data = dv_core_ns::ReferenceData::Current();
  Say(std::to_string(data.exchanges().size()) + " exchanges, " +
      std::to_string(data.products().size()) + " products, " +
      std::to_string(data.series().size()) + " series from " + path);
}

void StartLog() {
  auto file = dv_log::FileSink::Open(WorkFile("trader.log"));
  Require(file.ok(), file.status().message());
  dv_log::GetCustomLog()->SetSink(
      std::make_shared<HostLogSink>(std::move(file).value()));
  Say("log lines go to " + WorkFile("trader.log"));
}

void NameApplication() {
  nv_ns::AppStringLoader::Instance().SetAppName("Trader", "trader");
  std::string text;
  nv_ns::AppStringLoader::LoadAppString("<CapAppName> is starting.", text);
  Say("texts now read: " + text);
}

void StartErrorLog() {
  CDVNVErrorLog::InitErrorLog("Trader", &ShowMessageBox);
  std::ifstream comm("/proc/self/comm");
  std::getline(comm, g_host->comm);
  Say("the process is now called \"" + g_host->comm + "\"");
  CDVNVErrorLog::LogMessage("error log started", 0, 2);
}

void StartExceptionReports() {
  CDVNVExpRpt::Init(&ShowMessageBox,
                    "<CapAppName> recovered from an error (code %d).",
                    "<CapAppName> must close (code %d).");
  Say("the library's handler now leads the process's exception chain");
}

void StartMessaging() {
  nv_ns::CommonMessages::Init(&g_router);
  Require(g_router.size() == 4, "the router got " +
                                    std::to_string(g_router.size()) +
                                    " factories, not 4");
  Say("the router holds " + g_router.Describe());
}

// The two settings stores live in files of the work directory. The user's
// is seeded with the sample column's settings; the host logs in with the
// MGT file's own identities, so dynamic connections are off. The machine's
// names the configuration directory, whose pricemodels/ holds the plug-ins.
void BindSettingsStores() {
  CRegistryMgr& user = CRegistryMgr::Instance(1);
  CRegistryMgr& machine = CRegistryMgr::Instance(2);
  const std::string userFile = WorkFile("user-settings.ini");
  fs::copy_file(DataFile("sample-column.ini"), userFile,
                fs::copy_options::overwrite_existing);
  nvshared::Status bound = user.SetFilePath(userFile);
  Require(bound.ok(), bound.message());
  user.WriteRegString("SEServer", "EnableDynamicConnections", "N");
  bound = machine.SetFilePath(WorkFile("machine-settings.ini"));
  Require(bound.ok(), bound.message());
  const std::string configDir = WorkFile("config");
  machine.SetRegistryKey("Software\\Dravane\\");
  machine.WriteRegString("NVConfigDir", "NVConfigDir", configDir);
  Say("user settings in " + userFile + "; configuration directory " +
      configDir);
}

void LoadCustomNames() {
  nv_fmt::SeriesNameFormatter& formatter =
      nv_fmt::SeriesNameFormatter::Instance();
  formatter.SetArchiverFactory(g_archiverFactory);
  formatter.SetArchivePath(WorkFile("Series Names.dat").c_str());
  nv_fmt::SeriesNameAssocVector names;
  formatter.GetCustomSeriesNames(names);
  Say(std::to_string(names.size()) + " custom names loaded from " +
      WorkFile("Series Names.dat"));
  formatter.Attach(&g_namesWindow);
}

void LoadPriceModels() {
  const fs::path models = fs::path(WorkFile("config")) / "pricemodels";
  fs::create_directories(models);
  const std::string& plugin = g_host->options.pluginFile;
  if (!plugin.empty()) {
    fs::copy_file(plugin, models / fs::path(plugin).filename(),
                  fs::copy_options::overwrite_existing);
  }
  CCustomPriceModelManager* manager = CCustomPriceModelManager::Instance();
  Require(manager != nullptr, "the price-model manager is shut down");
  // The names of the built-in price types are reserved before loading, so
  // that no plug-in can take one.
  for (int type = 1; type <= 6; ++type) {
    const std::string& name = CUDPData::GetPriceTypeNameEx(type);
    if (!name.empty()) manager->InitializePricingModeNames(name);
  }
  manager->Init(0);
  std::vector<std::string> names;
  manager->GetCustomPriceModelNames(names);
  std::string list;
  for (const std::string& name : names)
    list += (list.empty() ? "" : ", ") + name;
  Say("price models from " + models.string() + ": " +
      (list.empty() ? "none" : list));
  Require(plugin.empty() || manager->CustomModelNameExists("Forward Yield"),
          "the example model \"Forward Yield\" was not loaded");
}

nv_ns::MgtINI g_mgt;

void LoadMgt() {
  g_mgt.SetLoggers(&MgtInfo, &MgtInfo);
  Require(g_mgt.Load(DataFile("sample.mgt").c_str()),
          "no valid section in " + DataFile("sample.mgt"));
  const int gateway = dv_core_ns::CDVConsumer::GetExchangeId("CME-A");
  const nv_ns::Mgt* identity = g_mgt.GetMgt(gateway);
  Require(identity != nullptr, "no identity for CME-A");
  Say("CME-A logs in as " + identity->m_member + "/" + identity->m_group + "/" +
      identity->m_trader);
}

// ---- A day's work ----------------------------------------------------------

void ShowNamesOfEveryShape() {
  // One series of each shape the screens show.
  const struct {
    const char* key;
    const char* shape;
  } kShapes[] = {
      {"ESH4", "future"},
      {"ESW1H4", "weekly future, with its day"},
      {"ESH4 C1850", "option"},
      {"CLM4 P-1.5",
       "option with a negative strike; the doubled minus is kept"},
      {"ESH4-ESM4", "calendar spread, by its legs"},
      {"ES BF H4", "butterfly of options"},
      {"ES CM1", "custom market spread, by its own name"},
      {"912828C24", "bond"},
      {"CA 3M", "LME prompt date"},
      {"MSFT", "stock"},
  };
  for (const auto& shape : kShapes) {
    Say(std::string(shape.key) + "\t" + NameOf(FindSeries(shape.key)) + "\t(" +
        shape.shape + ")");
  }
}

// A name given to a March 2014 future and one to an LME prompt: after the
// restart the first has expired and is dropped, the second (LME names never
// expire) is kept.
void KeepCustomName() {
  nv_fmt::SeriesNameFormatter& formatter =
      nv_fmt::SeriesNameFormatter::Instance();
  const dv_core_ns::SeriesID& future = FindSeries("ESH4");
  const dv_core_ns::SeriesID& prompt = FindSeries("CA 3M");
  Require(formatter.AddCustomSeriesName(future, "Spoos March"),
          "the name \"Spoos March\" was refused");
  if (const char* kept = formatter.GetCustomName(prompt)) {
    Say(std::string("CA 3M kept its name \"") + kept +
        "\" from the last run in this directory");
  } else {
    Require(formatter.AddCustomSeriesName(prompt, "Copper 3M"),
            "the name \"Copper 3M\" was refused");
  }
  Say("ESH4 is now shown as \"" + NameOf(future) + "\", CA 3M as \"" +
      NameOf(prompt) + "\"");
  Say("saved: " + std::to_string(fs::file_size(WorkFile("Series Names.dat"))) +
      " bytes in " + WorkFile("Series Names.dat"));
  // What the next start does: drop the names in memory and load the file.
  formatter.SetArchivePath("");
  formatter.SetArchivePath(WorkFile("Series Names.dat").c_str());
  const char* kept = formatter.GetCustomName(prompt);
  Require(kept != nullptr && std::string(kept) == "Copper 3M",
          "\"Copper 3M\" did not survive the reload");
  Say(std::string("reloaded: CA 3M is \"") + kept + "\"; ESH4 is \"" +
      NameOf(future) + "\" again, its name expired with the contract");
}

void SortContractList() {
  std::vector<const dv_core_ns::SeriesID*> list;
  for (const auto& record : dv_core_ns::ReferenceData::Current().series()) {
    if (std::string_view(record.series->product.productName) == "ES") {
      list.push_back(record.series.get());
    }
  }
  // Stable: a spread whose legs are unknown equals every spread of its
  // product, and such series keep the data's order.
  std::stable_sort(
      list.begin(), list.end(),
      [](const dv_core_ns::SeriesID* a, const dv_core_ns::SeriesID* b) {
        return nv_ns::SeriesCompare(a, b) < 0;
      });
  Say(std::to_string(list.size()) + " ES contracts in screen order:");
  for (const auto* series : list) {
    Say("  " + std::string(series->seriesKey) + "\t" + NameOf(*series));
  }
}

// The column's ticks, one price a line; blank lines are skipped.
std::vector<double> ReadTicks() {
  std::ifstream in(DataFile("sample-column-prices.txt"));
  Require(in.good(), "cannot read " + DataFile("sample-column-prices.txt"));
  std::vector<double> ticks;
  for (std::string line; std::getline(in, line);) {
    if (line.find_first_not_of(" \t\r") == std::string::npos) continue;
    ticks.push_back(std::stod(line));
  }
  return ticks;
}

// The column's settings come from the user's store (seeded with the sample
// column: a 10-year note future, coupon 4.25, factor 0.8). The dates are not
// stored: settlement two days from today, maturity eight years on.
CUDPData g_column;

void ShowTicks(CUDPData& data, const std::string& label) {
  CUDPrice* price = CUDPriceFactory::GetUDPrice(&data);
  Require(price != nullptr,
          "no converter for price type " + std::to_string(data.m_UDPriceType));
  // The converter goes back to the factory whatever happens below.
  std::unique_ptr<CUDPrice, void (*)(CUDPrice*)> held(
      price, [](CUDPrice* p) { CUDPriceFactory::ReleaseUDPrice(p); });
  std::string shown;
  for (double tick : ReadTicks()) {
    double value = 0.0;
    Require(held->GetUDPFromPrice(tick, value),
            "no " + label + " for " + Fixed(tick, 6));
    shown +=
        (shown.empty() ? "" : ", ") + Fixed(tick, 6) + " -> " + Fixed(value, 4);
  }
  Say(label + " through " +
      (dynamic_cast<CCustomUDPrice*>(price) != nullptr
           ? "the plug-in model"
           : "a built-in converter") +
      ": " + shown);
  double price5 = 0.0;
  Require(held->GetPriceFromUDP(5.0, price5), "no price for a typed 5.0");
  Say("the user types " + label + " 5.0000: the order goes in at " +
      Fixed(price5, 6));
}

void PriceColumn() {
  Require(g_column.LoadSaveSettings(true) == 1,
          "cannot load the column's settings");
  const nv_ns::UDPDateTime now = nv_ns::UDPDateTime::GetTickCount();
  const nv_ns::UDPDateTime settle(
      static_cast<double>(static_cast<long>(now.GetSerial()) + 2));
  const nv_ns::UDPDateTime maturity(settle.GetYear() + 8, 11, 15, 0, 0, 0);
  g_column.SetSettlementDate(settle, true);
  g_column.SetMaturityDate(maturity, true);
  const int verdict = g_column.ValidateData();
  Require(verdict == 0,
          "the terms were refused with code " + std::to_string(verdict));
  Say("column " + NameOf(FindSeries("ZNH4")) + ", " +
      CUDPData::GetPriceTypeNameEx(g_column.m_UDPriceType) + ", coupon " +
      Fixed(g_column.GetCoupon(), 2) + ", factor " +
      Fixed(g_column.m_dConvFactor, 2) + ", settles " +
      settle.Format("%Y-%m-%d") + ", matures " + maturity.Format("%Y-%m-%d"));
  ShowTicks(g_column, "yield to maturity");
}

void PriceColumnThroughPlugin() {
  Require(!g_host->options.pluginFile.empty(), "no plug-in was given");
  CUDPData data = g_column;
  data.m_UDPriceType = nv_ns::UDPPriceType::CustomModel;
  data.m_sCustomPriceModelName = "Forward Yield";
  ShowTicks(data, "forward yield");
}

void ChooseOrderDefault() {
  std::ifstream in(DataFile("sample-defaults.json"));
  Require(in.good(), "cannot read " + DataFile("sample-defaults.json"));
  const std::string json((std::istreambuf_iterator<char>(in)),
                         std::istreambuf_iterator<char>());
  auto entries = nv_ns::ParseDefaultsTable(json);
  Require(entries.ok(), entries.status().message());
  // A gateway's flavoured name is known once a window has shown it.
  const int gateway = dv_core_ns::CDVConsumer::GetExchangeId("CME-A");
  nv_fmt::GetExchangeName(gateway, true);
  nv_ns::DefaultsTable table(std::move(entries).value());
  const CDefaultKey key(CriteriaKeyParams(
      "", 0, static_cast<nv_ns::MarketType::Value>(-1),
      static_cast<nv_ns::ExchangeIds::Value>(gateway), -1,
      static_cast<nv_ns::ProductType::Value>(dv_core_ns::FUTURE), "ES"));
  int score = -1;
  Require(key.MatchScored(table, score), "no default fits ES on CME-A");
  table.RestoreBest();
  Say("an order ticket for " + NameOf(FindSeries("ESH4")) + " on " +
      nv_fmt::GetExchangeName(gateway, true) + " takes \"" +
      table.entries()[table.position()].name + "\" (score " +
      std::to_string(score) + ")");
}

void FindLimit() {
  nv_ns::TraderInfo trader;
  trader.m_traderName = "TRADER7";
  nv_ns::ProductLimitInfo es, anyProduct;
  es.m_limits[nv_ns::RiskProductTypes::FUTURE].m_values[0] = 50;
  es.m_limits[nv_ns::RiskProductTypes::FUTURE].m_isSet = 1;
  anyProduct.m_limits[nv_ns::RiskProductTypes::FUTURE].m_values[0] = 10;
  anyProduct.m_limits[nv_ns::RiskProductTypes::FUTURE].m_isSet = 1;
  const int gateway = dv_core_ns::CDVConsumer::GetExchangeId("CME-A");
  trader.AddLimit(gateway, "ES", es);
  trader.AddLimit(gateway, "*", anyProduct);
  for (const char* product : {"ES", "NQ"}) {
    nv_ns::LimitInfo limit;
    Require(trader.GetLimit(gateway, product, nv_ns::RiskProductTypes::FUTURE,
                            limit, true),
            std::string("no limit for ") + product);
    Say(std::string("TRADER7 may hold ") + std::to_string(limit.m_values[0]) +
        " " + product + " futures on CME-A" +
        (std::string(product) == "ES" ? "" : " (the gateway's wildcard row)"));
  }
}

void AnswerOpaqueRequest() {
  nv_opaque_ns::ServerVersionRequest request;
  request.m_block.m_szUniversalLoginName = "trader7";
  request.m_block.m_szApplicationId = "Trader";
  request.m_block.m_szClientInfo = "example host";
  dv_core_ns::OpaqueDataMessage sent;
  request.SaveToMessage(sent);

  // The server side: the factory reads whichever request the message holds.
  std::unique_ptr<nv_opaque_ns::OpaqueRequestMessage> received(
      nv_opaque_ns::CreateCommonRequestMessage(sent));
  auto* asked =
      dynamic_cast<nv_opaque_ns::ServerVersionRequest*>(received.get());
  Require(asked != nullptr,
          "the factory did not read a server version request");
  Say("the server reads a request of type " +
      std::to_string(asked->GetBlockId()) + " from " +
      asked->m_block.m_szUniversalLoginName + " (" +
      asked->m_block.m_szClientInfo + ")");
  nv_opaque_ns::ServerVersionResponse response;
  response.m_baseBlock.m_iRequestID = 1;
  response.m_block.m_iExchangeID =
      dv_core_ns::CDVConsumer::GetExchangeId("CME-A");
  response.m_block.m_serverId = "PRICE-1";
  response.m_block.m_serverVersion = "7.4.2";
  dv_core_ns::OpaqueDataMessage answer;
  response.SaveToMessage(answer);

  std::unique_ptr<nv_opaque_ns::OpaqueResponseMessage> back(
      nv_opaque_ns::CreateCommonResponseMessage(answer));
  auto* version =
      dynamic_cast<nv_opaque_ns::ServerVersionResponse*>(back.get());
  Require(version != nullptr, "the factory did not read the response");
  Say("the answer to request " +
      std::to_string(version->m_baseBlock.m_iRequestID) + ": server " +
      version->m_block.m_serverId + " runs version " +
      version->m_block.m_serverVersion);
}

void ReportError() {
  CDVNVExpRpt::ProcessException(7, CDVNVExpRpt::kHandledException,
                                "order book rebuilt");
}

// ---- Shut-down, at exit ----------------------------------------------------

// Registered before the first use of the contract-name formatter, so it runs
// after the formatter has told its observers that it ends.
void ShutDown() {
  CCustomPriceModelManager::Shutdown();
  Say("price models shut down for good (CCustomPriceModelManager::Shutdown)");
  nv_ns::AppStringLoader::Shutdown();
  Say("application strings shut down, last (AppStringLoader::Shutdown)");
  Out() << "host walk-through: " << g_host->steps - g_host->failed << " of "
        << g_host->steps << " steps done";
  if (g_host->failed > 0) Out() << ", " << g_host->failed << " failed";
  Out() << "; its files are in " << g_host->options.workDir << "\n";
  Out().flush();
}

}  // namespace

int RunHost(const HostOptions& options) {
  static HostState state;
  if (g_host != nullptr) {
    *options.out << "host walk-through: it runs once per process\n";
    return 1;
  }
  state.options = options;
  g_host = &state;
  std::error_code ec;
  fs::create_directories(options.workDir, ec);
  if (ec) {
    *options.out << "host walk-through: cannot make the work directory "
                 << options.workDir << ": " << ec.message() << "\n";
    return 1;
  }
  // Before anything touches the formatter: see ShutDown.
  std::atexit(&ShutDown);

  if (!Quiet()) Out() << "Start-up (files in " << options.workDir << ")\n";
  Step("1. reference data (dv_core_ns::ReferenceData::LoadFile)",
       LoadReferenceData);
  Step("2. the host's log (dv_log::GetCustomLog()->SetSink)", StartLog);
  Step("3. application name (AppStringLoader::SetAppName)", NameApplication);
  Step("4. error log (CDVNVErrorLog::InitErrorLog)", StartErrorLog);
  Step("5. exception reports (CDVNVExpRpt::Init)", StartExceptionReports);
  Step("6. message router (CommonMessages::Init)", StartMessaging);
  Step("7. settings stores (CRegistryMgr::SetFilePath)", BindSettingsStores);
  Step("8. custom names (SetArchiverFactory, then SetArchivePath)",
       LoadCustomNames);
  Step("9. price models (InitializePricingModeNames, then Init)",
       LoadPriceModels);
  Step("10. gateway logins (MgtINI::Load)", LoadMgt);

  if (!Quiet()) Out() << "A day's work\n";
  Step("contract names of every shape (FormatContract)", ShowNamesOfEveryShape);
  Step("a custom name added, shown, saved and reloaded", KeepCustomName);
  Step("a contract list sorted (SeriesCompare)", SortContractList);
  Step("a price column (CUDPData, CUDPriceFactory::GetUDPrice)", PriceColumn);
  Step("the same column through the plug-in model", PriceColumnThroughPlugin);
  Step("a default for an order ticket (CDefaultKey::MatchScored)",
       ChooseOrderDefault);
  Step("a limit found (TraderInfo::GetLimit)", FindLimit);
  Step("an opaque request built, saved, read back and answered",
       AnswerOpaqueRequest);
  Step("an error reported (CDVNVExpRpt::ProcessException)", ReportError);

  // The rest happens at exit: the formatter tells its observers that it
  // ends, then ShutDown runs and prints the summary.
  if (!Quiet()) Out() << "Shut-down, at exit\n";
  Out().flush();
  return state.failed;
}

}  // namespace example_host

// nvtool demo: plays a host application starting up on the reference data,
// then tours what the library answers. Message boxes and log lines, which a
// real host would draw or file, are printed in line with the tour.
#include <algorithm>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include <arpa/inet.h>

#include "nvshared/app/app_string_loader.h"
#include "nvshared/app/error_log.h"
#include "nvshared/app/exception_report.h"
#include "nvshared/market/exchange_names.h"
#include "nvshared/market/market_utils.h"
#include "nvshared/naming/series_name_formatter.h"
#include "nvshared/platform/core/consumer.h"
#include "nvshared/platform/core/market_table.h"
#include "nvshared/platform/core/reference_data.h"
#include "nvshared/platform/log/logger.h"
#include "nvshared/platform/utils/dm_utils.h"
#include "nvshared/platform/utils/exception_handler.h"
#include "tools/nvtool/context.h"

namespace nvtool {
namespace {

// The message-box callback is a plain function, so it finds its stream here.
std::ostream* g_out = nullptr;

void ShowMessageBox(const char* text, unsigned int type, unsigned int) {
  *g_out << "    [message box, type 0x" << std::hex << type << std::dec << "] "
         << text << "\n";
}

// Prints each log record in line with the tour.
class PrintingSink : public dv_log::LogSink {
 public:
  explicit PrintingSink(std::ostream& out) : out_(out) {}
  void Write(const dv_log::LogRecord& record) override {
    out_ << "    [log, severity " << static_cast<int>(record.severity)
         << ", code " << record.code << "] " << record.text << "\n";
  }

 private:
  std::ostream& out_;
};

void StartUp(std::ostream& out) {
  out << "Host start-up\n";
  nv_ns::AppStringLoader::Instance().SetAppName("trader", "Trader Pro");
  out << "  application name: trader (alternative: Trader Pro)\n";
  CDVNVErrorLog::InitErrorLog("trader", &ShowMessageBox);
  out << "  error log started; the process is now called \"trader App\"\n";
  CDVNVExpRpt::Init(&ShowMessageBox,
                    "<CapAppName> recovered from an error (code %d).",
                    "<CapAppName> met a critical error (code %d).");
  out << "  exception reports started\n";
  nv_ns::DMUtils::s_bDMEnabled = true;
  nv_ns::DMUtils::SetSink([&out](const std::string& text, int code,
                                 const std::string& label) {
    out << "    [diagnostics] " << label << " " << code << ": " << text << "\n";
  });
}

void TourMarkets(std::ostream& out) {
  const auto& data = dv_core_ns::ReferenceData::Current();
  out << "\nReference data: " << data.exchanges().size() << " exchanges, "
      << data.products().size() << " products, " << data.series().size()
      << " series\n";
  for (const auto& e : data.exchanges()) {
    const int market = nv_ns::MarketUtils::GetMarketFromExchange(e.id);
    std::string classes;
    if (nv_ns::MarketUtils::IsSyntheticMarket(e.id)) classes += ", synthetic";
    if (nv_ns::MarketUtils::IsFIXExchangeID(e.id)) classes += ", FIX";
    if (nv_ns::MarketUtils::IsECBOTExchangeID(e.id)) classes += ", eCBOT";
    out << "  " << e.id << "\t" << nv_fmt::GetExchangeName(e.id, true) << " on "
        << dv_core_ns::CDVConsumer::GetMarketName(market) << classes << "\n";
  }
  const char* flavoured = nv_fmt::GetExchangeName(7, true);
  if (*flavoured != '\0') {
    out << "  the flavoured name \"" << flavoured << "\" finds exchange "
        << nv_fmt::GetExchangeID(flavoured, true) << "\n";
  }
}

// The shape of contract a series stands for, for picking one of each.
std::string ShapeOf(const dv_core_ns::SeriesID& s) {
  switch (s.productType()) {
    case dv_core_ns::FUTURE:
      return s.expiry.day != 0 ? "future with a day" : "future";
    case dv_core_ns::OPTION:
      if (s.strike == 1) return "option priced by its legs";
      if (s.strike < 0) return "option with a negative strike";
      if (s.versionCode != '0' && s.versionCode != ' ') {
        return "option with a version code";
      }
      return "option";
    case dv_core_ns::SPREAD:
    case dv_core_ns::STRATEGY: {
      if (s.combCode == dv_core_ns::COMB_CODE_CUSTOM_MARKET) {
        return "Custom Market spread";
      }
      dv_core_ns::LegList legs;
      if (!dv_core_ns::CDVBasePriceConsumer::CopyLegList(&s, legs)) {
        return "spread whose legs are unknown";
      }
      return s.productType() == dv_core_ns::SPREAD ? "spread" : "strategy";
    }
    default:
      return dv_core_ns::AEnum_ProdIDs::Name(s.productType());
  }
}

void TourContractNames(std::ostream& out) {
  out << "\nContract names (one series of each shape)\n";
  nv_fmt::SeriesNameFormatter& formatter =
      nv_fmt::SeriesNameFormatter::Instance();
  const nv_fmt::FormatContractConfig& config =
      nv_fmt::DefaultFormatContractConfig;
  std::vector<std::string> seen;
  const dv_core_ns::SeriesID* spread = nullptr;
  const dv_core_ns::SeriesID* seriesNamed = nullptr;
  std::string name;
  for (const auto& record : dv_core_ns::ReferenceData::Current().series()) {
    const dv_core_ns::SeriesID& s = *record.series;
    const std::string shape = ShapeOf(s);
    if (shape == "spread" && spread == nullptr) spread = &s;
    if (shape == "future with a day" && s.seriesName.IsPresent() &&
        seriesNamed == nullptr) {
      seriesNamed = &s;
    }
    if (std::find(seen.begin(), seen.end(), shape) != seen.end()) continue;
    seen.push_back(shape);
    if (!formatter.FormatContract(s, name, config)) name = "(no name)";
    out << "  " << shape << " " << s.seriesKey << ": " << name << "\n";
  }
  if (spread != nullptr) {
    formatter.SetProductNameEnabled(true);
    nv_fmt::FormatContractConfig compact = config;
    compact.compact = true;
    formatter.FormatContract(*spread, name, config);
    out << "  with product codes, " << spread->seriesKey << ": " << name
        << "\n";
    formatter.FormatContract(*spread, name, compact);
    out << "  and compact: " << name << "\n";
    formatter.SetProductNameEnabled(false);
  }
  if (seriesNamed != nullptr) {
    formatter.SetSeriesNameEnabled(true);
    formatter.FormatContract(*seriesNamed, name, config);
    out << "  with series names shown, " << seriesNamed->seriesKey << ": "
        << name << "\n";
    formatter.SetSeriesNameEnabled(false);
  }
}

void TourFormatters(std::ostream& out) {
  out << "\nFormatters\n";
  const auto& data = dv_core_ns::ReferenceData::Current();
  int shown = 0;
  for (const auto& record : data.series()) {
    const dv_core_ns::SeriesID& s = *record.series;
    char date[8];
    if (!nv_fmt::FormatDate(s.contractExpiry, date)) continue;
    std::string exchange;
    nv_fmt::FormatExchange(s, exchange);
    out << "  " << s.seriesKey << " (" << exchange << ") expires " << date
        << "\n";
    if (++shown == 3) break;
  }
  char time[13];
  nv_fmt::FormatTime(dv_core_ns::Time(9, 30, 5, 42), time);
  out << "  09:30:05 and 42 ms prints as " << time << "\n";
  in_addr address{};
  inet_pton(AF_INET, "192.168.10.20", &address);
  std::string ip;
  nv_fmt::FormatIP(static_cast<int>(address.s_addr), ip);
  out << "  the address 192.168.10.20, in network order, prints as " << ip
      << "\n";
}

void TourReports(std::ostream& out) {
  out << "\nApplication strings\n";
  std::string text;
  nv_ns::AppStringLoader::LoadAppString(
      "<CapAppName> could not reach <AppName>'s gateway.", text);
  out << "  " << text << "\n";
  nv_ns::AppStringLoader::LoadAppString("Welcome to <AppName>.", text, true);
  out << "  " << text << " (alternative name)\n";

  out << "\nError log and exception reports\n";
  out << "  a plain log line:\n";
  CDVNVErrorLog::LogMessage("connected to the price server", 0, 2);
  out << "  a handled exception (box, diagnostics, log):\n";
  CDVNVExpRpt::ProcessException(7, CDVNVExpRpt::kHandledException,
                                "order book rebuilt");
  out << "  a critical exception without text:\n";
  CDVNVExpRpt::ProcessException(8, CDVNVExpRpt::kCriticalException);
  out << "  a plain report (log only):\n";
  CDVNVExpRpt::ProcessException(9, 3000, "slow tick");
  out << "  a fault raised through the handler chain:\n";
  nv_ns::ExceptionHandler::Raise(11, "price feed stalled");
  out << "  a multi-broker path not supported here:\n";
  CDVNVExpRpt::ShoutOutMBNotSupported();
}

}  // namespace

void AddDemoCommand(CLI::App& app, Context& context) {
  CLI::App* sub = app.add_subcommand(
      "demo",
      "Play a host application on the reference data.\n"
      "Starts up as a host does (application name, error log, exception "
      "reports), then tours markets and names, formatters, application "
      "strings and error reports, and shuts down. Message boxes and log "
      "lines are printed in line.");
  sub->footer(
      "nvtool --refdata my-refdata.json demo\n"
      "plays a host on my-refdata.json instead of the bundled sample.");
  sub->callback([&context] {
    const nvshared::Status loaded = context.LoadReferenceData();
    if (!loaded.ok()) throw CLI::RuntimeError(loaded.message(), 1);
    std::ostream& out = *context.out;
    g_out = &out;
    auto previous =
        dv_log::GetCustomLog()->SetSink(std::make_shared<PrintingSink>(out));
    StartUp(out);
    TourMarkets(out);
    TourContractNames(out);
    TourFormatters(out);
    TourReports(out);
    out << "\nShut-down\n";
    nv_ns::DMUtils::SetSink(nullptr);
    dv_log::GetCustomLog()->SetSink(previous);
    nv_ns::AppStringLoader::Shutdown();
    out << "  application strings shut down\n";
  });
}

}  // namespace nvtool

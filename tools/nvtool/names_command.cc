// nvtool names: the user's custom contract names in a names file, read and
// written through the library's own archiver, as a host keeps them.
#include <algorithm>
#include <cstdlib>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "nvshared/market/series_compare.h"
#include "nvshared/naming/binary_archiver.h"
#include "nvshared/naming/series_name_formatter.h"
#include "nvshared/platform/core/consumer.h"
#include "nvshared/platform/core/reference_data.h"
#include "nvshared/platform/log/logger.h"
#include "nvshared/platform/log/memory_sink.h"
#include "tools/nvtool/context.h"

namespace nvtool {
namespace {

using dv_core_ns::SeriesID;
using nv_fmt::SeriesNameFormatter;

constexpr char kCorruption[] = "Series Names.dat file has corruption data";

struct NamesOptions {
  std::string file;
  std::string action;
  std::vector<std::string> arguments;
  std::string exchange;
};

// The series of a key, on the given exchange or the only one that lists it.
const SeriesID& FindSeries(const std::string& key,
                           const std::string& exchange) {
  const auto& data = dv_core_ns::ReferenceData::Current();
  if (!exchange.empty()) {
    char* end = nullptr;
    long id = std::strtol(exchange.c_str(), &end, 10);
    if (exchange.empty() || *end != '\0') {
      id = dv_core_ns::CDVConsumer::GetExchangeId(exchange.c_str());
    }
    const auto* record = data.FindSeries(static_cast<int>(id), key);
    if (record == nullptr) {
      throw CLI::RuntimeError(
          "no series \"" + key + "\" on exchange \"" + exchange + "\"", 1);
    }
    return *record->series;
  }
  const auto records = data.FindSeriesByKey(key);
  if (records.empty()) {
    throw CLI::RuntimeError("unknown series key \"" + key + "\"", 1);
  }
  if (records.size() > 1) {
    throw CLI::RuntimeError("series key \"" + key +
                                "\" is on several exchanges; choose one with "
                                "--exchange",
                            1);
  }
  return *records.front()->series;
}

// Logged lines from `from` on, printed whole.
void PrintLines(const dv_log::MemorySink& log, std::size_t from,
                std::ostream& out) {
  const std::vector<std::string> texts = log.Texts();
  for (std::size_t i = from; i < texts.size(); ++i) out << texts[i] << '\n';
}

void List(std::ostream& out) {
  nv_fmt::SeriesNameAssocVector pairs;
  SeriesNameFormatter::Instance().GetCustomSeriesNames(pairs);
  std::stable_sort(
      pairs.begin(), pairs.end(),
      [](const nv_fmt::SeriesNameAssoc& a, const nv_fmt::SeriesNameAssoc& b) {
        return nv_ns::SeriesCompare(a.series, b.series) < 0;
      });
  for (const nv_fmt::SeriesNameAssoc& pair : pairs) {
    out << pair.series->seriesKey << '\t' << pair.name << '\n';
  }
}

void RunNames(const NamesOptions& options, Context& context) {
  const auto& action = options.action;
  const std::size_t wanted = action == "add" || action == "change" ? 2
                             : action == "remove"                  ? 1
                                                                   : 0;
  if (options.arguments.size() != wanted) {
    throw CLI::ValidationError(
        "names", action + " takes " + std::to_string(wanted) + " argument" +
                     (wanted == 1 ? "" : "s"));
  }
  const nvshared::Status loaded = context.LoadReferenceData();
  if (!loaded.ok()) throw CLI::RuntimeError(loaded.message(), 1);

  auto log = std::make_shared<dv_log::MemorySink>();
  const auto previous = dv_log::GetCustomLog()->SetSink(log);
  struct Restore {
    std::shared_ptr<dv_log::LogSink> sink;
    ~Restore() { dv_log::GetCustomLog()->SetSink(sink); }
  } restore{previous};

  static nv_fmt::BinaryArchiverFactory factory;
  SeriesNameFormatter& formatter = SeriesNameFormatter::Instance();
  formatter.SetArchiverFactory(factory);
  formatter.SetArchivePath(options.file.c_str());
  for (const std::string& text : log->Texts()) {
    if (text.find(kCorruption) != std::string::npos) {
      nv_fmt::SeriesNameAssocVector kept;
      formatter.GetCustomSeriesNames(kept);
      *context.out << text << '\n';
      *context.err << "nvtool: " << options.file
                   << " was damaged; kept the first " << kept.size()
                   << " name(s) and rewrote it\n";
    }
  }
  const std::size_t mark = log->Texts().size();

  bool done = true;
  if (action == "list") {
    List(*context.out);
  } else if (action == "add") {
    done = formatter.AddCustomSeriesName(
        FindSeries(options.arguments[0], options.exchange),
        options.arguments[1].c_str());
  } else if (action == "change") {
    done = formatter.ChangeCustomSeriesName(
        FindSeries(options.arguments[0], options.exchange),
        options.arguments[1].c_str());
  } else if (action == "remove") {
    const std::string& what = options.arguments[0];
    done = formatter.GetSeries(what.c_str()) != nullptr
               ? formatter.RemoveCustomSeriesName(what.c_str())
               : formatter.RemoveCustomSeriesName(
                     FindSeries(what, options.exchange));
  } else {
    formatter.RemoveAllCustomSeriesNames();
  }
  PrintLines(*log, mark, *context.out);
  if (!done)
    throw CLI::RuntimeError(action + " refused; see the line above", 1);
}

}  // namespace

void AddNamesCommand(CLI::App& app, Context& context) {
  auto options = std::make_shared<NamesOptions>();
  CLI::App* sub = app.add_subcommand(
      "names",
      "List or change the custom names of a names file.\n"
      "Works on a custom-names file with the library's archiver: lists the "
      "names (key, a tab, the name, in screen order), adds or changes a "
      "contract's name, removes one by name or by key, or purges them all. "
      "The file is loaded first, so expired names go, and a damaged file "
      "keeps the names before the damage; every change rewrites it. The "
      "library's log lines of the action are printed.");
  sub->add_option("FILE", options->file,
                  "The names file; a missing one starts empty")
      ->required()
      ->type_name("FILE");
  sub->add_option("ACTION", options->action,
                  "list | add KEY NAME | change KEY NAME | "
                  "remove KEY-or-NAME | purge")
      ->required()
      ->transform(OneOf({"list", "add", "change", "remove", "purge"}))
      ->type_name("ACTION");
  sub->add_option("ARG", options->arguments,
                  "The action's series key and name, as ACTION says")
      ->type_name("ARG");
  sub->add_option("--exchange", options->exchange,
                  "Look keys up on this exchange (id or name); needed where "
                  "a key is listed by several exchanges; default: the only "
                  "one that lists it")
      ->type_name("ID");
  sub->footer(
      "nvtool names my.names add ESH4 \"March mini\"\n"
      "gives the series ESH4 the custom name \"March mini\" in my.names, "
      "then prints the library's log lines.");
  sub->callback([&context, options] { RunNames(*options, context); });
}

}  // namespace nvtool

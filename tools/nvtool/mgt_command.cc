// nvtool mgt: checks an MGT file the way a host application loads it, and
// prints every line the loader logs, the result of the load and, on
// request, the identity a gateway would log in with. Dynamic connections
// are on unless turned off, as on a host with an empty settings store.
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "nvshared/mgt/mgt_ini.h"
#include "nvshared/platform/core/consumer.h"
#include "nvshared/platform/log/logger.h"
#include "nvshared/platform/log/memory_sink.h"
#include "nvshared/platform/os/atomic_file.h"
#include "nvshared/platform/utils/registry_mgr.h"
#include "tools/nvtool/context.h"

namespace nvtool {
namespace {

struct MgtOptions {
  std::string file;
  std::vector<std::string> gateways;
  bool noDynamic = false;
};

// Info lines go to the logger with severity 3, errors with -1.
const char* Mark(const dv_log::LogRecord& record) {
  return static_cast<int>(record.severity) == -1 ? "error" : "info ";
}

std::string Describe(const nv_ns::Mgt& mgt) {
  std::string text = "Member=" + mgt.m_member + " Group=" + mgt.m_group +
                     " Trader=" + mgt.m_trader;
  if (!mgt.m_server.empty()) {
    text += std::string(mgt.m_serverMandatory ? " Mandatory_Server="
                                              : " Preferred_Server=") +
            mgt.m_server;
  }
  if (mgt.HasMpfGateways()) {
    text += " Price_Subscription_Gateway=";
    std::string names;
    mgt.for_each_mpfGateway([&names](int id) {
      const char* name = dv_core_ns::CDVConsumer::GetExchangeName(id);
      if (!names.empty()) names += ",";
      names += name == nullptr ? std::to_string(id) : name;
    });
    text += names;
  }
  text += std::string(" TraderIdType=") + mgt.m_traderIdType.ToString();
  return text;
}

// Whether `mgt` is a market's own identity, that is the fallback.
bool IsMarketLevel(const nv_ns::MgtINI& mgt, const nv_ns::Mgt* found) {
  for (auto it = mgt.GetMarketMap_Begin(); it != mgt.GetMarketMap_End(); ++it) {
    if (static_cast<const nv_ns::Mgt*>(&it->second) == found) return true;
  }
  return false;
}

void Run(const Context& context, const MgtOptions& options) {
  const nvshared::Status loaded = context.LoadReferenceData();
  if (!loaded.ok()) throw CLI::RuntimeError(loaded.message(), 1);

  // The loader answers a file it cannot read like an empty one; a checker
  // should say so instead.
  const auto contents = nvshared::os::ReadWholeFile(options.file);
  if (!contents.ok()) throw CLI::RuntimeError(contents.status().message(), 1);

  // A host whose settings store does not set dynamic connections has them
  // on, and so does this check unless told otherwise. The setting lives in
  // the in-memory user store for this run only; no file is bound, so
  // nothing is written.
  if (options.noDynamic) {
    CRegistryMgr::Instance(CRegistryMgr::kUser)
        .WriteRegString("SEServer", "EnableDynamicConnections", "N");
  }

  auto sink = std::make_shared<dv_log::MemorySink>();
  auto saved = dv_log::GetCustomLog()->SetSink(sink);
  nv_ns::MgtINI mgt;
  mgt.SetLoggers(&nv_ns::MgtLogInfo, &nv_ns::MgtLogError);
  const bool ok = mgt.Load(options.file.c_str());
  dv_log::GetCustomLog()->SetSink(saved);

  std::ostream& out = *context.out;
  out << (options.noDynamic
              ? "Dynamic connections: off; identities as the file gives them\n"
              : "Dynamic connections: on, as on a host whose settings store "
                "does not set them; every identity is DVADM/XXX/MGR\n");
  for (const dv_log::LogRecord& record : sink->Records()) {
    out << Mark(record) << " " << record.text << "\n";
  }
  out << "Load: " << (ok ? "true" : "false") << "\n";
  // Unknown gateways are reported after the whole load report, which holds
  // the answer for the names that are known.
  std::string unknown;
  for (const std::string& name : options.gateways) {
    const int id = dv_core_ns::CDVConsumer::GetExchangeId(name.c_str());
    if (id == -1) {
      unknown += (unknown.empty() ? "" : ", ") + name;
      continue;
    }
    const nv_ns::Mgt* found = mgt.GetMgt(id);
    out << "gateway " << name << ": ";
    if (found == nullptr) {
      out << "no identity\n";
      continue;
    }
    out << Describe(*found)
        << (IsMarketLevel(mgt, found) ? " (market level)" : "") << "\n";
  }
  std::string failure;
  if (!ok) failure = options.file + ": no market could be loaded";
  if (!unknown.empty()) {
    failure += (failure.empty() ? "" : "; ") + std::string("--gateway ") +
               unknown + ": no such gateway in the reference data";
  }
  if (!failure.empty()) throw CLI::RuntimeError(failure, 1);
}

}  // namespace

void AddMgtCommand(CLI::App& app, Context& context) {
  auto options = std::make_shared<MgtOptions>();
  CLI::App* sub = app.add_subcommand(
      "mgt",
      "Check an MGT file as a host application loads it.\n"
      "Prints whether dynamic connections are on, every line the loader "
      "logs (marked info or error), the result of the load and, for each "
      "--gateway, the identity that gateway logs in with.\n"
      "Like a host whose settings store does not set "
      "SEServer\\EnableDynamicConnections, the check runs with dynamic "
      "connections on, so every identity is DVADM/XXX/MGR. Give "
      "--no-dynamic-connections to check the identities the file itself "
      "gives, as a host does once its store sets that value to N.\n"
      "Exits 1 after the whole report when the load fails or a --gateway "
      "is unknown. With dynamic connections on the load does not fail: a "
      "host then loads even a file without one valid section.");
  sub->add_option("FILE", options->file, "The MGT file to check")
      ->required()
      ->type_name("FILE");
  sub->add_option("--gateway", options->gateways,
                  "A gateway (exchange) name whose login identity to print; "
                  "repeatable; default: none")
      ->type_name("NAME")
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  sub->add_flag("--no-dynamic-connections", options->noDynamic,
                "Load with dynamic connections off, as a host whose settings "
                "store sets SEServer\\EnableDynamicConnections to N; default: "
                "on, as a host whose store does not set it");
  sub->footer(
      "nvtool mgt --no-dynamic-connections --gateway CME-A site.mgt\n"
      "checks site.mgt and prints the identity gateway CME-A logs in with.");
  sub->callback([&context, options] { Run(context, *options); });
}

}  // namespace nvtool

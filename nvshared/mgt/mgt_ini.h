// nv_ns::MgtINI: the login identities of every market and gateway, as the
// MGT file assigns them, and the one question hosts ask of them: with which
// identity to log in to a gateway (GetMgt).
//
// The MGT file is a profile (INI) file read by key. Sections named
// "market-<market name>" hold a market's identity and "gw-<gateway name>" a
// gateway's (the prefixes compare without case; other sections are
// ignored). Their keys: Member, Group, Trader, TraderIdType, Primary,
// Preferred_Server or Mandatory_Server (gateways only) and
// Price_Subscription_Gateway. See docs/formats/mgt-file.md.
//
//   [market-CME]
//   Member=M1
//   Group=G1
//   Trader=T1
//   [gw-CME-A]
//   Member=M2
//   Group=G2
//   Trader=T2
//   Mandatory_Server=10.1.2.3
//
// Every section accepted and every fault found is reported through two
// host-set loggers, each message starting with "MGT_INI: "; a faulty section
// never stops the others. MgtLogInfo and MgtLogError send the messages to
// the process's logger (dv_log::GetCustomLog).
//
// Ownership: the object owns every identity. Pointers from GetMgt and the
// iterators point into it and stay valid until the object is assigned to,
// loaded again or destroyed.
// Threads: Load, GetMgt and operator= are serialised by one re-entrant lock,
// held across the logger calls (a logger must not wait for another thread
// that calls GetMgt). The iterators and SetLoggers take no lock, and what
// GetMgt returns is read without one, so Load must have finished first.
#ifndef NVSHARED_MGT_MGT_INI_H_
#define NVSHARED_MGT_MGT_INI_H_

#include <map>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "nvshared/export.h"
#include "nvshared/mgt/mgt.h"

namespace nvshared::os {
class ProfileFile;
}

namespace nv_ns {

// Loggers for MgtINI::SetLoggers that write to the process's logger, info
// lines with severity 3 and errors with severity -1, both with code 0.
NVSHARED_API void MgtLogInfo(const std::string& text);
NVSHARED_API void MgtLogError(const std::string& text);

class NVSHARED_API MgtINI {
 public:
  using Logger = void (*)(const std::string&);
  using GatewayIdList = std::vector<std::pair<bool, int>>;
  using MarketMap = std::map<int, MktMgt>;

  MgtINI();
  virtual ~MgtINI();
  MgtINI(const MgtINI&) = delete;

  // Copies the load result, the file name, the log prefix, both loggers and
  // every market with its gateways, under this object's lock only. The
  // gateway list, the dynamic-connections flag and the subscription pairs
  // deliberately stay this object's own: a copy answers GetMgt like its
  // source and keeps its own gateway list.
  MgtINI& operator=(const MgtINI& other);

  // `info` and `error` receive one message per call; null drops them.
  void SetLoggers(Logger info, Logger error);

  // Reads the MGT file at `path`, once: after a load that succeeded, later
  // calls answer true and read nothing. A failed load is tried again by the
  // next call, on top of what it left behind. True when at least one market
  // exists afterwards, or when dynamic connections are enabled (setting
  // SEServer\EnableDynamicConnections of the user's settings store, true
  // when absent) -- then even for a missing file.
  bool Load(const char* path);

  // The identity for logging in to gateway `gatewayId`: the gateway's own,
  // else its market's, else null (also when the gateway's market is
  // unknown). A market entry made only by gateway sections gives no
  // fallback.
  const Mgt* GetMgt(int gatewayId) const;

  // Every accepted gateway section in file order: its Primary flag and id.
  GatewayIdList::const_iterator GetGatewayID_Begin() const;
  GatewayIdList::const_iterator GetGatewayID_End() const;
  // Every market in ascending order of market id.
  MarketMap::const_iterator GetMarketMap_Begin() const;
  MarketMap::const_iterator GetMarketMap_End() const;

 private:
  bool ParseFile(const char* path);
  void ParseMarketSection(const nvshared::os::ProfileFile& file,
                          const std::string& section);
  void ParseGatewaySection(const nvshared::os::ProfileFile& file,
                           const std::string& section);
  bool ParseIdentity(const nvshared::os::ProfileFile& file, bool isMarket,
                     const std::string& section, Mgt& identity, bool& primary,
                     bool& subscriptionEmpty);
  void ReportSection(const char* kind, const std::string& name, bool primary,
                     const Mgt& identity);
  void CollectMpfGateways();
  void Info(const std::string& text) const;
  void Error(const std::string& text) const;

  bool m_loaded = false;
  MarketMap m_marketMap;
  mutable std::recursive_mutex m_lock;
  GatewayIdList m_gatewayIds;
  std::string m_fileName;
  bool m_dynamicConnections = false;
  std::vector<std::pair<int, int>> m_mpfGatewayMarkets;
  Logger m_errorLogger = nullptr;
  Logger m_infoLogger = nullptr;
  std::string m_logPrefix;
};

}  // namespace nv_ns

#endif  // NVSHARED_MGT_MGT_INI_H_

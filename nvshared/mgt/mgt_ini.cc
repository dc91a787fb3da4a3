#include "nvshared/mgt/mgt_ini.h"

#include <boost/algorithm/string/classification.hpp>
#include <boost/algorithm/string/split.hpp>
#include <boost/regex.hpp>

#include "nvshared/internal/ascii.h"
#include "nvshared/market/internal/market_utils_internal.h"
#include "nvshared/market/market_utils.h"
#include "nvshared/platform/core/consumer.h"
#include "nvshared/platform/log/logger.h"
#include "nvshared/platform/os/inet_address.h"
#include "nvshared/platform/os/profile_file.h"
#include "nvshared/platform/utils/registry_mgr.h"

namespace nv_ns {
namespace {

using dv_core_ns::CDVConsumer;
using nvshared::os::ProfileFile;

// Buffer sizes of the key reads; a longer value is cut to one less.
constexpr std::size_t kLongValue = 1024;
constexpr std::size_t kShortValue = 64;
constexpr std::size_t kSectionNames = 4096;

// Identity given to every section while dynamic connections are on.
constexpr const char* kDynamicMember = "DVADM";
constexpr const char* kDynamicGroup = "XXX";
constexpr const char* kDynamicTrader = "MGR";

std::string Read(const ProfileFile& file, const std::string& section,
                 const char* key, std::size_t size) {
  std::vector<char> buffer(size);
  const std::size_t n =
      file.GetString(section, key, "", buffer.data(), buffer.size());
  return std::string(buffer.data(), n);
}

bool StartsWithIgnoringCase(const std::string& text, const char* prefix) {
  std::size_t i = 0;
  for (; prefix[i] != '\0'; ++i) {
    if (i >= text.size()) return false;
    if (nvshared::internal::AsciiToLower(text[i]) != prefix[i]) return false;
  }
  return true;
}

// All that follows the first "-" of the section name.
std::string NameAfterDash(const std::string& section) {
  const std::size_t dash = section.find('-');
  return dash == std::string::npos ? std::string() : section.substr(dash + 1);
}

const char* ServerKey(const Mgt& identity) {
  return identity.m_serverMandatory ? "Mandatory_Server" : "Preferred_Server";
}

bool IsServerAddress(const std::string& server) {
  static const boost::regex kAddress(
      R"(\b\d{1,3}\.\d{1,3}\.\d{1,3}\.\d{1,3}\b)", boost::regex::icase);
  if (!boost::regex_match(server, kAddress)) return false;
  const std::uint32_t address = nvshared::os::InetAddr(server.c_str());
  return address != 0 && address != 0xFFFFFFFFu;
}

}  // namespace

void MgtLogInfo(const std::string& text) {
  dv_log::GetCustomLog()->Log(text.c_str(), static_cast<dv_log::LogSeverity>(3),
                              0);
}

void MgtLogError(const std::string& text) {
  dv_log::GetCustomLog()->Log(text.c_str(),
                              static_cast<dv_log::LogSeverity>(-1), 0);
}

MgtINI::MgtINI() : m_logPrefix("MGT_INI: ") {}

MgtINI::~MgtINI() = default;

MgtINI& MgtINI::operator=(const MgtINI& other) {
  if (&other == this) return *this;
  // Only this object's lock is taken: `other` must not be loading meanwhile.
  std::lock_guard<std::recursive_mutex> lock(m_lock);
  m_loaded = other.m_loaded;
  m_fileName = other.m_fileName;
  m_logPrefix = other.m_logPrefix;
  m_infoLogger = other.m_infoLogger;
  m_errorLogger = other.m_errorLogger;
  m_marketMap.clear();
  for (const auto& entry : other.m_marketMap) m_marketMap.insert(entry);
  return *this;
}

void MgtINI::SetLoggers(Logger info, Logger error) {
  m_infoLogger = info;
  m_errorLogger = error;
}

void MgtINI::Info(const std::string& text) const {
  if (m_infoLogger != nullptr) m_infoLogger(m_logPrefix + text);
}

void MgtINI::Error(const std::string& text) const {
  if (m_errorLogger != nullptr) m_errorLogger(m_logPrefix + text);
}

bool MgtINI::Load(const char* path) {
  std::lock_guard<std::recursive_mutex> lock(m_lock);
  if (!m_loaded) {
    m_loaded = ParseFile(path == nullptr ? "" : path);
    CollectMpfGateways();
  }
  return m_loaded;
}

const Mgt* MgtINI::GetMgt(int gatewayId) const {
  std::lock_guard<std::recursive_mutex> lock(m_lock);
  const int market = MarketUtils::GetMarketFromExchange(gatewayId);
  if (market == -1) return nullptr;
  const auto m = m_marketMap.find(market);
  if (m == m_marketMap.end()) return nullptr;
  // A gateway's own identity wins, set or not.
  const auto g = m->second.m_gateways.find(gatewayId);
  if (g != m->second.m_gateways.end()) return &g->second;
  if (m->second.IsSet()) return &m->second;
  return nullptr;
}

MgtINI::GatewayIdList::const_iterator MgtINI::GetGatewayID_Begin() const {
  return m_gatewayIds.begin();
}

MgtINI::GatewayIdList::const_iterator MgtINI::GetGatewayID_End() const {
  return m_gatewayIds.end();
}

MgtINI::MarketMap::const_iterator MgtINI::GetMarketMap_Begin() const {
  return m_marketMap.begin();
}

MgtINI::MarketMap::const_iterator MgtINI::GetMarketMap_End() const {
  return m_marketMap.end();
}

bool MgtINI::ParseFile(const char* path) {
  m_fileName = path;
  const std::string setting = CRegistryMgr::Instance(1).ReadRegString(
      "SEServer", "EnableDynamicConnections", "", 1);
  m_dynamicConnections = CRegistryMgr::GetYesNoValue(setting);

  // A file that cannot be read answers like one without sections.
  nvshared::StatusOr<ProfileFile> read = ProfileFile::Read(m_fileName);
  const ProfileFile file = read.ok() ? std::move(*read) : ProfileFile();

  // The names come through a fixed buffer, as the file API gives them:
  // names beyond it are lost, and a repeated section is named each time.
  std::vector<char> buffer(kSectionNames);
  const std::size_t length = file.GetSectionNames(buffer.data(), buffer.size());
  if (length < 1) return m_dynamicConnections;
  std::vector<std::string> names;
  for (std::size_t pos = 0; pos < length;) {
    const std::string name(buffer.data() + pos);
    pos += name.size() + 1;
    names.push_back(name);
  }

  Info("Loading gateway specific parameters from " + m_fileName);

  // Duplicates are counted by exact bytes, so GW-X and gw-X are not
  // duplicates here although their key reads reach the same section.
  std::map<std::string, int> counts;
  for (const std::string& name : names) {
    int& count = counts[name];
    if (++count > 1) {
      Error("All instances of section \"" + name +
            "\" will be ignored because there are duplicates.");
    }
  }
  for (const std::string& name : names) {
    if (counts[name] >= 2) continue;
    if (StartsWithIgnoringCase(name, "market-")) {
      ParseMarketSection(file, name);
    } else if (StartsWithIgnoringCase(name, "gw-")) {
      ParseGatewaySection(file, name);
    }
  }
  return m_dynamicConnections || !m_marketMap.empty();
}

bool MgtINI::ParseIdentity(const ProfileFile& file, bool isMarket,
                           const std::string& section, Mgt& identity,
                           bool& primary, bool& subscriptionEmpty) {
  std::string member = kDynamicMember;
  std::string group = kDynamicGroup;
  std::string trader = kDynamicTrader;
  if (!m_dynamicConnections) {
    const struct {
      const char* key;
      std::string* value;
      std::size_t limit;
    } fields[] = {
        {"Member", &member, 11}, {"Group", &group, 3}, {"Trader", &trader, 11}};
    for (const auto& field : fields) {
      *field.value = Read(file, section, field.key, kLongValue);
      if (field.value->size() > field.limit) {
        Error(std::string("Value for ") + field.key + " \"" + *field.value +
              "\" in section \"" + section + "\" is too long.");
        return false;
      }
    }
  }

  TraderIdType traderIdType;
  const std::string typeText = Read(file, section, "TraderIdType", kLongValue);
  if (!typeText.empty() && !TraderIdType::Parse(typeText, traderIdType)) {
    Error("Value for TraderIdType \"" + typeText + "\" in section \"" +
          section + "\" cannot be parsed.");
    return false;
  }

  primary = false;
  const std::string primaryText = Read(file, section, "Primary", kLongValue);
  if (primaryText.size() > 1) {
    Error("Value for \"Primary\" (" + primaryText + ") in section \"" +
          section + "\" must be only one character long.");
    return false;
  }
  if (primaryText.size() == 1) {
    primary = CRegistryMgr::GetYesNoValue(primaryText);
  }

  const std::string preferred =
      Read(file, section, "Preferred_Server", kShortValue);
  const std::string mandatory =
      Read(file, section, "Mandatory_Server", kShortValue);
  if (!preferred.empty() && !mandatory.empty()) {
    Error(std::string(" ") +
          "Preferred_Server and Mandatory_Server settings cannot be used "
          "together, please remove one of them from the \"" +
          section + "\" definition. " + (isMarket ? "Market" : "Gateway") +
          " is not enabled due to parsing failure.");
    return false;
  }
  const bool serverMandatory = !mandatory.empty();
  const std::string& server = serverMandatory ? mandatory : preferred;

  const std::string subscription =
      Read(file, section, "Price_Subscription_Gateway", kShortValue);
  subscriptionEmpty = subscription.empty();

  if (!m_dynamicConnections &&
      (member.empty() || group.empty() || trader.empty())) {
    return false;
  }

  std::vector<std::string> tokens;
  boost::split(tokens, subscription, boost::is_any_of("\t, "));
  std::vector<int> gateways;
  for (const std::string& token : tokens) {
    if (token.empty()) continue;
    const int id = CDVConsumer::GetExchangeId(token.c_str());
    if (id == -1) {
      // One unknown name empties the whole list.
      gateways.clear();
      break;
    }
    gateways.push_back(id);
  }

  identity.Set(member.c_str(), group.c_str(), trader.c_str(), gateways,
               server.c_str(), serverMandatory, traderIdType);
  return true;
}

void MgtINI::ParseMarketSection(const ProfileFile& file,
                                const std::string& section) {
  const std::string name = NameAfterDash(section);
  if (name.empty()) {
    Error(" Market Section Value can not be succesfully parsed from \"" +
          section + "\"");
    return;
  }
  const int marketId = CDVConsumer::GetMarketId(name.c_str());
  if (marketId == -1) {
    Error(" Market Type \"" + name + "\" can not be succesfully parsed");
    return;
  }
  Mgt identity;
  bool primary = false;
  bool subscriptionEmpty = true;
  if (!ParseIdentity(file, true, section, identity, primary,
                     subscriptionEmpty)) {
    Error(" Market MGT can not be succesfully parsed for Market \"" + name +
          "\"");
    return;
  }
  // The market is reported as loaded before its server is refused; the log
  // keeps that order.
  ReportSection("Market", name, primary, identity);
  if (!identity.m_server.empty()) {
    Error(std::string(" ") + ServerKey(identity) +
          " setting cannot be set on the market level, please remove it from "
          "the market \"" +
          name +
          "\" definition. Market is not enabled due to parsing failure.");
    return;
  }
  const auto existing = m_marketMap.find(marketId);
  if (existing != m_marketMap.end()) {
    // A gateway section made this entry earlier in the file: only the
    // identity is replaced, and the entry keeps market id -1 and Primary
    // false. Deliberate; the result depends on the order of sections.
    existing->second.Set(identity);
    return;
  }
  MktMgt market;
  market.Set(identity);
  market.m_marketId = marketId;
  market.m_primary = primary;
  m_marketMap.emplace(marketId, std::move(market));
}

void MgtINI::ParseGatewaySection(const ProfileFile& file,
                                 const std::string& section) {
  const std::string name = NameAfterDash(section);
  if (name.empty()) {
    Error(" Gateway Section Value can not be succesfully parsed from \"" +
          section + "\"");
    return;
  }
  const int gatewayId = CDVConsumer::GetExchangeId(name.c_str());
  if (gatewayId == -1) {
    Error(" Exchange ID can not be succesfully parsed from Gateway \"" + name +
          "\"");
    return;
  }
  Mgt identity;
  bool primary = false;
  bool subscriptionEmpty = true;
  if (!ParseIdentity(file, false, section, identity, primary,
                     subscriptionEmpty)) {
    Error(" Gateway MGT can not be succesfully parsed for Gateway \"" + name +
          "\"");
    return;
  }
  ReportSection("Gateway", name, primary, identity);
  if (!identity.m_server.empty() && !IsServerAddress(identity.m_server)) {
    Error(std::string(" ") + ServerKey(identity) +
          " setting cannot be parsed for the gateway \"" + name +
          "\" definition. Gateway is not enabled due to parsing failure.");
    return;
  }
  if (!subscriptionEmpty && !identity.HasMpfGateways()) {
    Error(" MPF Gateway setting can not be succesfully parsed for Gateway \"" +
          name + "\"");
    return;
  }
  const int marketId = MarketUtils::GetMarketFromExchange(gatewayId);
  MktMgt& market = m_marketMap[marketId];
  market.m_gateways.emplace(gatewayId, identity);
  m_gatewayIds.emplace_back(primary, gatewayId);
}

void MgtINI::ReportSection(const char* kind, const std::string& name,
                           bool primary, const Mgt& identity) {
  Info(std::string(kind) + " [" + name + "] parameters loaded:");
  Info("\tMember=" + identity.m_member);
  Info("\tGroup=" + identity.m_group);
  Info("\tTrader=" + identity.m_trader);
  Info(std::string("\tPrimary=") + (primary ? "Yes" : "No"));
  if (!identity.m_server.empty()) {
    Info(std::string("\t") + ServerKey(identity) + "=" + identity.m_server);
  }
  if (identity.HasMpfGateways()) {
    // Every name keeps its ", ", the last one too: readers of the log
    // expect that form.
    std::string names;
    identity.for_each_mpfGateway([&names](int gateway) {
      names += MarketUtilsInternal::ExchangeName(gateway) + ", ";
    });
    Info("\tPrice_Subscription_Gateway=" + names);
  }
  if (identity.m_traderIdType != TraderIdType::None) {
    Info(std::string("\tTraderIdType=") + identity.m_traderIdType.ToString());
  }
}

void MgtINI::CollectMpfGateways() {
  // Subscription gateway id to the market that subscribes it; a later
  // market or gateway overwrites an earlier one.
  std::map<int, int> owners;
  for (const auto& [marketId, market] : m_marketMap) {
    const int owner = marketId;
    market.for_each_mpfGateway(
        [&owners, owner](int gateway) { owners[gateway] = owner; });
    for (const auto& [gatewayId, gateway] : market.m_gateways) {
      gateway.for_each_mpfGateway(
          [&owners, owner](int mpf) { owners[mpf] = owner; });
    }
  }
  // Appended to, never rebuilt.
  for (const auto& [gateway, owner] : owners) {
    m_mpfGatewayMarkets.emplace_back(owner, gateway);
  }
}

}  // namespace nv_ns

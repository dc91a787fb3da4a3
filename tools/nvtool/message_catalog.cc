#include "tools/nvtool/message_catalog.h"

#include <charconv>
#include <cstring>
#include <functional>
#include <iterator>
#include <limits>
#include <memory>
#include <type_traits>

#include <CLI/CLI.hpp>

#include "nvshared/messaging/connection_key.h"
#include "nvshared/messaging/internal_messages.h"
#include "nvshared/messaging/opaque_messages.h"
#include "nvshared/messaging/server_version_request_params.h"
#include "nvshared/messaging/spread_info.h"
#include "nvshared/platform/utils/agile_streamable.h"

namespace nvtool {
namespace {

using namespace nv_opaque_ns;  // NOLINT: the tables name every block

// The most list elements an item index may name: more would not fit in the
// 65535 bytes of one tagged object anyway.
constexpr std::size_t kMaxElements = 1000;

template <typename T>
T ParseNumber(const std::string& item, const std::string& text) {
  T value{};
  const char* begin = text.data();
  const char* end = begin + text.size();
  int base = 10;
  if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
    begin += 2;
    base = 16;
  }
  const auto [ptr, ec] = std::from_chars(begin, end, value, base);
  if (begin == end || ec != std::errc() || ptr != end) {
    throw CLI::RuntimeError(item + ": '" + text + "' is not a number in " +
                                std::to_string(std::numeric_limits<T>::min()) +
                                ".." +
                                std::to_string(std::numeric_limits<T>::max()),
                            1);
  }
  return value;
}

bool ParseBool(const std::string& item, const std::string& text) {
  if (text == "true" || text == "1") return true;
  if (text == "false" || text == "0") return false;
  throw CLI::RuntimeError(item + ": '" + text + "' is not true, false, 1 or 0",
                          1);
}

// Up to the whole field: a full field goes without a terminator, as the
// wire allows.
template <std::size_t N>
void SetField(char (&field)[N], const std::string& item,
              const std::string& text) {
  if (text.size() > N) {
    throw CLI::RuntimeError(
        item + ": at most " + std::to_string(N) + " characters", 1);
  }
  std::memset(field, 0, N);
  std::memcpy(field, text.data(), text.size());
}

// Assigns the text of an item to a member of any kind the blocks have.
template <typename T>
void Assign(T& member, const std::string& item, const std::string& text) {
  if constexpr (std::is_same_v<T, std::string>) {
    member = text;
  } else if constexpr (std::is_same_v<T, bool>) {
    member = ParseBool(item, text);
  } else if constexpr (std::is_enum_v<T>) {
    member = static_cast<T>(ParseNumber<std::underlying_type_t<T>>(item, text));
  } else if constexpr (std::is_same_v<T, std::vector<int>>) {
    // Comma-separated; empty for no elements.
    member.clear();
    std::size_t start = 0;
    while (start < text.size()) {
      std::size_t comma = text.find(',', start);
      if (comma == std::string::npos) comma = text.size();
      member.push_back(
          ParseNumber<int>(item, text.substr(start, comma - start)));
      start = comma + 1;
    }
  } else {
    member = ParseNumber<T>(item, text);
  }
}

// True, after assigning, if `name` is `item`.
template <typename T>
bool Item(const std::string& name, const std::string& value, const char* item,
          T& member) {
  if (name != item) return false;
  Assign(member, name, value);
  return true;
}

// "prefix[N].rest": the element index and the rest, or false.
bool SplitIndexed(const std::string& name, const std::string& prefix,
                  std::size_t& index, std::string& rest) {
  if (name.compare(0, prefix.size() + 1, prefix + "[") != 0) return false;
  const std::size_t close = name.find("].", prefix.size());
  if (close == std::string::npos) return false;
  const std::string digits =
      name.substr(prefix.size() + 1, close - prefix.size() - 1);
  index = ParseNumber<std::size_t>(name, digits);
  if (index >= kMaxElements) {
    throw CLI::RuntimeError(
        name + ": an index is at most " + std::to_string(kMaxElements - 1), 1);
  }
  rest = name.substr(close + 2);
  return true;
}

template <typename Container>
auto& Element(Container& list, std::size_t index) {
  while (list.size() <= index) list.emplace_back();
  return *std::next(list.begin(), static_cast<std::ptrdiff_t>(index));
}

// --- Items of each block ---------------------------------------------------

bool SetItem(OpaqueRequestMessageBlock& b, const std::string& n,
             const std::string& v) {
  return Item(n, v, "m_bIsSubscription", b.m_bIsSubscription) ||
         Item(n, v, "m_tSentTickCount", b.m_tSentTickCount) ||
         Item(n, v, "m_tReceivedTickCount", b.m_tReceivedTickCount);
}
bool SetItem(OpaqueResponseMessageBlock& b, const std::string& n,
             const std::string& v) {
  return Item(n, v, "m_iRequestID", b.m_iRequestID) ||
         Item(n, v, "m_tSentTickCount", b.m_tSentTickCount) ||
         Item(n, v, "m_tReceivedTickCount", b.m_tReceivedTickCount);
}
bool SetItem(ServerVersionRequestBlock& b, const std::string& n,
             const std::string& v) {
  return Item(n, v, "m_szUniversalLoginName", b.m_szUniversalLoginName) ||
         Item(n, v, "m_szApplicationId", b.m_szApplicationId) ||
         Item(n, v, "m_szClientInfo", b.m_szClientInfo);
}
bool SetItem(EngineInfoBlock& b, const std::string& n, const std::string& v) {
  return Item(n, v, "m_engineType", b.m_engineType) ||
         Item(n, v, "m_engineVersion", b.m_engineVersion);
}
bool SetItem(ServerVersionResponseBlock& b, const std::string& n,
             const std::string& v) {
  std::size_t index;
  std::string rest;
  if (SplitIndexed(n, "m_engineInfos", index, rest)) {
    return SetItem(Element(b.m_engineInfos, index), rest, v);
  }
  return Item(n, v, "m_iExchangeID", b.m_iExchangeID) ||
         Item(n, v, "m_serverId", b.m_serverId) ||
         Item(n, v, "m_serverVersion", b.m_serverVersion) ||
         Item(n, v, "m_engineVersion", b.m_engineVersion) ||
         Item(n, v, "m_engineType", b.m_engineType) ||
         Item(n, v, "m_serverInstanceId", b.m_serverInstanceId);
}
bool SetItem(ImpersonateUserRequestBlock& b, const std::string& n,
             const std::string& v) {
  return Item(n, v, "m_iExchangeId", b.m_iExchangeId) ||
         Item(n, v, "m_szMember", b.m_szMember) ||
         Item(n, v, "m_szGroup", b.m_szGroup) ||
         Item(n, v, "m_szTrader", b.m_szTrader) ||
         Item(n, v, "m_encryptedPassword", b.m_encryptedPassword) ||
         Item(n, v, "m_iBrokerId", b.m_iBrokerId) ||
         Item(n, v, "m_iCompanyId", b.m_iCompanyId) ||
         Item(n, v, "m_bCanViewSingleBrokerDataOnly",
              b.m_bCanViewSingleBrokerDataOnly) ||
         Item(n, v, "m_bCanViewSingleCompanyDataOnly",
              b.m_bCanViewSingleCompanyDataOnly);
}
bool SetItem(ImpersonateUserResponseBlock&, const std::string&,
             const std::string&) {
  return false;
}
bool SetItem(SupportedExchangeRequestBlock&, const std::string&,
             const std::string&) {
  return false;
}
bool SetItem(SupportedExchangeResponseBlock& b, const std::string& n,
             const std::string& v) {
  return Item(n, v, "m_nSyntheticExchangeID", b.m_nSyntheticExchangeID) ||
         Item(n, v, "m_aExchangeIDsOld", b.m_aExchangeIDsOld) ||
         Item(n, v, "m_aPrimaryExchangeIDsOld", b.m_aPrimaryExchangeIDsOld) ||
         Item(n, v, "m_aExchangeIDs", b.m_aExchangeIDs) ||
         Item(n, v, "m_aPrimaryExchangeIDs", b.m_aPrimaryExchangeIDs) ||
         Item(n, v, "m_nServerSupportedFeatures",
              b.m_nServerSupportedFeatures) ||
         Item(n, v, "m_aMarketIDs", b.m_aMarketIDs) ||
         Item(n, v, "m_aPrimaryMarketIDs", b.m_aPrimaryMarketIDs);
}
bool SetItem(ImpersonationData& e, const std::string& n, const std::string& v) {
  return Item(n, v, "m_iBrokerId", e.m_iBrokerId) ||
         Item(n, v, "m_iExchangeId", e.m_iExchangeId) ||
         Item(n, v, "m_szMember", e.m_szMember) ||
         Item(n, v, "m_szGroup", e.m_szGroup) ||
         Item(n, v, "m_szTrader", e.m_szTrader) ||
         Item(n, v, "m_szEncryptedPassword", e.m_szEncryptedPassword) ||
         Item(n, v, "m_szUserName", e.m_szUserName) ||
         Item(n, v, "m_companyId", e.m_companyId) ||
         Item(n, v, "m_canViewSingleBrokerDataOnly",
              e.m_canViewSingleBrokerDataOnly) ||
         Item(n, v, "m_canViewSingleCompanyDataOnly",
              e.m_canViewSingleCompanyDataOnly) ||
         Item(n, v, "m_mgtId", e.m_mgtId) ||
         Item(n, v, "m_nCaretakerID", e.m_nCaretakerID);
}
// The list's items carry the prefix of the member that holds it: "m_list."
// in a PMRQ, none in an IMLT of its own.
bool SetListItem(ImpersonationDataStreamableList& list,
                 const std::string& prefix, const std::string& n,
                 const std::string& v) {
  std::size_t index;
  std::string rest;
  if (SplitIndexed(n, prefix + "elements", index, rest)) {
    return SetItem(Element(list, index), rest, v);
  }
  return Item(n, v, (prefix + "m_userName").c_str(), list.m_userName);
}
bool SetItem(ImpersonationDataStreamableList& b, const std::string& n,
             const std::string& v) {
  return SetListItem(b, "", n, v);
}
bool SetItem(PushMGTRequestBlock& b, const std::string& n,
             const std::string& v) {
  return SetListItem(b.m_list, "m_list.", n, v) ||
         Item(n, v, "m_bDownloadAllOrders", b.m_bDownloadAllOrders);
}
bool SetItem(PushMGTResponseBlock& b, const std::string& n,
             const std::string& v) {
  return Item(n, v, "m_strResponse", b.m_strResponse);
}
bool SetItem(ConnectMessageBlock& b, const std::string& n,
             const std::string& v) {
  return Item(n, v, "m_ipAddress", b.m_ipAddress) ||
         Item(n, v, "m_bSupportAlgo", b.m_bSupportAlgo);
}
bool SetItem(ConnectResponseMessageBlock& b, const std::string& n,
             const std::string& v) {
  return Item(n, v, "m_iRequestID", b.m_iRequestID) ||
         Item(n, v, "m_ipAddress", b.m_ipAddress) ||
         Item(n, v, "m_serverInstanceId", b.m_serverInstanceId);
}
bool SetItem(DisconnectMessageBlock& b, const std::string& n,
             const std::string& v) {
  return Item(n, v, "m_iRequestID", b.m_iRequestID) ||
         Item(n, v, "m_sReason", b.m_sReason);
}
bool SetItem(StringMessageBlock& b, const std::string& n,
             const std::string& v) {
  return Item(n, v, "m_iRequestID", b.m_iRequestID) ||
         Item(n, v, "m_sMessage", b.m_sMessage);
}
bool SetItem(CancelSubscriptionMessageBlock& b, const std::string& n,
             const std::string& v) {
  return Item(n, v, "m_iSubscriptionRequestID", b.m_iSubscriptionRequestID);
}
bool SetItem(ServerInstanceIDRequestMessageBlock&, const std::string&,
             const std::string&) {
  return false;
}
bool SetItem(ServerInstanceIDResponseBlock& b, const std::string& n,
             const std::string& v) {
  return Item(n, v, "m_iRequestID", b.m_iRequestID) ||
         Item(n, v, "m_serverInstanceId", b.m_serverInstanceId) ||
         Item(n, v, "m_bClientConnected", b.m_bClientConnected);
}

// --- The three records of their own ----------------------------------------

std::string WriteRecord(nv_ns::XStreamable& record) {
  return nv_ns::WriteTaggedObject(record);
}

std::string WriteConnectionKey(const RecordType& type, const Fields& fields) {
  nv_ns::ConnectionKey key;
  for (const auto& [name, value] : fields) {
    if (name == "m_szMember") {
      SetField(key.m_szMember, name, value);
    } else if (name == "m_szGroup") {
      SetField(key.m_szGroup, name, value);
    } else if (name == "m_szTrader") {
      SetField(key.m_szTrader, name, value);
    } else if (!Item(name, value, "m_brokerID", key.m_brokerID) &&
               !Item(name, value, "m_gatewayID", key.m_gatewayID) &&
               !Item(name, value, "m_companyID", key.m_companyID)) {
      UnknownItem(type.objectName, type.items, name);
    }
  }
  return WriteRecord(key);
}

std::string WriteSpreadInfo(const RecordType& type, const Fields& fields) {
  nv_ns::SpreadInfo spread;
  for (const auto& [name, value] : fields) {
    if (name == "m_color") {
      spread.m_color = ParseNumber<std::uint32_t>(name, value);
    } else if (!Item(name, value, "m_name", spread.m_name) &&
               !Item(name, value, "m_id", spread.m_id) &&
               !Item(name, value, "m_numLegs", spread.m_numLegs) &&
               !Item(name, value, "m_isQHAllowed", spread.m_isQHAllowed) &&
               !Item(name, value, "m_nBrokerId", spread.m_nBrokerId) &&
               !Item(name, value, "m_isAggregator", spread.m_isAggregator)) {
      UnknownItem(type.objectName, type.items, name);
    }
  }
  return WriteRecord(spread);
}

std::string WriteParams(const RecordType& type, const Fields& fields) {
  nv_ns::ServerVersionRequestParams params;
  for (const auto& [name, value] : fields) {
    if (!Item(name, value, "m_szClientInfo", params.m_szClientInfo)) {
      UnknownItem(type.objectName, type.items, name);
    }
  }
  return WriteRecord(params);
}

template <typename T>
std::size_t ReadRecord(const std::string& bytes) {
  T record;
  return record.ReadFrom(bytes.data(), bytes.size());
}

template <typename Block>
std::string WriteBlock(const RecordType& type, const Fields& fields) {
  Block block;
  for (const auto& [name, value] : fields) {
    if (!SetItem(block, name, value)) {
      UnknownItem(type.objectName, type.items, name);
    }
  }
  return WriteRecord(block);
}

template <typename Block>
RecordType BlockType(const char* className, short id,
                     std::vector<const char*> items) {
  return {Block::kName,     className,         id,
          std::move(items), ReadRecord<Block>, WriteBlock<Block>};
}

// The element items of an impersonation list, as encode takes them.
#define NVTOOL_LIST_ITEMS(p)                                                   \
  p "m_userName", p "elements[N].m_iBrokerId", p "elements[N].m_iExchangeId",  \
      p "elements[N].m_szMember", p "elements[N].m_szGroup",                   \
      p "elements[N].m_szTrader", p "elements[N].m_szEncryptedPassword",       \
      p "elements[N].m_szUserName", p "elements[N].m_companyId",               \
      p "elements[N].m_canViewSingleBrokerDataOnly",                           \
      p "elements[N].m_canViewSingleCompanyDataOnly", p "elements[N].m_mgtId", \
      p "elements[N].m_nCaretakerID"

}  // namespace

const std::vector<RecordType>& RecordTypes() {
  static const std::vector<RecordType> types = {
      {"CK",
       "ConnectionKey",
       0,
       {"m_brokerID", "m_gatewayID", "m_szMember", "m_szGroup", "m_szTrader",
        "m_companyID"},
       ReadRecord<nv_ns::ConnectionKey>,
       WriteConnectionKey},
      {"ASAP",
       "SpreadInfo",
       0,
       {"m_name", "m_id", "m_color", "m_numLegs", "m_isQHAllowed",
        "m_nBrokerId", "m_isAggregator"},
       ReadRecord<nv_ns::SpreadInfo>,
       WriteSpreadInfo},
      {"SVRP",
       "ServerVersionRequestParams",
       0,
       {"m_szClientInfo"},
       ReadRecord<nv_ns::ServerVersionRequestParams>,
       WriteParams},
      BlockType<OpaqueRequestMessageBlock>(
          "OpaqueRequestMessageBlock", 5210,
          {"m_bIsSubscription", "m_tSentTickCount", "m_tReceivedTickCount"}),
      BlockType<OpaqueResponseMessageBlock>(
          "OpaqueResponseMessageBlock", 5211,
          {"m_iRequestID", "m_tSentTickCount", "m_tReceivedTickCount"}),
      BlockType<ServerVersionRequestBlock>(
          "ServerVersionRequestBlock", 5212,
          {"m_szUniversalLoginName", "m_szApplicationId", "m_szClientInfo"}),
      BlockType<ServerVersionResponseBlock>(
          "ServerVersionResponseBlock", 5213,
          {"m_iExchangeID", "m_serverId", "m_serverVersion", "m_engineVersion",
           "m_engineType", "m_serverInstanceId",
           "m_engineInfos[N].m_engineType",
           "m_engineInfos[N].m_engineVersion"}),
      BlockType<EngineInfoBlock>("EngineInfoBlock", 0,
                                 {"m_engineType", "m_engineVersion"}),
      BlockType<ImpersonateUserRequestBlock>(
          "ImpersonateUserRequestBlock", 5214,
          {"m_iExchangeId", "m_szMember", "m_szGroup", "m_szTrader",
           "m_encryptedPassword", "m_iBrokerId", "m_iCompanyId",
           "m_bCanViewSingleBrokerDataOnly",
           "m_bCanViewSingleCompanyDataOnly"}),
      BlockType<ImpersonateUserResponseBlock>("ImpersonateUserResponseBlock",
                                              5215, {}),
      BlockType<SupportedExchangeRequestBlock>("SupportedExchangeRequestBlock",
                                               5216, {}),
      BlockType<SupportedExchangeResponseBlock>(
          "SupportedExchangeResponseBlock", 5217,
          {"m_nSyntheticExchangeID", "m_aExchangeIDsOld",
           "m_aPrimaryExchangeIDsOld", "m_aExchangeIDs",
           "m_aPrimaryExchangeIDs", "m_nServerSupportedFeatures",
           "m_aMarketIDs", "m_aPrimaryMarketIDs"}),
      BlockType<PushMGTRequestBlock>(
          "PushMGTRequestBlock", 5223,
          {NVTOOL_LIST_ITEMS("m_list."), "m_bDownloadAllOrders"}),
      BlockType<PushMGTResponseBlock>("PushMGTResponseBlock", 5224,
                                      {"m_strResponse"}),
      BlockType<ImpersonationDataStreamableList>(
          "ImpersonationDataStreamableList", 0, {NVTOOL_LIST_ITEMS("")}),
      BlockType<ConnectMessageBlock>("ConnectMessageBlock", 5218,
                                     {"m_ipAddress", "m_bSupportAlgo"}),
      BlockType<ConnectResponseMessageBlock>(
          "ConnectResponseMessageBlock", 5219,
          {"m_iRequestID", "m_ipAddress", "m_serverInstanceId"}),
      BlockType<DisconnectMessageBlock>("DisconnectMessageBlock", 5220,
                                        {"m_iRequestID", "m_sReason"}),
      BlockType<StringMessageBlock>("StringMessageBlock", 5221,
                                    {"m_iRequestID", "m_sMessage"}),
      BlockType<CancelSubscriptionMessageBlock>(
          "CancelSubscriptionMessageBlock", 5222, {"m_iSubscriptionRequestID"}),
      BlockType<ServerInstanceIDRequestMessageBlock>(
          "ServerInstanceIDRequestMessageBlock", 5227, {}),
      BlockType<ServerInstanceIDResponseBlock>(
          "ServerInstanceIDResponseBlock", 5228,
          {"m_iRequestID", "m_serverInstanceId", "m_bClientConnected"}),
  };
  return types;
}

const RecordType* FindRecord(const std::string& name) {
  for (const RecordType& type : RecordTypes()) {
    if (name == type.objectName || name == type.className) return &type;
  }
  return nullptr;
}

const RecordType* FindRecordById(short id) {
  for (const RecordType& type : RecordTypes()) {
    if (type.id != 0 && type.id == id) return &type;
  }
  return nullptr;
}

std::string KnownRecords() {
  std::string text;
  for (const RecordType& type : RecordTypes()) {
    if (!text.empty()) text += ", ";
    text += std::string(type.objectName) + " (" + type.className + ")";
  }
  return text;
}

void UnknownItem(const char* typeName, const std::vector<const char*>& items,
                 const std::string& name) {
  std::string list;
  for (const char* item : items) {
    if (!list.empty()) list += ", ";
    list += item;
  }
  if (list.empty()) list = "none";
  throw CLI::RuntimeError(
      "'" + name + "' is no item of " + typeName + "; its items are " + list,
      1);
}

// --- Messages ----------------------------------------------------------------

namespace {

template <typename Carrier>
void Save(OpaqueRequestMessage& m, Carrier& c) {
  if constexpr (std::is_same_v<Carrier, nv_ns::dictionary>) {
    m.SaveToDictionary(c);
  } else {
    m.SaveToMessage(c);
  }
}
template <typename Carrier>
void Save(OpaqueResponseMessage& m, Carrier& c) {
  if constexpr (std::is_same_v<Carrier, nv_ns::dictionary>) {
    m.SaveToDictionary(c);
  } else {
    m.SaveToMessage(c);
  }
}

void Store(
    const MessageType& type, const Fields& fields,
    const std::function<bool(const std::string&, const std::string&)>& set) {
  for (const auto& [name, value] : fields) {
    if (!set(name, value)) UnknownItem(type.name, type.items, name);
  }
}

// A message of the opaque families: the base block's items, then its own.
template <typename Message>
void SaveOpaque(const Fields& fields, dv_core_ns::OpaqueDataMessage* message,
                nv_ns::dictionary* entries) {
  Message built;
  Store(*FindMessageById(built.GetBlockId()), fields,
        [&built](const std::string& n, const std::string& v) {
          if (SetItem(built.m_baseBlock, n, v)) return true;
          if constexpr (std::is_same_v<Message, AlgoEngineRequest> ||
                        std::is_same_v<Message, AlgoEngineResponse>) {
            return Item(n, v, "m_data", built.m_data);
          } else if constexpr (std::is_same_v<Message, OpaqueRequestMessage> ||
                               std::is_same_v<Message, OpaqueResponseMessage>) {
            return false;
          } else {
            return SetItem(built.m_block, n, v);
          }
        });
  if (message != nullptr) Save(built, *message);
  if (entries != nullptr) Save(built, *entries);
}

template <typename Block>
void StoreBlock(Block& block, dv_core_ns::OpaqueDataMessage* message,
                nv_ns::dictionary* entries) {
  if (message != nullptr) {
    nv_ns::AgileStreamable::StoreAgile(
        *message, block, static_cast<nv_ns::AttachmentId>(Block::kBlockId));
  }
  if (entries != nullptr) {
    nv_ns::DictionaryStreamable::StoreDictionaryData(*entries, block,
                                                     Block::kBlockId);
  }
}

// An internal message: its one block.
template <typename Block>
void SaveInternal(const Fields& fields, dv_core_ns::OpaqueDataMessage* message,
                  nv_ns::dictionary* entries) {
  Block block;
  Store(*FindMessageById(Block::kBlockId), fields,
        [&block](const std::string& n, const std::string& v) {
          return SetItem(block, n, v);
        });
  StoreBlock(block, message, entries);
}

std::vector<const char*> Join(std::vector<const char*> base,
                              const std::vector<const char*>& own) {
  base.insert(base.end(), own.begin(), own.end());
  return base;
}

const std::vector<const char*> kRequestBase = {
    "m_bIsSubscription", "m_tSentTickCount", "m_tReceivedTickCount"};
const std::vector<const char*> kResponseBase = {
    "m_iRequestID", "m_tSentTickCount", "m_tReceivedTickCount"};

MessageType Request(const char* name, short id,
                    void (*save)(const Fields&, dv_core_ns::OpaqueDataMessage*,
                                 nv_ns::dictionary*)) {
  const RecordType* block = FindRecordById(id);
  return {name, id,
          Join(kRequestBase,
               block ? block->items : std::vector<const char*>{"m_data"}),
          save};
}

MessageType Response(const char* name, short id,
                     void (*save)(const Fields&, dv_core_ns::OpaqueDataMessage*,
                                  nv_ns::dictionary*)) {
  const RecordType* block = FindRecordById(id);
  return {name, id,
          Join(kResponseBase,
               block ? block->items : std::vector<const char*>{"m_data"}),
          save};
}

MessageType Internal(const char* name, short id,
                     void (*save)(const Fields&, dv_core_ns::OpaqueDataMessage*,
                                  nv_ns::dictionary*)) {
  return {name, id, FindRecordById(id)->items, save};
}

}  // namespace

const std::vector<MessageType>& MessageTypes() {
  static const std::vector<MessageType> types = {
      {"OpaqueRequestMessage", 5210, kRequestBase,
       SaveOpaque<OpaqueRequestMessage>},
      {"OpaqueResponseMessage", 5211, kResponseBase,
       SaveOpaque<OpaqueResponseMessage>},
      Request("ServerVersionRequest", 5212, SaveOpaque<ServerVersionRequest>),
      Response("ServerVersionResponse", 5213,
               SaveOpaque<ServerVersionResponse>),
      Request("ImpersonateUserRequest", 5214,
              SaveOpaque<ImpersonateUserRequest>),
      Response("ImpersonateUserResponse", 5215,
               SaveOpaque<ImpersonateUserResponse>),
      Request("SupportedExchangeRequest", 5216,
              SaveOpaque<SupportedExchangeRequest>),
      Response("SupportedExchangeResponse", 5217,
               SaveOpaque<SupportedExchangeResponse>),
      Request("PushMGTRequest", 5223, SaveOpaque<PushMGTRequest>),
      Response("PushMGTResponse", 5224, SaveOpaque<PushMGTResponse>),
      Request("AlgoEngineRequest", 5225, SaveOpaque<AlgoEngineRequest>),
      Response("AlgoEngineResponse", 5226, SaveOpaque<AlgoEngineResponse>),
      Internal("ConnectMessage", 5218, SaveInternal<ConnectMessageBlock>),
      Internal("ConnectResponseMessage", 5219,
               SaveInternal<ConnectResponseMessageBlock>),
      Internal("DisconnectMessage", 5220, SaveInternal<DisconnectMessageBlock>),
      Internal("StringMessage", 5221, SaveInternal<StringMessageBlock>),
      Internal("CancelSubscriptionMessage", 5222,
               SaveInternal<CancelSubscriptionMessageBlock>),
      Internal("ServerInstanceIDRequestMessage", 5227,
               SaveInternal<ServerInstanceIDRequestMessageBlock>),
      Internal("ServerInstanceIDResponseMessage", 5228,
               SaveInternal<ServerInstanceIDResponseBlock>),
  };
  return types;
}

const MessageType* FindMessage(const std::string& name) {
  for (const MessageType& type : MessageTypes()) {
    if (name == type.name) return &type;
  }
  return nullptr;
}

const MessageType* FindMessageById(short id) {
  for (const MessageType& type : MessageTypes()) {
    if (type.id == id) return &type;
  }
  return nullptr;
}

std::string KnownMessages() {
  std::string text;
  for (const MessageType& type : MessageTypes()) {
    if (!text.empty()) text += ", ";
    text += type.name;
  }
  return text;
}

// --- Factories ---------------------------------------------------------------

namespace {

// Stores an internal message's block again; false for an unknown id.
template <typename Block, typename... More>
void ResaveInternal(const InternalMessage& built,
                    dv_core_ns::OpaqueDataMessage* message,
                    nv_ns::dictionary* entries) {
  if (built.GetBlockId() == Block::kBlockId) {
    Block block = static_cast<const GenericMessage<Block>&>(built).GetBlock();
    StoreBlock(block, message, entries);
    return;
  }
  if constexpr (sizeof...(More) != 0) {
    ResaveInternal<More...>(built, message, entries);
  }
}

// Compares what a built message stored with the carrier it came from.
template <typename Carrier>
std::string Compare(const Carrier& original, const Carrier& resaved) {
  std::string differs;
  auto bytes_of = [](const Carrier& c, short id) -> std::string {
    if constexpr (std::is_same_v<Carrier, nv_ns::dictionary>) {
      const auto it = c.find(id);
      if (it == c.end() || !it->second) return std::string();
      return std::string(it->second->m_pData,
                         static_cast<std::size_t>(it->second->m_size));
    } else {
      const std::string* b = c.FindAgileData(id);
      return b ? *b : std::string();
    }
  };
  std::vector<short> ids;
  if constexpr (std::is_same_v<Carrier, nv_ns::dictionary>) {
    for (const auto& entry : resaved) ids.push_back(entry.first);
  } else {
    for (const auto& entry : resaved.AgileData()) ids.push_back(entry.first);
  }
  for (short id : ids) {
    if (bytes_of(original, id) != bytes_of(resaved, id)) {
      differs += (differs.empty() ? "" : ", ") + std::to_string(id);
    }
  }
  return differs.empty() ? "saves back the same bytes"
                         : "saves back other bytes under " + differs;
}

template <typename Carrier>
void Run(const Carrier& carrier, FactoryResult& result) {
  const auto resave = [&carrier](auto&& save) {
    Carrier again;
    save(again);
    return Compare(carrier, again);
  };
  std::unique_ptr<OpaqueRequestMessage> request(
      CreateCommonRequestMessage(carrier));
  if (request) {
    result.lines.push_back(std::string("CreateCommonRequestMessage: ") +
                           FindMessageById(request->GetBlockId())->name + " (" +
                           resave([&](Carrier& c) { Save(*request, c); }) +
                           ")");
  } else {
    result.lines.push_back("CreateCommonRequestMessage: no message");
  }
  std::unique_ptr<OpaqueResponseMessage> response(
      CreateCommonResponseMessage(carrier));
  if (response) {
    result.lines.push_back(
        std::string("CreateCommonResponseMessage: ") +
        FindMessageById(response->GetBlockId())->name + " (" +
        resave([&](Carrier& c) { Save(*response, c); }) + ")");
  } else {
    result.lines.push_back("CreateCommonResponseMessage: no message");
  }
  std::unique_ptr<InternalMessage> internal(CreateInternalMessage(carrier));
  if (internal) {
    result.lines.push_back(
        std::string("CreateInternalMessage: ") +
        FindMessageById(internal->GetBlockId())->name + " (" +
        resave([&](Carrier& c) {
          dv_core_ns::OpaqueDataMessage* m = nullptr;
          nv_ns::dictionary* d = nullptr;
          if constexpr (std::is_same_v<Carrier, nv_ns::dictionary>) {
            d = &c;
          } else {
            m = &c;
          }
          ResaveInternal<ConnectMessageBlock, ConnectResponseMessageBlock,
                         DisconnectMessageBlock, StringMessageBlock,
                         CancelSubscriptionMessageBlock,
                         ServerInstanceIDRequestMessageBlock,
                         ServerInstanceIDResponseBlock>(*internal, m, d);
        }) +
        ")");
  } else {
    result.lines.push_back("CreateInternalMessage: no message");
  }
}

}  // namespace

FactoryResult RunFactories(const dv_core_ns::OpaqueDataMessage* message,
                           const nv_ns::dictionary* entries) {
  FactoryResult result;
  if (message != nullptr) Run(*message, result);
  if (entries != nullptr) Run(*entries, result);
  return result;
}

}  // namespace nvtool

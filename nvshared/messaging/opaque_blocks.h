// The blocks of the opaque messages: one tagged object each, stored under
// the id of the message it belongs to. Every request carries an
// OpaqueRequestMessageBlock and every response an OpaqueResponseMessageBlock
// beside the block of its own kind. Blocks are values with public members;
// one thread at a time per instance.
#ifndef NVSHARED_MESSAGING_OPAQUE_BLOCKS_H_
#define NVSHARED_MESSAGING_OPAQUE_BLOCKS_H_

#include <cstdint>
#include <string>
#include <vector>

#include "nvshared/export.h"
#include "nvshared/messaging/impersonation_data.h"
#include "nvshared/messaging/xstreamable.h"

namespace nv_opaque_ns {

// The kind of trading engine a server runs; only "unknown" is fixed here.
enum EngineType : std::int32_t { kUnknownEngineType = -1 };

// "ORQM", version 1, id 5210.
class NVSHARED_API OpaqueRequestMessageBlock : public nv_ns::XStreamable {
 public:
  static constexpr char kName[kNameLength] = {'O', 'R', 'Q', 'M', 0};
  static constexpr std::uint32_t kVersion = 1;

  bool m_bIsSubscription = false;
  std::int64_t m_tSentTickCount = 0;
  std::int64_t m_tReceivedTickCount = 0;

  OpaqueRequestMessageBlock() : XStreamable(kName, kVersion) {}
  virtual ~OpaqueRequestMessageBlock() = default;
  void Transfer() override;
  std::uint64_t Measure() const override { return 23; }
};

// "ORSM", version 1, id 5211. The response carries the request id.
class NVSHARED_API OpaqueResponseMessageBlock : public nv_ns::XStreamable {
 public:
  static constexpr char kName[kNameLength] = {'O', 'R', 'S', 'M', 0};
  static constexpr std::uint32_t kVersion = 1;

  int m_iRequestID = -1;
  std::int64_t m_tSentTickCount = 0;
  std::int64_t m_tReceivedTickCount = 0;

  OpaqueResponseMessageBlock() : XStreamable(kName, kVersion) {}
  virtual ~OpaqueResponseMessageBlock() = default;
  void Transfer() override;
  std::uint64_t Measure() const override { return 26; }
};

// "SVRQ", version 1, id 5212.
class NVSHARED_API ServerVersionRequestBlock : public nv_ns::XStreamable {
 public:
  static constexpr char kName[kNameLength] = {'S', 'V', 'R', 'Q', 0};
  static constexpr std::uint32_t kVersion = 1;

  std::string m_szUniversalLoginName;
  std::string m_szApplicationId;
  std::string m_szClientInfo;

  ServerVersionRequestBlock() : XStreamable(kName, kVersion) {}
  virtual ~ServerVersionRequestBlock() = default;
  void Transfer() override;
  // 12 plus the lengths of the three strings.
  std::uint64_t Measure() const override;
};

// One engine a server runs: "EIB", version 1, an element of
// ServerVersionResponseBlock::m_engineInfos.
class NVSHARED_API EngineInfoBlock : public nv_ns::XStreamable {
 public:
  static constexpr char kName[kNameLength] = {'E', 'I', 'B', 0, 0};
  static constexpr std::uint32_t kVersion = 1;

  EngineType m_engineType = kUnknownEngineType;
  std::string m_engineVersion;

  EngineInfoBlock() : XStreamable(kName, kVersion) {}
  virtual ~EngineInfoBlock() = default;
  void Transfer() override;
  // 10 plus the length of the version.
  std::uint64_t Measure() const override;
};

// "SVRS", version 2, id 5213. Writers of version 1 end after m_engineType.
class NVSHARED_API ServerVersionResponseBlock : public nv_ns::XStreamable {
 public:
  static constexpr char kName[kNameLength] = {'S', 'V', 'R', 'S', 0};
  static constexpr std::uint32_t kVersion = 2;

  int m_iExchangeID = -1;
  std::string m_serverId;
  std::string m_serverVersion;
  std::string m_engineVersion;
  EngineType m_engineType = kUnknownEngineType;
  std::string m_serverInstanceId;
  std::vector<EngineInfoBlock> m_engineInfos;

  ServerVersionResponseBlock() : XStreamable(kName, kVersion) {}
  virtual ~ServerVersionResponseBlock() = default;
  void Transfer() override;
  // 28 plus the string lengths plus the vector's: 5, and 12 plus the
  // measure of each element.
  std::uint64_t Measure() const override;
};

// "IURQ", version 3, id 5214.
class NVSHARED_API ImpersonateUserRequestBlock : public nv_ns::XStreamable {
 public:
  static constexpr char kName[kNameLength] = {'I', 'U', 'R', 'Q', 0};
  static constexpr std::uint32_t kVersion = 3;

  int m_iExchangeId = 0;
  std::string m_szMember;
  std::string m_szGroup;
  std::string m_szTrader;
  // Carried as the caller gives it; nothing here enciphers or deciphers it.
  std::string m_encryptedPassword;
  // The first builds left these four as storage held them until set; here
  // they start at zero and false.
  int m_iBrokerId = 0;
  int m_iCompanyId = 0;
  bool m_bCanViewSingleBrokerDataOnly = false;
  bool m_bCanViewSingleCompanyDataOnly = false;

  ImpersonateUserRequestBlock() : XStreamable(kName, kVersion) {}
  virtual ~ImpersonateUserRequestBlock() = default;
  void Transfer() override;
  // 40 plus the lengths of the four strings.
  std::uint64_t Measure() const override;
};

// "IURS", version 1, id 5215: no items; it exists for its id and header.
class NVSHARED_API ImpersonateUserResponseBlock : public nv_ns::XStreamable {
 public:
  static constexpr char kName[kNameLength] = {'I', 'U', 'R', 'S', 0};
  static constexpr std::uint32_t kVersion = 1;

  ImpersonateUserResponseBlock() : XStreamable(kName, kVersion) {}
  virtual ~ImpersonateUserResponseBlock() = default;
  void Transfer() override {}
  std::uint64_t Measure() const override { return 0; }
};

// "SERQ", version 10 although it has no items, id 5216.
class NVSHARED_API SupportedExchangeRequestBlock : public nv_ns::XStreamable {
 public:
  static constexpr char kName[kNameLength] = {'S', 'E', 'R', 'Q', 0};
  static constexpr std::uint32_t kVersion = 10;

  SupportedExchangeRequestBlock() : XStreamable(kName, kVersion) {}
  virtual ~SupportedExchangeRequestBlock() = default;
  void Transfer() override {}
  std::uint64_t Measure() const override { return 0; }
};

// "SERS", version 5, id 5217.
class NVSHARED_API SupportedExchangeResponseBlock : public nv_ns::XStreamable {
 public:
  static constexpr char kName[kNameLength] = {'S', 'E', 'R', 'S', 0};
  static constexpr std::uint32_t kVersion = 5;

  int m_nSyntheticExchangeID = -1;
  // Still written, in their old place, for readers that know only them.
  std::vector<int> m_aExchangeIDsOld;
  std::vector<int> m_aPrimaryExchangeIDsOld;
  std::vector<int> m_aExchangeIDs;
  std::vector<int> m_aPrimaryExchangeIDs;
  int m_nServerSupportedFeatures = 0;
  std::vector<int> m_aMarketIDs;
  std::vector<int> m_aPrimaryMarketIDs;

  SupportedExchangeResponseBlock() : XStreamable(kName, kVersion) {}
  virtual ~SupportedExchangeResponseBlock() = default;
  void Transfer() override;
  // 36 plus 4 for every element of the six vectors.
  std::uint64_t Measure() const override;
};

// "PMRQ", version 3, id 5223.
class NVSHARED_API PushMGTRequestBlock : public nv_ns::XStreamable {
 public:
  static constexpr char kName[kNameLength] = {'P', 'M', 'R', 'Q', 0};
  static constexpr std::uint32_t kVersion = 3;

  ImpersonationDataStreamableList m_list;
  bool m_bDownloadAllOrders = false;

  PushMGTRequestBlock() : XStreamable(kName, kVersion) {}
  virtual ~PushMGTRequestBlock() = default;
  void Transfer() override;
  // 18 plus the list's measure.
  std::uint64_t Measure() const override;
};

// "PMRS", version 1, id 5224.
class NVSHARED_API PushMGTResponseBlock : public nv_ns::XStreamable {
 public:
  static constexpr char kName[kNameLength] = {'P', 'M', 'R', 'S', 0};
  static constexpr std::uint32_t kVersion = 1;

  std::string m_strResponse;

  PushMGTResponseBlock() : XStreamable(kName, kVersion) {}
  virtual ~PushMGTResponseBlock() = default;
  void Transfer() override;
  // 4 plus the length of the response.
  std::uint64_t Measure() const override;
};

}  // namespace nv_opaque_ns

#endif  // NVSHARED_MESSAGING_OPAQUE_BLOCKS_H_

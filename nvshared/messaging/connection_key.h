// nv_ns::ConnectionKey names one login at one gateway: broker, company,
// gateway and the member, group and trader ids. A tagged object ("CK",
// version 3); nv_ns::IConnectionInfo is the host's view of a connection that
// a key can be built from.
//
// Values; one thread at a time per instance.
#ifndef NVSHARED_MESSAGING_CONNECTION_KEY_H_
#define NVSHARED_MESSAGING_CONNECTION_KEY_H_

#include <string>

#include "nvshared/export.h"
#include "nvshared/messaging/xstreamable.h"

namespace nv_ns {

// A connection as the host knows it. The key reads six operations; the host's
// implementation may have more.
class NVSHARED_API IConnectionInfo {
 public:
  virtual ~IConnectionInfo() = default;
  virtual int GetGatewayId() const = 0;
  virtual unsigned short GetBrokerId() const = 0;
  virtual unsigned short GetCompanyId() const = 0;
  // Null is taken as empty.
  virtual const char* GetMember() const = 0;
  virtual const char* GetGroup() const = 0;
  virtual const char* GetTrader() const = 0;
};

class NVSHARED_API ConnectionKey : public XStreamable {
 public:
  static constexpr char kName[kNameLength] = {'C', 'K', 0, 0, 0};
  static constexpr std::uint32_t kVersion = 3;

  unsigned short m_brokerID = 0;
  int m_gatewayID = -1;
  // Ids are cut so that they end with a NUL within the field (11, 3 and 11
  // characters). A field read from the wire may fill its capacity and have
  // no NUL.
  char m_szMember[12] = {};
  char m_szGroup[4] = {};
  char m_szTrader[12] = {};
  unsigned short m_companyID = 0;

  ConnectionKey() : XStreamable(kName, kVersion) {}
  // Null texts give empty fields.
  ConnectionKey(unsigned short brokerId, unsigned short companyId,
                int gatewayId, const char* member, const char* group,
                const char* trader);
  // A null `info` gives the defaults.
  explicit ConnectionKey(const IConnectionInfo* info);
  ConnectionKey(const ConnectionKey&) = default;
  ConnectionKey& operator=(const ConnectionKey&) = default;
  virtual ~ConnectionKey() = default;

  void Transfer() override;
  // 26 plus the lengths of the three ids.
  std::uint64_t Measure() const override;

  // "Broker: 5Company: 7 Gateway: 3 Member: M Group: G Trader: T". There is
  // no blank before "Company: "; readers of logs expect the text so. An id
  // that fills its field is shown whole, never read past.
  std::string ToString() const;
};

}  // namespace nv_ns

#endif  // NVSHARED_MESSAGING_CONNECTION_KEY_H_

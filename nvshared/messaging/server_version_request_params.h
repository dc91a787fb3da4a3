// nv_ns::ServerVersionRequestParams, what a client adds to its version
// request beyond the application id: a free text about the client. A tagged
// object ("SVRP", version 0x08000000) that travels packed into the request's
// application id (see server_version_request.h).
//
// Values; one thread at a time per instance.
#ifndef NVSHARED_MESSAGING_SERVER_VERSION_REQUEST_PARAMS_H_
#define NVSHARED_MESSAGING_SERVER_VERSION_REQUEST_PARAMS_H_

#include <string>

#include "nvshared/export.h"
#include "nvshared/messaging/xstreamable.h"

namespace nv_ns {

class NVSHARED_API ServerVersionRequestParams : public XStreamable {
 public:
  static constexpr char kName[kNameLength] = {'S', 'V', 'R', 'P', 0};
  static constexpr std::uint32_t kVersion = 0x08000000;

  std::string m_szClientInfo;

  ServerVersionRequestParams() : XStreamable(kName, kVersion) {}
  ServerVersionRequestParams(const ServerVersionRequestParams&) = default;
  ServerVersionRequestParams& operator=(const ServerVersionRequestParams&) =
      default;
  virtual ~ServerVersionRequestParams() = default;

  void Transfer() override { TransferString("m_szClientInfo", m_szClientInfo); }
  // The string's length + 4.
  std::uint64_t Measure() const override { return m_szClientInfo.size() + 4; }
};

}  // namespace nv_ns

#endif  // NVSHARED_MESSAGING_SERVER_VERSION_REQUEST_PARAMS_H_

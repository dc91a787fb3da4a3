#include "nvshared/messaging/server_version_request.h"

#include <cstring>

#include "nvshared/messaging/internal/class_id_once.h"

namespace nv_ns {
namespace {
constinit internal::ClassIdOnce g_classId;
}  // namespace

ServerVersionRequest::~ServerVersionRequest() = default;

dv_stream_ns::Stream& ServerVersionRequest::Transfer(
    dv_stream_ns::Stream& stream, Direction direction) {
  MessageRouterRequest::Transfer(stream, direction);
  stream.Transfer("m_szUniversalLoginName", m_szUniversalLoginName, direction);

  std::string appId;
  if (direction == eWrite) {
    // Packed on the stack when it fits, the usual case, so that writing
    // allocates nothing; the parameters measure exactly.
    char packed[512];
    const std::size_t idLength = m_szApplicationId.size();
    if (idLength + 1 + m_params.Measure() + XStreamable::kHeaderLength <=
        sizeof packed) {
      std::memcpy(packed, m_szApplicationId.data(), idLength);
      packed[idLength] = '\0';
      const std::size_t paramsLength =
          m_params.WriteTo(packed + idLength + 1, sizeof packed - idLength - 1);
      stream.WriteStringBytes("appID", packed, idLength + 1 + paramsLength);
      return stream;
    }
    std::string params;
    m_params.WriteToString(params);
    appId.reserve(m_szApplicationId.size() + 1 + params.size());
    appId.append(m_szApplicationId).push_back('\0');
    appId.append(params);
    stream.Write("appID", appId);
    return stream;
  }
  if (direction == eRead) {
    stream.Read("appID", appId);
  } else {
    stream.Write("appID", appId);
  }

  const std::size_t nul = appId.find('\0');
  m_szApplicationId.assign(appId, 0, nul);
  if (nul != std::string::npos) {
    m_params.ReadFrom(appId.data() + nul + 1, appId.size() - nul - 1);
  }
  return stream;
}

dv_stream_ns::VerClsId ServerVersionRequest::Id() const {
  return g_classId.Get(kClassId);
}

}  // namespace nv_ns

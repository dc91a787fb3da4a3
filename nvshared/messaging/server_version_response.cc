#include "nvshared/messaging/server_version_response.h"

#include "nvshared/messaging/internal/class_id_once.h"

namespace nv_ns {
namespace {
constinit internal::ClassIdOnce g_classId;
}  // namespace

ServerVersionResponse::~ServerVersionResponse() = default;

dv_stream_ns::Stream& ServerVersionResponse::Transfer(
    dv_stream_ns::Stream& stream, Direction direction) {
  MessageRouterResponse::Transfer(stream, direction);
  stream.Transfer("m_iExchangeID", m_iExchangeID, direction);
  stream.Transfer("m_serverId", m_serverId, direction);
  stream.Transfer("m_serverVersion", m_serverVersion, direction);
  stream.Transfer("m_engineVersion", m_engineVersion, direction);
  // The enumeration travels as a plain 4-byte integer named "temp".
  std::int32_t temp = m_engineType;
  stream.Transfer("temp", temp, direction);
  if (direction == eRead) m_engineType = static_cast<EngineType>(temp);
  return stream;
}

dv_stream_ns::VerClsId ServerVersionResponse::Id() const {
  return g_classId.Get(kClassId);
}

}  // namespace nv_ns

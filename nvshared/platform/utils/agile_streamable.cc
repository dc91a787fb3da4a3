#include "nvshared/platform/utils/agile_streamable.h"

#include <algorithm>
#include <cstdint>

namespace nv_ns {

namespace {
// A tagged object's total length is a 16-bit field.
constexpr std::uint64_t kMaxObjectLength = 65535;
}  // namespace

std::string WriteTaggedObject(XStreamable& object) {
  const std::uint64_t wanted = std::min<std::uint64_t>(
      XStreamable::kHeaderLength + object.Measure(), kMaxObjectLength);
  std::string bytes(static_cast<std::size_t>(wanted), '\0');
  bytes.resize(object.WriteTo(bytes.data(), bytes.size()));
  return bytes;
}

bool AgileStreamable::StoreAgile(dv_core_ns::CoreClass& carrier,
                                 XStreamable& object, AttachmentId id) {
  return carrier.StoreAgileData<std::string>(id, WriteTaggedObject(object));
}

bool AgileStreamable::RetrieveAgile(const dv_core_ns::CoreClass& carrier,
                                    XStreamable& object, AttachmentId id) {
  const std::string* bytes = carrier.FindAgileData(id);
  if (bytes == nullptr) return false;
  object.ReadFrom(bytes->data(), bytes->size());
  return true;
}

bool DictionaryStreamable::StoreDictionaryData(dictionary& carrier,
                                               XStreamable& object, short id) {
  const std::string bytes = WriteTaggedObject(object);
  carrier[id] = boost::shared_ptr<const DataBuffer>(
      new DataBuffer(bytes.data(), bytes.size()));
  return true;
}

bool DictionaryStreamable::RetrieveDictionaryData(const dictionary& carrier,
                                                  XStreamable& object,
                                                  short id) {
  const auto it = carrier.find(id);
  if (it == carrier.end() || !it->second) return false;
  object.ReadFrom(it->second->m_pData,
                  static_cast<std::size_t>(it->second->m_size));
  return true;
}

}  // namespace nv_ns

#include "nvshared/platform/utils/opaque_capture.h"

#include <cstdint>
#include <cstring>
#include <set>
#include <utility>
#include <vector>

namespace nv_ns {

namespace {

using nvshared::Status;

void Put(std::string& out, const void* value, std::size_t width) {
  out.append(static_cast<const char*>(value), width);
}

struct Entry {
  short id;
  const char* data;
  std::uint64_t size;
};

nvshared::StatusOr<std::string> SaveEntries(const char* magic,
                                            const std::vector<Entry>& list) {
  if (list.size() > 0xFFFF) {
    return Status::Error("capture: " + std::to_string(list.size()) +
                         " entries; at most 65535 fit");
  }
  std::uint64_t total = OpaqueCapture::kHeaderLength;
  for (const Entry& e : list) {
    total += OpaqueCapture::kEntryHeaderLength + e.size;
  }
  if (total > OpaqueCapture::kMaxCaptureLength) {
    return Status::Error(
        "capture: " + std::to_string(total) + " bytes; at most " +
        std::to_string(OpaqueCapture::kMaxCaptureLength) + " are allowed");
  }
  std::string out;
  out.reserve(static_cast<std::size_t>(total));
  out.append(magic, 4);
  const auto count = static_cast<std::uint16_t>(list.size());
  Put(out, &count, 2);
  for (const Entry& e : list) {
    const auto length = static_cast<std::uint32_t>(e.size);
    Put(out, &e.id, 2);
    Put(out, &length, 4);
    if (length != 0) out.append(e.data, length);
  }
  return out;
}

}  // namespace

nvshared::StatusOr<std::string> OpaqueCapture::Save(
    const dv_core_ns::OpaqueDataMessage& message) {
  std::vector<Entry> list;
  for (const auto& [id, bytes] : message.AgileData()) {
    list.push_back({id, bytes.data(), bytes.size()});
  }
  return SaveEntries(kMessageMagic, list);
}

nvshared::StatusOr<std::string> OpaqueCapture::Save(const dictionary& entries) {
  std::vector<Entry> list;
  for (const auto& [id, buffer] : entries) {
    if (buffer) {
      list.push_back({id, buffer->m_pData, buffer->m_size});
    } else {
      list.push_back({id, nullptr, 0});
    }
  }
  return SaveEntries(kDictionaryMagic, list);
}

nvshared::StatusOr<OpaqueCapture> OpaqueCapture::Read(std::string_view bytes) {
  if (bytes.size() > kMaxCaptureLength) {
    return Status::Error("capture: " + std::to_string(bytes.size()) +
                         " bytes; at most " +
                         std::to_string(kMaxCaptureLength) + " are allowed");
  }
  if (bytes.size() < kHeaderLength) {
    return Status::Error("capture: " + std::to_string(bytes.size()) +
                         " bytes; the header alone takes 6");
  }
  OpaqueCapture capture;
  if (bytes.substr(0, 4) == kMessageMagic) {
    capture.carrier = Carrier::kMessage;
  } else if (bytes.substr(0, 4) == kDictionaryMagic) {
    capture.carrier = Carrier::kDictionary;
  } else {
    return Status::Error("capture: starts with neither \"NVOM\" nor \"NVOD\"");
  }
  std::uint16_t count;
  std::memcpy(&count, bytes.data() + 4, 2);
  std::size_t offset = kHeaderLength;
  std::set<short> seen;
  for (unsigned i = 0; i < count; ++i) {
    const std::string where = "capture: entry " + std::to_string(i);
    if (bytes.size() - offset < kEntryHeaderLength) {
      return Status::Error(where + " at offset " + std::to_string(offset) +
                           ": its id and length run past the end");
    }
    short id;
    std::uint32_t length;
    std::memcpy(&id, bytes.data() + offset, 2);
    std::memcpy(&length, bytes.data() + offset + 2, 4);
    offset += kEntryHeaderLength;
    const std::string named = where + " (id " + std::to_string(id) + ")";
    if (bytes.size() - offset < length) {
      return Status::Error(named + ": length " + std::to_string(length) +
                           " but " + std::to_string(bytes.size() - offset) +
                           " bytes remain");
    }
    if (!seen.insert(id).second) {
      return Status::Error(named + ": the id comes twice");
    }
    const char* data = bytes.data() + offset;
    if (capture.carrier == Carrier::kMessage) {
      capture.message.StoreAgileData<std::string>(id,
                                                  std::string(data, length));
    } else {
      capture.entries[id] =
          boost::shared_ptr<const DataBuffer>(new DataBuffer(data, length));
    }
    offset += length;
  }
  if (offset != bytes.size()) {
    return Status::Error("capture: " + std::to_string(bytes.size() - offset) +
                         " bytes follow the last entry");
  }
  return capture;
}

}  // namespace nv_ns

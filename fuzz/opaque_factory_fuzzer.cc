// Feeds arbitrary attachments to one message factory, chosen at build time:
// CreateCommonRequestMessage (NVSHARED_FACTORY 1), CreateCommonResponse-
// Message (2) or CreateInternalMessage (3). The first byte picks the carrier
// (bit 0: message or dictionary) and, when the rest is not a capture, which
// of the factory's ids the rest is stored under as one block. A malformed
// block must raise StreamingException and nothing else; a message that
// builds must save, build again and save again to the same bytes.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>

#include "nvshared/messaging/internal_messages.h"
#include "nvshared/messaging/opaque_messages.h"
#include "nvshared/platform/utils/opaque_capture.h"

#ifndef NVSHARED_FACTORY
#error "NVSHARED_FACTORY must name the factory under test"
#endif

namespace {

using nv_opaque_ns::InternalMessage;
using nv_opaque_ns::OpaqueRequestMessage;
using nv_opaque_ns::OpaqueResponseMessage;

#if NVSHARED_FACTORY == 1
constexpr short kIds[] = {5210, 5212, 5214, 5216, 5223, 5212, 5214, 5223};
using Built = OpaqueRequestMessage;
template <typename Carrier>
Built* Create(const Carrier& c) {
  return nv_opaque_ns::CreateCommonRequestMessage(c);
}
#elif NVSHARED_FACTORY == 2
constexpr short kIds[] = {5211, 5213, 5215, 5217, 5224, 5213, 5217, 5224};
using Built = OpaqueResponseMessage;
template <typename Carrier>
Built* Create(const Carrier& c) {
  return nv_opaque_ns::CreateCommonResponseMessage(c);
}
#else
constexpr short kIds[] = {5218, 5219, 5220, 5221, 5222, 5227, 5228, 5218};
using Built = InternalMessage;
template <typename Carrier>
Built* Create(const Carrier& c) {
  return nv_opaque_ns::CreateInternalMessage(c);
}
#endif

// Stores what a built message holds. Internal messages have no save of
// their own; their block is stored under its id.
template <typename Block>
bool StoreIf(const InternalMessage& m, dv_core_ns::OpaqueDataMessage* message,
             nv_ns::dictionary* entries) {
  if (m.GetBlockId() != Block::kBlockId) return false;
  Block block =
      static_cast<const nv_opaque_ns::GenericMessage<Block>&>(m).GetBlock();
  if (message) {
    nv_ns::AgileStreamable::StoreAgile(
        *message, block, static_cast<nv_ns::AttachmentId>(Block::kBlockId));
  } else {
    nv_ns::DictionaryStreamable::StoreDictionaryData(*entries, block,
                                                     Block::kBlockId);
  }
  return true;
}

template <typename M>
void Save(M& m, dv_core_ns::OpaqueDataMessage* message,
          nv_ns::dictionary* entries) {
  if constexpr (std::is_same_v<M, InternalMessage>) {
    using namespace nv_opaque_ns;  // NOLINT
    StoreIf<ConnectMessageBlock>(m, message, entries) ||
        StoreIf<ConnectResponseMessageBlock>(m, message, entries) ||
        StoreIf<DisconnectMessageBlock>(m, message, entries) ||
        StoreIf<StringMessageBlock>(m, message, entries) ||
        StoreIf<CancelSubscriptionMessageBlock>(m, message, entries) ||
        StoreIf<ServerInstanceIDRequestMessageBlock>(m, message, entries) ||
        StoreIf<ServerInstanceIDResponseBlock>(m, message, entries) ||
        (std::abort(), false);
  } else {
    if (message) {
      m.SaveToMessage(*message);
    } else {
      m.SaveToDictionary(*entries);
    }
  }
}

template <typename Carrier>
std::string SaveCapture(Built& m) {
  Carrier carrier;
  if constexpr (std::is_same_v<Carrier, nv_ns::dictionary>) {
    Save(m, nullptr, &carrier);
  } else {
    Save(m, &carrier, nullptr);
  }
  auto bytes = nv_ns::OpaqueCapture::Save(carrier);
  if (!bytes.ok()) std::abort();
  return *bytes;
}

template <typename Carrier>
void Check(const Carrier& carrier) {
  std::unique_ptr<Built> built;
  try {
    built.reset(Create(carrier));
  } catch (const nv_ns::StreamingException&) {
    return;
  }
  if (!built) return;
  std::string first;
  try {
    first = SaveCapture<Carrier>(*built);
  } catch (const nv_ns::StreamingException&) {
    return;  // defaults of an old writer's items made it outgrow 65535 bytes
  }
  auto read = nv_ns::OpaqueCapture::Read(first);
  if (!read.ok()) std::abort();
  std::unique_ptr<Built> again;
  if constexpr (std::is_same_v<Carrier, nv_ns::dictionary>) {
    again.reset(Create(read->entries));
  } else {
    again.reset(Create(read->message));
  }
  if (!again || again->GetBlockId() != built->GetBlockId()) std::abort();
  if (SaveCapture<Carrier>(*again) != first) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data,
                                      std::size_t size) {
  if (size == 0) return 0;
  const std::uint8_t selector = data[0];
  const std::string_view rest(reinterpret_cast<const char*>(data + 1),
                              size - 1);
  auto capture = nv_ns::OpaqueCapture::Read(rest);
  if (!capture.ok()) {
    // One block under an id of this factory.
    capture = nv_ns::OpaqueCapture();
    const short id = kIds[(selector >> 1) % std::size(kIds)];
    capture->message.StoreAgileData<std::string>(id, std::string(rest));
    capture->entries[id] = boost::shared_ptr<const nv_ns::DataBuffer>(
        new nv_ns::DataBuffer(rest.data(), rest.size()));
  }
  if (selector & 1) {
    Check(capture->entries);
  } else {
    Check(capture->message);
  }
  return 0;
}

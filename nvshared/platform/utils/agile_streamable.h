// nv_ns::AgileStreamable and nv_ns::DictionaryStreamable tie tagged objects to
// the two carriers of message blocks: an attachment of a CoreClass (such as an
// OpaqueDataMessage) and an entry of a dictionary. Storing writes the object
// in the tagged object format and keeps a copy of the bytes under the id;
// retrieving reads the object from the bytes stored there. The carriers own
// what is stored; the object is only read or filled. One thread at a time
// per carrier and object.
#ifndef NVSHARED_PLATFORM_UTILS_AGILE_STREAMABLE_H_
#define NVSHARED_PLATFORM_UTILS_AGILE_STREAMABLE_H_

#include <string>

#include "nvshared/export.h"
#include "nvshared/messaging/xstreamable.h"
#include "nvshared/platform/core/core_class.h"
#include "nvshared/platform/utils/data_buffer.h"

namespace nv_ns {

// The ids under which message blocks are stored.
enum AttachmentId : short {
  kOpaqueRequestMessageId = 5210,
  kOpaqueResponseMessageId = 5211,
  kServerVersionRequestId = 5212,
  kServerVersionResponseId = 5213,
  kImpersonateUserRequestId = 5214,
  kImpersonateUserResponseId = 5215,
  kSupportedExchangeRequestId = 5216,
  kSupportedExchangeResponseId = 5217,
  kConnectMessageId = 5218,
  kConnectResponseMessageId = 5219,
  kDisconnectMessageId = 5220,
  kStringMessageId = 5221,
  kCancelSubscriptionMessageId = 5222,
  kPushMGTRequestId = 5223,
  kPushMGTResponseId = 5224,
  kAlgoEngineRequestId = 5225,
  kAlgoEngineResponseId = 5226,
  kServerInstanceIDRequestId = 5227,
  kServerInstanceIDResponseId = 5228,
};

// Writes `object` whole, in a buffer sized from its Measure() (at most the
// 65535 bytes a tagged object can hold). Raises StreamingException when it
// does not fit; nothing is stored then.
NVSHARED_API std::string WriteTaggedObject(XStreamable& object);

class NVSHARED_API AgileStreamable {
 public:
  // Stores `object`'s bytes under `id`, replacing what was there. True on
  // success; raises StreamingException if the object cannot be written.
  static bool StoreAgile(dv_core_ns::CoreClass& carrier, XStreamable& object,
                         AttachmentId id);
  // Reads `object` from the bytes under `id`. False, with the object
  // untouched, if there are none; a malformed buffer raises
  // StreamingException out of here.
  static bool RetrieveAgile(const dv_core_ns::CoreClass& carrier,
                            XStreamable& object, AttachmentId id);
};

class NVSHARED_API DictionaryStreamable {
 public:
  // As AgileStreamable::StoreAgile, into a new DataBuffer under `id`.
  static bool StoreDictionaryData(dictionary& carrier, XStreamable& object,
                                  short id);
  // As AgileStreamable::RetrieveAgile; an absent or null entry gives false.
  static bool RetrieveDictionaryData(const dictionary& carrier,
                                     XStreamable& object, short id);
};

}  // namespace nv_ns

#endif  // NVSHARED_PLATFORM_UTILS_AGILE_STREAMABLE_H_

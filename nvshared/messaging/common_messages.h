// nv_ns::CommonMessages: registers the common router messages with a
// router, and names the ends of the blocks of class ids kept for common
// requests (from 0xFF06) and responses (from 0xFF40).
//
// Threads: Init is for start-up, before the router runs; it takes no lock.
#ifndef NVSHARED_MESSAGING_COMMON_MESSAGES_H_
#define NVSHARED_MESSAGING_COMMON_MESSAGES_H_

#include "nvshared/export.h"
#include "nvshared/messaging/message_router.h"

namespace nv_ns {

class NVSHARED_API CommonMessages {
 public:
  static const int eCommonRequestBaseEnd_cc = 65302;   // 0xFF16
  static const int eCommonResponseBaseEnd_cc = 65360;  // 0xFF50

  // Hands the router one new VIAFactory per class, in this order:
  // ServerVersionRequest, ServerVersionResponse, ImpersonateUserRequest,
  // ImpersonateUserResponse, each with its class id and class name. The
  // router owns the factories; one that could not be allocated is handed
  // over as null. A null router is left alone.
  static void Init(MessageRouterClient* router);
  static void Init(MessageRouterServer* router);
};

}  // namespace nv_ns

#endif  // NVSHARED_MESSAGING_COMMON_MESSAGES_H_

#include "nvshared/platform/utils/dm_utils.h"

#include <memory>
#include <mutex>
#include <utility>

namespace nv_ns {

namespace {

struct Channel {
  std::mutex mutex;
  std::shared_ptr<const DMUtils::Sink> sink;
};

Channel& TheChannel() {
  static Channel* const channel = new Channel();
  return *channel;
}

}  // namespace

bool DMUtils::s_bDMEnabled = false;

void DMUtils::GenDMExceptionLog(const std::string& text, int code,
                                const std::string& label) {
  std::shared_ptr<const Sink> sink;
  {
    Channel& channel = TheChannel();
    std::lock_guard<std::mutex> lock(channel.mutex);
    sink = channel.sink;
  }
  if (!sink) return;
  try {
    (*sink)(text, code, label);
  } catch (...) {
    // The channel is part of reporting a fault; it must not add one.
  }
}

DMUtils::Sink DMUtils::SetSink(Sink sink) {
  std::shared_ptr<const Sink> next;
  if (sink) next = std::make_shared<const Sink>(std::move(sink));
  Channel& channel = TheChannel();
  std::lock_guard<std::mutex> lock(channel.mutex);
  std::swap(channel.sink, next);
  return next ? *next : Sink();
}

}  // namespace nv_ns

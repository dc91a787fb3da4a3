#include "nvshared/platform/utils/dm_utils.h"

#include <charconv>
#include <memory>
#include <mutex>
#include <utility>

namespace nv_ns {

namespace {

struct Channel {
  std::mutex mutex;
  std::shared_ptr<const DMUtils::Sink> sink;
  std::shared_ptr<const DMUtils::PropertySink> propertySink;
};

Channel& TheChannel() {
  static Channel* const channel = new Channel();
  return *channel;
}

template <typename T>
void Swap(std::shared_ptr<const T>& slot, T& sink) {
  std::shared_ptr<const T> next;
  if (sink) next = std::make_shared<const T>(std::move(sink));
  Channel& channel = TheChannel();
  {
    std::lock_guard<std::mutex> lock(channel.mutex);
    std::swap(slot, next);
  }
  sink = next ? *next : T();
}

using Kind = DMProperty::Kind;
using Scope = DMProperty::Scope;

// Everything of a property but its value.
struct Where {
  Scope scope;
  bool flag;
  const DMWindowInfo* window;
  const std::string& group;
  const std::string& key;
};

void Emit(const Where& where, Kind kind, std::string text, double number) {
  std::shared_ptr<const DMUtils::PropertySink> sink;
  {
    Channel& channel = TheChannel();
    std::lock_guard<std::mutex> lock(channel.mutex);
    sink = channel.propertySink;
  }
  if (!sink) return;
  try {
    DMProperty property;
    property.scope = where.scope;
    property.flag = where.flag;
    if (where.window != nullptr) property.window = *where.window;
    property.group = where.group;
    property.key = where.key;
    property.kind = kind;
    property.value = std::move(text);
    property.number = number;
    (*sink)(property);
  } catch (...) {
    // A report about settings must not disturb the settings' owner.
  }
}

void EmitString(const Where& w, const std::string& value) {
  Emit(w, Kind::kString, value, 0.0);
}
void EmitBool(const Where& w, bool value) {
  Emit(w, Kind::kBool, value ? "1" : "0", value ? 1.0 : 0.0);
}
void EmitInt(const Where& w, int value) {
  Emit(w, Kind::kInt, std::to_string(value), value);
}
void EmitDouble(const Where& w, double value) {
  char buf[32];
  const auto result = std::to_chars(buf, buf + sizeof buf, value);
  Emit(w, Kind::kDouble, std::string(buf, result.ptr), value);
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
  Swap(TheChannel().sink, sink);
  return sink;
}

DMUtils::PropertySink DMUtils::SetPropertySink(PropertySink sink) {
  Swap(TheChannel().propertySink, sink);
  return sink;
}

void DMUtils::GenDMDefaultProps(const std::string& group,
                                const std::string& key,
                                const std::string& value) {
  EmitString({Scope::kDefault, false, nullptr, group, key}, value);
}
void DMUtils::GenDMDefaultPropsBool(const std::string& group,
                                    const std::string& key, bool value) {
  EmitBool({Scope::kDefault, false, nullptr, group, key}, value);
}
void DMUtils::GenDMDefaultPropsInt(const std::string& group,
                                   const std::string& key, int value) {
  EmitInt({Scope::kDefault, false, nullptr, group, key}, value);
}
void DMUtils::GenDMDefaultPropsDouble(const std::string& group,
                                      const std::string& key, double value) {
  EmitDouble({Scope::kDefault, false, nullptr, group, key}, value);
}

void DMUtils::GenDMGlobalProps(bool flag, const std::string& group,
                               const std::string& key,
                               const std::string& value) {
  EmitString({Scope::kGlobal, flag, nullptr, group, key}, value);
}
void DMUtils::GenDMGlobalPropsBool(bool flag, const std::string& group,
                                   const std::string& key, bool value) {
  EmitBool({Scope::kGlobal, flag, nullptr, group, key}, value);
}
void DMUtils::GenDMGlobalPropsInt(bool flag, const std::string& group,
                                  const std::string& key, int value) {
  EmitInt({Scope::kGlobal, flag, nullptr, group, key}, value);
}
void DMUtils::GenDMGlobalPropsDouble(bool flag, const std::string& group,
                                     const std::string& key, double value) {
  EmitDouble({Scope::kGlobal, flag, nullptr, group, key}, value);
}

void DMUtils::GenDMLocalProps(bool flag, const DMWindowInfo& window,
                              const std::string& group, const std::string& key,
                              const std::string& value) {
  EmitString({Scope::kLocal, flag, &window, group, key}, value);
}
void DMUtils::GenDMLocalPropsBool(bool flag, const DMWindowInfo& window,
                                  const std::string& group,
                                  const std::string& key, bool value) {
  EmitBool({Scope::kLocal, flag, &window, group, key}, value);
}
void DMUtils::GenDMLocalPropsInt(bool flag, const DMWindowInfo& window,
                                 const std::string& group,
                                 const std::string& key, int value) {
  EmitInt({Scope::kLocal, flag, &window, group, key}, value);
}
void DMUtils::GenDMLocalPropsDouble(bool flag, const DMWindowInfo& window,
                                    const std::string& group,
                                    const std::string& key, double value) {
  EmitDouble({Scope::kLocal, flag, &window, group, key}, value);
}

}  // namespace nv_ns

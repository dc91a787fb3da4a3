// nvshared::Status and nvshared::StatusOr<T>: the result of the project's own
// loaders and parsers (reference data, settings files, tool input). A Status
// is either OK or carries one precise, human-readable message. The system's
// own API keeps its own conventions (false, null, codes, exceptions); these
// types are for the code around it.
#ifndef NVSHARED_STATUS_H_
#define NVSHARED_STATUS_H_

#include <cassert>
#include <optional>
#include <string>
#include <utility>

namespace nvshared {

class [[nodiscard]] Status {
 public:
  // OK.
  Status() = default;

  static Status Ok() { return Status(); }
  static Status Error(std::string message) {
    Status s;
    s.ok_ = false;
    s.message_ = std::move(message);
    return s;
  }

  bool ok() const { return ok_; }
  // Empty for OK.
  const std::string& message() const { return message_; }

 private:
  bool ok_ = true;
  std::string message_;
};

template <typename T>
class [[nodiscard]] StatusOr {
 public:
  StatusOr(T value) : value_(std::move(value)) {}  // NOLINT: implicit by design
  StatusOr(Status status) : status_(std::move(status)) {  // NOLINT
    assert(!status_.ok() && "StatusOr needs a value or an error");
  }

  bool ok() const { return value_.has_value(); }
  const Status& status() const { return status_; }

  // Only on ok().
  T& value() & { return *value_; }
  const T& value() const& { return *value_; }
  T&& value() && { return std::move(*value_); }
  T* operator->() { return &*value_; }
  const T* operator->() const { return &*value_; }
  T& operator*() { return *value_; }
  const T& operator*() const { return *value_; }

 private:
  Status status_;
  std::optional<T> value_;
};

}  // namespace nvshared

#endif  // NVSHARED_STATUS_H_

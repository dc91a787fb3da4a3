// MessageOf(f): runs f and returns what() of the E it raised, or "" when it
// raised nothing, so that tables of failures compare exact texts in one line.
#ifndef NVSHARED_TESTING_MESSAGE_OF_H_
#define NVSHARED_TESTING_MESSAGE_OF_H_

#include <exception>
#include <string>

namespace nvshared::testing {

template <typename E = std::exception, typename F>
std::string MessageOf(F&& f) {
  try {
    f();
  } catch (const E& e) {
    return e.what();
  }
  return "";
}

}  // namespace nvshared::testing

#endif  // NVSHARED_TESTING_MESSAGE_OF_H_

// nv_ns::Comparable<T>, the interface of records that order themselves with
// a three-way compare: negative, zero or positive as this record is less
// than, equal to or greater than `other` (each record says where it departs
// from that). Stateless; the records' own rules on threads apply.
#ifndef NVSHARED_MESSAGING_COMPARABLE_H_
#define NVSHARED_MESSAGING_COMPARABLE_H_

namespace nv_ns {

template <typename T>
class Comparable {
 public:
  virtual int Compare(const T& other) const = 0;
  virtual ~Comparable() = default;
};

}  // namespace nv_ns

#endif  // NVSHARED_MESSAGING_COMPARABLE_H_

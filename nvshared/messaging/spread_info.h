// nv_ns::SpreadInfo describes one spread definition: its name and id, the
// colour it is shown in, its number of legs and whether it is allowed in
// quote handling, for which broker, and whether it is an aggregator. A tagged
// object ("ASAP", version 0x08000003).
//
// Values; one thread at a time per instance.
#ifndef NVSHARED_MESSAGING_SPREAD_INFO_H_
#define NVSHARED_MESSAGING_SPREAD_INFO_H_

#include <string>

#include "nvshared/export.h"
#include "nvshared/messaging/xstreamable.h"

namespace nv_ns {

class NVSHARED_API SpreadInfo : public XStreamable {
 public:
  static constexpr char kName[kNameLength] = {'A', 'S', 'A', 'P', 0};
  static constexpr std::uint32_t kVersion = 0x08000003;

  std::string m_name;
  std::string m_id;
  // On the wire 32 bits: a colour above 0xFFFFFFFF loses its high bits.
  unsigned long m_color = 0xFFFFFF;
  // The default constructor leaves these two as they were made: zero here
  // (value-initialised), where the first builds left whatever memory held.
  unsigned int m_numLegs = 0;
  bool m_isQHAllowed = false;
  unsigned short m_nBrokerId = 0;
  bool m_isAggregator = false;

  SpreadInfo() : XStreamable(kName, kVersion) {}
  SpreadInfo(const std::string& name, const std::string& id,
             unsigned long color, unsigned int numLegs, bool isQHAllowed,
             unsigned short brokerId, bool isAggregator);
  // Both copy the seven members only; the target's stream state is fresh.
  SpreadInfo(const SpreadInfo& other) = default;
  SpreadInfo& operator=(const SpreadInfo& other) = default;
  virtual ~SpreadInfo() = default;

  void Transfer() override;
  // 30 plus the lengths of the two strings.
  std::uint64_t Measure() const override;
};

}  // namespace nv_ns

#endif  // NVSHARED_MESSAGING_SPREAD_INFO_H_

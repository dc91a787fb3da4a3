#include "nvshared/defaults/rr_criteria.h"

#include <cstdlib>
#include <utility>

#include "nvshared/platform/utils/dv_randomizer.h"

bool OrderPortion::IsComplete(bool onlyEnabled) const {
  return !m_name.empty() && m_side != 0 && m_amount != 0 &&
         (!onlyEnabled || m_enabled != 0);
}

bool OrderPortion::IsBlank(bool onlyEnabled) const {
  return m_name.empty() && m_side == 0 && m_amount == 0 &&
         (!onlyEnabled || m_enabled == 0);
}

RRCRITERIA::RRCRITERIA() : m_orderPortions(kInitialPortions) {}

RRCRITERIA::RRCRITERIA(const RRCRITERIA& other) { CommonCopy(other); }

RRCRITERIA& RRCRITERIA::operator=(const RRCRITERIA& other) {
  if (this != &other) CommonCopy(other);
  return *this;
}

void RRCRITERIA::CommonCopy(const RRCRITERIA& other) {
  m_name = other.m_name;
  m_flag = other.m_flag;
  m_orderPortions = other.m_orderPortions;
}

unsigned RRCRITERIA::GetOrderPortionsCount() const {
  return static_cast<unsigned>(m_orderPortions.size());
}

OrderPortion* RRCRITERIA::GetOrderPortion(int index) {
  if (index < 0 || static_cast<std::size_t>(index) >= m_orderPortions.size())
    return nullptr;
  return &m_orderPortions[static_cast<std::size_t>(index)];
}

const OrderPortion* RRCRITERIA::GetOrderPortion(int index) const {
  return const_cast<RRCRITERIA*>(this)->GetOrderPortion(index);
}

void RRCRITERIA::AddOrderPortion(OrderPortion& portion) {
  m_orderPortions.push_back(portion);
}

void RRCRITERIA::ResizeOrderPortions(unsigned count) {
  m_orderPortions.resize(count);
}

void RRCRITERIA::DeleteOrderPortion(unsigned number) {
  if (number == 0 || number > m_orderPortions.size()) return;
  m_orderPortions.erase(m_orderPortions.begin() + (number - 1));
}

bool RRCRITERIA::IsPortionBlank(int index, bool onlyEnabled) const {
  const OrderPortion* portion = GetOrderPortion(index);
  return portion == nullptr || portion->IsBlank(onlyEnabled);
}

bool RRCRITERIA::IsPortionComplete(int index, bool onlyEnabled) const {
  const OrderPortion* portion = GetOrderPortion(index);
  return portion != nullptr && portion->IsComplete(onlyEnabled);
}

void RRCRITERIA::GetCompletedOrderPortions(std::vector<OrderPortion>& out,
                                           bool onlyEnabled) const {
  for (const OrderPortion& portion : m_orderPortions) {
    if (portion.IsComplete(onlyEnabled)) out.push_back(portion);
  }
}

bool RRCRITERIA::CanSupportBuy(bool onlyEnabled) const {
  for (const OrderPortion& portion : m_orderPortions) {
    if (portion.IsComplete(onlyEnabled) &&
        (portion.m_side == 1 || portion.m_side == 3))
      return true;
  }
  return false;
}

bool RRCRITERIA::CanSupportSell(bool onlyEnabled) const {
  for (const OrderPortion& portion : m_orderPortions) {
    if (portion.IsComplete(onlyEnabled) &&
        (portion.m_side == 2 || portion.m_side == 3))
      return true;
  }
  return false;
}

bool RRCRITERIA::IsCriteriaValid(int& status, bool onlyEnabled) const {
  bool seenBlank = false;
  bool seenComplete = false;
  for (const OrderPortion& portion : m_orderPortions) {
    if (portion.IsComplete(onlyEnabled)) {
      if (seenBlank) {
        status = kGapBeforeCompletePortion;
        return false;
      }
      seenComplete = true;
    } else if (portion.IsBlank(onlyEnabled)) {
      seenBlank = true;
    } else {
      status = kPartlyFilledPortion;
      return false;
    }
  }
  status = seenComplete ? kValid : kNoCompletePortion;
  return seenComplete;
}

namespace {

// A number from std::rand covering at least `bound` values, 15 bits per draw.
unsigned long long DrawFromRand(unsigned bound) {
  unsigned long long value = static_cast<unsigned>(std::rand()) & 0x7FFFu;
  unsigned long long range = 0x8000u;
  while (bound > range) {
    value = (value << 15) + (static_cast<unsigned>(std::rand()) & 0x7FFFu);
    range <<= 15;
  }
  return value;
}

bool Serves(const OrderPortion& portion, nv_ns::BuySell side) {
  if (portion.m_side == 3) return true;
  if (side == nv_ns::BuySell::Buy) return portion.m_side == 1;
  if (side == nv_ns::BuySell::Sell) return portion.m_side == 2;
  return false;
}

}  // namespace

void RRCRITERIA::GetApplicableOrderPortions(nv_ns::BuySell side,
                                            std::vector<OrderPortion>& out,
                                            unsigned seed, bool onlyEnabled) {
  for (const OrderPortion& portion : m_orderPortions) {
    if (portion.IsComplete(onlyEnabled) && Serves(portion, side))
      out.push_back(portion);
  }
  if (out.size() < 2) return;
  nv_ns::DVRandomizer randomizer(seed);
  for (std::size_t k = 1; k < out.size(); ++k) {
    const unsigned i = static_cast<unsigned>(k + 1);
    const unsigned long long r = seed != 0 ? randomizer(i) : DrawFromRand(i);
    std::swap(out[k], out[static_cast<std::size_t>(r % i)]);
  }
}

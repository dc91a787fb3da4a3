// RRCRITERIA: the default record that divides an order into portions, each
// with a name, an amount and the sides it serves; and OrderPortion, one such
// portion.
//
// A portion is complete when it has a name, a side and an amount (and, when
// the caller asks for enabled portions only, is enabled); it is blank when
// it has none of them (and, when asked, is not enabled). A portion that is
// neither is partly filled, and the record is then invalid.
//
// A plain value; one thread at a time per instance. An unseeded shuffle
// takes part in the process-wide sequence of std::rand.
#ifndef NVSHARED_DEFAULTS_RR_CRITERIA_H_
#define NVSHARED_DEFAULTS_RR_CRITERIA_H_

#include <cstdint>
#include <string>
#include <vector>

#include "nvshared/export.h"
#include "nvshared/market/market_types.h"

struct NVSHARED_API OrderPortion {
  // Non-zero: switched on. Counts only where the caller asks for it.
  std::int32_t m_enabled = 0;
  // Empty: not filled in.
  std::string m_name;
  // 0: not filled in.
  std::int32_t m_amount = 0;
  // 0 none, 1 buy, 2 sell, 3 both.
  std::int32_t m_side = 0;

  bool IsComplete(bool onlyEnabled) const;
  bool IsBlank(bool onlyEnabled) const;
};

class NVSHARED_API RRCRITERIA {
 public:
  // Status values of IsCriteriaValid. 2 and 3 are never given.
  enum Status {
    kValid = 0,
    kNoCompletePortion = 1,
    kPartlyFilledPortion = 4,
    kGapBeforeCompletePortion = 5,
  };
  // A new record has this many blank portions.
  static constexpr unsigned kInitialPortions = 3;

  std::string m_name;
  std::uint8_t m_flag = 0;
  std::vector<OrderPortion> m_orderPortions;

  RRCRITERIA();
  RRCRITERIA(const RRCRITERIA& other);
  RRCRITERIA& operator=(const RRCRITERIA& other);

  // Replaces name, flag and all portions.
  void CommonCopy(const RRCRITERIA& other);

  std::vector<OrderPortion>& GetOrderPortions() { return m_orderPortions; }
  const std::vector<OrderPortion>& GetOrderPortions() const {
    return m_orderPortions;
  }
  unsigned GetOrderPortionsCount() const;
  // Counted from 0; null outside the vector. The pointer holds until the
  // portions change.
  OrderPortion* GetOrderPortion(int index);
  const OrderPortion* GetOrderPortion(int index) const;
  // Appends a copy.
  void AddOrderPortion(OrderPortion& portion);
  // Grows with blank portions or drops the tail.
  void ResizeOrderPortions(unsigned count);
  // Counted from 1, unlike GetOrderPortion; 0 and numbers beyond the count
  // remove nothing.
  void DeleteOrderPortion(unsigned number);

  // True for an index outside the vector.
  bool IsPortionBlank(int index, bool onlyEnabled) const;
  // False for an index outside the vector.
  bool IsPortionComplete(int index, bool onlyEnabled) const;
  // Appends the complete portions to `out`, in order; `out` is not emptied.
  void GetCompletedOrderPortions(std::vector<OrderPortion>& out,
                                 bool onlyEnabled) const;
  // True when a complete portion serves buys (side 1 or 3).
  bool CanSupportBuy(bool onlyEnabled) const;
  // True when a complete portion serves sells (side 2 or 3).
  bool CanSupportSell(bool onlyEnabled) const;

  // True, with `status` 0, when at least one portion is complete and blank
  // ones stand only behind the complete ones. Otherwise false with `status`
  // 1 (nothing complete, also for no portions), 4 (a partly filled portion)
  // or 5 (a complete portion behind a blank one).
  bool IsCriteriaValid(int& status, bool onlyEnabled) const;

  // Appends the complete portions that serve `side` to `out` and shuffles
  // all of `out`, what it held before included. A non-zero `seed` makes the
  // order reproducible: equal seeds and portions give equal orders. Seed 0
  // draws from std::rand. Fewer than two elements draw nothing.
  void GetApplicableOrderPortions(nv_ns::BuySell side,
                                  std::vector<OrderPortion>& out, unsigned seed,
                                  bool onlyEnabled);
};

#endif  // NVSHARED_DEFAULTS_RR_CRITERIA_H_

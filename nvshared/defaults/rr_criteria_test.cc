#include "nvshared/defaults/rr_criteria.h"

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

OrderPortion Portion(const std::string& name, int amount, int side,
                     int enabled = 0) {
  OrderPortion p;
  p.m_enabled = enabled;
  p.m_name = name;
  p.m_amount = amount;
  p.m_side = side;
  return p;
}

RRCRITERIA Record(std::vector<OrderPortion> portions) {
  RRCRITERIA r;
  r.m_orderPortions = std::move(portions);
  return r;
}

std::string Names(const std::vector<OrderPortion>& portions) {
  std::string out;
  for (const auto& p : portions) out += p.m_name;
  return out;
}

TEST(RRCriteriaTest, NewRecordHasThreeBlankPortions) {
  const RRCRITERIA r;
  EXPECT_EQ(r.GetOrderPortionsCount(), 3u);
  EXPECT_TRUE(r.IsPortionBlank(0, false));
  int status = -1;
  EXPECT_FALSE(r.IsCriteriaValid(status, false));
  EXPECT_EQ(status, 1);
  EXPECT_FALSE(r.CanSupportBuy(false));
  EXPECT_FALSE(r.CanSupportSell(false));
}

TEST(RRCriteriaTest, ValidityStatuses) {
  const OrderPortion full = Portion("a", 10, 1);
  const OrderPortion blank;
  const struct {
    const char* what;
    std::vector<OrderPortion> portions;
    bool onlyEnabled;
    int status;
  } cases[] = {
      {"complete, complete, blank", {full, full, blank}, false, 0},
      {"complete, blank, complete", {full, blank, full}, false, 5},
      {"complete, name only", {full, Portion("x", 0, 0)}, false, 4},
      {"no portions", {}, false, 1},
      {"blanks only", {blank, blank}, false, 1},
      {"filled but not enabled", {Portion("a", 1, 1, 0)}, true, 4},
      {"enabled but empty",
       {Portion("a", 1, 1, 1), Portion("", 0, 0, 1)},
       true,
       4},
      {"enabled and filled", {Portion("a", 1, 1, 1), blank}, true, 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    int status = -1;
    EXPECT_EQ(Record(c.portions).IsCriteriaValid(status, c.onlyEnabled),
              c.status == 0);
    EXPECT_EQ(status, c.status);
  }
  const RRCRITERIA enabledEmpty = Record({Portion("", 0, 0, 1)});
  EXPECT_FALSE(enabledEmpty.IsPortionBlank(0, true));
  EXPECT_TRUE(enabledEmpty.IsPortionBlank(0, false));
}

TEST(RRCriteriaTest, IndexesAndNumbers) {
  RRCRITERIA r = Record({Portion("a", 1, 1), Portion("b", 1, 2)});
  EXPECT_EQ(r.GetOrderPortion(0)->m_name, "a");
  EXPECT_EQ(r.GetOrderPortion(-1), nullptr);
  EXPECT_EQ(r.GetOrderPortion(2), nullptr);
  EXPECT_TRUE(r.IsPortionBlank(99, false));
  EXPECT_FALSE(r.IsPortionComplete(99, false));
  EXPECT_FALSE(r.IsPortionComplete(-1, false));
  r.DeleteOrderPortion(0);
  r.DeleteOrderPortion(3);
  EXPECT_EQ(Names(r.GetOrderPortions()), "ab");
  OrderPortion c = Portion("c", 1, 3);
  r.AddOrderPortion(c);
  r.DeleteOrderPortion(1);
  EXPECT_EQ(Names(r.GetOrderPortions()), "bc");
  r.ResizeOrderPortions(4);
  EXPECT_TRUE(r.IsPortionBlank(3, true));
  r.ResizeOrderPortions(1);
  EXPECT_EQ(Names(r.GetOrderPortions()), "b");
  EXPECT_TRUE(r.CanSupportSell(false));
  EXPECT_FALSE(r.CanSupportBuy(false));
  std::vector<OrderPortion> out = {Portion("old", 0, 0)};
  r.GetCompletedOrderPortions(out, false);
  EXPECT_EQ(Names(out), "oldb");
}

TEST(RRCriteriaTest, ApplicablePortionsFollowTheSide) {
  RRCRITERIA r = Record({Portion("b", 1, 1), Portion("s", 1, 2),
                         Portion("x", 1, 3), Portion("off", 1, 3, 0)});
  std::vector<OrderPortion> out;
  r.GetApplicableOrderPortions(nv_ns::BuySell::Sell, out, 7, false);
  std::string names = Names(out);
  std::sort(names.begin(), names.end());
  EXPECT_EQ(names, "ffosx");  // "off", "s" and "x"
  out.clear();
  r.GetApplicableOrderPortions(nv_ns::BuySell::Buy, out, 7, true);
  EXPECT_EQ(Names(out), "");
}

TEST(RRCriteriaTest, EqualSeedsGiveEqualOrders) {
  RRCRITERIA r;
  r.m_orderPortions.clear();
  for (char c = 'a'; c <= 'j'; ++c) {
    r.m_orderPortions.push_back(Portion(std::string(1, c), 1, 3));
  }
  auto order = [&](unsigned seed) {
    std::vector<OrderPortion> out;
    r.GetApplicableOrderPortions(nv_ns::BuySell::Buy, out, seed, false);
    return Names(out);
  };
  EXPECT_EQ(order(12345), order(12345));
  EXPECT_NE(order(12345), order(54321));
  std::string shuffled = order(12345);
  EXPECT_NE(shuffled, "abcdefghij");
  std::sort(shuffled.begin(), shuffled.end());
  EXPECT_EQ(shuffled, "abcdefghij");
  // Seed 0 draws from std::rand, so it follows srand.
  std::srand(3);
  const std::string first = order(0);
  std::srand(3);
  EXPECT_EQ(order(0), first);
  // One applicable portion draws nothing.
  std::srand(5);
  RRCRITERIA one = Record({Portion("a", 1, 1)});
  std::vector<OrderPortion> out;
  one.GetApplicableOrderPortions(nv_ns::BuySell::Buy, out, 0, false);
  const int next = std::rand();
  std::srand(5);
  EXPECT_EQ(std::rand(), next);
}

TEST(RRCriteriaTest, SelfAssignmentKeepsThePortions) {
  RRCRITERIA r = Record({Portion("a", 1, 1)});
  r.m_name = "n";
  RRCRITERIA& self = r;
  r = self;
  EXPECT_EQ(Names(r.GetOrderPortions()), "a");
  RRCRITERIA copy(r);
  EXPECT_EQ(copy.m_name, "n");
  EXPECT_EQ(Names(copy.GetOrderPortions()), "a");
}

}  // namespace

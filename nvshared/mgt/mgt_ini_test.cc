#include "nvshared/mgt/mgt_ini.h"

#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "nvshared/mgt/mgt.h"
#include "nvshared/platform/log/logger.h"
#include "nvshared/platform/log/memory_sink.h"
#include "nvshared/platform/utils/registry_mgr.h"
#include "nvshared/testing/reference_fixture.h"
#include "nvshared/testing/temp_dir.h"
#include "nvshared/testing/test_data.h"

namespace nv_ns {
namespace {

using nvshared::testing::ReadTestData;
using nvshared::testing::ReadTestDataLines;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

constexpr int kCbotA = 2, kECbotA = 3, kEcbot = 4, kCmeA = 7, kCmeB = 8,
              kCme = 10, kSse = 20, kAlgo = 21, kLiffe = 30;

const std::string kIdentity = "Member=M\nGroup=G\nTrader=T\n";

// Loaders over files the test writes, with every log line kept as "I " or
// "E " and the text without its prefix.
class MgtIniTest : public ::testing::Test {
 protected:
  void SetUp() override {
    nvshared::testing::InstallTestReferenceData();
    CRegistryMgr::Instance(1).WriteRegString("SEServer",
                                             "EnableDynamicConnections", "no");
    saved_ = dv_log::GetCustomLog()->SetSink(sink_);
    mgt_.SetLoggers(&MgtLogInfo, &MgtLogError);
  }
  void TearDown() override { dv_log::GetCustomLog()->SetSink(saved_); }

  // Loads `contents` into `mgt` with a fresh log.
  bool Load(const std::string& contents, MgtINI& mgt) {
    mgt.SetLoggers(&MgtLogInfo, &MgtLogError);
    sink_->Clear();
    return mgt.Load(dir_.WriteFile("test.mgt", contents).c_str());
  }
  bool Load(const std::string& contents) { return Load(contents, mgt_); }

  // The log so far, after its "Loading" line, which is checked.
  std::vector<std::string> Lines() const {
    std::vector<std::string> lines;
    for (const auto& r : sink_->Records()) {
      const std::string prefix = "MGT_INI: ";
      EXPECT_EQ(r.text.rfind(prefix, 0), 0u) << r.text;
      lines.push_back((static_cast<int>(r.severity) == -1 ? "E " : "I ") +
                      r.text.substr(prefix.size()));
    }
    if (lines.empty()) return lines;
    EXPECT_EQ(lines.front(), "I Loading gateway specific parameters from " +
                                 (dir_.path() / "test.mgt").string());
    return {lines.begin() + 1, lines.end()};
  }

  std::vector<std::pair<bool, int>> GatewayIds() const {
    return {mgt_.GetGatewayID_Begin(), mgt_.GetGatewayID_End()};
  }

  nvshared::testing::TempDir dir_;
  std::shared_ptr<dv_log::MemorySink> sink_ =
      std::make_shared<dv_log::MemorySink>();
  std::shared_ptr<dv_log::LogSink> saved_;
  MgtINI mgt_;
};

// A file with a fault in every section but a few, each section judged on its
// own in file order, and the exact log it gives (both commented in testdata/).
TEST_F(MgtIniTest, SectionFaultsAndReports) {
  EXPECT_TRUE(Load(ReadTestData("nvshared/mgt/testdata/sections.mgt")));
  EXPECT_THAT(Lines(), ElementsAreArray(ReadTestDataLines(
                           "nvshared/mgt/testdata/sections.log")));
  EXPECT_THAT(GatewayIds(),
              ElementsAre(std::pair(true, kCmeA), std::pair(false, kAlgo),
                          std::pair(false, kAlgo)));
  EXPECT_EQ(mgt_.GetMgt(kCmeB), nullptr);  // CME's section was refused
  EXPECT_EQ(mgt_.GetMgt(kSse), nullptr);
  EXPECT_NE(mgt_.GetMgt(kCbotA), nullptr);
}

TEST_F(MgtIniTest, RefusedServerAddresses) {
  for (const char* server :
       {"0.0.0.0", "255.255.255.255", "300.1.1.1", "1.2.3.4.5", "host"}) {
    SCOPED_TRACE(server);
    MgtINI mgt;
    Load("[gw-CME-B]\n" + kIdentity + "Preferred_Server=" + server + "\n", mgt);
    EXPECT_EQ(Lines().back(),
              "E  Preferred_Server setting cannot be parsed for the gateway "
              "\"CME-B\" definition. Gateway is not enabled due to parsing "
              "failure.");
    EXPECT_EQ(mgt.GetMgt(kCmeB), nullptr);
  }
}

// Kept on purpose: a market section after one of its gateways replaces only
// the identity; the entry keeps market id -1 and Primary false.
TEST_F(MgtIniTest, GetMgtFallsBackFromGatewayToMarket) {
  ASSERT_TRUE(Load("[gw-CME-A]\n" + kIdentity +
                   "Primary=Y\n[market-CME]\nMember=MKT\nGroup=G\nTrader=T\n"
                   "Primary=Y\n[market-NYSE_Liffe]\n" +
                   kIdentity + "Primary=Y\n[gw-eCBOT-A]\n" + kIdentity));
  EXPECT_EQ(mgt_.GetMgt(kCmeA)->m_member, "M");
  EXPECT_EQ(mgt_.GetMgt(kCmeB)->m_member, "MKT");
  EXPECT_EQ(mgt_.GetMgt(kCme), mgt_.GetMgt(kCmeB));
  EXPECT_EQ(mgt_.GetMgt(kEcbot), nullptr);   // CBOT has no market identity
  EXPECT_EQ(mgt_.GetMgt(11), nullptr);       // no such exchange
  std::vector<std::pair<int, int>> markets;  // id, then market id
  for (auto it = mgt_.GetMarketMap_Begin(); it != mgt_.GetMarketMap_End(); ++it)
    markets.emplace_back(it->first, it->second.m_marketId);
  EXPECT_THAT(markets,
              ElementsAre(std::pair(3, 3), std::pair(6, -1), std::pair(7, -1)));
  EXPECT_TRUE(mgt_.GetMarketMap_Begin()->second.m_primary);
  EXPECT_FALSE(std::prev(mgt_.GetMarketMap_End())->second.m_primary);
  EXPECT_THAT(GatewayIds(),
              ElementsAre(std::pair(true, kCmeA), std::pair(false, kECbotA)));
}

TEST_F(MgtIniTest, DynamicConnections) {
  // An absent setting means dynamic: a missing file loads, and Member,
  // Group and Trader are not read, however wrong they are.
  CRegistryMgr::Instance(1).Clear();
  EXPECT_TRUE(mgt_.Load((dir_.path() / "missing.mgt").c_str()));
  MgtINI mgt;
  Load("[gw-CME-A]\nMember=1234567890123\n", mgt);
  const Mgt* got = mgt.GetMgt(kCmeA);
  ASSERT_NE(got, nullptr);
  EXPECT_EQ(got->m_member + got->m_group + got->m_trader, "DVADMXXXMGR");
}

TEST_F(MgtIniTest, FailedLoadIsRetriedAndSuccessIsFinal) {
  // Nothing loads: false, no log at all, and the next call reads again.
  EXPECT_FALSE(Load("; no sections\n"));
  EXPECT_TRUE(Lines().empty());
  EXPECT_FALSE(Load("[market-Unknown]\n"));
  EXPECT_TRUE(Load("[market-CME]\n" + kIdentity));
  EXPECT_TRUE(Load("[market-Unknown]\n"));  // not read again
  EXPECT_TRUE(Lines().empty());
}

// Kept on purpose: assignment copies the markets but each object keeps its
// own gateway list.
TEST_F(MgtIniTest, AssignmentCopiesMarketsButNotTheGatewayList) {
  ASSERT_TRUE(Load("[gw-CME-A]\n" + kIdentity));
  MgtINI other;  // without loggers: its messages are dropped
  ASSERT_TRUE(other.Load(
      dir_.WriteFile("other.mgt", "[gw-LIFFE]\n" + kIdentity).c_str()));
  other = mgt_;
  EXPECT_NE(other.GetMgt(kCmeA), nullptr);
  EXPECT_EQ(other.GetMgt(kLiffe), nullptr);
  EXPECT_NE(other.GetMgt(kCmeA), mgt_.GetMgt(kCmeA));
  EXPECT_THAT(MgtINI::GatewayIdList(other.GetGatewayID_Begin(),
                                    other.GetGatewayID_End()),
              ElementsAre(std::pair(false, kLiffe)));
  other = other;
  EXPECT_NE(other.GetMgt(kCmeA), nullptr);
}

// Kept on purpose: section names come through a 4,096-byte list. 450 names
// of 9 characters take 4,500 bytes with their NULs, so the sections at the
// end are never seen.
TEST_F(MgtIniTest, NamesBeyondTheSectionListBufferAreLost) {
  std::string file;
  for (int i = 1000; i < 1450; ++i)
    file += "[other" + std::to_string(i) + "]\n";
  EXPECT_FALSE(
      Load(file + "[gw-CME-A]\n" + kIdentity + "[market-CME]\n" + kIdentity));
  EXPECT_EQ(mgt_.GetMgt(kCmeA), nullptr);
}

TEST(TraderIdTypeTest, ValuesOutOfRangeNameNothing) {
  for (int value : {4, -1}) {
    EXPECT_STREQ(TraderIdType(value).ToString(), "Invalid enumeration value");
  }
}

TEST(MgtTest, SubscriptionGateways) {
  EXPECT_EQ(Mgt().GetMpfGateway(), -1);
  const Mgt two("M", "G", "T", {8, 3}, nullptr, true, TraderIdType::Username);
  EXPECT_EQ(two.m_server, "");
  EXPECT_EQ(two.GetMpfGateway(), 8);
}

// Kept on purpose: Set marks the record set even from an unset one, while
// assignment copies the flag as it is.
TEST(MgtTest, SetAlwaysMarksSetButAssignmentCopiesTheFlag) {
  const Mgt unset;
  Mgt viaSet("M", "G", "T", {}, "1.2.3.4", false, TraderIdType::None);
  Mgt viaAssign = viaSet;
  viaSet.Set(unset);
  EXPECT_TRUE(viaSet.IsSet());
  EXPECT_EQ(viaSet.m_server, "");
  viaAssign = unset;
  EXPECT_FALSE(viaAssign.IsSet());
  viaAssign.Set(viaAssign);  // from itself: only marks it set
  EXPECT_TRUE(viaAssign.IsSet());
  viaSet.Set("M", nullptr, nullptr, {}, nullptr, false, TraderIdType::None);
  EXPECT_EQ(viaSet.m_member + viaSet.m_group, "M");
}

}  // namespace
}  // namespace nv_ns

#include "nvshared/mgt/mgt_ini.h"

#include <cstdio>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "nvshared/platform/log/logger.h"
#include "nvshared/platform/log/memory_sink.h"
#include "nvshared/platform/utils/registry_mgr.h"
#include "nvshared/testing/reference_fixture.h"
#include "nvshared/testing/temp_dir.h"

namespace nv_ns {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

constexpr int kCmeA = 7, kCmeB = 8, kCme = 10, kECbotA = 3, kEcbot = 4,
              kLiffe = 30, kCbotA = 2;
constexpr int kCmeMarket = 7, kCbotMarket = 6;

// A loader over a file the test writes, with every log line kept as
// "I " or "E " and the text without its prefix.
class MgtIniTest : public ::testing::Test {
 protected:
  void SetUp() override {
    nvshared::testing::InstallTestReferenceData();
    SetDynamic(false);
    saved_ = dv_log::GetCustomLog()->SetSink(sink_);
    mgt_.SetLoggers(&MgtLogInfo, &MgtLogError);
  }
  void TearDown() override { dv_log::GetCustomLog()->SetSink(saved_); }

  static void SetDynamic(bool on) {
    CRegistryMgr::Instance(1).WriteRegString(
        "SEServer", "EnableDynamicConnections", on ? "yes" : "no");
  }

  bool Load(const std::string& contents) {
    return mgt_.Load(dir_.WriteFile("test.mgt", contents).c_str());
  }

  std::vector<std::string> Lines() const {
    std::vector<std::string> lines;
    for (const auto& r : sink_->Records()) {
      const std::string prefix = "MGT_INI: ";
      EXPECT_EQ(r.text.rfind(prefix, 0), 0u) << r.text;
      lines.push_back((static_cast<int>(r.severity) == -1 ? "E " : "I ") +
                      r.text.substr(prefix.size()));
    }
    return lines;
  }

  std::string Loading() const {
    return "I Loading gateway specific parameters from " +
           (dir_.path() / "test.mgt").string();
  }

  // The report of a section with member M, group G, trader T.
  static std::vector<std::string> Report(const std::string& kind,
                                         const std::string& name,
                                         bool primary = false) {
    return {"I " + kind + " [" + name + "] parameters loaded:", "I \tMember=M",
            "I \tGroup=G", "I \tTrader=T",
            std::string("I \tPrimary=") + (primary ? "Yes" : "No")};
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

const char kMGT[] = "Member=M\nGroup=G\nTrader=T\n";

std::vector<std::string> Join(std::vector<std::string> a,
                              const std::vector<std::string>& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

// One section per case: what the log shows after the "Loading" line, and
// whether the gateway (or market) got an identity.
TEST_F(MgtIniTest, SectionFaultsAndReports) {
  struct Case {
    const char* title;
    std::string file;
    std::vector<std::string> lines;
    bool accepted;
  };
  const std::string m = std::string(kMGT);
  const Case cases[] = {
      {"market name empty",
       "[market-]\n" + m,
       {"E  Market Section Value can not be succesfully parsed from "
        "\"market-\""},
       false},
      {"market unknown",
       "[market-Unknown]\n" + m,
       {"E  Market Type \"Unknown\" can not be succesfully parsed"},
       false},
      {"gateway name empty",
       "[gw-]\n" + m,
       {"E  Gateway Section Value can not be succesfully parsed from \"gw-\""},
       false},
      {"gateway unknown",
       "[gw-Nowhere]\n" + m,
       {"E  Exchange ID can not be succesfully parsed from Gateway "
        "\"Nowhere\""},
       false},
      {"member of 11",
       "[gw-CME-A]\nMember=12345678901\nGroup=G\nTrader=T\n",
       {"I Gateway [CME-A] parameters loaded:", "I \tMember=12345678901",
        "I \tGroup=G", "I \tTrader=T", "I \tPrimary=No"},
       true},
      {"member of 12",
       "[gw-CME-A]\nMember=123456789012\nGroup=G\nTrader=T\n",
       {"E Value for Member \"123456789012\" in section \"gw-CME-A\" is too "
        "long.",
        "E  Gateway MGT can not be succesfully parsed for Gateway \"CME-A\""},
       false},
      {"group of 3",
       "[gw-CME-A]\nMember=M\nGroup=ABC\nTrader=T\n",
       {"I Gateway [CME-A] parameters loaded:", "I \tMember=M", "I \tGroup=ABC",
        "I \tTrader=T", "I \tPrimary=No"},
       true},
      {"group of 4",
       "[market-CME]\nMember=M\nGroup=ABCD\nTrader=T\n",
       {"E Value for Group \"ABCD\" in section \"market-CME\" is too long.",
        "E  Market MGT can not be succesfully parsed for Market \"CME\""},
       false},
      {"trader of 12",
       "[gw-CME-A]\nMember=M\nGroup=G\nTrader=ABCDEFGHIJKL\n",
       {"E Value for Trader \"ABCDEFGHIJKL\" in section \"gw-CME-A\" is too "
        "long.",
        "E  Gateway MGT can not be succesfully parsed for Gateway \"CME-A\""},
       false},
      {"member missing",
       "[gw-CME-A]\nGroup=G\nTrader=T\n",
       {"E  Gateway MGT can not be succesfully parsed for Gateway \"CME-A\""},
       false},
      {"trader id type, any case",
       "[gw-CME-A]\n" + m + "TraderIdType=username\n",
       Join(Report("Gateway", "CME-A"), {"I \tTraderIdType=Username"}), true},
      {"trader id type unknown",
       "[gw-CME-A]\n" + m + "TraderIdType=Admin\n",
       {"E Value for TraderIdType \"Admin\" in section \"gw-CME-A\" cannot be "
        "parsed.",
        "E  Gateway MGT can not be succesfully parsed for Gateway \"CME-A\""},
       false},
      {"primary of one letter", "[gw-CME-A]\n" + m + "Primary=y\n",
       Report("Gateway", "CME-A", true), true},
      {"primary of three letters",
       "[gw-CME-A]\n" + m + "Primary=Yes\n",
       {"E Value for \"Primary\" (Yes) in section \"gw-CME-A\" must be only "
        "one character long.",
        "E  Gateway MGT can not be succesfully parsed for Gateway \"CME-A\""},
       false},
      {"both servers",
       "[gw-CME-A]\n" + m +
           "Preferred_Server=1.2.3.4\nMandatory_Server=1.2.3.5\n",
       {"E  Preferred_Server and Mandatory_Server settings cannot be used "
        "together, please remove one of them from the \"gw-CME-A\" "
        "definition. Gateway is not enabled due to parsing failure.",
        "E  Gateway MGT can not be succesfully parsed for Gateway \"CME-A\""},
       false},
      {"mandatory server", "[gw-CME-A]\n" + m + "Mandatory_Server=10.1.2.3\n",
       Join(Report("Gateway", "CME-A"), {"I \tMandatory_Server=10.1.2.3"}),
       true},
      {"server at market level",
       "[market-CME]\n" + m + "Preferred_Server=10.1.2.3\n",
       Join(Report("Market", "CME"),
            {"I \tPreferred_Server=10.1.2.3",
             "E  Preferred_Server setting cannot be set on the market level, "
             "please remove it from the market \"CME\" definition. Market is "
             "not enabled due to parsing failure."}),
       false},
      {"subscriptions with empty tokens",
       "[gw-CME-A]\n" + m + "Price_Subscription_Gateway=CME-A,,CME-B CME\n",
       Join(Report("Gateway", "CME-A"),
            {"I \tPrice_Subscription_Gateway=CME-A, CME-B, CME, "}),
       true},
      {"gateway subscription unknown",
       "[gw-CME-A]\n" + m + "Price_Subscription_Gateway=CME-B,Nope\n",
       Join(Report("Gateway", "CME-A"),
            {"E  MPF Gateway setting can not be succesfully parsed for "
             "Gateway \"CME-A\""}),
       false},
      {"market subscription unknown",
       "[market-CME]\n" + m + "Price_Subscription_Gateway=CME-B,Nope\n",
       Report("Market", "CME"), true},
      {"other section", "[general]\n" + m, {}, false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.title);
    MgtINI mgt;
    mgt.SetLoggers(&MgtLogInfo, &MgtLogError);
    sink_->Clear();
    const bool loaded = mgt.Load(dir_.WriteFile("test.mgt", c.file).c_str());
    EXPECT_THAT(Lines(), ElementsAreArray(Join({Loading()}, c.lines)));
    EXPECT_EQ(mgt.GetMgt(kCmeA) != nullptr, c.accepted);
    EXPECT_EQ(loaded, c.accepted);
  }
}

TEST_F(MgtIniTest, RefusedServerAddresses) {
  for (const char* server : {"0.0.0.0", "255.255.255.255", "300.1.1.1", "1.2.3",
                             "1.2.3.4.5", "host.example"}) {
    SCOPED_TRACE(server);
    MgtINI mgt;
    mgt.SetLoggers(&MgtLogInfo, &MgtLogError);
    sink_->Clear();
    mgt.Load(dir_.WriteFile("test.mgt", std::string("[gw-CME-B]\n") + kMGT +
                                            "Preferred_Server=" + server + "\n")
                 .c_str());
    const auto lines = Lines();
    ASSERT_FALSE(lines.empty());
    EXPECT_EQ(lines.back(),
              "E  Preferred_Server setting cannot be parsed for the gateway "
              "\"CME-B\" definition. Gateway is not enabled due to parsing "
              "failure.");
    EXPECT_EQ(mgt.GetMgt(kCmeB), nullptr);
  }
}

TEST_F(MgtIniTest, DuplicatesAreCountedByExactName) {
  std::string file;
  for (int i = 0; i < 3; ++i) file += "[gw-CME-A]\n" + std::string(kMGT);
  file += "[GW-CME-B]\nMember=M\nGroup=G\nTrader=T\n[gw-CME-B]\nMember=X\n";
  EXPECT_TRUE(Load(file));
  const std::string dup =
      "E All instances of section \"gw-CME-A\" will be ignored because there "
      "are duplicates.";
  // Both spellings of CME-B are parsed, and both read the first section.
  EXPECT_THAT(Lines(), ElementsAreArray(Join(Join({Loading(), dup, dup},
                                                  Report("Gateway", "CME-B")),
                                             Report("Gateway", "CME-B"))));
  EXPECT_EQ(mgt_.GetMgt(kCmeA), nullptr);
  EXPECT_THAT(GatewayIds(),
              ElementsAre(std::pair(false, kCmeB), std::pair(false, kCmeB)));
}

TEST_F(MgtIniTest, GetMgtFallsBackFromGatewayToMarket) {
  ASSERT_TRUE(Load(std::string("[market-CME]\nMember=MKT\nGroup=G\nTrader=T\n"
                               "[gw-CME-A]\n") +
                   kMGT + "[gw-eCBOT-A]\n" + kMGT +  // CBOT: gateways only
                   "[gw-LIFFE]\n" + kMGT));
  ASSERT_NE(mgt_.GetMgt(kCmeA), nullptr);
  EXPECT_EQ(mgt_.GetMgt(kCmeA)->m_member, "M");
  ASSERT_NE(mgt_.GetMgt(kCmeB), nullptr);
  EXPECT_EQ(mgt_.GetMgt(kCmeB)->m_member, "MKT");
  EXPECT_EQ(mgt_.GetMgt(kCme), mgt_.GetMgt(kCmeB));
  EXPECT_NE(mgt_.GetMgt(kECbotA), nullptr);
  EXPECT_EQ(mgt_.GetMgt(kEcbot), nullptr);  // CBOT has no market identity
  EXPECT_EQ(mgt_.GetMgt(kCbotA), nullptr);
  EXPECT_EQ(mgt_.GetMgt(11), nullptr);  // no such exchange
  EXPECT_EQ(mgt_.GetMgt(-1), nullptr);

  std::vector<int> markets;
  for (auto it = mgt_.GetMarketMap_Begin(); it != mgt_.GetMarketMap_End();
       ++it) {
    markets.push_back(it->first);
  }
  EXPECT_THAT(markets, ElementsAre(3, kCbotMarket, kCmeMarket));
}

TEST_F(MgtIniTest, GatewayBeforeItsMarketKeepsDefaultMarketFields) {
  ASSERT_TRUE(Load(std::string("[gw-CME-A]\n") + kMGT +
                   "Primary=Y\n[market-CME]\nMember=MKT\nGroup=G\nTrader=T\n"
                   "Primary=Y\n[market-NYSE_Liffe]\n" +
                   kMGT + "Primary=Y\n"));
  const MktMgt& cme = mgt_.GetMarketMap_Begin()->second.m_marketId == 3
                          ? std::next(mgt_.GetMarketMap_Begin())->second
                          : mgt_.GetMarketMap_Begin()->second;
  EXPECT_EQ(cme.m_marketId, -1);
  EXPECT_FALSE(cme.m_primary);
  EXPECT_TRUE(cme.IsSet());
  EXPECT_EQ(mgt_.GetMgt(kCmeB)->m_member, "MKT");
  const MktMgt& liffe = mgt_.GetMarketMap_Begin()->second;
  EXPECT_EQ(liffe.m_marketId, 3);
  EXPECT_TRUE(liffe.m_primary);
  EXPECT_THAT(GatewayIds(), ElementsAre(std::pair(true, kCmeA)));
}

TEST_F(MgtIniTest, DynamicConnections) {
  SetDynamic(true);
  // A missing file still loads.
  EXPECT_TRUE(mgt_.Load((dir_.path() / "missing.mgt").c_str()));
  EXPECT_TRUE(Lines().empty());

  MgtINI mgt;
  mgt.SetLoggers(&MgtLogInfo, &MgtLogError);
  // Member, Group and Trader are not read, however wrong they are.
  mgt.Load(
      dir_.WriteFile("test.mgt", "[gw-CME-A]\nMember=1234567890123\n").c_str());
  SetDynamic(false);
  const Mgt* got = mgt.GetMgt(kCmeA);
  ASSERT_NE(got, nullptr);
  EXPECT_EQ(got->m_member, "DVADM");
  EXPECT_EQ(got->m_group, "XXX");
  EXPECT_EQ(got->m_trader, "MGR");
}

TEST_F(MgtIniTest, AbsentSettingMeansDynamic) {
  CRegistryMgr::Instance(1).Clear();
  EXPECT_TRUE(mgt_.Load((dir_.path() / "missing.mgt").c_str()));
  SetDynamic(false);
}

TEST_F(MgtIniTest, FailedLoadIsRetriedAndSuccessIsFinal) {
  // Nothing loads: false, no log at all, and the next call reads again.
  EXPECT_FALSE(Load("; no sections\n"));
  EXPECT_TRUE(Lines().empty());
  EXPECT_FALSE(Load("[market-Unknown]\n"));
  EXPECT_TRUE(Load(std::string("[market-CME]\n") + kMGT));
  sink_->Clear();
  EXPECT_TRUE(Load("[market-Unknown]\n"));  // not read again
  EXPECT_TRUE(Lines().empty());
}

TEST_F(MgtIniTest, AssignmentCopiesMarketsButNotTheGatewayList) {
  ASSERT_TRUE(Load(std::string("[gw-CME-A]\n") + kMGT));
  MgtINI other;
  ASSERT_TRUE(other.Load(
      dir_.WriteFile("other.mgt", std::string("[gw-LIFFE]\n") + kMGT).c_str()));
  other = mgt_;
  EXPECT_NE(other.GetMgt(kCmeA), nullptr);
  EXPECT_EQ(other.GetMgt(kLiffe), nullptr);
  EXPECT_NE(other.GetMgt(kCmeA), mgt_.GetMgt(kCmeA));
  using GatewayIdList = MgtINI::GatewayIdList;
  EXPECT_THAT(
      GatewayIdList(other.GetGatewayID_Begin(), other.GetGatewayID_End()),
      ElementsAre(std::pair(false, kLiffe)));
  other = other;
  EXPECT_NE(other.GetMgt(kCmeA), nullptr);
}

TEST_F(MgtIniTest, NamesBeyondTheSectionListBufferAreLost) {
  // 450 names of 9 characters take 4,500 bytes with their NULs; the list
  // holds 4,096, so the sections at the end are never seen.
  std::string file;
  for (int i = 0; i < 450; ++i) {
    char name[16];
    std::snprintf(name, sizeof name, "[other%04d]\n", i);
    file += name;
  }
  file += std::string("[gw-CME-A]\n") + kMGT;
  EXPECT_FALSE(Load(file + "[market-CME]\n" + kMGT));
  EXPECT_EQ(mgt_.GetMgt(kCmeA), nullptr);
}

}  // namespace
}  // namespace nv_ns

#include <algorithm>
#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "nvshared/naming/internal/formatter_peer.h"
#include "nvshared/naming/internal/name_text.h"
#include "nvshared/naming/series_name_formatter.h"
#include "nvshared/platform/log/logger.h"
#include "nvshared/platform/log/memory_sink.h"
#include "nvshared/testing/sample_data.h"

namespace nv_fmt {
namespace {

using dv_core_ns::SeriesID;
using nvshared::testing::SampleSeries;
using Peer = SeriesNameFormatterPeer;

constexpr int kCmeA = 7;  // flavour of CME (10)
constexpr int kCme = 10;
constexpr int kLiffe = 21;

SeriesNameFormatter& Formatter() { return SeriesNameFormatter::Instance(); }

// Records every hint it is given.
class RecordingObserver : public SeriesNameFormatterObserver {
 public:
  void OnSeriesNameUpdate(SeriesNameFormatter&, const UpdateHint& h) override {
    hints.push_back(h);
  }
  void OnSeriesNameFormatterDestroy(SeriesNameFormatter&) override {}
  std::vector<UpdateHint> hints;
};

class RegistryTest : public ::testing::Test {
 protected:
  void SetUp() override {
    nvshared::testing::InstallSampleReferenceData();
    Peer::Clear();
    saved_ = dv_log::GetCustomLog()->SetSink(log_);
  }
  void TearDown() override {
    dv_log::GetCustomLog()->SetSink(saved_);
    Peer::Clear();
  }
  // The logged texts without the application prefix.
  std::vector<std::string> Lines() const {
    std::vector<std::string> lines;
    for (const std::string& text : log_->Texts()) {
      const auto colon = text.find("Client: ");
      lines.push_back(colon == std::string::npos ? text
                                                 : text.substr(colon + 8));
    }
    return lines;
  }
  std::string LastLine() const {
    const auto lines = Lines();
    return lines.empty() ? "" : lines.back();
  }
  static SeriesID Es() { return SampleSeries(kCmeA, "ESH4"); }
  static SeriesID Nq() { return SampleSeries(8, "NQH4"); }

  std::shared_ptr<dv_log::MemorySink> log_ =
      std::make_shared<dv_log::MemorySink>();
  std::shared_ptr<dv_log::LogSink> saved_;
};

TEST_F(RegistryTest, AddTrimsTheNameAndFindsItBothWays) {
  ASSERT_TRUE(Formatter().AddCustomSeriesName(Es(), "  Foo \t"));
  EXPECT_STREQ(Formatter().GetCustomName(Es()), "Foo");
  const SeriesID* found = Formatter().GetSeries("Foo ");
  ASSERT_NE(found, nullptr);
  EXPECT_STREQ(found->seriesKey, "ESH4");
  // Stored under the plain exchange: the flavour shares the name.
  EXPECT_EQ(static_cast<int>(found->product.exchange), kCme);
  EXPECT_EQ(Formatter().GetLegList("Foo"), nullptr);
  std::string name;
  EXPECT_TRUE(Formatter().GetDefaultName("Foo", name, true));
  EXPECT_EQ(name, "CME ES Mar14");
  EXPECT_EQ(LastLine(),
            "ME - AddCustomSeriesName - Contract Name: CME ES Mar14, Custom "
            "Name: Foo -- Name successfully added");
  const FormattedNameData* entry = Peer::Entry(Es());
  ASSERT_NE(entry, nullptr);
  EXPECT_TRUE(entry->hasExpiration);
  EXPECT_EQ(entry->expiration, dv_core_ns::Date(0, 3, 2014));

  // The day of an outright's expiry is never checked: day 40 is kept as it
  // is, on purpose.
  SeriesID odd = Nq();
  odd.expiry = dv_core_ns::Date(40, 2, 2014);
  ASSERT_TRUE(Formatter().AddCustomSeriesName(odd, "Odd day"));
  ASSERT_NE(Peer::Entry(odd), nullptr);
  EXPECT_TRUE(Peer::Entry(odd)->hasExpiration);
  EXPECT_EQ(Peer::Entry(odd)->expiration, dv_core_ns::Date(40, 2, 2014));
}

TEST_F(RegistryTest, FlavoursAndLiffeKeysShareOneEntry) {
  SeriesID plain = Es();
  plain.product.exchange = kCme;
  ASSERT_TRUE(Formatter().AddCustomSeriesName(plain, "Plain"));
  EXPECT_STREQ(Formatter().GetCustomName(Es()), "Plain");
  EXPECT_FALSE(Formatter().AddCustomSeriesName(Es(), "Other"));

  // LIFFE series compare by key alone.
  SeriesID liffe = SampleSeries(kLiffe, "LH4");
  ASSERT_TRUE(Formatter().AddCustomSeriesName(liffe, "Short sterling"));
  liffe.strike = 99;
  liffe.expiry = dv_core_ns::Date(1, 1, 2020);
  EXPECT_STREQ(Formatter().GetCustomName(liffe), "Short sterling");
}

struct RefusalCase {
  const char* what;
  const char* existing;  // Es() has this name first, if not null
  const char* nqName;    // Nq() has this name first, if not null
  enum Op { kAdd, kChange, kRemoveSeries, kRemoveName } op;
  const char* name;
  const char* line;
};

// Each refusal: false, and exactly one line that says why.
TEST_F(RegistryTest, RefusalsReturnFalseWithTheirLine) {
  const RefusalCase cases[] = {
      {"blank", nullptr, nullptr, RefusalCase::kAdd, " \t ",
       "ME - AddCustomSeriesName - Contract Name: CME ES Mar14, Custom Name:  "
       "-- Add Failed: Invalid name"},
      {"named already", "Mine", nullptr, RefusalCase::kAdd, "New",
       "ME - AddCustomSeriesName - Contract Name: CME ES Mar14, Custom Name: "
       "New -- Add Failed: Contract already has a custom name assigned: Mine"},
      {"name taken", nullptr, "Taken", RefusalCase::kAdd, "Taken",
       "ME - AddCustomSeriesName - Contract Name: CME ES Mar14, Custom Name: "
       "Taken -- Add Failed: Custom name already in use by contract: CME NQ "
       "Mar14"},
      // Name before contract: the contract's own name counts as taken.
      {"change to own name", "Mine", nullptr, RefusalCase::kChange, "Mine",
       "ME - ChangeCustomSeriesName - Contract Name: CME ES Mar14, Old Custom "
       "Name: Mine, New Custom Name: Mine -- Change failed: Custom name "
       "already assigned to contract: CME ES Mar14"},
      {"change without name", nullptr, nullptr, RefusalCase::kChange, "Free",
       "ME - ChangeCustomSeriesName - Contract Name: CME ES Mar14, Old Custom "
       "Name: CME ES Mar14, New Custom Name: Free -- Change failed: Contract "
       "does not have a custom name to change"},
      {"change without name to a taken one", nullptr, "Taken",
       RefusalCase::kChange, "Taken",
       "ME - ChangeCustomSeriesName - Contract Name: CME ES Mar14, Old Custom "
       "Name: CME ES Mar14, New Custom Name: Taken -- Change failed: Custom "
       "name already assigned to contract: CME NQ Mar14"},
      {"change to blank", "Mine", nullptr, RefusalCase::kChange, "  ",
       "ME - ChangeCustomSeriesName - Contract Name: CME ES Mar14, Old Custom "
       "Name: Mine, New Custom Name:  -- Change failed: Invalid name"},
      {"remove unnamed series", nullptr, nullptr, RefusalCase::kRemoveSeries,
       nullptr,
       "ME - RemoveCustomSeriesName(seriesID) Contract Name: CME ES Mar14, "
       "failed: No custom name found"},
      {"remove unknown name", nullptr, nullptr, RefusalCase::kRemoveName,
       " Ghost ",
       "ME - RemoveCustomSeriesName(pName) Custom Name: Ghost, failed: No "
       "seriesID found for custom name"},
  };
  for (const RefusalCase& c : cases) {
    SCOPED_TRACE(c.what);
    Peer::Clear();
    if (c.existing) Peer::AddName(Es(), c.existing);
    if (c.nqName) Peer::AddName(Nq(), c.nqName);
    log_->Clear();
    bool result = true;
    switch (c.op) {
      case RefusalCase::kAdd:
        result = Formatter().AddCustomSeriesName(Es(), c.name);
        break;
      case RefusalCase::kChange:
        result = Formatter().ChangeCustomSeriesName(Es(), c.name);
        break;
      case RefusalCase::kRemoveSeries:
        result = Formatter().RemoveCustomSeriesName(Es());
        break;
      case RefusalCase::kRemoveName:
        result = Formatter().RemoveCustomSeriesName(c.name);
        break;
    }
    EXPECT_FALSE(result);
    EXPECT_EQ(Lines(), std::vector<std::string>{c.line});
  }
  EXPECT_FALSE(Formatter().AddCustomSeriesName(Es(), nullptr));
  EXPECT_FALSE(Formatter().ChangeCustomSeriesName(Es(), nullptr));
  EXPECT_FALSE(Formatter().RemoveCustomSeriesName(nullptr));
}

TEST_F(RegistryTest, ChangeAndRemoveLogAndNotify) {
  RecordingObserver observer;
  ASSERT_TRUE(Formatter().Attach(&observer));
  EXPECT_FALSE(Formatter().Attach(&observer));
  EXPECT_FALSE(Formatter().Attach(nullptr));
  ASSERT_TRUE(Formatter().AddCustomSeriesName(Es(), "One"));
  ASSERT_TRUE(Formatter().ChangeCustomSeriesName(Es(), "Two"));
  EXPECT_EQ(Formatter().GetSeries("One"), nullptr);
  ASSERT_TRUE(Formatter().AddCustomSeriesName(Nq(), "Three"));
  ASSERT_TRUE(Formatter().RemoveCustomSeriesName(Es()));
  ASSERT_TRUE(Formatter().RemoveCustomSeriesName("Three"));
  EXPECT_TRUE(Formatter().Detach(&observer));
  EXPECT_FALSE(Formatter().Detach(&observer));

  const std::vector<std::string> lines = Lines();
  ASSERT_EQ(lines.size(), 5u);
  EXPECT_EQ(lines[1],
            "ME - ChangeCustomSeriesName - Contract Name: CME ES Mar14, Old "
            "Custom Name: One, New Custom Name: Two -- Name change successful");
  // "sucessfully" is the spelling log readers match; kept on purpose.
  EXPECT_EQ(lines[3],
            "ME - RemoveCustomSeriesName(seriesID) Contract Name: CME ES "
            "Mar14, Custom Name: Two, -- removed sucessfully");
  EXPECT_EQ(lines[4],
            "ME - RemoveCustomSeriesName(pName) Contract Name: CME NQ Mar14, "
            "Custom Name: Three, -- removed sucessfully");
  ASSERT_EQ(observer.hints.size(), 5u);
  for (const UpdateHint& hint : observer.hints) {
    ASSERT_NE(hint.GetSeriesID(), nullptr);
    EXPECT_EQ(hint.GetExchangeID(), kCme);
  }
  // A hint of one series: its product and exchange (any flavour) count.
  const UpdateHint hint = observer.hints[0];  // copies are deep
  EXPECT_TRUE(hint.IsUpdated(Es()));
  EXPECT_FALSE(hint.IsUpdated(Nq()));
  EXPECT_TRUE(hint.IsUpdated(Es().product));
  EXPECT_FALSE(hint.IsUpdated(Nq().product));
  EXPECT_TRUE(hint.IsUpdated(kCmeA));
  EXPECT_FALSE(hint.IsUpdated(kLiffe));
  EXPECT_TRUE(UpdateHint().IsUpdated(kLiffe));
}

TEST_F(RegistryTest, SpreadsKeepTheirLegsUnflavoured) {
  const SeriesID calendar = SampleSeries(kCmeA, "ESH4-ESM4");
  ASSERT_TRUE(Formatter().AddCustomSeriesName(calendar, "Roll"));
  const dv_core_ns::FullLegList* legs = Formatter().GetLegList("Roll");
  ASSERT_NE(legs, nullptr);
  ASSERT_EQ(legs->legs.size(), 2u);
  EXPECT_EQ(
      static_cast<int>(legs->legs[0].GetSharedSeriesID()->product.exchange),
      kCme);
  // The expiry comes from the legs of the key, whose exchange is the plain
  // CME; the data lists this calendar under CME-A only, so it has none.
  const FormattedNameData* entry = Peer::Entry(calendar);
  ASSERT_NE(entry, nullptr);
  EXPECT_FALSE(entry->hasExpiration);
}

TEST_F(RegistryTest, ListsByExchangeProductAndTypeAndRemovesAll) {
  SeriesNameAssocVector some;
  EXPECT_FALSE(Formatter().GetCustomSeriesNames(some));
  EXPECT_TRUE(some.empty());
  Formatter().AddCustomSeriesName(Es(), "A");
  Formatter().AddCustomSeriesName(Nq(), "B");
  Formatter().AddCustomSeriesName(SampleSeries(kLiffe, "LH4"), "C");
  Formatter().AddCustomSeriesName(SampleSeries(kCmeA, "ESH4 C1850"), "D");
  auto names = [&some] {
    std::string out;
    for (const SeriesNameAssoc& pair : some) out += pair.name;
    std::sort(out.begin(), out.end());
    return out;
  };
  EXPECT_TRUE(Formatter().GetCustomSeriesNames(some));
  EXPECT_EQ(names(), "ABCD");
  EXPECT_TRUE(Formatter().GetCustomSeriesNames(kCmeA, some));  // a flavour
  EXPECT_EQ(names(), "ABD");
  EXPECT_TRUE(Formatter().GetCustomSeriesNames(Es().product, some));
  EXPECT_EQ(names(), "A");
  const dv_core_ns::AEnum_ProdIDs option(dv_core_ns::OPTION);
  EXPECT_TRUE(Formatter().GetCustomSeriesNames(option, some));
  EXPECT_EQ(names(), "D");
  EXPECT_FALSE(Formatter().GetCustomSeriesNames(50, some));

  log_->Clear();
  Formatter().RemoveAllCustomSeriesNames();
  EXPECT_FALSE(Formatter().GetCustomSeriesNames(some));
  EXPECT_EQ(Lines().size(), 4u);  // one line per name
}

TEST_F(RegistryTest, SwitchesNotifyOnlyOnChange) {
  RecordingObserver observer;
  Formatter().Attach(&observer);
  for (bool on : {false, true, false}) Formatter().SetSeriesNameEnabled(on);
  Formatter().SetSeriesNameEnabled(kCmeA, true);
  Formatter().SetSeriesNameEnabled(kCme, true);  // the same exchange
  Formatter().SetSeriesNameEnabled(kCmeA, false);
  for (bool on : {true, false}) Formatter().SetProductNameEnabled(on);
  Formatter().Detach(&observer);
  std::string ids;
  for (const UpdateHint& h : observer.hints) {
    ids += std::to_string(h.GetExchangeID()) + (h.GetSeriesID() ? "s " : " ");
  }
  EXPECT_EQ(ids, "-1 -1 10 10 -1 -1 ");
}

TEST_F(RegistryTest, PromptOffersANameHeldByAnotherContract) {
  ASSERT_TRUE(Formatter().AddCustomSeriesName(Nq(), "Mine"));
  std::vector<std::string> asked;
  bool answer = false;
  Formatter().SetPromptCallback(
      [&](HWND, const std::string& title, const std::string& message) {
        asked.push_back(title + "|" + message);
        return answer;
      });
  auto offer = [](const char* name, bool prompt) {
    return Formatter().AddOrChangeCustomSeriesName(
        Es(), name, "T", "%1 is %2's; give it to %3?", "%1: %2, not %3 of %4%%",
        prompt, nullptr);
  };
  EXPECT_FALSE(offer("Mine", false));  // no prompt, no question
  EXPECT_FALSE(offer("Mine", true));
  answer = true;
  EXPECT_TRUE(offer("Mine", true));
  EXPECT_EQ(Formatter().GetCustomName(Nq()), nullptr);
  // Now Es() has a name: the text with the old name is used.
  ASSERT_TRUE(Formatter().AddCustomSeriesName(Nq(), "Other"));
  answer = false;
  EXPECT_FALSE(offer("Other", true));
  EXPECT_STREQ(Formatter().GetCustomName(Es()), "Mine");
  // The holder is named from its stored key (plain CME, which lists no
  // alias of ES), this contract from the series as given.
  const std::string es = "CME E-mini S&P 500 Mar14";
  EXPECT_EQ(asked, (std::vector<std::string>{
                       "T|Mine is CME NQ Mar14's; give it to " + es + "?",
                       "T|Mine is CME NQ Mar14's; give it to " + es + "?",
                       "T|Other: CME NQ Mar14, not Mine of " + es + "%"}));
}

// Observers attach and detach on one thread while another notifies. Once
// Detach returns, the observer must never be called again.
TEST_F(RegistryTest, ConcurrencyDetachWaitsForRunningNotifications) {
  struct Guarded : SeriesNameFormatterObserver {
    std::atomic<bool> alive{true};
    std::atomic<bool> calledWhileDead{false};
    void OnSeriesNameUpdate(SeriesNameFormatter&, const UpdateHint&) override {
      if (!alive.load()) calledWhileDead = true;
      std::this_thread::yield();
    }
    void OnSeriesNameFormatterDestroy(SeriesNameFormatter&) override {}
  };
  std::atomic<bool> stop{false};
  std::thread notifier([&] {
    for (bool on = true; !stop.load(); on = !on) {
      Formatter().SetProductNameEnabled(on);
    }
    Formatter().SetProductNameEnabled(false);
  });
  for (int round = 0; round < 300; ++round) {
    // Freed at the end of the round: a late call would be a use after free
    // under the sanitizers.
    auto observer = std::make_unique<Guarded>();
    EXPECT_TRUE(Formatter().Attach(observer.get()));
    std::this_thread::yield();
    EXPECT_TRUE(Formatter().Detach(observer.get()));
    observer->alive = false;
    std::this_thread::yield();
    EXPECT_FALSE(observer->calledWhileDead.load());
  }
  stop = true;
  notifier.join();
}

struct TrimCase {
  const char* in;
  const char* out;
};

TEST(NameTextTest, TrimsMultibyteWhiteSpace) {
  const TrimCase cases[] = {
      {"  Foo  ", "Foo"},
      {"\t\r\n Foo Bar \v\f", "Foo Bar"},
      {"\xC2\xA0My roll\xE3\x80\x80", "My roll"},  // NBSP, ideographic space
      {"\xE2\x80\x83\xE2\x80\x83", ""},            // em spaces only
      {"\xC3\xA9t\xC3\xA9", "\xC3\xA9t\xC3\xA9"},  // letters stay
      {" \xC2 ", "\xC2"},          // a cut sequence is one character, not space
      {"\xA0x\xA0", "\xA0x\xA0"},  // a lone continuation byte is not space
      {"", ""},
  };
  for (const TrimCase& c : cases) {
    SCOPED_TRACE(c.in);
    EXPECT_EQ(internal::TrimName(c.in), c.out);
  }
  EXPECT_FALSE(
      SeriesNameFormatter::IsValidName(static_cast<const char*>(nullptr)));
  EXPECT_FALSE(SeriesNameFormatter::IsValidName(std::string("\xC2\xA0")));
  EXPECT_TRUE(SeriesNameFormatter::IsValidName(std::string("\x01")));
}

TEST(NameTextTest, ExpandsNumberedInserts) {
  const std::vector<std::string> args = {"a", "b", "c", "d", "e", "f",
                                         "g", "h", "i", "j", "k"};
  EXPECT_EQ(
      internal::ExpandInserts("%1-%4 %11 %2!s! 100%% %x%nz%0gone", args, 2048),
      "a-d k b 100% x\r\nz");
  EXPECT_EQ(internal::ExpandInserts("%7 and %99", {"x"}, 2048), " and ");
  EXPECT_EQ(internal::ExpandInserts(std::string(3000, 'x'), {}, 2048).size(),
            2047u);
}

}  // namespace
}  // namespace nv_fmt

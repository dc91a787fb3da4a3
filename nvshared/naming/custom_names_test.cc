#include <algorithm>
#include <atomic>
#include <ctime>
#include <latch>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "nvshared/naming/binary_archiver.h"
#include "nvshared/naming/internal/formatter_peer.h"
#include "nvshared/naming/internal/name_text.h"
#include "nvshared/naming/series_name_formatter.h"
#include "nvshared/platform/log/logger.h"
#include "nvshared/platform/log/memory_sink.h"
#include "nvshared/testing/hex_bytes.h"
#include "nvshared/testing/kill_during_save.h"
#include "nvshared/testing/names_file.h"
#include "nvshared/testing/sample_data.h"
#include "nvshared/testing/temp_dir.h"
#include "nvshared/testing/test_data.h"

namespace nv_fmt {
namespace {

using dv_core_ns::Date;
using dv_core_ns::SeriesID;
using nvshared::testing::HexBytes;
using nvshared::testing::ReadNamesFile;
using nvshared::testing::SampleSeries;
using nvshared::testing::ToHex;
using nvshared::testing::WriteNamesFile;
using FileEntry = nvshared::testing::NamesFileEntry;
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
  EXPECT_EQ(Lines().back(),
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

  // LIFFE series compare by key alone.
  SeriesID liffe = SampleSeries(kLiffe, "LH4");
  ASSERT_TRUE(Formatter().AddCustomSeriesName(liffe, "Short sterling"));
  liffe.strike = 99;
  liffe.expiry = dv_core_ns::Date(1, 1, 2020);
  EXPECT_STREQ(Formatter().GetCustomName(liffe), "Short sterling");
}

// Each refusal: false, and exactly one line that says why.
TEST_F(RegistryTest, RefusalsReturnFalseWithTheirLine) {
  for (const auto& row : nvshared::testing::ReadTestTable(
           "nvshared/naming/testdata/refusals.txt", 6)) {
    SCOPED_TRACE(row.where + " " + row[0]);
    Peer::Clear();
    if (row[1] != "-") Peer::AddName(Es(), row[1]);
    if (row[2] != "-") Peer::AddName(Nq(), row[2]);
    log_->Clear();
    const std::string& op = row[3];
    const char* name = row[4].c_str();
    const auto act = [&] {
      if (op == "add") return Formatter().AddCustomSeriesName(Es(), name);
      if (op == "change") return Formatter().ChangeCustomSeriesName(Es(), name);
      if (row[4] == "-") return Formatter().RemoveCustomSeriesName(Es());
      return Formatter().RemoveCustomSeriesName(name);
    };
    EXPECT_FALSE(act());
    EXPECT_EQ(Lines(), std::vector<std::string>{row[5]});
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

// Counts its calls, and those that come after its Detach has returned. On
// each notice it names a weekly contract as a screen would, reading the
// switches that another thread flips; but not its custom name, which only
// the user's thread may read.
struct CountingObserver : SeriesNameFormatterObserver {
  void OnSeriesNameUpdate(SeriesNameFormatter& f, const UpdateHint&) override {
    ++calls;
    static const SeriesID& weekly = SampleSeries(kCmeA, "ESW1H4");
    static const FormatContractConfig config = [] {
      FormatContractConfig c = DefaultFormatContractConfig;
      c.useCustomName = false;
      return c;
    }();
    std::string out;
    f.FormatContract(weekly, out, config);
    misnamed += out != "E-mini S&P 500 07Mar14" && out != "ES 07Mar14" &&
                out != "E-mini S&P 500 Week 1 Mar14" &&
                out != "ES Week 1 Mar14";
    std::this_thread::yield();  // widen the window
    late += detached.load();
  }
  void OnSeriesNameFormatterDestroy(SeriesNameFormatter&) override {}
  std::atomic<bool> detached{false};
  std::atomic<int> calls{0}, late{0}, misnamed{0};
};

// The user's thread adds, renames and removes names while another thread
// flips the switches, each step one notification, and two threads attach and
// detach short-lived observers all the while, freeing each as soon as
// Detach returns. None is called after that. One attached throughout hears
// every notification; a short-lived one hears at least those that ran
// wholly while it was attached, and at most those that overlapped that time.
// The notifiers go on until the observers' threads are done, and those go on
// until one of theirs has heard a notice, so that the two overlap however
// the threads are scheduled.
TEST_F(RegistryTest, ConcurrencyObserversComeAndGoDuringNotifications) {
  constexpr int kSteps = 1500, kMaxSteps = 100000;  // three notices a step
  constexpr int kVisits = 1000, kMaxVisits = 50000;
  std::atomic<int> started{0}, finished{0}, heard{0}, late{0}, tooFew{0},
      tooMany{0}, visiting{2};
  int steps[2] = {0, 0};
  const auto more = [&](int i) {
    return i < kMaxSteps && (i < kSteps || visiting > 0);
  };
  auto notify = [&](auto&& step) {  // each step must notify: see the count
    ++started;
    step();
    ++finished;
  };
  Formatter().SetSeriesNameEnabled(kCmeA, false);
  CountingObserver steady;
  ASSERT_TRUE(Formatter().Attach(&steady));
  const SeriesID series[] = {Es(), Nq()};
  std::latch go(4);
  std::vector<std::thread> threads;
  threads.emplace_back([&] {  // the user's thread
    go.arrive_and_wait();
    int i = 0;
    for (; more(i); ++i) {
      const SeriesID& s = series[i % 2];
      const std::string n = std::to_string(i), r = "r" + n;
      notify([&] { Formatter().AddCustomSeriesName(s, n.c_str()); });
      notify([&] { Formatter().ChangeCustomSeriesName(s, r.c_str()); });
      notify([&] { Formatter().RemoveCustomSeriesName(s); });
    }
    steps[0] = i;
  });
  threads.emplace_back([&] {
    go.arrive_and_wait();
    SeriesNameFormatter& f = Formatter();  // each flip is a change
    int i = 0;
    for (; more(i); ++i) {
      notify([&] { f.SetSeriesNameEnabled(!f.IsSeriesNameEnabled()); });
      notify([&] { f.SetSeriesNameEnabled(kCmeA, i % 2 == 0); });
      notify([&] { f.SetProductNameEnabled(!f.IsProductNameEnabled()); });
    }
    steps[1] = i;
  });
  for (int t = 0; t < 2; ++t) {
    threads.emplace_back([&] {
      go.arrive_and_wait();
      for (int i = 0; i < kVisits || (heard == 0 && i < kMaxVisits); ++i) {
        auto observer = std::make_unique<CountingObserver>();
        const int before = finished.load();
        EXPECT_TRUE(Formatter().Attach(observer.get()));
        const int from = started.load();
        std::this_thread::yield();
        const int to = finished.load();
        EXPECT_TRUE(Formatter().Detach(observer.get()));
        observer->detached = true;
        tooFew += observer->calls < to - from;
        tooMany += observer->calls > started.load() - before;
        std::this_thread::yield();
        heard += observer->calls;
        late += observer->late + observer->misnamed;
      }  // freed at once: a late call would also be a use after free
      --visiting;
    });
  }
  for (std::thread& t : threads) t.join();
  EXPECT_TRUE(Formatter().Detach(&steady));
  EXPECT_EQ(steady.calls.load(), 3 * (steps[0] + steps[1]));
  EXPECT_EQ(steady.misnamed.load(), 0);
  EXPECT_GT(heard.load(), 0);  // the short-lived ones did overlap notices
  EXPECT_EQ(late.load(), 0);   // and no contract misnamed
  EXPECT_EQ(tooFew.load(), 0);
  EXPECT_EQ(tooMany.load(), 0);
}

constexpr char kCorruption[] =
    "Series Names.dat file has corruption data, which will be discarded.";

std::time_t g_now = 0;
std::time_t FakeNow() { return g_now; }

// Local time of a calendar moment, as the expiry test reads it.
std::time_t LocalTime(int year, int month, int day, int hour, int minute,
                      int second) {
  std::tm t{};
  t.tm_year = year - 1900;
  t.tm_mon = month - 1;
  t.tm_mday = day;
  t.tm_hour = hour;
  t.tm_min = minute;
  t.tm_sec = second;
  t.tm_isdst = -1;
  return std::mktime(&t);
}

SeriesID Key(int exchange, const char* key) {
  SeriesID series = SampleSeries(exchange, key);
  SeriesNameFormatter::MakeUnflavoredSeriesID(series);
  return series;
}

class NamesFileTest : public RegistryTest {
 protected:
  void SetUp() override {
    RegistryTest::SetUp();
    g_now = LocalTime(2014, 1, 15, 12, 0, 0);
    Peer::SetClock(&FakeNow);
    path_ = (dir_.path() / "Series Names.dat").string();
  }
  void Open() {
    Formatter().SetArchiverFactory(factory_);
    Formatter().SetArchivePath(path_.c_str());
  }
  // What a process that starts again sees: empty tables, then the file.
  void Restart() {
    Peer::Clear();
    Peer::SetClock(&FakeNow);
    Open();
  }
  bool Logged(const std::string& text, int severity) const {
    const auto records = log_->Records();
    return std::any_of(records.begin(), records.end(), [&](const auto& r) {
      return r.text.ends_with(text) && static_cast<int>(r.severity) == severity;
    });
  }

  nvshared::testing::TempDir dir_;
  std::string path_;
  BinaryArchiverFactory factory_;
};

TEST_F(NamesFileTest, NamesSurviveARestart) {
  Open();
  const SeriesID calendar = SampleSeries(7, "ESH4-ESM4");
  ASSERT_TRUE(Formatter().AddCustomSeriesName(SampleSeries(7, "ESH4"), "E"));
  ASSERT_TRUE(Formatter().AddCustomSeriesName(calendar, "my roll"));
  ASSERT_TRUE(Formatter().AddCustomSeriesName(SampleSeries(71, "MSFT"), "M"));
  ASSERT_TRUE(Formatter().ChangeCustomSeriesName(SampleSeries(7, "ESH4"), "F"));
  // A spread keeps its legs unflavoured. Its expiry comes from the legs of
  // the key, whose exchange is the plain CME; the data lists this calendar
  // under CME-A only, so it has none.
  ASSERT_NE(Peer::Entry(calendar), nullptr);
  EXPECT_FALSE(Peer::Entry(calendar)->hasExpiration);

  Restart();
  EXPECT_EQ(Peer::Size(), 3u);
  const SeriesID* es = Formatter().GetSeries("F");
  ASSERT_NE(es, nullptr);
  EXPECT_STREQ(es->seriesKey, "ESH4");
  EXPECT_EQ(Formatter().GetSeries("E"), nullptr);
  const dv_core_ns::FullLegList* legs = Formatter().GetLegList("my roll");
  ASSERT_NE(legs, nullptr);
  ASSERT_EQ(legs->legs.size(), 2u);
  EXPECT_EQ(
      static_cast<int>(legs->legs[0].GetSharedSeriesID()->product.exchange),
      kCme);
  // A date-less stock stays without a date through every load and save.
  Restart();
  const FormattedNameData* msft = Peer::Entry(SampleSeries(71, "MSFT"));
  ASSERT_NE(msft, nullptr);
  EXPECT_FALSE(msft->hasExpiration);
  EXPECT_TRUE(
      Logged("ME - AddCustomSeriesNameFromFile - Contract Name: "
             "NASDAQ MSFT, Custom Name: M",
             2));
}

TEST_F(NamesFileTest, TheSamePathTwiceLoadsOnce) {
  WriteNamesFile(path_, 1, {{Key(8, "NQH4"), Date(), false, "n"}});
  Open();
  Formatter().SetArchivePath(path_.c_str());
  Formatter().SetArchivePath(nullptr);
  EXPECT_EQ(log_->Records().size(), 1u);  // one entry loaded, once
}

// Entries expired three months ago go at load, and from the file, but for
// markets whose names never expire.
TEST_F(NamesFileTest, ExpiredEntriesAreDroppedButNotOnLme) {
  g_now = LocalTime(2014, 6, 20, 12, 0, 0);
  const Date march(19, 3, 2014);  // kept until 19 May, 23:59:59
  WriteNamesFile(path_, 4,
                 {{Key(7, "ESH4"), march, true, "cme"},
                  {Key(26, "CA CASH"), march, true, "lme"},
                  {Key(8, "NQH4"), march, false, "undated"},
                  {Key(8, "NQM4"), Date(20, 4, 2014), true, "recent"}});
  Open();
  EXPECT_EQ(Formatter().GetSeries("cme"), nullptr);
  EXPECT_NE(Formatter().GetSeries("lme"), nullptr);
  EXPECT_NE(Formatter().GetSeries("undated"), nullptr);
  EXPECT_NE(Formatter().GetSeries("recent"), nullptr);
  EXPECT_EQ(ReadNamesFile(path_).size(), 3u);
  EXPECT_FALSE(Logged(kCorruption, 0));
}

struct ExpiryCase {
  Date date;
  int months;
  std::time_t now;
  bool expired;
};

TEST_F(NamesFileTest, DatesExpireAtTheEndOfTheDayMonthsLater) {
  const ExpiryCase cases[] = {
      // 31 December plus two months is 31 February, which is 3 March.
      {Date(31, 12, 2014), 2, LocalTime(2015, 3, 3, 23, 59, 58), false},
      {Date(31, 12, 2014), 2, LocalTime(2015, 3, 4, 0, 0, 0), true},
      // A month-only date lasts to the first day of the third month after.
      {Date(0, 1, 2015), 2, LocalTime(2015, 4, 1, 23, 59, 58), false},
      {Date(0, 1, 2015), 2, LocalTime(2015, 4, 2, 0, 0, 0), true},
      {Date(15, 1, 2015), 2, LocalTime(2015, 3, 15, 23, 0, 0), false},
      {Date(15, 1, 2015), 2, LocalTime(2015, 3, 16, 0, 0, 0), true},
      {Date(15, 11, 2015), 0, LocalTime(2015, 11, 15, 12, 0, 0), false},
  };
  for (const ExpiryCase& c : cases) {
    SCOPED_TRACE(std::to_string(c.date.day) + "/" +
                 std::to_string(c.date.month) + "/" +
                 std::to_string(c.date.year));
    g_now = c.now;
    EXPECT_EQ(Formatter().isDateExpired(c.date, c.months), c.expired);
  }
}

// A file damaged at its third entry keeps the first two, says so once, and
// is rewritten without the rest.
TEST_F(NamesFileTest, DamageCostsOnlyTheEntriesAfterIt) {
  WriteNamesFile(path_, 5,
                 {{Key(7, "ESH4"), Date(), false, "one"},
                  {Key(8, "NQH4"), Date(), false, "two"},
                  {Key(8, "NQM4"), Date(), false, "three"}});
  const std::string whole = nvshared::testing::ReadFile(path_);
  dir_.WriteFile("Series Names.dat", whole.substr(0, whole.size() - 3));
  Open();
  EXPECT_EQ(Peer::Size(), 2u);
  EXPECT_NE(Formatter().GetSeries("two"), nullptr);
  EXPECT_TRUE(Logged(kCorruption, 0));
  EXPECT_EQ(ReadNamesFile(path_).size(), 2u);
}

// The archiver writes no negative count; these files are made by hand, with
// one whole entry after the count that must not be read.
TEST_F(NamesFileTest, ZeroOrNegativeCountsReadNothing) {
  WriteNamesFile(path_, 1, {{Key(7, "ESH4"), Date(), false, "x"}});
  const std::string entry = nvshared::testing::ReadFile(path_).substr(15);
  for (const char* count : {"00 00 00 00", "fd ff ff ff"}) {
    SCOPED_TRACE(count);
    Peer::Clear();
    dir_.WriteFile(
        "Series Names.dat",
        HexBytes(std::string("'N' 'V' 'S' 'N' 01 'V' 10 27 00 00 'C'") +
                 count) +
            entry);
    Open();
    EXPECT_EQ(Peer::Size(), 0u);
    EXPECT_FALSE(Logged(kCorruption, 0));
  }
}

// The day and month tests of an outright's expiry were joined with "and"
// and never refused anything: an impossible date from 1900 on is kept and
// written at the next save; one before 1900 is not.
TEST_F(NamesFileTest, AnyDayAndMonthFrom1900OnGainsADateAtSave) {
  SeriesID odd = Key(8, "NQH4");
  odd.expiry = Date(45, 13, 2030);
  SeriesID old = Key(8, "NQM4");
  old.expiry = Date(1, 1, 1899);
  WriteNamesFile(path_, 2,
                 {{odd, Date(), false, "odd"}, {old, Date(), false, "old"}});
  Open();
  for (const FileEntry& e : ReadNamesFile(path_)) {
    SCOPED_TRACE(e.name);
    EXPECT_EQ(e.hasExpiration, e.name == "odd");
    EXPECT_EQ(e.expiration, e.name == "odd" ? Date(45, 13, 2030) : Date());
  }
  EXPECT_EQ(Peer::Size(), 2u);
}

// The byte form, built by hand from the format's grammar.
TEST(BinaryArchiverTest, WritesTheDocumentedBytes) {
  const std::string expected = HexBytes(
      "'N' 'V' 'S' 'N' 01"
      "|'V' 10 27 00 00"  // version 10000
      "|'C' 02 00 00 00"  // count 2
      "|'B' 01"
      "|'T' 03 00 00 00 'a' 'b' 'c'"
      "|'D' 05 03 de 07"  // 5 March 2014
      "|'L' 00");         // no leg list
  BinaryArchiver writer;
  EXPECT_TRUE(writer.Open("/nonexistent/dir/never-written", 1));
  writer.WriteVersion(10000);
  writer.WriteCount(2);
  writer.WriteBool(true);
  writer.WriteString("abc");
  writer.WriteDate(Date(5, 3, 2014));
  writer.WriteLegList(nullptr);
  EXPECT_EQ(ToHex(writer.Bytes()), ToHex(expected));
  writer.Close();
  EXPECT_FALSE(writer.Saved());  // the directory does not exist

  BinaryArchiver reader;
  reader.OpenBytes(expected);
  unsigned version = 0;
  reader.ReadVersion(version);
  EXPECT_EQ(version, 10000u);
}

struct DamageCase {
  const char* what;
  std::size_t at;  // the byte changed, or where the file is cut
  int value;       // the new byte; -1 cuts the file there
};

// A whole file of one spread entry, damaged one way at a time, throws from
// the read at fault, and every read after it throws too.
TEST_F(NamesFileTest, DamageThrowsAndTheReaderStaysFailed) {
  SeriesID spread = Key(7, "ESH4-ESM4");
  spread.seriesName.Assign("n");
  WriteNamesFile(path_, 1, {{spread, Date(), false, "x"}});
  const std::string whole = nvshared::testing::ReadFile(path_);
  ASSERT_EQ(ReadNamesFile(path_).size(), 1u);
  const std::size_t key = 16 + 4 * 3 + 2 + 2 + 8;  // series key's length
  const DamageCase cases[] = {
      {"another magic", 3, 'X'},
      {"a later form", 4, 2},
      {"a wrong item", 5, 'C'},
      {"a key of 64 bytes", key, 64},
      {"a string past the end", key + 1, 0x7f},
      {"a presence flag of 2", key + 4 + 9, 2},  // after "ESH4-ESM4"
      {"cut in the count", 12, -1},
      {"cut in the legs", whole.size() - 1, -1},
  };
  for (const DamageCase& c : cases) {
    SCOPED_TRACE(c.what);
    std::string bytes = whole;
    if (c.value < 0) {
      bytes.resize(c.at);
    } else {
      bytes[c.at] = static_cast<char>(c.value);
    }
    dir_.WriteFile("Series Names.dat", bytes);
    EXPECT_THROW(ReadNamesFile(path_), BinaryArchiveError);
  }
  // A leg count beyond what remains is refused before anything is sized,
  // and the reader stays failed: a good item after it throws too.
  BinaryArchiver reader;
  reader.OpenBytes(
      HexBytes("'N' 'V' 'S' 'N' 01 'L' 01 f4 01 ff ff ff ff"
               "'V' 10 27 00 00"));
  dv_core_ns::FullLegList legs;
  unsigned version = 0;
  EXPECT_THROW(reader.ReadLegList(&legs), BinaryArchiveError);
  EXPECT_THROW(reader.ReadVersion(version), BinaryArchiveError);
}

// A child process renames one contract back and forth, each change saving
// the names file through the archiver, and is killed at random moments.
// After every kill the file is the one from before or after a change, and
// the formatter loads it. The name is long so that a save takes some time.
TEST_F(NamesFileTest, AKilledSaveLeavesTheOldOrTheNewFileWhole) {
  Open();
  const SeriesID series = Key(8, "NQH4");
  const std::string oldName(100000, 'o'), newName(100000, 'n');
  ASSERT_TRUE(Formatter().AddCustomSeriesName(series, "first"));
  nvshared::testing::KillRun run("names file", path_, 1801);
  run.save = [&](bool toNew) {
    return Formatter().ChangeCustomSeriesName(
        series, (toNew ? newName : oldName).c_str());
  };
  run.load = [&](bool isNew) {
    log_->Clear();
    Restart();
    ASSERT_EQ(Peer::Size(), 1u);
    EXPECT_EQ(Formatter().GetCustomName(series), isNew ? newName : oldName);
  };
  nvshared::testing::ExpectKilledSavesLeaveOldOrNew(run);
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

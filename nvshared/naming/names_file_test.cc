#include <chrono>
#include <ctime>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include "nvshared/naming/binary_archiver.h"
#include "nvshared/naming/internal/formatter_peer.h"
#include "nvshared/naming/series_name_formatter.h"
#include "nvshared/platform/log/logger.h"
#include "nvshared/platform/log/memory_sink.h"
#include "nvshared/testing/hex_bytes.h"
#include "nvshared/testing/sample_data.h"
#include "nvshared/testing/temp_dir.h"

namespace nv_fmt {
namespace {

using dv_core_ns::Date;
using dv_core_ns::SeriesID;
using nvshared::testing::HexBytes;
using nvshared::testing::SampleSeries;
using nvshared::testing::ToHex;
using Peer = SeriesNameFormatterPeer;

constexpr char kCorruption[] =
    "Series Names.dat file has corruption data, which will be discarded.";

SeriesNameFormatter& Formatter() { return SeriesNameFormatter::Instance(); }

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

struct FileEntry {
  SeriesID series;
  Date expiration;
  bool hasExpiration;
  std::string name;
};

// Writes a names file item by item; `count` may differ from the entries.
void WriteNamesFile(const std::string& path, int count,
                    const std::vector<FileEntry>& entries) {
  BinaryArchiver archiver;
  ASSERT_TRUE(archiver.Open(path.c_str(), 1));
  archiver.WriteVersion(SeriesNameFormatter::CURRENT_VERSION);
  archiver.WriteCount(static_cast<std::size_t>(count));
  for (const FileEntry& e : entries) {
    archiver.WriteSeriesID(e.series);
    archiver.WriteDate(e.expiration);
    archiver.WriteBool(e.hasExpiration);
    archiver.WriteString(e.name);
    if (e.series.IsSpreadOrStrategy()) archiver.WriteLegList(nullptr);
  }
  archiver.Close();
  ASSERT_TRUE(archiver.Saved());
}

// Reads a names file back whole; throws if it is damaged.
std::vector<FileEntry> ReadNamesFile(const std::string& path) {
  BinaryArchiver archiver;
  std::vector<FileEntry> entries;
  if (!archiver.Open(path.c_str(), 0)) return entries;
  unsigned version = 0;
  int count = 0;
  archiver.ReadVersion(version);
  archiver.ReadCount(count);
  for (; count > 0; --count) {
    FileEntry e;
    archiver.ReadSeriesID(e.series);
    archiver.ReadDate(e.expiration);
    archiver.ReadBool(e.hasExpiration);
    archiver.ReadString(e.name);
    if (e.series.IsSpreadOrStrategy()) {
      dv_core_ns::FullLegList legs;
      archiver.ReadLegList(&legs);
    }
    entries.push_back(e);
  }
  return entries;
}

SeriesID Key(int exchange, const char* key) {
  SeriesID series = SampleSeries(exchange, key);
  SeriesNameFormatter::MakeUnflavoredSeriesID(series);
  return series;
}

class NamesFileTest : public ::testing::Test {
 protected:
  void SetUp() override {
    nvshared::testing::InstallSampleReferenceData();
    Peer::Clear();
    saved_ = dv_log::GetCustomLog()->SetSink(log_);
    g_now = LocalTime(2014, 1, 15, 12, 0, 0);
    Peer::SetClock(&FakeNow);
    path_ = (dir_.path() / "Series Names.dat").string();
  }
  void TearDown() override {
    dv_log::GetCustomLog()->SetSink(saved_);
    Peer::Clear();
  }
  void Open(IArchiverFactory& factory, const std::string& path) {
    Formatter().SetArchiverFactory(factory);
    Formatter().SetArchivePath(path.c_str());
  }
  // What a process that starts again sees: empty tables, then the file.
  void Restart() {
    Peer::Clear();
    Peer::SetClock(&FakeNow);
    Open(factory_, path_);
  }
  bool Logged(const std::string& text, int severity) const {
    for (const auto& r : log_->Records()) {
      if (r.text.size() >= text.size() &&
          r.text.compare(r.text.size() - text.size(), text.size(), text) == 0 &&
          static_cast<int>(r.severity) == severity) {
        return true;
      }
    }
    return false;
  }

  nvshared::testing::TempDir dir_;
  std::string path_;
  BinaryArchiverFactory factory_;
  std::shared_ptr<dv_log::MemorySink> log_ =
      std::make_shared<dv_log::MemorySink>();
  std::shared_ptr<dv_log::LogSink> saved_;
};

TEST_F(NamesFileTest, NamesSurviveARestart) {
  Open(factory_, path_);
  const SeriesID calendar = SampleSeries(7, "ESH4-ESM4");
  ASSERT_TRUE(Formatter().AddCustomSeriesName(SampleSeries(7, "ESH4"), "E"));
  ASSERT_TRUE(Formatter().AddCustomSeriesName(calendar, "my roll"));
  ASSERT_TRUE(Formatter().AddCustomSeriesName(SampleSeries(71, "MSFT"), "M"));
  ASSERT_TRUE(Formatter().ChangeCustomSeriesName(SampleSeries(7, "ESH4"), "F"));

  Restart();
  EXPECT_EQ(Peer::Size(), 3u);
  const SeriesID* es = Formatter().GetSeries("F");
  ASSERT_NE(es, nullptr);
  EXPECT_STREQ(es->seriesKey, "ESH4");
  EXPECT_EQ(Formatter().GetSeries("E"), nullptr);
  const dv_core_ns::FullLegList* legs = Formatter().GetLegList("my roll");
  ASSERT_NE(legs, nullptr);
  EXPECT_EQ(legs->legs.size(), 2u);
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
  Open(factory_, path_);
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
  Open(factory_, path_);
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
  Open(factory_, path_);
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
    Open(factory_, path_);
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
  Open(factory_, path_);
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

// Saves are killed at random moments many times; each time the file is the
// old one or a new one, and whole.
TEST_F(NamesFileTest, AKilledSaveLeavesTheOldOrTheNewFileWhole) {
  auto save = [&](int generation) {
    std::vector<FileEntry> entries;
    for (int j = 0; j <= generation % 40; ++j) {
      entries.push_back(
          {Key(8, "NQH4"), Date(), false,
           "g" + std::to_string(generation) + "-" +
               std::string(static_cast<std::size_t>(j * 7), 'x')});
    }
    WriteNamesFile(path_, static_cast<int>(entries.size()), entries);
  };
  save(0);
  std::mt19937 random(12345);
  int replaced = 0;
  for (int round = 0; round < 40; ++round) {
    const std::string before = nvshared::testing::ReadFile(path_);
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      for (int generation = 1;; ++generation) save(generation);
    }
    std::this_thread::sleep_for(
        std::chrono::microseconds(random() % 20000 + 100));
    ::kill(child, SIGKILL);
    int status = 0;
    ::waitpid(child, &status, 0);
    const std::string after = nvshared::testing::ReadFile(path_);
    if (after != before) ++replaced;
    std::vector<FileEntry> entries;
    ASSERT_NO_THROW(entries = ReadNamesFile(path_)) << "round " << round;
    ASSERT_FALSE(entries.empty());
    // One generation throughout: nothing of two saves is mixed.
    const std::string generation =
        entries[0].name.substr(0, entries[0].name.find('-'));
    for (const FileEntry& e : entries) {
      EXPECT_EQ(e.name.substr(0, e.name.find('-')), generation);
    }
  }
  EXPECT_GT(replaced, 0);
}

}  // namespace
}  // namespace nv_fmt

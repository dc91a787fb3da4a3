#include "nvshared/testing/kill_during_save.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <thread>

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include "nvshared/testing/temp_dir.h"

namespace nvshared::testing {
namespace {

int Rounds(int fallback) {
  const char* text = std::getenv("NVSHARED_KILL_ROUNDS");
  const int rounds = text != nullptr ? std::atoi(text) : 0;
  return rounds > 0 ? rounds : fallback;
}

// One kill: fork a child that saves, wait until it has started, let it run
// for `delay`, kill it, reap it.
void KillOneSaveLoop(const std::function<void()>& saveLoop,
                     std::chrono::microseconds delay) {
  int ready[2];
  ASSERT_EQ(::pipe(ready), 0);
  const pid_t child = ::fork();
  ASSERT_GE(child, 0) << "fork failed";
  if (child == 0) {
    ::close(ready[0]);
    const char started = 1;
    if (::write(ready[1], &started, 1) == 1) {
      try {
        saveLoop();
      } catch (...) {
      }
    }
    ::_exit(1);
  }
  ::close(ready[1]);
  char started = 0;
  const bool running = ::read(ready[0], &started, 1) == 1;
  ::close(ready[0]);
  if (running) std::this_thread::sleep_for(delay);
  ::kill(child, SIGKILL);
  int status = 0;
  ::waitpid(child, &status, 0);
  EXPECT_TRUE(running && WIFSIGNALED(status))
      << "the save loop did not start, or ended by itself";
}

// The files beside `path` whose names begin with its name.
int Temporaries(const std::filesystem::path& path) {
  const std::string file = path.filename().string();
  int count = 0;
  for (const auto& entry :
       std::filesystem::directory_iterator(path.parent_path())) {
    const std::string name = entry.path().filename().string();
    if (name != file && name.starts_with(file)) ++count;
  }
  return count;
}

}  // namespace

void ExpectKilledSavesLeaveOldOrNew(const KillRun& run) {
  const auto timed = std::chrono::steady_clock::now();
  ASSERT_TRUE(run.save(true));
  const std::string newFile = ReadFile(run.path);
  ASSERT_TRUE(run.save(false));
  const std::string oldFile = ReadFile(run.path);
  // Kills fall anywhere in the first two saves or so of a child, however
  // long a save takes on this machine and build.
  const auto window = std::max<long>(
      1000, std::chrono::duration_cast<std::chrono::microseconds>(
                std::chrono::steady_clock::now() - timed)
                .count());
  ASSERT_NE(oldFile, newFile);
  bool isNew = false;
  const auto saveLoop = [&] {
    for (bool toNew = !isNew;; toNew = !toNew) run.save(toNew);
  };
  std::mt19937 random(run.seed);
  std::uniform_int_distribution<long> delay(0, window - 1);
  const int rounds = Rounds(run.rounds);
  const auto start = std::chrono::steady_clock::now();
  int seen[2] = {0, 0};  // kills that left the old content, the new one
  int round = 0;
  for (; round < rounds && !::testing::Test::HasFatalFailure(); ++round) {
    SCOPED_TRACE("round " + std::to_string(round));
    KillOneSaveLoop(saveLoop, std::chrono::microseconds(delay(random)));
    const std::string bytes = ReadFile(run.path);
    ASSERT_TRUE(bytes == oldFile || bytes == newFile)
        << "a file of " << bytes.size() << " bytes";
    isNew = bytes == newFile;
    ++seen[isNew];
    run.load(isNew);
  }
  const double seconds =
      std::chrono::duration<double>(std::chrono::steady_clock::now() - start)
          .count();
  const int temporaries = Temporaries(run.path);
  std::printf(
      "%s: %d kills in %.1f s (at random below %.1f ms); old content %d, "
      "new content %d; %d temporaries left\n",
      run.store.c_str(), round, seconds, window / 1000.0, seen[0], seen[1],
      temporaries);
  EXPECT_GT(seen[0], 0);
  EXPECT_GT(seen[1], 0);
  EXPECT_LE(temporaries, round);
}

}  // namespace nvshared::testing

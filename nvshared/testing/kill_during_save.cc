#include "nvshared/testing/kill_during_save.h"

#include <cstdlib>
#include <random>
#include <thread>

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

namespace nvshared::testing {

int KillRounds(int fallback) {
  const char* text = std::getenv("NVSHARED_KILL_ROUNDS");
  const int rounds = text != nullptr ? std::atoi(text) : 0;
  return rounds > 0 ? rounds : fallback;
}

KillRun KillDuringSaves(int rounds, std::chrono::microseconds maxDelay,
                        unsigned seed, const std::function<void()>& saveLoop,
                        const std::function<void(int round)>& check) {
  std::mt19937 random(seed);
  std::uniform_int_distribution<long> delay(0, maxDelay.count() - 1);
  const auto start = std::chrono::steady_clock::now();
  KillRun run;
  for (int round = 0; round < rounds; ++round) {
    const pid_t child = ::fork();
    if (child < 0) {
      ADD_FAILURE() << "fork failed";
      break;
    }
    if (child == 0) {
      try {
        saveLoop();
      } catch (...) {
      }
      ::_exit(1);
    }
    std::this_thread::sleep_for(std::chrono::microseconds(delay(random)));
    ::kill(child, SIGKILL);
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status)) << "the save loop ended by itself";
    check(round);
    ++run.rounds;
    if (::testing::Test::HasFatalFailure()) break;
  }
  run.seconds =
      std::chrono::duration<double>(std::chrono::steady_clock::now() - start)
          .count();
  return run;
}

std::vector<std::string> FilesBeside(const std::filesystem::path& dir,
                                     const std::string& file) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(dir)) {
    const std::string name = entry.path().filename().string();
    if (name != file && name.starts_with(file)) names.push_back(name);
  }
  return names;
}

}  // namespace nvshared::testing

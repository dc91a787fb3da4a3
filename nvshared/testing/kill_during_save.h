// Kill-during-save runs for tests of stores that replace a file on every
// save: a child process saves in a loop and is killed with SIGKILL at a
// random moment, round after round, and the caller checks after each kill
// what is on disk. The number of rounds may be raised for a long run with
// the environment variable NVSHARED_KILL_ROUNDS (a test setting only).
//
// Ownership: the caller owns the files; these functions only fork, kill and
// list. Threads: call from the test's main thread with no other thread
// running, since the child is a fork of the whole process.
#ifndef NVSHARED_TESTING_KILL_DURING_SAVE_H_
#define NVSHARED_TESTING_KILL_DURING_SAVE_H_

#include <chrono>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace nvshared::testing {

// NVSHARED_KILL_ROUNDS when it holds a positive number, else `fallback`.
int KillRounds(int fallback);

struct KillRun {
  int rounds = 0;  // kills made and checked
  double seconds = 0;
};

// Runs `rounds` rounds. In each, a forked child calls `saveLoop`, which
// should never return (the child _exit()s if it does or throws); the parent
// sleeps a random time below `maxDelay`, drawn from a generator seeded with
// `seed`, kills the child with SIGKILL, reaps it and calls `check(round)`.
// Stops early after a round that leaves a fatal failure.
KillRun KillDuringSaves(int rounds, std::chrono::microseconds maxDelay,
                        unsigned seed, const std::function<void()>& saveLoop,
                        const std::function<void(int round)>& check);

// The names of the files in `dir` that begin with `file` but are not `file`
// itself: the temporaries that killed saves leave beside it.
std::vector<std::string> FilesBeside(const std::filesystem::path& dir,
                                     const std::string& file);

}  // namespace nvshared::testing

#endif  // NVSHARED_TESTING_KILL_DURING_SAVE_H_

// Kill-during-save runs for tests of stores that replace a file on every
// save: a child process saves in a loop, alternating between two contents,
// and is killed with SIGKILL at a random moment, round after round; after
// each kill the file must hold one content or the other, byte for byte, and
// load. The number of rounds may be raised for a long run with the
// environment variable NVSHARED_KILL_ROUNDS (a test setting only).
//
// Ownership: the caller owns the files; this only forks, kills, reads and
// lists. Threads: call from the test's main thread with no other thread
// running, since the child is a fork of the whole process.
#ifndef NVSHARED_TESTING_KILL_DURING_SAVE_H_
#define NVSHARED_TESTING_KILL_DURING_SAVE_H_

#include <filesystem>
#include <functional>
#include <string>
#include <utility>

namespace nvshared::testing {

struct KillRun {
  KillRun(std::string store, std::filesystem::path path, unsigned seed)
      : store(std::move(store)), path(std::move(path)), seed(seed) {}

  std::string store;  // what is saved, for the summary line
  std::filesystem::path path;
  unsigned seed;     // of the random delays before the kills
  int rounds = 300;  // unless NVSHARED_KILL_ROUNDS says more
  // Saves the new content (or the old one) through the library; true if the
  // save was made.
  std::function<bool(bool toNew)> save;
  // Runs after a kill that left the new content (or the old one): loads the
  // file through the library and checks what it holds.
  std::function<void(bool isNew)> load;
};

// Saves the new content, then the old one, keeping the bytes of each file.
// Then, in each round, a forked child saves the other content than the file
// holds, then each in turn, until it is killed at a random moment of its
// first two saves or so (a delay drawn below twice the time of one save in
// the parent, counted from when the child starts). The file must
// then be the old or the new one, byte for byte, and `load` is called.
// Stops at the first fatal failure. Expects both contents among the
// outcomes (so saves did complete between kills) and at most one temporary
// file left beside `path` per kill (a kill inside a save leaves one; the
// next completed save removes those of killed processes, so only the last
// kills' are normally left). Prints one summary line with the kills, the
// time, the outcomes and the temporaries.
void ExpectKilledSavesLeaveOldOrNew(const KillRun& run);

}  // namespace nvshared::testing

#endif  // NVSHARED_TESTING_KILL_DURING_SAVE_H_

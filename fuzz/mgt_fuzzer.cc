// Loads arbitrary bytes as an MGT file: through MgtINI::Load from a
// temporary file, and through the in-memory profile parser with buffers of
// every awkward size. Nothing may crash or trip a sanitizer. The first byte
// chooses whether dynamic connections are on.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <string>
#include <string_view>

#include <unistd.h>

#include "nvshared/mgt/mgt_ini.h"
#include "nvshared/platform/core/reference_data.h"
#include "nvshared/platform/os/atomic_file.h"
#include "nvshared/platform/os/profile_file.h"
#include "nvshared/platform/utils/registry_mgr.h"

namespace {

void InstallReferenceData() {
  static std::once_flag once;
  std::call_once(once, [] {
    dv_core_ns::ReferenceDataBuilder b;
    b.SetExchangeIdCount(64);
    (void)b.AddExchange(7, "CME-A", 7);
    (void)b.AddExchange(8, "CME-B", 7);
    (void)b.AddExchange(10, "CME", 7);
    (void)b.AddExchange(3, "eCBOT-A", 6);
    (void)b.AddExchange(21, "LIFFE", 3);
    auto built = b.Build();
    if (!built.ok()) std::abort();
    dv_core_ns::ReferenceData::Install(std::move(built).value());
  });
}

void Drop(const std::string&) {}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data,
                                      std::size_t size) {
  InstallReferenceData();
  const std::string_view text(reinterpret_cast<const char*>(data), size);

  // The in-memory parser, with tiny and ordinary buffers.
  const auto profile = nvshared::os::ProfileFile::Parse(text);
  char buffer[64];
  for (std::size_t n : {0, 1, 2, 3, 17, 64}) {
    const std::size_t got = profile.GetSectionNames(buffer, n);
    if (n >= 2 && got > n - 2 + 1) std::abort();
    for (const std::string& name : profile.section_names()) {
      const std::size_t value =
          profile.GetString(name, "Member", "", buffer, n);
      if (n > 0 && value >= n) std::abort();
    }
  }

  // The whole loader, from a file.
  static const std::string path =
      "/tmp/nvshared_mgt_fuzzer_" + std::to_string(::getpid()) + ".mgt";
  if (!nvshared::os::ReplaceFileAtomically(path, text).ok()) return 0;
  CRegistryMgr::Instance(1).WriteRegString(
      "SEServer", "EnableDynamicConnections",
      size > 0 && (data[0] & 1) ? "Y" : "N");
  nv_ns::MgtINI mgt;
  mgt.SetLoggers(&Drop, &Drop);
  const bool loaded = mgt.Load(path.c_str());
  for (int id : {3, 7, 8, 10, 21, 11, -1, 1000}) (void)mgt.GetMgt(id);
  nv_ns::MgtINI copy;
  copy = mgt;
  if (loaded != copy.Load("/nonexistent") && loaded) std::abort();
  return 0;
}

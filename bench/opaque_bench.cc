// A PushMGTRequest of 1, 10 and 100 impersonations beside a protobuf message
// of the same fields.
//
// Build+Save: fill the message from plain values and store it (the library:
// SaveToMessage into an OpaqueDataMessage, two tagged blocks; protobuf:
// SerializeToString). Read: turn the stored bytes back into a message (the
// library: CreateCommonRequestMessage; protobuf: ParseFromString into a
// fresh message). Both sides start from a fresh message each time, as a host
// does per request. The "allocs/item" counter is the number of heap
// allocations per impersonation, from a counting operator new; the strings
// are short enough to stay inside their objects, so every allocation counted
// is the container's or the carrier's.
#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>
#include <string>

#include "bench/allocation_counter.h"
#include "opaque_messages.pb.h"
#include <benchmark/benchmark.h>

#include "nvshared/messaging/opaque_messages.h"

namespace {

using nv_opaque_ns::ImpersonationData;
using nv_opaque_ns::PushMGTRequest;

void Fill(ImpersonationData& d, int i) {
  d.m_iBrokerId = static_cast<unsigned short>(i);
  d.m_iExchangeId = 7;
  d.m_szMember = "MEMBER01";
  d.m_szGroup = "GRP";
  d.m_szTrader = "TRADER0001";
  d.m_szEncryptedPassword = "x9f2k1";
  d.m_szUserName = "jsmith";
  d.m_companyId = 12;
  d.m_mgtId = i;
  d.m_nCaretakerID = 3;
}

void Fill(nvbench::ImpersonationPb& d, int i) {
  d.set_broker_id(static_cast<unsigned>(i));
  d.set_exchange_id(7);
  d.set_member("MEMBER01");
  d.set_group("GRP");
  d.set_trader("TRADER0001");
  d.set_encrypted_password("x9f2k1");
  d.set_user_name("jsmith");
  d.set_company_id(12);
  d.set_can_view_single_broker_data_only(true);
  d.set_can_view_single_company_data_only(true);
  d.set_mgt_id(i);
  d.set_caretaker_id(3);
}

void BuildAndSave(dv_core_ns::OpaqueDataMessage& message, int n) {
  PushMGTRequest request;
  request.m_baseBlock.m_tSentTickCount = 123456789;
  request.m_block.m_list.m_userName = "desk";
  for (int i = 0; i < n; ++i) Fill(request.m_block.m_list.emplace_back(), i);
  request.m_block.m_bDownloadAllOrders = true;
  request.SaveToMessage(message);
}

void BuildAndSave(std::string& bytes, int n) {
  nvbench::PushMgtRequestPb request;
  request.set_sent_tick_count(123456789);
  request.set_user_name("desk");
  for (int i = 0; i < n; ++i) Fill(*request.add_list(), i);
  request.set_download_all_orders(true);
  request.SerializeToString(&bytes);
}

void SetCounters(benchmark::State& state, std::size_t allocations) {
  const auto n = static_cast<double>(state.range(0));
  state.SetItemsProcessed(state.iterations() * state.range(0));
  state.counters["allocs/item"] =
      static_cast<double>(allocations) / state.iterations() / n;
}

void BM_Library_BuildSave(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  dv_core_ns::OpaqueDataMessage message;
  BuildAndSave(message, n);  // the carrier's slots exist from here on
  const std::size_t before = nvshared::bench::AllocationCount();
  for (auto _ : state) {
    BuildAndSave(message, n);
    benchmark::DoNotOptimize(message);
  }
  SetCounters(state, nvshared::bench::AllocationCount() - before);
}

void BM_Protobuf_BuildSave(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  std::string bytes;
  BuildAndSave(bytes, n);
  const std::size_t before = nvshared::bench::AllocationCount();
  for (auto _ : state) {
    BuildAndSave(bytes, n);
    benchmark::DoNotOptimize(bytes);
  }
  SetCounters(state, nvshared::bench::AllocationCount() - before);
}

void BM_Library_Read(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  dv_core_ns::OpaqueDataMessage message;
  BuildAndSave(message, n);
  const std::size_t before = nvshared::bench::AllocationCount();
  for (auto _ : state) {
    std::unique_ptr<nv_opaque_ns::OpaqueRequestMessage> read(
        nv_opaque_ns::CreateCommonRequestMessage(message));
    benchmark::DoNotOptimize(read.get());
  }
  SetCounters(state, nvshared::bench::AllocationCount() - before);
}

void BM_Protobuf_Read(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  std::string bytes;
  BuildAndSave(bytes, n);
  const std::size_t before = nvshared::bench::AllocationCount();
  for (auto _ : state) {
    nvbench::PushMgtRequestPb read;
    read.ParseFromString(bytes);
    benchmark::DoNotOptimize(read);
  }
  SetCounters(state, nvshared::bench::AllocationCount() - before);
}

BENCHMARK(BM_Library_BuildSave)->Arg(1)->Arg(10)->Arg(100);
BENCHMARK(BM_Protobuf_BuildSave)->Arg(1)->Arg(10)->Arg(100);
BENCHMARK(BM_Library_Read)->Arg(1)->Arg(10)->Arg(100);
BENCHMARK(BM_Protobuf_Read)->Arg(1)->Arg(10)->Arg(100);

}  // namespace

BENCHMARK_MAIN();

// The tagged object format beside protobuf and memcpy.
//
// Records travel with every connection and spread message, so writing and
// reading them is on the message path. Each record is written into and read
// from a reused buffer, beside a protobuf message with the same fields and
// values (SerializeToArray and ParseFromArray on a reused message, protobuf's
// fastest paths) and a memcpy of the same byte count, the floor for moving
// those bytes at all.
//
// The version request goes through the core stream, which packs its
// application id and an "SVRP" tagged object into one string, as its peers
// expect; the protobuf peer carries the same fields flat.
#include <cstring>
#include <string>

#include "messaging_messages.pb.h"
#include <benchmark/benchmark.h>

#include "nvshared/messaging/connection_key.h"
#include "nvshared/messaging/server_version_request.h"
#include "nvshared/messaging/spread_info.h"
#include "nvshared/platform/stream/fast_stream_buffer.h"
#include "nvshared/platform/stream/stream.h"

namespace {

char g_buffer[4096];
char g_copy[4096];

nv_ns::ConnectionKey SampleKey() {
  return nv_ns::ConnectionKey(5, 7, 312, "MEMBER01", "GRP", "TRADER0001");
}

nvbench::ConnectionKeyPb SampleKeyPb() {
  nvbench::ConnectionKeyPb pb;
  pb.set_broker_id(5);
  pb.set_gateway_id(312);
  pb.set_member("MEMBER01");
  pb.set_group("GRP");
  pb.set_trader("TRADER0001");
  pb.set_company_id(7);
  return pb;
}

nv_ns::SpreadInfo SampleSpread() {
  return nv_ns::SpreadInfo("Calendar ES Mar14-Jun14", "SPR-000123", 0x00FF8800,
                           2, true, 4, false);
}

nvbench::SpreadInfoPb SampleSpreadPb() {
  nvbench::SpreadInfoPb pb;
  pb.set_name("Calendar ES Mar14-Jun14");
  pb.set_id("SPR-000123");
  pb.set_color(0x00FF8800);
  pb.set_num_legs(2);
  pb.set_is_qh_allowed(true);
  pb.set_broker_id(4);
  pb.set_is_aggregator(false);
  return pb;
}

nv_ns::ServerVersionRequest SampleRequest() {
  nv_ns::ServerVersionRequest request;
  request.m_iRequestID = 17;
  request.m_bIsSubscription = false;
  request.m_tSentTickCount = 1'000'000'123;
  request.m_tReceivedTickCount = 1'000'000'456;
  request.m_szUniversalLoginName = "jsmith@desk4";
  request.m_szApplicationId = "FrontEnd";
  request.m_params.m_szClientInfo = "nvshared 1.0 linux";
  return request;
}

nvbench::ServerVersionRequestPb SampleRequestPb() {
  nvbench::ServerVersionRequestPb pb;
  pb.set_request_id(17);
  pb.set_is_subscription(false);
  pb.set_sent_tick_count(1'000'000'123);
  pb.set_received_tick_count(1'000'000'456);
  pb.set_universal_login_name("jsmith@desk4");
  pb.set_application_id("FrontEnd");
  pb.set_client_info("nvshared 1.0 linux");
  return pb;
}

template <typename Record>
void WriteTagged(benchmark::State& state, Record record) {
  std::size_t total = 0;
  for (auto _ : state) {
    total = record.WriteTo(g_buffer, sizeof g_buffer);
    benchmark::DoNotOptimize(g_buffer);
    benchmark::ClobberMemory();
  }
  state.counters["bytes"] = static_cast<double>(total);
}

template <typename Message>
void WriteProtobuf(benchmark::State& state, Message message) {
  std::size_t total = 0;
  for (auto _ : state) {
    total = message.ByteSizeLong();
    message.SerializeToArray(g_buffer, static_cast<int>(total));
    benchmark::DoNotOptimize(g_buffer);
    benchmark::ClobberMemory();
  }
  state.counters["bytes"] = static_cast<double>(total);
}

template <typename Record>
void ReadTagged(benchmark::State& state, Record record) {
  std::string bytes;
  record.WriteToString(bytes);
  Record target;
  for (auto _ : state) {
    target.ReadFrom(bytes.data(), bytes.size());
    benchmark::DoNotOptimize(target);
  }
  state.counters["bytes"] = static_cast<double>(bytes.size());
}

template <typename Message>
void ReadProtobuf(benchmark::State& state, Message message) {
  const std::string bytes = message.SerializeAsString();
  Message target;
  for (auto _ : state) {
    target.ParseFromArray(bytes.data(), static_cast<int>(bytes.size()));
    benchmark::DoNotOptimize(target);
  }
  state.counters["bytes"] = static_cast<double>(bytes.size());
}

void Memcpy(benchmark::State& state, std::size_t bytes) {
  for (auto _ : state) {
    std::memcpy(g_copy, g_buffer, bytes);
    benchmark::DoNotOptimize(g_copy);
    benchmark::ClobberMemory();
  }
  state.counters["bytes"] = static_cast<double>(bytes);
}

using dv_stream_ns::FastStreamBuffer;
using dv_stream_ns::Streamable;

void BM_ServerVersionRequest_Write(benchmark::State& state) {
  nv_ns::ServerVersionRequest request = SampleRequest();
  std::size_t total = 0;
  for (auto _ : state) {
    FastStreamBuffer buffer(g_buffer, sizeof g_buffer, 0, false);
    dv_stream_ns::Stream stream(&buffer);
    request.Transfer(stream, Streamable::eWrite);
    total = buffer.write_position();
    benchmark::DoNotOptimize(g_buffer);
    benchmark::ClobberMemory();
  }
  state.counters["bytes"] = static_cast<double>(total);
}

void BM_ServerVersionRequest_Read(benchmark::State& state) {
  nv_ns::ServerVersionRequest request = SampleRequest();
  FastStreamBuffer written;
  dv_stream_ns::Stream out(&written);
  request.Transfer(out, Streamable::eWrite);
  const std::string bytes(written.data(), written.write_position());
  nv_ns::ServerVersionRequest target;
  for (auto _ : state) {
    FastStreamBuffer buffer(bytes.data(), bytes.size());
    dv_stream_ns::Stream stream(&buffer);
    target.Transfer(stream, Streamable::eRead);
    // A record whose read failed is discarded; this one never fails.
    benchmark::DoNotOptimize(target);
  }
  state.counters["bytes"] = static_cast<double>(bytes.size());
}

void BM_ServerVersionRequest_WriteProtobuf(benchmark::State& s) {
  WriteProtobuf(s, SampleRequestPb());
}
void BM_ServerVersionRequest_ReadProtobuf(benchmark::State& s) {
  ReadProtobuf(s, SampleRequestPb());
}
// 21 bytes of base, 1 + 12 of login name, 1 + 8 + 1 + 34 of appID.
void BM_ServerVersionRequest_Memcpy(benchmark::State& s) { Memcpy(s, 78); }

void BM_ConnectionKey_Write(benchmark::State& s) {
  WriteTagged(s, SampleKey());
}
void BM_ConnectionKey_WriteProtobuf(benchmark::State& s) {
  WriteProtobuf(s, SampleKeyPb());
}
void BM_ConnectionKey_Read(benchmark::State& s) { ReadTagged(s, SampleKey()); }
void BM_ConnectionKey_ReadProtobuf(benchmark::State& s) {
  ReadProtobuf(s, SampleKeyPb());
}
// 12 + 26 + 8 + 3 + 10 bytes.
void BM_ConnectionKey_Memcpy(benchmark::State& s) { Memcpy(s, 59); }

void BM_SpreadInfo_Write(benchmark::State& s) {
  WriteTagged(s, SampleSpread());
}
void BM_SpreadInfo_WriteProtobuf(benchmark::State& s) {
  WriteProtobuf(s, SampleSpreadPb());
}
void BM_SpreadInfo_Read(benchmark::State& s) { ReadTagged(s, SampleSpread()); }
void BM_SpreadInfo_ReadProtobuf(benchmark::State& s) {
  ReadProtobuf(s, SampleSpreadPb());
}
// 12 + 30 + 23 + 10 bytes.
void BM_SpreadInfo_Memcpy(benchmark::State& s) { Memcpy(s, 75); }

BENCHMARK(BM_ConnectionKey_Write);
BENCHMARK(BM_ConnectionKey_WriteProtobuf);
BENCHMARK(BM_ConnectionKey_Read);
BENCHMARK(BM_ConnectionKey_ReadProtobuf);
BENCHMARK(BM_ConnectionKey_Memcpy);
BENCHMARK(BM_SpreadInfo_Write);
BENCHMARK(BM_SpreadInfo_WriteProtobuf);
BENCHMARK(BM_SpreadInfo_Read);
BENCHMARK(BM_SpreadInfo_ReadProtobuf);
BENCHMARK(BM_SpreadInfo_Memcpy);
BENCHMARK(BM_ServerVersionRequest_Write);
BENCHMARK(BM_ServerVersionRequest_WriteProtobuf);
BENCHMARK(BM_ServerVersionRequest_Read);
BENCHMARK(BM_ServerVersionRequest_ReadProtobuf);
BENCHMARK(BM_ServerVersionRequest_Memcpy);

}  // namespace

BENCHMARK_MAIN();

// Reads arbitrary bytes through the core stream. The first byte chooses
// what the rest is read as: one of the router messages (then written out,
// read back and written again, which must give the same bytes), or, from
// kRawMode on, a raw sequence of values whose kinds the next bytes choose.
// Every failure must be a dv_stream_ns exception or a StreamingException;
// anything else escapes and is reported as a crash.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

#include "nvshared/messaging/impersonate_user_request.h"
#include "nvshared/messaging/impersonate_user_response.h"
#include "nvshared/messaging/message_router_request.h"
#include "nvshared/messaging/message_router_response.h"
#include "nvshared/messaging/server_version_request.h"
#include "nvshared/messaging/server_version_response.h"
#include "nvshared/messaging/xstreamable.h"
#include "nvshared/platform/stream/stream.h"
#include "nvshared/platform/stream/stream_exceptions.h"
#include "nvshared/platform/stream/streamable.h"

namespace {

using dv_stream_ns::FastStreamBuffer;
using dv_stream_ns::Stream;
using dv_stream_ns::Streamable;

constexpr unsigned kRawMode = 6;

std::unique_ptr<Streamable> MakeMessage(unsigned mode) {
  switch (mode) {
    case 0:
      return std::make_unique<nv_ns::MessageRouterRequest>();
    case 1:
      return std::make_unique<nv_ns::MessageRouterResponse>();
    case 2:
      return std::make_unique<nv_ns::ImpersonateUserRequest>();
    case 3:
      return std::make_unique<nv_ns::ServerVersionResponse>();
    case 4:
      return std::make_unique<nv_ns::ImpersonateUserResponse>();
    default:
      return std::make_unique<nv_ns::ServerVersionRequest>();
  }
}

std::string WriteOut(Streamable& message) {
  FastStreamBuffer buffer;
  Stream stream(&buffer);
  message.Transfer(stream, Streamable::eWrite);
  return std::string(buffer.data(), buffer.write_position());
}

void ReadMessage(unsigned mode, bool tagged, const char* data,
                 std::size_t size) {
  auto message = MakeMessage(mode);
  FastStreamBuffer view(data, size);
  Stream in(&view);
  if (tagged) in.PendReadStartTag();
  message->Transfer(in, Streamable::eRead);
  // What was read must survive a second trip unchanged.
  const std::string once = WriteOut(*message);
  auto again = MakeMessage(mode);
  FastStreamBuffer onceView(once.data(), once.size());
  Stream onceIn(&onceView);
  again->Transfer(onceIn, Streamable::eRead);
  if (onceView.readable() != 0 || WriteOut(*again) != once) std::abort();
}

// Reads one value of the kind `op` chooses from `in` and writes it to `out`.
void CopyOne(unsigned char op, Stream& in, Stream& out) {
  switch (op % 8) {
    case 0: {
      bool v = false;
      in.Read("b", v);
      out.Write("b", v);
      break;
    }
    case 1: {
      std::int16_t v = 0;
      in.Read("s", v);
      out.Write("s", v);
      break;
    }
    case 2: {
      std::uint32_t v = 0;
      in.Read("i", v);
      out.Write("i", v);
      break;
    }
    case 3: {
      std::int64_t v = 0;
      in.Read("l", v);
      out.Write("l", v);
      break;
    }
    case 4: {
      double v = 0;
      in.Read("d", v);
      out.Write("d", v);
      break;
    }
    case 5: {
      std::string v;
      in.Read("str", v);
      out.Write("str", v);
      break;
    }
    case 6:
      out.WriteVarInt("n", in.ReadVarInt("n"));
      break;
    default:
      in.PendReadStartTag();
      break;
  }
}

// The byte after the mode gives the number of op bytes that follow; the
// rest is the stream. Values read are copied to a second stream, which
// must read back to the same values.
void ReadRaw(const char* data, std::size_t size) {
  if (size == 0) return;
  const std::size_t ops = static_cast<unsigned char>(data[0]) % 32;
  if (ops + 1 > size) return;
  const char* program = data + 1;
  FastStreamBuffer view(data + 1 + ops, size - 1 - ops);
  Stream in(&view);
  FastStreamBuffer copy;
  Stream out(&copy);
  std::size_t done = 0;
  try {
    for (; done < ops; ++done) {
      CopyOne(static_cast<unsigned char>(program[done]), in, out);
    }
  } catch (const dv_stream_ns::StreamExceptionBase&) {
  }
  Stream reread(&copy);
  FastStreamBuffer sink;
  Stream sinkOut(&sink);
  for (std::size_t i = 0; i < done; ++i) {
    const auto op = static_cast<unsigned char>(program[i]);
    if (op % 8 != 7) CopyOne(op, reread, sinkOut);
  }
  const auto bytes = [](const FastStreamBuffer& b) {
    return std::string_view(b.data(), b.write_position());
  };
  if (copy.readable() != 0 || bytes(sink) != bytes(copy)) {
    std::abort();
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data,
                                      std::size_t size) {
  if (size == 0) return 0;
  const unsigned mode = data[0] & 0x7F;
  const bool tagged = (data[0] & 0x80) != 0;
  const char* rest = reinterpret_cast<const char*>(data + 1);
  try {
    if (mode < kRawMode) {
      ReadMessage(mode, tagged, rest, size - 1);
    } else {
      ReadRaw(rest, size - 1);
    }
  } catch (const dv_stream_ns::StreamExceptionBase&) {
  } catch (const nv_ns::StreamingException&) {
  }
  return 0;
}

// nvtool decode and nvtool encode: tagged objects in and out of bytes.
//
// decode reads a captured buffer (raw, or hex with --hex) as one record type
// and prints its header and every item read, one per line; a bad buffer
// ends with the library's own message and exit status 1. encode writes a
// record from name=value arguments, so that a round trip can be shown from
// the shell.
#include <charconv>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>
#include <limits>
#include <memory>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

#include "nvshared/messaging/connection_key.h"
#include "nvshared/messaging/server_version_request_params.h"
#include "nvshared/messaging/spread_info.h"
#include "nvshared/messaging/xstream_trace.h"
#include "nvshared/platform/os/atomic_file.h"
#include "tools/nvtool/context.h"

namespace nvtool {
namespace {

using Fields = std::vector<std::pair<std::string, std::string>>;
struct RecordType;

[[noreturn]] void UnknownItem(const RecordType& type, const std::string& name);

// One record type the tool knows: how to read a buffer as it, and how to
// build one from fields.
struct RecordType {
  const char* objectName;
  const char* className;
  // The items encode accepts, in wire order.
  std::vector<const char*> items;
  // Reads the buffer; returns the object's total length.
  std::size_t (*read)(const std::string& bytes);
  // Writes a record with `fields` set; the others keep their defaults.
  std::string (*write)(const RecordType& type, const Fields& fields);
};

template <typename T>
T ParseNumber(const std::string& item, const std::string& text) {
  T value{};
  const char* begin = text.data();
  const char* end = begin + text.size();
  int base = 10;
  if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
    begin += 2;
    base = 16;
  }
  const auto [ptr, ec] = std::from_chars(begin, end, value, base);
  if (begin == end || ec != std::errc() || ptr != end) {
    throw CLI::RuntimeError(item + ": '" + text + "' is not a number in " +
                                std::to_string(std::numeric_limits<T>::min()) +
                                ".." +
                                std::to_string(std::numeric_limits<T>::max()),
                            1);
  }
  return value;
}

bool ParseBool(const std::string& item, const std::string& text) {
  if (text == "true" || text == "1") return true;
  if (text == "false" || text == "0") return false;
  throw CLI::RuntimeError(item + ": '" + text + "' is not true, false, 1 or 0",
                          1);
}

// Up to the whole field: a full field goes without a terminator, as the
// wire allows.
template <std::size_t N>
void SetField(char (&field)[N], const std::string& item,
              const std::string& text) {
  if (text.size() > N) {
    throw CLI::RuntimeError(
        item + ": at most " + std::to_string(N) + " characters", 1);
  }
  std::memset(field, 0, N);
  std::memcpy(field, text.data(), text.size());
}

template <typename T>
std::string WriteRecord(T& record) {
  std::string bytes;
  record.WriteToString(bytes);
  return bytes;
}

template <typename T>
std::size_t ReadRecord(const std::string& bytes) {
  T record;
  return record.ReadFrom(bytes.data(), bytes.size());
}

std::string WriteConnectionKey(const RecordType& type, const Fields& fields) {
  nv_ns::ConnectionKey key;
  for (const auto& [name, value] : fields) {
    if (name == "m_brokerID") {
      key.m_brokerID = ParseNumber<unsigned short>(name, value);
    } else if (name == "m_gatewayID") {
      key.m_gatewayID = ParseNumber<int>(name, value);
    } else if (name == "m_szMember") {
      SetField(key.m_szMember, name, value);
    } else if (name == "m_szGroup") {
      SetField(key.m_szGroup, name, value);
    } else if (name == "m_szTrader") {
      SetField(key.m_szTrader, name, value);
    } else if (name == "m_companyID") {
      key.m_companyID = ParseNumber<unsigned short>(name, value);
    } else {
      UnknownItem(type, name);
    }
  }
  return WriteRecord(key);
}

std::string WriteSpreadInfo(const RecordType& type, const Fields& fields) {
  nv_ns::SpreadInfo spread;
  for (const auto& [name, value] : fields) {
    if (name == "m_name") {
      spread.m_name = value;
    } else if (name == "m_id") {
      spread.m_id = value;
    } else if (name == "m_color") {
      spread.m_color = ParseNumber<std::uint32_t>(name, value);
    } else if (name == "m_numLegs") {
      spread.m_numLegs = ParseNumber<unsigned int>(name, value);
    } else if (name == "m_isQHAllowed") {
      spread.m_isQHAllowed = ParseBool(name, value);
    } else if (name == "m_nBrokerId") {
      spread.m_nBrokerId = ParseNumber<unsigned short>(name, value);
    } else if (name == "m_isAggregator") {
      spread.m_isAggregator = ParseBool(name, value);
    } else {
      UnknownItem(type, name);
    }
  }
  return WriteRecord(spread);
}

std::string WriteParams(const RecordType& type, const Fields& fields) {
  nv_ns::ServerVersionRequestParams params;
  for (const auto& [name, value] : fields) {
    if (name == "m_szClientInfo") {
      params.m_szClientInfo = value;
    } else {
      UnknownItem(type, name);
    }
  }
  return WriteRecord(params);
}

const std::vector<RecordType>& RecordTypes() {
  static const std::vector<RecordType> types = {
      {"CK",
       "ConnectionKey",
       {"m_brokerID", "m_gatewayID", "m_szMember", "m_szGroup", "m_szTrader",
        "m_companyID"},
       ReadRecord<nv_ns::ConnectionKey>,
       WriteConnectionKey},
      {"ASAP",
       "SpreadInfo",
       {"m_name", "m_id", "m_color", "m_numLegs", "m_isQHAllowed",
        "m_nBrokerId", "m_isAggregator"},
       ReadRecord<nv_ns::SpreadInfo>,
       WriteSpreadInfo},
      {"SVRP",
       "ServerVersionRequestParams",
       {"m_szClientInfo"},
       ReadRecord<nv_ns::ServerVersionRequestParams>,
       WriteParams},
  };
  return types;
}

std::string KnownRecords() {
  std::string text;
  for (const RecordType& type : RecordTypes()) {
    if (!text.empty()) text += ", ";
    text += std::string(type.objectName) + " (" + type.className + ")";
  }
  return text;
}

void UnknownItem(const RecordType& type, const std::string& name) {
  std::string items;
  for (const char* item : type.items) {
    if (!items.empty()) items += ", ";
    items += item;
  }
  throw CLI::RuntimeError("'" + name + "' is no item of " + type.objectName +
                              "; its items are " + items,
                          1);
}

// By object name ("CK") or class name ("ConnectionKey").
const RecordType& FindRecordType(const std::string& name) {
  for (const RecordType& type : RecordTypes()) {
    if (name == type.objectName || name == type.className) return type;
  }
  throw CLI::RuntimeError(
      "--as " + name + ": unknown record; known: " + KnownRecords(), 1);
}

std::string ReadInput(const std::string& file) {
  if (file == "-") {
    std::ostringstream in;
    in << std::cin.rdbuf();
    return in.str();
  }
  auto contents = nvshared::os::ReadWholeFile(file);
  if (!contents.ok()) throw CLI::RuntimeError(contents.status().message(), 1);
  return *contents;
}

// Hex digits in pairs; blanks and line breaks between pairs are ignored.
std::string FromHex(const std::string& text) {
  std::string bytes;
  int high = -1;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c == ' ' || c == '\t' || c == '\n' || c == '\r') {
      if (high >= 0) break;
      continue;
    }
    int digit = -1;
    if (c >= '0' && c <= '9') digit = c - '0';
    if (c >= 'a' && c <= 'f') digit = c - 'a' + 10;
    if (c >= 'A' && c <= 'F') digit = c - 'A' + 10;
    if (digit < 0) {
      throw CLI::RuntimeError(
          "--hex: character " + std::to_string(i + 1) + " is no hex digit", 1);
    }
    if (high < 0) {
      high = digit;
    } else {
      bytes += static_cast<char>(high * 16 + digit);
      high = -1;
    }
  }
  if (high >= 0) {
    throw CLI::RuntimeError("--hex: a digit is missing its pair", 1);
  }
  return bytes;
}

std::string ToHex(const std::string& bytes) {
  static constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const auto c = static_cast<unsigned char>(bytes[i]);
    if (i != 0) text += (i % 16 == 0) ? '\n' : ' ';
    text += kDigits[c >> 4];
    text += kDigits[c & 15];
  }
  return text + "\n";
}

void PrintEvent(std::ostream& out, const nv_ns::XStreamTraceEvent& event) {
  const std::string indent(2 * event.depth, ' ');
  if (event.kind == nv_ns::XStreamTraceEvent::kObject) {
    char version[16];
    std::snprintf(version, sizeof version, "0x%08x", event.version);
    out << indent << "object " << event.objectName << ": protocol "
        << static_cast<int>(event.protocol) << ", total length "
        << event.totalLength << ", version " << version << "\n";
    return;
  }
  out << indent << "  #" << event.itemNumber << " " << event.itemName << " "
      << event.tag << " " << event.value << "\n";
}

struct DecodeOptions {
  std::string as;
  std::string file = "-";
  bool hex = false;
};

void RunDecode(const Context& context, const DecodeOptions& options) {
  const RecordType& type = FindRecordType(options.as);
  std::string bytes = ReadInput(options.file);
  if (options.hex) bytes = FromHex(bytes);

  std::ostream& out = *context.out;
  nv_ns::XStreamTrace trace([&out](const nv_ns::XStreamTraceEvent& event) {
    PrintEvent(out, event);
  });
  std::size_t total = 0;
  try {
    total = type.read(bytes);
  } catch (const std::exception& e) {
    out.flush();
    throw CLI::RuntimeError(e.what(), 1);
  }
  if (total < bytes.size()) {
    out << bytes.size() - total << " bytes follow the object\n";
  }
}

struct EncodeOptions {
  std::string as;
  std::vector<std::string> fields;
  bool hex = false;
  std::string output;
};

void RunEncode(const Context& context, const EncodeOptions& options) {
  const RecordType& type = FindRecordType(options.as);
  Fields fields;
  for (const std::string& field : options.fields) {
    const std::size_t eq = field.find('=');
    if (eq == std::string::npos) {
      throw CLI::RuntimeError("'" + field + "': expected name=value", 1);
    }
    fields.emplace_back(field.substr(0, eq), field.substr(eq + 1));
  }
  std::string bytes;
  try {
    bytes = type.write(type, fields);
  } catch (const CLI::RuntimeError&) {
    throw;
  } catch (const std::exception& e) {
    throw CLI::RuntimeError(e.what(), 1);
  }
  const std::string text = options.hex ? ToHex(bytes) : bytes;
  if (options.output.empty()) {
    context.out->write(text.data(), static_cast<std::streamsize>(text.size()));
    return;
  }
  const nvshared::Status written =
      nvshared::os::ReplaceFileAtomically(options.output, text);
  if (!written.ok()) throw CLI::RuntimeError(written.message(), 1);
}

}  // namespace

void AddDecodeCommand(CLI::App& app, Context& context) {
  auto options = std::make_shared<DecodeOptions>();
  CLI::App* decode = app.add_subcommand(
      "decode",
      "Read a tagged object from bytes and print its header and every item "
      "read, one per line: number, name, kind (T scalar, S string, C char "
      "array, V vector, E object vector, I nested object) and value. A bad "
      "buffer ends with the library's message and exit status 1.");
  decode
      ->add_option("--as", options->as,
                   "Record type, by object or class name: " + KnownRecords())
      ->required()
      ->type_name("NAME");
  decode
      ->add_option("file", options->file,
                   "File to read; '-' (the default) reads standard input")
      ->type_name("FILE");
  decode->add_flag("--hex", options->hex,
                   "The input is hex digit pairs, blanks allowed between "
                   "pairs");
  decode->callback([&context, options] { RunDecode(context, *options); });
}

void AddEncodeCommand(CLI::App& app, Context& context) {
  auto options = std::make_shared<EncodeOptions>();
  CLI::App* encode = app.add_subcommand(
      "encode",
      "Write a tagged object from name=value items (names as decode prints "
      "them; items not given keep their defaults) to standard output or a "
      "file.");
  encode
      ->add_option("--as", options->as,
                   "Record type, by object or class name: " + KnownRecords())
      ->required()
      ->type_name("NAME");
  encode->add_option("items", options->fields, "Items as name=value")
      ->type_name("NAME=VALUE");
  encode->add_flag("--hex", options->hex,
                   "Write hex digit pairs, 16 to a line, instead of bytes");
  encode
      ->add_option("-o,--output", options->output,
                   "Write to this file (replaced whole) instead of "
                   "standard output")
      ->type_name("FILE");
  encode->callback([&context, options] { RunEncode(context, *options); });
}

}  // namespace nvtool

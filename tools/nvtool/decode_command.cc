// nvtool decode and nvtool encode: tagged objects and whole messages in and
// out of bytes.
//
// decode reads a captured buffer (raw, or hex with --hex) and prints its
// header and every item read, one per line. The record type comes from --as
// or, without it, from the name in the buffer's header. With --message (or
// a buffer that starts like one) the input is the capture of a whole
// message or dictionary: decode prints every attachment's block and which
// message each factory builds from it. A bad buffer ends with the library's
// own message and exit status 1. encode writes a record (--as) or a message
// (--message) from name=value items, so that a round trip can be shown from
// the shell.
#include <cstdio>
#include <fstream>
#include <iostream>
#include <memory>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

#include "nvshared/messaging/xstream_trace.h"
#include "nvshared/platform/os/atomic_file.h"
#include "nvshared/platform/utils/opaque_capture.h"
#include "tools/nvtool/context.h"
#include "tools/nvtool/message_catalog.h"

namespace nvtool {
namespace {

// A tagged object's total length is a 16-bit field.
constexpr std::size_t kMaxObjectLength = 65535;
// Hex input may spend up to four characters on a byte (two digits, a blank
// and room for line breaks).
constexpr std::size_t kHexCharsPerByte = 4;

const RecordType& FindRecordType(const std::string& name) {
  const RecordType* type = FindRecord(name);
  if (type == nullptr) {
    throw CLI::RuntimeError(
        "--as " + name + ": unknown record; known: " + KnownRecords(), 1);
  }
  return *type;
}

// Reads at most `limit` bytes (or characters of hex); more is an error, so
// that nothing reads an endless standard input.
std::string ReadInput(const std::string& file, std::size_t limit,
                      const std::string& what) {
  std::ifstream in_file;
  std::istream* in = &std::cin;
  if (file != "-") {
    in_file.open(file, std::ios::binary);
    if (!in_file) {
      // The library's reader gives the system's reason.
      auto contents = nvshared::os::ReadWholeFile(file);
      throw CLI::RuntimeError(contents.ok() ? file + ": cannot open the file"
                                            : contents.status().message(),
                              1);
    }
    in = &in_file;
  }
  // In pieces, so that a small input costs a small buffer.
  std::string bytes;
  char chunk[65536];
  while (bytes.size() <= limit && *in) {
    in->read(chunk, sizeof chunk);
    bytes.append(chunk, static_cast<std::size_t>(in->gcount()));
  }
  if (bytes.size() > limit) {
    throw CLI::RuntimeError(
        "the input holds more than " + std::to_string(limit) + " " + what, 1);
  }
  return bytes;
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

void PrintEvent(std::ostream& out, const nv_ns::XStreamTraceEvent& event,
                int base_depth) {
  const std::string indent(2 * (event.depth + base_depth), ' ');
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

// Reads `bytes` as `type`, printing each header and item; returns the total
// length. The library's exception becomes the command's one-line failure.
std::size_t Trace(std::ostream& out, const RecordType& type,
                  const std::string& bytes, int base_depth) {
  nv_ns::XStreamTrace trace(
      [&out, base_depth](const nv_ns::XStreamTraceEvent& event) {
        PrintEvent(out, event, base_depth);
      });
  try {
    return type.read(bytes);
  } catch (const std::exception& e) {
    out.flush();
    throw CLI::RuntimeError(e.what(), 1);
  }
}

bool LooksLikeCapture(const std::string& bytes) {
  return bytes.compare(0, 4, nv_ns::OpaqueCapture::kMessageMagic) == 0 ||
         bytes.compare(0, 4, nv_ns::OpaqueCapture::kDictionaryMagic) == 0;
}

// The record named in the header of `bytes`.
const RecordType& RecogniseRecord(const std::string& bytes) {
  if (bytes.size() < 12) {
    throw CLI::RuntimeError(std::to_string(bytes.size()) +
                                " bytes hold no tagged object header; the "
                                "header alone takes 12",
                            1);
  }
  std::string name = bytes.substr(7, 5);
  name = name.substr(0, name.find('\0'));
  const RecordType* type = FindRecord(name);
  if (type == nullptr) {
    throw CLI::RuntimeError("no known record is named " +
                                nv_ns::QuoteBytes(name.data(), name.size()) +
                                "; known: " + KnownRecords(),
                            1);
  }
  return *type;
}

void PrintAttachment(std::ostream& out, short id, const std::string& bytes) {
  const std::string length = std::to_string(bytes.size()) + " bytes";
  if (const RecordType* type = FindRecordById(id)) {
    out << "attachment " << id << " " << type->objectName << " ("
        << type->className << "), " << length << "\n";
    Trace(out, *type, bytes, 1);
  } else if (const MessageType* message = FindMessageById(id)) {
    out << "attachment " << id << " (" << message->name << "), " << length
        << ": " << nv_ns::QuoteBytes(bytes.data(), bytes.size()) << "\n";
  } else {
    out << "attachment " << id << ", " << length << ": no block has this id\n";
  }
}

void DecodeMessage(std::ostream& out, const std::string& bytes) {
  auto capture = nv_ns::OpaqueCapture::Read(bytes);
  if (!capture.ok()) throw CLI::RuntimeError(capture.status().message(), 1);
  const bool is_message =
      capture->carrier == nv_ns::OpaqueCapture::Carrier::kMessage;
  if (is_message) {
    out << "OpaqueDataMessage, " << capture->message.AgileData().size()
        << " attachments\n";
    for (const auto& [id, data] : capture->message.AgileData()) {
      PrintAttachment(out, id, data);
    }
  } else {
    out << "dictionary, " << capture->entries.size() << " entries\n";
    for (const auto& [id, buffer] : capture->entries) {
      PrintAttachment(out, id,
                      std::string(buffer->m_pData,
                                  static_cast<std::size_t>(buffer->m_size)));
    }
  }
  FactoryResult result;
  try {
    result = is_message ? RunFactories(&capture->message, nullptr)
                        : RunFactories(nullptr, &capture->entries);
  } catch (const CLI::RuntimeError&) {
    throw;
  } catch (const std::exception& e) {
    out.flush();
    throw CLI::RuntimeError(e.what(), 1);
  }
  for (const std::string& line : result.lines) out << line << "\n";
}

struct DecodeOptions {
  std::string as;
  std::string file = "-";
  bool hex = false;
  bool message = false;
};

void RunDecode(const Context& context, const DecodeOptions& options) {
  const RecordType* type =
      options.as.empty() ? nullptr : &FindRecordType(options.as);
  // With --as the input is one object; otherwise it may be a capture.
  const std::size_t limit = type != nullptr
                                ? kMaxObjectLength
                                : nv_ns::OpaqueCapture::kMaxCaptureLength;
  const char* const most = type != nullptr ? "the most a tagged object takes"
                                           : "the most a capture takes";
  std::string bytes;
  if (options.hex) {
    bytes = FromHex(ReadInput(options.file, kHexCharsPerByte * limit,
                              std::string("characters of hex, ") + most));
  } else {
    bytes = ReadInput(options.file, limit, std::string("bytes, ") + most);
  }
  std::ostream& out = *context.out;
  if (options.message || (type == nullptr && LooksLikeCapture(bytes))) {
    DecodeMessage(out, bytes);
    return;
  }
  if (bytes.size() > kMaxObjectLength) {
    throw CLI::RuntimeError("the input holds more than " +
                                std::to_string(kMaxObjectLength) +
                                " bytes, the most a tagged object takes",
                            1);
  }
  if (type == nullptr) type = &RecogniseRecord(bytes);
  const std::size_t total = Trace(out, *type, bytes, 0);
  if (total < bytes.size()) {
    out << bytes.size() - total << " bytes follow the object\n";
  }
}

struct EncodeOptions {
  std::string as;
  std::string message;
  bool dictionary = false;
  std::vector<std::string> fields;
  bool hex = false;
  std::string output;
};

std::string EncodeMessage(const EncodeOptions& options, const Fields& fields) {
  const MessageType* type = FindMessage(options.message);
  if (type == nullptr) {
    throw CLI::RuntimeError("--message " + options.message +
                                ": unknown message; known: " + KnownMessages(),
                            1);
  }
  nvshared::StatusOr<std::string> saved = std::string();
  if (options.dictionary) {
    nv_ns::dictionary entries;
    type->save(fields, nullptr, &entries);
    saved = nv_ns::OpaqueCapture::Save(entries);
  } else {
    dv_core_ns::OpaqueDataMessage message;
    type->save(fields, &message, nullptr);
    saved = nv_ns::OpaqueCapture::Save(message);
  }
  if (!saved.ok()) throw CLI::RuntimeError(saved.status().message(), 1);
  return *saved;
}

void RunEncode(const Context& context, const EncodeOptions& options) {
  if (options.as.empty() == options.message.empty()) {
    throw CLI::RuntimeError("give one of --as NAME and --message NAME", 2);
  }
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
    if (!options.message.empty()) {
      bytes = EncodeMessage(options, fields);
    } else {
      const RecordType& type = FindRecordType(options.as);
      bytes = type.write(type, fields);
    }
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
      "Print a tagged object or a message capture read from bytes.\n"
      "Prints the object's header and every item read, one per line: "
      "number, name, kind (T scalar, S string, C char "
      "array, V vector, E object vector, I nested object) and value. With "
      "--message, or when the input starts with \"NVOM\" or \"NVOD\", read "
      "the capture of a whole message or dictionary: print each attachment "
      "and which message each factory builds. Input is limited to what the "
      "format can hold: 65535 bytes for an object, 16777216 for a capture. A "
      "bad buffer ends with the library's message and exit status 1.");
  CLI::Option* as =
      decode
          ->add_option(
              "--as", options->as,
              "Record type, by object or class name: " + KnownRecords() +
                  "; default: the name in the buffer's header")
          ->type_name("NAME");
  decode
      ->add_flag("--message", options->message,
                 "The input is a whole message or dictionary as nvtool "
                 "encode --message writes it; not with --as; default: off, "
                 "unless the input starts with \"NVOM\" or \"NVOD\"")
      ->excludes(as);
  decode
      ->add_option("FILE", options->file,
                   "File to read; '-' reads standard input; default: -")
      ->type_name("FILE");
  decode->add_flag("--hex", options->hex,
                   "The input is hex digit pairs, blanks allowed between "
                   "pairs; default: raw bytes");
  decode->footer(
      "nvtool decode --as CK --hex ck.hex\n"
      "prints the ConnectionKey written as hex digits in ck.hex, item by "
      "item.");
  decode->callback([&context, options] { RunDecode(context, *options); });
}

void AddEncodeCommand(CLI::App& app, Context& context) {
  auto options = std::make_shared<EncodeOptions>();
  CLI::App* encode = app.add_subcommand(
      "encode",
      "Write a tagged object or a whole message from name=value items.\n"
      "Writes a tagged object (--as) or a whole message (--message) from "
      "name=value items (names as decode prints them; items not given keep "
      "their defaults) to standard output or a file. List elements are "
      "indexed: m_list.elements[0].m_szMember=A "
      "m_list.elements[1].m_szMember=B; "
      "int vectors are comma-separated.");
  CLI::Option* as =
      encode
          ->add_option("--as", options->as,
                       "Record type, by object or class name: " +
                           KnownRecords() + "; not with --message")
          ->type_name("NAME");
  CLI::Option* message =
      encode
          ->add_option("--message", options->message,
                       "Message class to build and store: " + KnownMessages() +
                           "; not with --as")
          ->type_name("NAME")
          ->excludes(as);
  encode
      ->add_flag("--dictionary", options->dictionary,
                 "Store the message in a dictionary (\"NVOD\") instead of "
                 "an OpaqueDataMessage (\"NVOM\"); only with --message; "
                 "default: off")
      ->needs(message);
  encode
      ->add_option("ITEMS", options->fields,
                   "Items to set, as name=value; items not given keep "
                   "their defaults")
      ->type_name("NAME=VALUE");
  encode->add_flag("--hex", options->hex,
                   "Write hex digit pairs, 16 to a line, instead of bytes; "
                   "default: off");
  encode
      ->add_option("-o,--output", options->output,
                   "Write to this file (replaced whole); default: standard "
                   "output")
      ->type_name("FILE");
  encode->footer(
      "nvtool encode --as CK --hex m_brokerID=5 m_gatewayID=3 m_szMember=M\n"
      "prints the bytes of a ConnectionKey as hex digits; the items not "
      "given keep their defaults.");
  encode->callback([&context, options] { RunEncode(context, *options); });
}

}  // namespace nvtool

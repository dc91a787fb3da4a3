// What nvtool knows of the library's tagged objects and messages: every
// record and block by object name, class name and attachment id, how to read
// a buffer as it, and how to build one from name=value items; and every
// opaque and internal message, how to build one and store it in a carrier.
// Tables built once; used from nvtool's one thread.
#ifndef NVSHARED_TOOLS_NVTOOL_MESSAGE_CATALOG_H_
#define NVSHARED_TOOLS_NVTOOL_MESSAGE_CATALOG_H_

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "nvshared/platform/core/opaque_data_message.h"
#include "nvshared/platform/utils/data_buffer.h"

namespace nvtool {

using Fields = std::vector<std::pair<std::string, std::string>>;

// One tagged object type.
struct RecordType {
  const char* objectName;
  const char* className;
  // The attachment id its block travels under; 0 for records.
  short id;
  // The items encode accepts, in wire order; list elements as
  // "m_list.elements[N].name", engine infos as "m_engineInfos[N].name".
  std::vector<const char*> items;
  // Reads the buffer; returns the object's total length.
  std::size_t (*read)(const std::string& bytes);
  // Writes a record with `fields` set; the others keep their defaults.
  std::string (*write)(const RecordType& type, const Fields& fields);
};

const std::vector<RecordType>& RecordTypes();
// By object name or class name; null if none.
const RecordType* FindRecord(const std::string& name);
// By attachment id; null if none.
const RecordType* FindRecordById(short id);
std::string KnownRecords();

// One message that encode --message builds.
struct MessageType {
  const char* name;
  short id;
  // The items it takes: the base block's, then its own block's.
  std::vector<const char*> items;
  // Builds the message from `fields` and stores it in one of the carriers
  // (the other is null).
  void (*save)(const Fields& fields, dv_core_ns::OpaqueDataMessage* message,
               nv_ns::dictionary* entries);
};

const std::vector<MessageType>& MessageTypes();
const MessageType* FindMessage(const std::string& name);
const MessageType* FindMessageById(short id);
std::string KnownMessages();

// What the three factories make of a carrier, one line each ("no message"
// when one builds nothing), with whether the message built stores back the
// same bytes. A malformed block's exception goes to the caller.
struct FactoryResult {
  std::vector<std::string> lines;
};
FactoryResult RunFactories(const dv_core_ns::OpaqueDataMessage* message,
                           const nv_ns::dictionary* entries);

// Throws CLI::RuntimeError naming the item and the type's items.
[[noreturn]] void UnknownItem(const char* typeName,
                              const std::vector<const char*>& items,
                              const std::string& name);

}  // namespace nvtool

#endif  // NVSHARED_TOOLS_NVTOOL_MESSAGE_CATALOG_H_

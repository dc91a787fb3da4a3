#include "nvshared/defaults/defaults_table.h"

#include <limits>
#include <utility>

#include <nlohmann/json.hpp>

#include "nvshared/platform/core/agile_enums.h"
#include "nvshared/platform/core/consumer.h"

namespace nv_ns {

DefaultsTable::DefaultsTable(std::vector<DefaultsTableEntry> entries)
    : entries_(std::move(entries)) {}
DefaultsTable::~DefaultsTable() = default;

bool DefaultsTable::HasEntry() const { return position_ < entries_.size(); }
void DefaultsTable::Next() {
  if (position_ < entries_.size()) ++position_;
}
void DefaultsTable::Reset() { position_ = 0; }
void DefaultsTable::SaveBest() { best_ = position_; }
void DefaultsTable::RestoreBest() { position_ = best_; }
const char* DefaultsTable::GetTemplateName() const {
  return current().templateName.c_str();
}
unsigned short DefaultsTable::GetBrokerId() const { return current().brokerId; }
int DefaultsTable::GetHostValue() const { return current().hostValue; }
std::string DefaultsTable::GetGatewayName() const {
  return current().gatewayName;
}
int DefaultsTable::GetGMId() const { return current().gmId; }
bool DefaultsTable::IsWildGateway() const { return current().wildGateway; }
const char* DefaultsTable::GetProductNames() const {
  return current().productNames.c_str();
}
bool DefaultsTable::IsWildProductName() const {
  return current().wildProductName;
}
ProductType::Value DefaultsTable::GetProductType() const {
  return static_cast<ProductType::Value>(current().productType);
}
bool DefaultsTable::IsWildProductType() const {
  return current().wildProductType;
}
MarketType::Value DefaultsTable::GetMarketId() const {
  return static_cast<MarketType::Value>(current().marketId);
}
bool DefaultsTable::IsWildMarketId() const { return current().wildMarketId; }
bool DefaultsTable::IsExcluded() const { return current().excluded; }
bool DefaultsTable::IsFallback() const { return current().fallback; }

namespace {

using nlohmann::json;

// The reader of one entry; the first problem is kept and ends the read.
class EntryReader {
 public:
  EntryReader(const json& object, std::size_t index)
      : object_(object), index_(index) {}

  const std::string& error() const { return error_; }

  void Fail(const std::string& field, const std::string& what) {
    if (error_.empty())
      error_ = "entry " + std::to_string(index_) + ": field \"" + field +
               "\": " + what;
  }

  bool String(const char* field, std::string& out) {
    const auto it = object_.find(field);
    if (it == object_.end()) return false;
    if (!it->is_string()) {
      Fail(field, "expected a string");
      return false;
    }
    out = it->get<std::string>();
    return true;
  }

  void Bool(const char* field, bool& out) {
    const auto it = object_.find(field);
    if (it == object_.end()) return;
    if (!it->is_boolean()) return Fail(field, "expected true or false");
    out = it->get<bool>();
  }

  bool Int(const char* field, long long low, long long high, int& out) {
    const auto it = object_.find(field);
    if (it == object_.end()) return false;
    if (!it->is_number_integer()) {
      Fail(field, "expected an integer from " + std::to_string(low) + " to " +
                      std::to_string(high));
      return false;
    }
    // Unsigned JSON numbers above the signed range compare as large.
    const long long value =
        it->is_number_unsigned() && it->get<unsigned long long>() >
                                        static_cast<unsigned long long>(high)
            ? high + 1
            : it->get<long long>();
    if (value < low || value > high) {
      Fail(field, "expected an integer from " + std::to_string(low) + " to " +
                      std::to_string(high));
      return false;
    }
    out = static_cast<int>(value);
    return true;
  }

  // A number or a name that `lookup` turns into one (-1 for none).
  template <typename Lookup>
  bool IntOrName(const char* field, long long low, long long high,
                 const char* what, Lookup lookup, int& out) {
    const auto it = object_.find(field);
    if (it == object_.end()) return false;
    if (it->is_string()) {
      const std::string name = it->get<std::string>();
      const int value = lookup(name);
      if (value < 0) {
        Fail(field, "unknown " + std::string(what) + " \"" + name + "\"");
        return false;
      }
      out = value;
      return true;
    }
    return Int(field, low, high, out);
  }

 private:
  const json& object_;
  std::size_t index_;
  std::string error_;
};

constexpr const char* kFields[] = {
    "name",     "template",    "broker", "hostValue", "gateway", "gmId",
    "products", "productType", "market", "excluded",  "fallback"};

}  // namespace

nvshared::StatusOr<std::vector<DefaultsTableEntry>> ParseDefaultsTable(
    std::string_view text) {
  json document;
  try {
    document = json::parse(text.begin(), text.end());
  } catch (const json::exception& e) {
    return nvshared::Status::Error(std::string("not valid JSON: ") + e.what());
  }
  if (!document.is_object())
    return nvshared::Status::Error(
        "expected an object with an \"entries\" array");
  for (const auto& [key, value] : document.items()) {
    if (key != "entries")
      return nvshared::Status::Error("unknown field \"" + key + "\"");
  }
  const auto entries = document.find("entries");
  if (entries == document.end() || !entries->is_array())
    return nvshared::Status::Error(
        "expected an object with an \"entries\" array");

  std::vector<DefaultsTableEntry> table;
  table.reserve(entries->size());
  for (std::size_t i = 0; i < entries->size(); ++i) {
    const json& object = (*entries)[i];
    if (!object.is_object())
      return nvshared::Status::Error("entry " + std::to_string(i) +
                                     ": expected an object");
    EntryReader reader(object, i);
    for (const auto& [key, value] : object.items()) {
      bool known = false;
      for (const char* field : kFields) known = known || key == field;
      if (!known) reader.Fail(key, "unknown field");
    }
    DefaultsTableEntry entry;
    reader.String("name", entry.name);
    reader.String("template", entry.templateName);
    int broker = 0;
    if (reader.Int("broker", 0, std::numeric_limits<unsigned short>::max(),
                   broker))
      entry.brokerId = static_cast<unsigned short>(broker);
    reader.Int("hostValue", std::numeric_limits<int>::min(),
               std::numeric_limits<int>::max(), entry.hostValue);
    entry.wildGateway = !reader.String("gateway", entry.gatewayName);
    reader.Int("gmId", -1, std::numeric_limits<int>::max(), entry.gmId);
    entry.wildProductName = !reader.String("products", entry.productNames);
    entry.wildProductType = !reader.IntOrName(
        "productType", 1, std::numeric_limits<int>::max(), "product type",
        [](const std::string& name) {
          return dv_core_ns::AEnum_ProdIDs::FromName(name);
        },
        entry.productType);
    entry.wildMarketId = !reader.IntOrName(
        "market", 0, std::numeric_limits<int>::max(), "market",
        [](const std::string& name) {
          return dv_core_ns::CDVConsumer::GetMarketId(name.c_str());
        },
        entry.marketId);
    reader.Bool("excluded", entry.excluded);
    reader.Bool("fallback", entry.fallback);
    if (!reader.error().empty()) return nvshared::Status::Error(reader.error());
    table.push_back(std::move(entry));
  }
  return table;
}

}  // namespace nv_ns

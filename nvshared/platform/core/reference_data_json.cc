// Reads the reference-data JSON format (docs/formats/reference-data.md) into
// a ReferenceDataBuilder. Every error names the item by its place in the file
// ("series[4] (ESH4)") and what is wrong with it.
#include <charconv>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <string>

#include <nlohmann/json.hpp>

#include "nvshared/internal/ascii.h"
#include "nvshared/platform/core/market_table.h"
#include "nvshared/platform/core/reference_data.h"

namespace dv_core_ns {
namespace {

using nlohmann::json;
using nvshared::Status;

// Thrown inside the reader only; ParseJson turns it into a Status.
struct ReadError {
  std::string message;
};

[[noreturn]] void Fail(const std::string& where, const std::string& what) {
  throw ReadError{where + ": " + what};
}

void CheckFields(const json& object, const std::string& where,
                 std::initializer_list<const char*> known) {
  if (!object.is_object()) Fail(where, "must be an object");
  for (const auto& [name, value] : object.items()) {
    bool found = false;
    for (const char* k : known) found = found || name == k;
    if (!found) Fail(where, "unknown field \"" + name + "\"");
  }
}

const json* Field(const json& object, const char* name) {
  auto it = object.find(name);
  return it == object.end() ? nullptr : &*it;
}

const json& Required(const json& object, const std::string& where,
                     const char* name) {
  const json* value = Field(object, name);
  if (value == nullptr)
    Fail(where, std::string("missing field \"") + name + "\"");
  return *value;
}

long long Integer(const json& value, const std::string& where, const char* name,
                  long long lo, long long hi) {
  if (!value.is_number_integer()) {
    Fail(where, std::string("field \"") + name + "\" must be a whole number");
  }
  const long long v = value.is_number_unsigned()
                          ? static_cast<long long>(std::min<std::uint64_t>(
                                value.get<std::uint64_t>(),
                                std::numeric_limits<long long>::max()))
                          : value.get<long long>();
  if (v < lo || v > hi) {
    Fail(where, std::string("field \"") + name + "\" must be from " +
                    std::to_string(lo) + " to " + std::to_string(hi));
  }
  return v;
}

long long OptionalInteger(const json& object, const std::string& where,
                          const char* name, long long fallback, long long lo,
                          long long hi) {
  const json* value = Field(object, name);
  return value == nullptr ? fallback : Integer(*value, where, name, lo, hi);
}

std::string Text(const json& value, const std::string& where,
                 const char* name) {
  if (!value.is_string()) {
    Fail(where, std::string("field \"") + name + "\" must be a string");
  }
  return value.get<std::string>();
}

std::optional<std::string> OptionalText(const json& object,
                                        const std::string& where,
                                        const char* name) {
  const json* value = Field(object, name);
  if (value == nullptr) return std::nullopt;
  return Text(*value, where, name);
}

bool OptionalBool(const json& object, const std::string& where,
                  const char* name, bool fallback) {
  const json* value = Field(object, name);
  if (value == nullptr) return fallback;
  if (!value->is_boolean()) {
    Fail(where, std::string("field \"") + name + "\" must be true or false");
  }
  return value->get<bool>();
}

char OneChar(const json& object, const std::string& where, const char* name,
             char fallback) {
  const json* value = Field(object, name);
  if (value == nullptr) return fallback;
  const std::string text = Text(*value, where, name);
  if (text.size() != 1) {
    Fail(where, std::string("field \"") + name + "\" must be one character");
  }
  return text[0];
}

// "YYYY-MM" (day 0) or "YYYY-MM-DD".
Date ParseDate(const json& object, const std::string& where, const char* name) {
  const json* value = Field(object, name);
  if (value == nullptr) return Date();
  const std::string text = Text(*value, where, name);
  const auto date = nvshared::internal::ParseIsoDate(text, true);
  if (!date) {
    Fail(where, std::string("field \"") + name + "\" must be a date " +
                    "\"YYYY-MM\" or \"YYYY-MM-DD\", not \"" + text + "\"");
  }
  return Date(date->day, date->month, date->year);
}

int MarketId(const json& value, const std::string& where) {
  if (value.is_string()) {
    const std::string name = value.get<std::string>();
    const int id = MarketTableId(name);
    if (id < 0) Fail(where, "unknown market \"" + name + "\"");
    return id;
  }
  return static_cast<int>(Integer(value, where, "market", 0, 104));
}

int ProductType(const json& value, const std::string& where) {
  if (value.is_string()) {
    const std::string name = value.get<std::string>();
    const int type = AEnum_ProdIDs::FromName(name);
    if (type < 0) Fail(where, "unknown product type \"" + name + "\"");
    return type;
  }
  const int type = static_cast<int>(Integer(value, where, "type", 0, 500));
  if (*AEnum_ProdIDs::Name(type) == '\0') {
    Fail(where, "unknown product type " + std::to_string(type));
  }
  return type;
}

std::vector<std::pair<short, std::string>> Agile(const json& object,
                                                 const std::string& where) {
  std::vector<std::pair<short, std::string>> out;
  const json* agile = Field(object, "agile");
  if (agile == nullptr) return out;
  if (!agile->is_object()) Fail(where, "field \"agile\" must be an object");
  for (const auto& [tagText, value] : agile->items()) {
    int tag = 0;
    auto [end, ec] =
        std::from_chars(tagText.data(), tagText.data() + tagText.size(), tag);
    if (ec != std::errc() || end != tagText.data() + tagText.size() ||
        tag < -32768 || tag > 32767) {
      Fail(where, "agile tag \"" + tagText + "\" must be a 16-bit number");
    }
    out.emplace_back(static_cast<short>(tag),
                     Text(value, where, ("agile " + tagText).c_str()));
  }
  return out;
}

const json& Array(const json& root, const char* name) {
  static const json kEmpty = json::array();
  const json* value = Field(root, name);
  if (value == nullptr) return kEmpty;
  if (!value->is_array()) Fail(name, "must be an array");
  return *value;
}

void Check(const Status& status, const std::string& where) {
  if (!status.ok()) Fail(where, status.message());
}

std::string Where(const char* list, std::size_t index, const json& item,
                  const char* nameField) {
  std::string where = std::string(list) + "[" + std::to_string(index) + "]";
  if (item.is_object()) {
    const json* name = Field(item, nameField);
    if (name != nullptr && name->is_string()) {
      where += " (" + name->get<std::string>() + ")";
    }
  }
  return where;
}

void ReadExchanges(const json& root, ReferenceDataBuilder& builder) {
  const json& list = Array(root, "exchanges");
  for (std::size_t i = 0; i < list.size(); ++i) {
    const json& e = list[i];
    const std::string where = Where("exchanges", i, e, "name");
    CheckFields(e, where, {"id", "name", "market", "alias"});
    // One field at a time, so the first missing one is the one reported.
    const int id = static_cast<int>(
        Integer(Required(e, where, "id"), where, "id", 0, 32767));
    std::string name = Text(Required(e, where, "name"), where, "name");
    const int market = MarketId(Required(e, where, "market"), where);
    std::optional<std::string> alias = OptionalText(e, where, "alias");
    Check(builder.AddExchange(id, std::move(name), market, std::move(alias)),
          where);
  }
}

void ReadProducts(const json& root, ReferenceDataBuilder& builder) {
  const json& list = Array(root, "products");
  for (std::size_t i = 0; i < list.size(); ++i) {
    const json& p = list[i];
    const std::string where = Where("products", i, p, "name");
    CheckFields(p, where,
                {"exchange", "type", "name", "alias", "currency", "priceTable",
                 "priceDecimals", "agile"});
    ProductRecord record;
    record.id.exchange = static_cast<int>(
        Integer(Required(p, where, "exchange"), where, "exchange", 0, 32767));
    record.id.productType = ProductType(Required(p, where, "type"), where);
    if (!record.id.SetProductName(
            Text(Required(p, where, "name"), where, "name"))) {
      Fail(where, "the name is longer than " +
                      std::to_string(kProductNameSize - 1) + " characters");
    }
    record.alias = OptionalText(p, where, "alias");
    record.currency = OptionalText(p, where, "currency");
    record.priceTable = OptionalBool(p, where, "priceTable", false);
    record.priceDecimals =
        static_cast<int>(OptionalInteger(p, where, "priceDecimals", 0, 0, 9));
    for (const auto& [tag, value] : Agile(p, where)) {
      record.id.StoreAgileData(tag, value);
    }
    Check(builder.AddProduct(std::move(record)), where);
  }
}

void ReadSeries(const json& root, ReferenceDataBuilder& builder) {
  const json& list = Array(root, "series");
  constexpr long long kMin32 = std::numeric_limits<std::int32_t>::min();
  constexpr long long kMax32 = std::numeric_limits<std::int32_t>::max();
  for (std::size_t i = 0; i < list.size(); ++i) {
    const json& s = list[i];
    const std::string where = Where("series", i, s, "key");
    CheckFields(
        s, where,
        {"exchange", "key", "product", "type", "expiry", "contractExpiry",
         "callPut", "versionCode", "strike", "strikeDivisor", "strikeDecimals",
         "combCode", "seriesName", "attributes", "legs", "agile"});
    SeriesID series;
    const int exchange = static_cast<int>(
        Integer(Required(s, where, "exchange"), where, "exchange", 0, 32767));
    if (!series.SetSeriesKey(Text(Required(s, where, "key"), where, "key"))) {
      Fail(where, "the key is longer than " +
                      std::to_string(kSeriesKeySize - 1) + " characters");
    }
    series.product.exchange = exchange;
    series.product.productType = ProductType(Required(s, where, "type"), where);
    if (!series.product.SetProductName(
            Text(Required(s, where, "product"), where, "product"))) {
      Fail(where, "the product name is too long");
    }
    series.expiry = ParseDate(s, where, "expiry");
    series.contractExpiry = ParseDate(s, where, "contractExpiry");
    series.callPut = OneChar(s, where, "callPut", 'X');
    if (std::string_view("CPMX").find(series.callPut) ==
        std::string_view::npos) {
      Fail(where, "field \"callPut\" must be C, P, M or X");
    }
    series.versionCode = OneChar(s, where, "versionCode", '0');
    series.strike = static_cast<std::int32_t>(
        OptionalInteger(s, where, "strike", 0, kMin32, kMax32));
    series.strikeDivisor = static_cast<std::int32_t>(
        OptionalInteger(s, where, "strikeDivisor", 1, kMin32, kMax32));
    series.strikeDecimals = static_cast<std::int32_t>(
        OptionalInteger(s, where, "strikeDecimals", 0, 0, 9));
    series.combCode = static_cast<std::int16_t>(
        OptionalInteger(s, where, "combCode", 500, -32768, 32767));
    if (auto name = OptionalText(s, where, "seriesName")) {
      series.seriesName.Assign(*name);
    }
    if (auto attributes = OptionalText(s, where, "attributes")) {
      series.seriesAttributes.Assign(*attributes);
    }
    for (const auto& [tag, value] : Agile(s, where)) {
      series.StoreAgileData(tag, value);
    }

    std::optional<std::vector<ReferenceDataBuilder::LegSpec>> legs;
    if (const json* legList = Field(s, "legs")) {
      if (!legList->is_array()) Fail(where, "field \"legs\" must be an array");
      legs.emplace();
      for (std::size_t n = 0; n < legList->size(); ++n) {
        const json& l = (*legList)[n];
        const std::string legWhere = where + " leg " + std::to_string(n + 1);
        CheckFields(l, legWhere,
                    {"exchange", "series", "ratio", "strike", "agile"});
        ReferenceDataBuilder::LegSpec legRef;
        legRef.exchange = static_cast<int>(
            OptionalInteger(l, legWhere, "exchange", exchange, 0, 32767));
        legRef.seriesKey =
            Text(Required(l, legWhere, "series"), legWhere, "series");
        legRef.ratio = static_cast<int>(Integer(
            Required(l, legWhere, "ratio"), legWhere, "ratio", kMin32, kMax32));
        legRef.strike = static_cast<int>(
            OptionalInteger(l, legWhere, "strike", 0, kMin32, kMax32));
        legRef.agile = Agile(l, legWhere);
        legs->push_back(std::move(legRef));
      }
    }
    Check(builder.AddSeries(std::move(series), std::move(legs)), where);
  }
}

}  // namespace

nvshared::StatusOr<std::unique_ptr<const ReferenceData>>
ReferenceData::ParseJson(std::string_view text) {
  try {
    const json root = json::parse(text.begin(), text.end());
    CheckFields(root, "reference data",
                {"exchangeIdCount", "exchanges", "products", "series"});
    ReferenceDataBuilder builder;
    if (const json* count = Field(root, "exchangeIdCount")) {
      builder.SetExchangeIdCount(static_cast<int>(
          Integer(*count, "reference data", "exchangeIdCount", 1, 32768)));
    }
    ReadExchanges(root, builder);
    ReadProducts(root, builder);
    ReadSeries(root, builder);
    return builder.Build();
  } catch (const ReadError& e) {
    return Status::Error(e.message);
  } catch (const json::parse_error& e) {
    return Status::Error("not valid JSON: " + std::string(e.what()));
  } catch (const json::exception& e) {
    return Status::Error("bad reference data: " + std::string(e.what()));
  }
}

}  // namespace dv_core_ns

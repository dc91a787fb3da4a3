// Feeds the host the parameter tables of a price-model plug-in built from
// arbitrary bytes: an in-process factory whose GetPriceModelParams fills
// the host's table as the bytes say, read through the library's look-up as
// a loaded plug-in's would be, and then the key-values read are sent back
// for validation. The host must never crash, leak or read outside the
// table, whatever the shape, the absent cells or the status.
//
// Bytes, all lengths checked against what remains:
//   status  u8      0 success, 1 a failed status, 2 a C++ exception,
//                   3 success without giving the table a shape
//   rows    u8
//   columns u8
//   cells, row by row: present u8 (0 absent), then if present
//                      length u8, length bytes of text
// Missing bytes leave the remaining cells absent.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "nvshared/platform/log/log_sink.h"
#include "nvshared/platform/log/logger.h"
#include "nvshared/udp/custom_price_model.h"

namespace {

class Discard final : public dv_log::LogSink {
 public:
  void Write(const dv_log::LogRecord&) override {}
};

class BytesFactory final : public nv_pm::IPriceModelFactory {
 public:
  BytesFactory(const std::uint8_t* data, std::size_t size)
      : data_(data), size_(size) {}
  nv_pm::NvStatus QueryInterface(const char*, void** object) override {
    *object = nullptr;
    return nv_pm::kNoInterface;
  }
  uint32_t AddRef() override { return 2; }
  uint32_t Release() override { return 1; }
  nv_pm::NvStatus GetMemberName(int32_t id, nv_pm::ITextOut* name) override {
    if (id == 1) return name->Assign("GetPriceModelParams");
    if (id == 2) return name->Assign("ValidateParams");
    return nv_pm::kBadIndex;
  }
  nv_pm::NvStatus GetPriceModelCount(int32_t* count) override {
    *count = 1;
    return nv_pm::kOk;
  }
  nv_pm::NvStatus GetPriceModelName(int32_t, nv_pm::ITextOut* name) override {
    return name->Assign("Fuzz");
  }
  nv_pm::NvStatus CreatePriceModel(int32_t, nv_pm::IPluginObject**) override {
    return nv_pm::kNotImplemented;
  }
  nv_pm::NvStatus GetPriceModelParams(int32_t,
                                      nv_pm::IStringTable* table) override {
    std::size_t at = 0;
    const auto next = [&](std::uint8_t& byte) {
      if (at >= size_) return false;
      byte = data_[at++];
      return true;
    };
    std::uint8_t status = 0, rows = 0, columns = 0;
    if (!next(status) || !next(rows) || !next(columns)) return nv_pm::kFail;
    if (status == 1) return nv_pm::kFirstInterfaceError + rows;
    if (status == 2) throw std::runtime_error("fuzz");
    if (status == 3) return nv_pm::kOk;
    if (nv_pm::NvStatus s = table->Resize(rows, columns)) return s;
    for (int row = 0; row < rows; ++row) {
      for (int column = 0; column < columns; ++column) {
        std::uint8_t present = 0, length = 0;
        if (!next(present)) return nv_pm::kOk;
        if (present == 0) continue;
        if (!next(length) || length > size_ - at) return nv_pm::kOk;
        const std::string text(reinterpret_cast<const char*>(data_ + at),
                               length);
        at += length;
        table->Set(row, column, text.c_str());
      }
    }
    // Out of range on purpose: the table refuses, the host never sees it.
    table->Set(rows, columns, "outside");
    return nv_pm::kOk;
  }
  nv_pm::NvStatus ValidateParams(int32_t, const nv_pm::IStringTable* params,
                                 nv_pm::ITextOut* message,
                                 int32_t* valid) override {
    struct Text final : nv_pm::ITextOut {
      nv_pm::NvStatus Assign(const char* text) override {
        value = text;
        return nv_pm::kOk;
      }
      std::string value;
    } cell;
    std::string all;
    for (int32_t row = -1; row <= params->Rows(); ++row) {
      for (int32_t column = -1; column <= params->Columns(); ++column) {
        if (nv_pm::Succeeded(params->Get(row, column, &cell)))
          all += cell.value;
      }
    }
    *valid = all.empty() ? 0 : 1;
    return message->Assign(all.c_str());
  }

 private:
  const std::uint8_t* data_;
  std::size_t size_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data,
                                      std::size_t size) {
  static const bool quiet = [] {
    dv_log::GetCustomLog()->SetSink(std::make_shared<Discard>());
    return true;
  }();
  (void)quiet;
  BytesFactory factory(data, size);
  CCustomUDPTypeLib library("/fuzz/pricemodels/fuzz.so");
  library.AddFactory(&factory, [](const std::string&) { return false; });
  std::vector<UDPKeyValue> params(1);
  const bool read = library.GetCustomPriceModelParams("Fuzz", params);
  if (!read && !params.empty()) std::abort();  // the list is cleared first
  std::string message;
  const bool valid =
      library.ValidateCustomPricingModelParams("Fuzz", params, message);
  if (params.empty() && !valid) std::abort();  // nothing to check is valid
  library.m_mapModels.clear();                 // the factory lives on the stack
  return 0;
}

// The interface between the front end and a custom price model plug-in: a
// shared object in <config dir>/pricemodels/ that exports one C entry point,
// nvPriceModelLibrary, which yields the library's classes. A class makes a
// factory (IPriceModelFactory); a factory names its models and makes them
// (IPriceModel); a model converts exchange prices into user-defined prices
// and back.
//
// Header only: a plug-in includes it and links nothing of nvshared. The
// boundary is the virtual table of these abstract classes, so every
// operation is a pure virtual function with plain C types: int32_t statuses
// whose sign tells failure, UTF-8 text, doubles. Nothing allocated on one
// side is freed on the other: text and tables are objects of the host
// (ITextOut, IStringTable) that the plug-in writes into or reads from during
// the call. No C++ exception may leave a plug-in function; the host contains
// one that does, but the plug-in's state is then whatever it was.
//
// Ownership: objects are reference counted. An object handed out through an
// out pointer (QueryInterface, CreateInstance, CreatePriceModel) carries one
// reference for the receiver, which gives it back with Release. Threads: the
// host calls an object from one thread at a time.
#ifndef NVSHARED_UDP_PRICE_MODEL_SDK_H_
#define NVSHARED_UDP_PRICE_MODEL_SDK_H_

#include <stdint.h>

namespace nv_pm {

// Statuses. Negative is failure; the values are the customary ones, so a
// status reads the same in every tool.
typedef int32_t NvStatus;
constexpr NvStatus kOk = 0;
constexpr NvStatus kFalse = 1;
constexpr NvStatus kNotImplemented = static_cast<NvStatus>(0x80004001u);
constexpr NvStatus kNoInterface = static_cast<NvStatus>(0x80004002u);
constexpr NvStatus kInvalidPointer = static_cast<NvStatus>(0x80004003u);
constexpr NvStatus kAborted = static_cast<NvStatus>(0x80004004u);
constexpr NvStatus kFail = static_cast<NvStatus>(0x80004005u);
constexpr NvStatus kUnexpected = static_cast<NvStatus>(0x8000FFFFu);
constexpr NvStatus kTypeMismatch = static_cast<NvStatus>(0x80020005u);
constexpr NvStatus kBadIndex = static_cast<NvStatus>(0x8002000Bu);
constexpr NvStatus kOutOfMemory = static_cast<NvStatus>(0x8007000Eu);
constexpr NvStatus kInvalidArgument = static_cast<NvStatus>(0x80070057u);
// The first of the statuses an interface defines for itself; 0x80040200 + n
// reads as "IDispatch error #n".
constexpr NvStatus kFirstInterfaceError = static_cast<NvStatus>(0x80040200u);

inline bool Failed(NvStatus status) { return status < 0; }
inline bool Succeeded(NvStatus status) { return status >= 0; }

// Interface ids, compared as exact texts by QueryInterface.
constexpr const char* kIID_IPluginObject =
    "4f3c9a52-1d7e-4b0a-93c1-6e2f8b5d7a04";
constexpr const char* kIID_IPriceModelFactory =
    "810ddb72-68a1-4b59-8ed5-ebc94dba683a";
constexpr const char* kIID_IPriceModel = "6f022088-370f-4e81-b8ab-0b64f9556e02";

// A text the host owns. The plug-in assigns it (UTF-8, NUL-terminated); a
// null text is taken as empty. Assign copies at once.
class ITextOut {
 public:
  virtual NvStatus Assign(const char* text) = 0;

 protected:
  ~ITextOut() = default;
};

// A two-dimensional table of texts, rows by columns, indices from 0, that
// the host owns. A table the plug-in must fill starts without a shape
// (Rows() and Columns() are -1), which stands for "no value"; Resize gives
// it one, with every cell absent (at most 65536 cells, else kOutOfMemory).
// Get fails for a cell outside the shape (kBadIndex) or an absent one
// (kTypeMismatch) and leaves `text` untouched; Set stores a copy.
class IStringTable {
 public:
  virtual int32_t Rows() const = 0;
  virtual int32_t Columns() const = 0;
  virtual NvStatus Resize(int32_t rows, int32_t columns) = 0;
  virtual NvStatus Get(int32_t row, int32_t column, ITextOut* text) const = 0;
  virtual NvStatus Set(int32_t row, int32_t column, const char* text) = 0;

 protected:
  ~IStringTable() = default;
};

// The base of every plug-in object.
class IPluginObject {
 public:
  // Stores in *object the interface `iid` of this object with one more
  // reference, or null and kNoInterface.
  virtual NvStatus QueryInterface(const char* iid, void** object) = 0;
  virtual uint32_t AddRef() = 0;
  virtual uint32_t Release() = 0;
  // The object's type information: the name of member `memberId`, counted
  // from 1, or a failure (or an empty name) past the last member. The host
  // looks up the optional methods of a factory by these names
  // ("GetPriceModelParams", "ValidateParams").
  virtual NvStatus GetMemberName(int32_t memberId, ITextOut* name) = 0;

 protected:
  ~IPluginObject() = default;
};

// Makes the models of one class.
class IPriceModelFactory : public IPluginObject {
 public:
  virtual NvStatus GetPriceModelCount(int32_t* count) = 0;
  virtual NvStatus GetPriceModelName(int32_t index, ITextOut* name) = 0;
  // A new model object, with one reference for the caller.
  virtual NvStatus CreatePriceModel(int32_t index, IPluginObject** model) = 0;
  // Optional (see GetMemberName). Resizes `params` to rows of six columns:
  // type word, key, default value, display name, tooltip, constraints.
  virtual NvStatus GetPriceModelParams(int32_t index, IStringTable* params) = 0;
  // Optional. `params` holds rows of key and value; *valid > 0 accepts
  // them, and `message` says why not.
  virtual NvStatus ValidateParams(int32_t index, const IStringTable* params,
                                  ITextOut* message, int32_t* valid) = 0;

 protected:
  ~IPriceModelFactory() = default;
};

// One model: its parameters come as rows of key and value.
class IPriceModel : public IPluginObject {
 public:
  virtual NvStatus Initialize(const IStringTable* params) = 0;
  virtual NvStatus ConvertPriceToUDP(double price, double* udp) = 0;
  virtual NvStatus ConvertUDPToPrice(double udp, double* price) = 0;

 protected:
  ~IPriceModel() = default;
};

// The classes of a library, standing for its type descriptions. The object
// lives as long as the library is loaded and is not reference counted.
class IPriceModelLibrary {
 public:
  virtual int32_t GetClassCount() = 0;
  // The class's description (a name for people); a failure ends the walk
  // over the classes.
  virtual NvStatus GetClassInfo(int32_t index, ITextOut* description) = 0;
  // The class id of a class; a failure skips the class.
  virtual NvStatus GetClassId(int32_t index, ITextOut* classId) = 0;
  // A new object of the class, with one reference for the caller.
  virtual NvStatus CreateInstance(const char* classId,
                                  IPluginObject** object) = 0;

 protected:
  ~IPriceModelLibrary() = default;
};

}  // namespace nv_pm

// The entry point a plug-in exports, under this name and with C linkage:
//   extern "C" NV_PRICE_MODEL_EXPORT nv_pm::IPriceModelLibrary*
//   nvPriceModelLibrary(void);
#define NV_PRICE_MODEL_ENTRY_POINT "nvPriceModelLibrary"
#define NV_PRICE_MODEL_EXPORT __attribute__((visibility("default")))
typedef nv_pm::IPriceModelLibrary* (*NvPriceModelLibraryFn)(void);

#endif  // NVSHARED_UDP_PRICE_MODEL_SDK_H_

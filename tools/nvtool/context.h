// What the subcommands of nvtool share: the reference data to load and the
// streams to write to. Subcommands print to `out`; a failure is one line on
// `err` and a non-zero exit status.
#ifndef NVSHARED_TOOLS_NVTOOL_CONTEXT_H_
#define NVSHARED_TOOLS_NVTOOL_CONTEXT_H_

#include <iosfwd>
#include <string>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>

#include "nvshared/status.h"

class CCustomPriceModelManager;

namespace nvtool {

// The bundled sample reference data, compiled in.
extern const char* const kEmbeddedReferenceData;

// Every sample file of data/, compiled in, by file name; the list ends with
// a null name.
struct EmbeddedFile {
  const char* name;
  const char* text;
};
extern const EmbeddedFile kEmbeddedSampleFiles[];

struct Context {
  // --refdata: a file to use instead of the bundled data.
  std::string refdataPath;
  std::ostream* out;
  std::ostream* err;

  // Installs the reference data named by --refdata, or the bundled data.
  nvshared::Status LoadReferenceData() const;
};

// Refuses a number option given as anything but a finite number: text, NaN
// or infinity, which the parser of doubles otherwise takes:
// `->check(FiniteNumber())`.
CLI::Validator FiniteNumber();

// Accepts one of `choices`, in any case, and passes on its value:
// `->transform(OneOfNamed({{"name", "1"}, {"alias", "2"}}))`. Anything else is
// refused with "Value X is not one of ...", the choices listed.
CLI::Validator OneOfNamed(
    std::vector<std::pair<std::string, std::string>> choices);

// Accepts one of `values` as written, in any case.
CLI::Validator OneOf(const std::vector<std::string>& values);

// Each subcommand adds itself to the application.
void AddExchangesCommand(CLI::App& app, Context& context);
void AddDemoCommand(CLI::App& app, Context& context);
void AddMgtCommand(CLI::App& app, Context& context);
void AddNameCommand(CLI::App& app, Context& context);
void AddYieldCommand(CLI::App& app, Context& context);
void AddPriceCommand(CLI::App& app, Context& context);
void AddMatchCommand(CLI::App& app, Context& context);
void AddDecodeCommand(CLI::App& app, Context& context);
void AddEncodeCommand(CLI::App& app, Context& context);
void AddColumnCommand(CLI::App& app, Context& context);
void AddSortCommand(CLI::App& app, Context& context);
void AddNamesCommand(CLI::App& app, Context& context);
void AddModelsCommand(CLI::App& app, Context& context);

// The configuration directory installed beside nvtool, whose pricemodels/
// holds the example model.
std::string DefaultPriceModelDir();
// Loads the price-model plug-ins of `configDir`/pricemodels into the
// manager, as a host does at start-up; a missing directory is an error.
CCustomPriceModelManager& LoadPriceModels(const std::string& configDir);

}  // namespace nvtool

#endif  // NVSHARED_TOOLS_NVTOOL_CONTEXT_H_

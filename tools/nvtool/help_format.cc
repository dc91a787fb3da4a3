#include "tools/nvtool/help_format.h"

#include <algorithm>
#include <map>
#include <regex>
#include <utility>
#include <vector>

namespace nvtool {
namespace {

// Where option descriptions begin.
constexpr std::size_t kDescriptionColumn = 24;
// Where command summaries begin in the command list.
constexpr std::size_t kSummaryColumn = 14;

std::vector<std::string> Words(const std::string& text) {
  std::vector<std::string> words;
  std::string word;
  for (const char c : text) {
    if (c == ' ' || c == '\t' || c == '\n') {
      if (!word.empty()) words.push_back(std::move(word));
      word.clear();
    } else {
      word += c;
    }
  }
  if (!word.empty()) words.push_back(std::move(word));
  return words;
}

// The text before the first line break, and the rest after it.
std::pair<std::string, std::string> SplitSummary(const std::string& text) {
  const std::size_t end = text.find('\n');
  if (end == std::string::npos) return {text, ""};
  const std::size_t rest = text.find_first_not_of('\n', end);
  return {text.substr(0, end),
          rest == std::string::npos ? "" : text.substr(rest)};
}

// Paragraphs (separated by line breaks) each wrapped at the margin.
std::string Paragraphs(const std::string& text) {
  std::string out;
  std::size_t begin = 0;
  while (begin < text.size()) {
    std::size_t end = text.find('\n', begin);
    if (end == std::string::npos) end = text.size();
    const std::string paragraph = text.substr(begin, end - begin);
    if (!paragraph.empty())
      out += (out.empty() ? "" : "\n") + Wrap(paragraph, 0, 0);
    begin = end + 1;
  }
  return out;
}

std::string OptionNames(const CLI::Option& option) {
  std::string names;
  for (const std::string& s : option.get_snames()) {
    names += (names.empty() ? "-" : ", -") + s;
  }
  for (const std::string& l : option.get_lnames()) {
    names += (names.empty() ? "--" : ", --") + l;
  }
  return names;
}

bool TakesMany(const CLI::Option& option) {
  return option.get_expected_max() >= CLI::detail::expected_max_vector_size;
}

// A positional as the usage line shows it: FILE, [FILE], [KEY...].
std::string PositionalUsage(const CLI::Option& option) {
  const std::string text =
      Metavariable(option) + (TakesMany(option) ? "..." : "");
  return option.get_required() ? text : "[" + text + "]";
}

// One entry of a list: the label, then the text from the description
// column (on the next line when the label reaches it).
std::string Entry(const std::string& label, const std::string& text,
                  std::size_t column) {
  std::string out = "  " + label;
  if (text.empty()) return out + "\n";
  if (out.size() + 2 > column) {
    out += "\n" + std::string(column, ' ');
  } else {
    out.append(column - out.size(), ' ');
  }
  return out + Wrap(text, column, column);
}

std::string OptionText(const CLI::Option& option, bool isFlag) {
  std::string text = option.get_description();
  if (option.get_required() && !option.get_positional()) text += "; required";
  const std::string defaultText = isFlag ? "off" : option.get_default_str();
  if (!defaultText.empty() && text.find("default") == std::string::npos) {
    text += "; default: " + defaultText;
  }
  if (text.starts_with("; ")) text.erase(0, 2);
  return text;
}

bool Shown(const CLI::Option* option) { return !option->get_group().empty(); }

}  // namespace

std::string Metavariable(const CLI::Option& option) {
  if (option.get_type_size_max() == 0 || option.get_expected_max() == 0) {
    return "";  // a flag
  }
  if (!option.get_option_text().empty()) return option.get_option_text();
  std::string name = option.get_type_name();
  name = name.substr(0, name.find(':'));
  // The parser's own names for types, should an option not name its value.
  static const std::map<std::string, std::string> kWords = {
      {"INT", "N"}, {"UINT", "N"}, {"FLOAT", "NUMBER"}, {"TEXT", "VALUE"}};
  const auto word = kWords.find(name);
  if (word != kWords.end()) return word->second;
  return name.empty() ? "VALUE" : name;
}

std::string Wrap(const std::string& text, std::size_t indent,
                 std::size_t column, std::size_t width) {
  std::string out;
  std::size_t at = column;
  bool lineEmpty = true;
  for (const std::string& word : Words(text)) {
    if (!lineEmpty && at + 1 + word.size() > width) {
      out += "\n" + std::string(indent, ' ');
      at = indent;
      lineEmpty = true;
    }
    if (!lineEmpty) {
      out += ' ';
      ++at;
    }
    out += word;
    at += word.size();
    lineEmpty = false;
  }
  return out + "\n";
}

std::string HelpFormatter::make_help(const CLI::App* app, std::string name,
                                     CLI::AppFormatMode /*mode*/) const {
  const std::vector<const CLI::Option*> positionals = app->get_options(
      [](const CLI::Option* o) { return o->get_positional() && Shown(o); });
  std::vector<const CLI::Option*> options = app->get_options(
      [](const CLI::Option* o) { return o->nonpositional() && Shown(o); });
  // Help last, after what the command does.
  std::stable_partition(
      options.begin(), options.end(),
      [app](const CLI::Option* o) { return o != app->get_help_ptr(); });
  const std::vector<const CLI::App*> commands =
      app->get_subcommands([](const CLI::App* sub) {
        return !sub->get_disabled() && !sub->get_name().empty();
      });

  std::string usage = "Usage: " + (name.empty() ? app->get_name() : name);
  if (!options.empty()) usage += " [OPTIONS]";
  if (!commands.empty()) usage += " COMMAND [ARGUMENTS]";
  for (const CLI::Option* p : positionals) usage += " " + PositionalUsage(*p);

  const auto [summary, details] = SplitSummary(app->get_description());
  std::string out = Wrap(usage, 4, 0) + "\n" + Paragraphs(summary);
  if (!details.empty()) out += "\n" + Paragraphs(details);

  if (!positionals.empty()) {
    out += "\nArguments:\n";
    for (const CLI::Option* p : positionals) {
      out += Entry(Metavariable(*p) + (TakesMany(*p) ? "..." : ""),
                   OptionText(*p, false), kDescriptionColumn);
    }
  }
  if (!options.empty()) {
    out += "\nOptions:\n";
    for (const CLI::Option* o : options) {
      const std::string meta = Metavariable(*o);
      // Help and version are actions, not settings: they have no default.
      const bool setting =
          o != app->get_help_ptr() && o->get_name() != "--version";
      out += Entry(OptionNames(*o) + (meta.empty() ? "" : " " + meta),
                   OptionText(*o, setting && meta.empty()), kDescriptionColumn);
    }
  }
  if (!commands.empty()) {
    out += "\nCommands:\n";
    for (const CLI::App* sub : commands) {
      out += Entry(sub->get_name(), SplitSummary(sub->get_description()).first,
                   kSummaryColumn);
    }
    out += "\n" + Paragraphs("Run '" + app->get_name() +
                             " COMMAND --help' for a command's arguments, "
                             "options and an example.");
  }
  // A command's example is its own, not the tool's it inherited.
  const CLI::App* parent = app->get_parent();
  const std::string footer =
      parent != nullptr && parent->get_footer() == app->get_footer()
          ? ""
          : app->get_footer();
  const auto [example, meaning] = SplitSummary(footer);
  if (!example.empty()) {
    out += "\nExample:\n  " + example + "\n";
    if (!meaning.empty()) out += "  " + Wrap(meaning, 2, 2);
  }
  return out;
}

std::string UsageErrorLine(const std::string& command, std::string message) {
  for (char& c : message) {
    if (c == '\n' || c == '\r') c = ' ';
  }
  while (!message.empty() && message.back() == ' ') message.pop_back();
  // The parser's words for a value its option's type cannot hold, which in
  // this tool is always a number, and for an option left without its value.
  static const std::regex kNoConversion("^Could not convert: (.+) = (.*)$");
  static const std::regex kMissing("^(\\S+): 1 required (\\S+) missing$");
  message =
      std::regex_replace(message, kNoConversion, "$1: Value $2 not a number");
  message = std::regex_replace(message, kMissing, "$1: needs a value, $2");
  const std::string prefix = command.empty() ? "" : command + ": ";
  if (!prefix.empty() && message.starts_with(prefix)) {
    message.erase(0, prefix.size());
  }
  return "nvtool: " + prefix + message + "; see 'nvtool " +
         (command.empty() ? "" : command + " ") + "--help'";
}

}  // namespace nvtool

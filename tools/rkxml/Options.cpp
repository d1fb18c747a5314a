#include "Options.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <numeric>
#include <string_view>
#include <vector>

#include "Text.h"
#include "schema/emit/Emitter.h"

using namespace RkXmlLib16;

namespace {

std::string Quoted(std::string_view word) { return "'" + ForTerminal(word) + "'"; }

[[noreturn]] void ThrowBadValue(std::string_view option, std::string_view value, const std::string& allowed) {
  throw UsageError("option " + std::string(option) + " does not take " + Quoted(value), "it takes " + allowed);
}

const Form* FormOption(std::string_view option, std::string_view value) {
  if (const Form* form = FindForm(value)) return form;
  ThrowBadValue(option, value, FormNames(", "));
}

std::wstring IndentOption(std::string_view value) {
  if (value == "tab") return L"\t";
  const bool digits = !value.empty() && value.size() <= 2 &&
                      std::all_of(value.begin(), value.end(), [](char c) { return c >= '0' && c <= '9'; });
  if (!digits) ThrowBadValue("--indent", value, "a number of blanks from 0 to 99, or tab");
  return std::wstring(std::stoul(std::string(value)), L' ');
}

EOLType EolOption(std::string_view value) {
  if (value == "lf") return EOLType_LF;
  if (value == "crlf") return EOLType_CRLF;
  ThrowBadValue("--eol", value, "lf, crlf");
}

XmlEncoding EncodingOption(std::string_view value) {
  if (value == "utf-8") return XmlEncoding_UTF8;
  if (value == "utf-16") return XmlEncoding_UTF16;
  if (value == "wide") return XmlEncoding_Wide;
  ThrowBadValue("--encoding", value, "utf-8, utf-16, wide");
}

JsonRoundTrip ModeOption(std::string_view value) {
  if (value == "0") return JsonRoundTrip_Plain;
  if (value == "1") return JsonRoundTrip_Markers;
  if (value == "2") return JsonRoundTrip_Namespaces;
  ThrowBadValue("--mode", value, "0, 1, 2");
}

FInfoDecl DeclarationOption(std::string_view value) {
  if (value.size() != 1 || value[0] < '0' || value[0] > '9') ThrowBadValue("--declaration", value, "0 to 9");
  return static_cast<FInfoDecl>(value[0] - '0');
}

// "none", or NAME=VALUE,... where a value of 0 means none.
void ApplyLimits(CReadLimits& limits, std::string_view value) {
  static constexpr struct {
    std::string_view name;
    void (CReadLimits::*set)(unsigned long);
  } kLimits[] = {
      {"depth", &CReadLimits::SetMaxElementDepth},
      {"nodes", &CReadLimits::SetMaxNodes},
      {"characters", &CReadLimits::SetMaxCharacters},
      {"inflated-bytes", &CReadLimits::SetMaxInflatedBytes},
      {"inflation-ratio", &CReadLimits::SetMaxInflationRatio},
      {"expansion-ratio", &CReadLimits::SetMaxExpansionRatio},
      {"pattern-steps", &CReadLimits::SetMaxPatternSteps},
  };
  if (value == "none") {
    for (const auto& limit : kLimits) (limits.*limit.set)(0);
    return;
  }
  std::string allowed = "none, or NAME=NUMBER,... with";
  for (const auto& limit : kLimits) allowed += " " + std::string(limit.name);
  while (!value.empty()) {
    const std::string_view item = value.substr(0, value.find(','));
    value.remove_prefix(std::min(item.size() + 1, value.size()));
    const std::size_t equals = std::min(item.find('='), item.size());
    const auto* const limit = std::find_if(std::begin(kLimits), std::end(kLimits),
                                           [&](const auto& known) { return known.name == item.substr(0, equals); });
    const std::string_view digits = item.substr(std::min(equals + 1, item.size()));
    unsigned long number = 0;
    const auto parsed = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (limit == std::end(kLimits) || parsed.ec != std::errc() || parsed.ptr != digits.data() + digits.size())
      ThrowBadValue("--limits", item, allowed);
    (limits.*limit->set)(number);
  }
}

// URI=cpp::name
std::pair<std::string, std::string> NamespaceOption(std::string_view value) {
  const std::size_t equals = value.rfind('=');
  const std::string_view name = equals == std::string_view::npos ? std::string_view() : value.substr(equals + 1);
  if (!RkXmlSchema::IsNamespaceName(name)) ThrowBadValue("--namespace", value, "URI=NAME with a free C++ namespace");
  return {std::string(value.substr(0, equals)), std::string(name)};
}

unsigned long long CountOption(std::string_view value) {
  unsigned long long count = 0;
  const auto parsed = std::from_chars(value.data(), value.data() + value.size(), count);
  if (parsed.ec != std::errc() || parsed.ptr != value.data() + value.size() || count == 0)
    ThrowBadValue("--count", value, "a number from 1 on");
  return count;
}

// What an option goes with; asked when the whole call is known.
struct Use {
  const char* text;
  bool (*holds)(const Options& options);
};

constexpr Use kAlways = {"", [](const Options&) { return true; }};
constexpr Use kText = {"XML or JSON output", [](const Options& o) { return o.to != FindForm("finf"); }};
constexpr Use kPretty = {"pretty XML or JSON output",
                         [](const Options& o) { return o.to != FindForm("finf") && o.layout.pretty; }};
constexpr Use kFastInfoset = {"Fast Infoset output", [](const Options& o) { return o.to == FindForm("finf"); }};
constexpr Use kJson = {"JSON", [](const Options& o) { return o.from == FindForm("json") || o.to == FindForm("json"); }};
constexpr Use kJsonInput = {"JSON input", [](const Options& o) { return o.from == FindForm("json"); }};
constexpr Use kSchema = {"--schema or --follow-locations", [](const Options& o) { return o.UsesSchema(); }};
constexpr Use kNoJsonInput = {"Fast Infoset input", [](const Options& o) { return o.from != FindForm("json"); }};

enum Commands : unsigned { kConvert = 1, kShow = 2, kCheck = 4, kGenerate = 8, kSplit = 16 };
constexpr unsigned kWriting = kConvert | kSplit;
constexpr unsigned kReads = kWriting | kShow | kCheck;
constexpr unsigned kAll = kReads | kGenerate;

// One option. `apply` gets the value, or an empty text for an option without one.
struct Option {
  std::string_view name;
  bool takesValue;
  unsigned commands;
  const Use& use;
  void (*apply)(Options& options, std::string_view value);
};

constexpr Option kOptions[] = {
    {"--from", true, kReads, kAlways, [](Options& o, std::string_view v) { o.from = FormOption("--from", v); }},
    {"--to", true, kWriting, kAlways, [](Options& o, std::string_view v) { o.to = FormOption("--to", v); }},
    {"--pretty", false, kWriting, kText, [](Options& o, std::string_view) { o.layout.pretty = true; }},
    {"--compact", false, kWriting, kText, [](Options& o, std::string_view) { o.layout.pretty = false; }},
    {"--indent", true, kWriting, kPretty, [](Options& o, std::string_view v) { o.layout.indent = IndentOption(v); }},
    {"--eol", true, kWriting, kPretty, [](Options& o, std::string_view v) { o.layout.eol = EolOption(v); }},
    {"--encoding", true, kConvert, kText,
     [](Options& o, std::string_view v) { o.layout.encoding = EncodingOption(v); }},
    {"--mode", true, kReads, kJson, [](Options& o, std::string_view v) { o.json.mode = ModeOption(v); }},
    {"--root", true, kReads, kJsonInput, [](Options& o, std::string_view v) { o.json.rootName = FromUtf8(v); }},
    {"--declaration", true, kWriting, kFastInfoset,
     [](Options& o, std::string_view v) { o.layout.declaration = DeclarationOption(v); }},
    {"--typed", false, kWriting, kFastInfoset, [](Options& o, std::string_view) { o.layout.typed = true; }},
    {"--limits", true, kReads, kAlways, [](Options& o, std::string_view v) { ApplyLimits(o.limits, v); }},
    {"--schema", true, kConvert | kCheck, kAlways, [](Options& o, std::string_view v) { o.schemas.emplace_back(v); }},
    {"--catalog", true, kConvert | kCheck | kGenerate, kSchema, [](Options& o, std::string_view v) { o.catalog = v; }},
    {"--follow-locations", false, kConvert | kCheck, kAlways,
     [](Options& o, std::string_view) { o.followLocations = true; }},
    {"--out", true, kGenerate, kAlways, [](Options& o, std::string_view v) { o.folder = v; }},
    {"--namespace", true, kGenerate, kAlways,
     [](Options& o, std::string_view v) { o.namespaces.push_back(NamespaceOption(v)); }},
    {"--list", false, kGenerate, kAlways, [](Options& o, std::string_view) { o.list = true; }},
    {"--depfile", true, kGenerate, kAlways, [](Options& o, std::string_view v) { o.depfile = v; }},
    {"--force", false, kConvert, kSchema, [](Options& o, std::string_view) { o.force = true; }},
    {"--path", true, kSplit, kAlways, [](Options& o, std::string_view v) { o.path = v; }},
    {"--count", true, kSplit, kAlways, [](Options& o, std::string_view v) { o.count = CountOption(v); }},
    {"--octets", false, kShow, kNoJsonInput, [](Options& o, std::string_view) { o.octets = true; }},
    {"--gzip", false, kWriting, kAlways, [](Options& o, std::string_view) { o.layout.gzip = true; }},
    {"--quiet", false, kConvert | kCheck, kAlways, [](Options& o, std::string_view) { o.quiet = true; }},
    {"--help", false, kAll, kAlways, [](Options& o, std::string_view) { o.help = true; }},
    {"-h", false, kAll, kAlways, [](Options& o, std::string_view) { o.help = true; }},
    {"--version", false, kAll, kAlways, [](Options& o, std::string_view) { o.version = true; }},
};

// The number of characters to change, add or drop to make one word the other.
std::size_t Distance(std::string_view a, std::string_view b) {
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (const char c : a) {
    std::size_t diagonal = row[0]++;
    for (std::size_t k = 0; k < b.size(); ++k) {
      const std::size_t changed = diagonal + (c == b[k] ? 0 : 1);
      diagonal = row[k + 1];
      row[k + 1] = std::min({changed, row[k] + 1, diagonal + 1});
    }
  }
  return row.back();
}

// "did you mean ...?" where a known word is near, else where to look.
std::string Hint(std::string_view word, const std::vector<std::string_view>& known) {
  for (const std::string_view name : known) {
    if (word.size() < 32 && Distance(word, name) <= 2) return "did you mean " + std::string(name) + "?";
  }
  return "see rkxml --help";
}

const Option& FindOption(std::string_view name) {
  std::vector<std::string_view> known;
  for (const Option& option : kOptions) {
    if (option.name == name) return option;
    known.push_back(option.name);
  }
  throw UsageError("unknown option " + Quoted(name), Hint(name, known));
}

Command ParseCommand(std::string_view word) {
  if (word == "convert") return Command::Convert;
  if (word == "show") return Command::Show;
  if (word == "check") return Command::Check;
  if (word == "generate") return Command::Generate;
  if (word == "split") return Command::Split;
  throw UsageError("unknown command " + Quoted(word), Hint(word, {"convert", "show", "check", "generate", "split"}));
}

// What the calls of a command look like.
struct Call {
  const char* name;
  unsigned bit;
  const char* usage;
  std::size_t fewestFiles;
  std::size_t mostFiles;
};

const Call& CallOf(Command command) {
  static constexpr Call kCalls[] = {
      {"convert", kConvert, "rkxml convert [options] IN OUT", 2, 2},
      {"show", kShow, "rkxml show IN", 1, 1},
      {"check", kCheck, "rkxml check FILE...", 1, std::size_t(-1)},
      {"generate", kGenerate, "rkxml generate SCHEMA...", 1, std::size_t(-1)},
      {"split", kSplit, "rkxml split --path PATH --count N IN [OUT]", 1, 2},
  };
  return kCalls[static_cast<int>(command) - static_cast<int>(Command::Convert)];
}

void TakeFiles(Options& options, const std::vector<std::string>& files) {
  const Call& call = CallOf(options.command);
  const std::string hint = std::string("the call is: ") + call.usage;
  if (files.size() < call.fewestFiles)
    throw UsageError(files.empty() ? "no input file given" : "no output file given", hint);
  if (files.size() > call.mostFiles) throw UsageError("one file too many: " + Quoted(files[call.mostFiles]), hint);
  for (const std::string& file : files) {
    if (file.empty()) throw UsageError("a file name is empty", hint);
  }
  options.input = files[0];
  options.inputs = files;
  if (options.command == Command::Generate) options.schemas = files;
  if (call.mostFiles > 2) return;
  if (options.from == nullptr) options.from = FormOfFile(options.input);
  if (options.from == nullptr) options.from = FindForm("xml");
  if ((call.bit & kWriting) == 0) return;
  options.output = files.back();
  const bool isSplit = options.command == Command::Split;
  if (isSplit && options.output == "-") throw UsageError("the parts need a name", hint);
  if (isSplit && (options.path.empty() || options.count == 0))
    throw UsageError(std::string("option ") + (options.path.empty() ? "--path" : "--count") + " is missing", hint);
  if (options.to == nullptr) options.to = FormOfFile(options.output);
  if (options.to == nullptr && files.size() == 1) options.to = options.from;
  if (options.to == nullptr) {
    throw UsageError("the ending of " + Quoted(options.output) + " tells no form", "give it by --to " + FormNames("|"));
  }
  if (IsGzipName(options.output)) options.layout.gzip = true;
}

void CheckUse(const std::vector<const Option*>& given, const Options& options) {
  const Call& call = CallOf(options.command);
  const std::string hint = std::string("see rkxml ") + call.name + " --help";
  for (const Option* option : given) {
    const std::string name = "option " + std::string(option->name);
    if ((option->commands & call.bit) == 0) throw UsageError(name + " does not go with " + call.name, hint);
    // The files of a check may be of several forms.
    if (((call.bit & (kCheck | kGenerate)) == 0 || &option->use == &kSchema) && !option->use.holds(options))
      throw UsageError(name + " goes with " + option->use.text + " only", hint);
  }
}

}  // namespace

Options ParseOptions(int argc, const char* const* argv) {
  Options options;
  std::vector<std::string> files;
  std::vector<const Option*> given;
  bool onlyFiles = false;
  for (int i = 1; i < argc; ++i) {
    const std::string_view word = argv[i];
    if (!onlyFiles && word == "--") {
      onlyFiles = true;
    } else if (!onlyFiles && word.size() > 1 && word[0] == '-') {
      const std::size_t equals = word.find('=');
      const Option& option = FindOption(word.substr(0, equals));
      std::string_view value;
      if (equals != std::string_view::npos) {
        if (!option.takesValue) {
          throw UsageError("option " + std::string(option.name) + " takes no value", "leave the '=' away");
        }
        value = word.substr(equals + 1);
      } else if (option.takesValue) {
        if (++i >= argc) throw UsageError("option " + std::string(option.name) + " needs a value", "see rkxml --help");
        value = argv[i];
      }
      option.apply(options, value);
      given.push_back(&option);
    } else if (options.command == Command::None) {
      options.command = ParseCommand(word);
    } else {
      files.emplace_back(word);
    }
  }
  if (options.help || options.version) return options;
  if (options.command == Command::None) throw UsageError("no command given", "see rkxml --help");
  TakeFiles(options, files);
  CheckUse(given, options);
  return options;
}

#include <cstring>
#include <string>
#include <string_view>

#include "Commands.h"

namespace {

// The endings of the form's files, in lines of a terminal's width.
std::string Endings(const Form& form) {
  std::string text = "  " + std::string(form.name) + std::string(6 - std::strlen(form.name), ' ');
  std::size_t width = text.size();
  for (const std::string_view ending : form.fileEndings) {
    if (width + 1 + ending.size() > 79) {
      text += "\n" + std::string(8, ' ');
      width = 8;
    }
    text.append(" ").append(ending);
    width += 1 + ending.size();
  }
  return text + "\n";
}

std::string AllEndings() {
  std::string text;
  for (const Form& form : Forms()) text += Endings(form);
  return text;
}

// In the texts stand {forms}, {endings} and {limits} for what several of them say or what a table says.
constexpr std::string_view kLimits =
    R"(  --limits none|NAME=N,.. what IN may cost, 0 for no limit: depth, nodes,
                          characters, inflated-bytes, inflation-ratio,
                          expansion-ratio, pattern-steps
)";

constexpr std::string_view kConvert = R"(Usage: rkxml convert [options] IN OUT

Reads the document IN and writes it to OUT. '-' is standard input or output.
OUT appears complete or not at all; IN and OUT may be the same file.

  --from FORM, --to FORM  form of IN and of OUT: {forms}
                          (default: by file ending, see below)
  --pretty                lines and indentation (default)
  --compact               no lines and no indentation
  --indent N|tab          indent by N blanks or by tabs (default: tab)
  --eol lf|crlf           line ends of pretty output (default: lf)
  --encoding NAME         utf-8 (default), utf-16 or wide; the last two are the
                          raw memory forms, which XML parsers do not read
  --mode 0|1|2            what JSON keeps: 0 names and values, 1 also what
                          is attribute and text, 2 also namespaces (default)
  --root NAME             put JSON input into an element of this name
  --declaration 0..9      XML declaration before Fast Infoset (default: 0, none)
  --typed                 numbers of Fast Infoset in their machine form
  --gzip                  compress; implied when OUT ends in .gz
{limits}
  --schema S.xsd          check IN by this schema and type its values
  --catalog FILE          lines URL=FILE: where schemas of such locations are
  --follow-locations      take relative files of xsi:schemaLocation too
  --force                 convert what is not valid, without the schema
  --quiet                 do not tell what OUT could not keep
  -h, --help              this text

A gzip or zlib wrapper around IN is recognised and taken off. An option that
the call cannot use is refused.

Endings, with or without .gz behind them (a name without any, and IN with
another one, is XML text; OUT with another one needs --to):
{endings}

Examples:
  rkxml convert --compact track.gpx track.gpx.gz
  rkxml convert --indent 2 track.gpx.gz - | less
  rkxml convert track.gpx track.json
  rkxml convert --typed track.gpx track.finf
)";

constexpr std::string_view kShow = R"(Usage: rkxml show [options] IN

Shows what the document IN holds: form, wrapper, bytes, encoding, root element,
namespaces with their prefixes, and what it costs: elements, attributes, both
together (nodes), characters and depth. '-' is standard input.

  --from FORM             form of IN: {forms}
                          (default: by file ending, else xml)
  --mode 0|1|2, --root N  how JSON is read, see rkxml convert --help
{limits}
  --octets                list the octets of a Fast Infoset and what they mean
  -h, --help              this text

Example:
  rkxml show track.gpx.gz
)";

constexpr std::string_view kSplit = R"(Usage: rkxml split [options] --path PATH --count N IN [OUT]

Writes the document IN as several documents, each with N of the elements that
PATH names (the last one with the rest), inside of the elements that are around
them in IN. What stands between them goes along. The documents are called like
OUT, else like IN, with a number: track-0001.gpx, track-0002.gpx, ... Each
appears complete or not at all. Memory does not grow with IN. '-' is standard
input.

  --path PATH             names from the root on: /gpx/trk/trkseg/trkpt; with
                          the prefixes of the document, * for any name
  --count N               so many of them
  --from FORM, --to FORM  form of IN and of the parts: {forms}
                          (default: by file ending, see rkxml convert --help)
  --pretty, --compact, --indent N|tab, --eol lf|crlf, --declaration 0..9,
  --typed, --gzip, --mode 0|1|2, --root NAME
                          as with rkxml convert
{limits}
  -h, --help              this text

Example:
  rkxml split --path /gpx/trk/trkseg/trkpt --count 100000 track.gpx.gz
)";

constexpr std::string_view kCheck = R"(Usage: rkxml check [options] FILE...

Reads the documents and tells what is wrong with them, one line for each error:
file, line, column, path and reason. '-' is standard input.

  --from FORM             form of all files: {forms}
                          (default: by file ending, else xml)
  --mode 0|1|2, --root N  how JSON is read, see rkxml convert --help
  --limits none|NAME=N,.. what a document may cost, 0 for no limit: depth,
                          nodes, characters, inflated-bytes, inflation-ratio,
                          expansion-ratio, pattern-steps
  --schema S.xsd          check against this schema; may be repeated
  --catalog FILE          lines URL=FILE: where schemas of such locations are
  --follow-locations      take relative files of xsi:schemaLocation too
  --quiet                 do not tell what of the schema is not checked
  -h, --help              this text

Exit status: 0 all are good, 1 not all, 2 the schema cannot be used.
)";

constexpr std::string_view kGenerate = R"(Usage: rkxml generate [options] SCHEMA.xsd...

Writes C++ classes for the documents of the schemas: a header and one or more
sources for each schema document, those that are included and imported too. It
prints the names of the files. Schemas that belong together go into one call.

  --out FOLDER            where the files go (default: here); made if missing
  --namespace URI=NAME    C++ namespace for a target namespace; may be repeated
                          (default: from the last word of the URI)
  --catalog FILE          lines URL=FILE: where schemas of such locations are
  --list                  only print the names of the files
  --depfile FILE          write what was read as a rule for make and ninja
  -h, --help              this text

Exit status: 0 done, 1 a file cannot be written, 2 a schema cannot be used.

Example:
  rkxml generate --out generated --namespace urn:example:order=shop order.xsd
)";

constexpr std::string_view kOverview = R"(Usage: rkxml COMMAND [options] FILES

Converts and inspects XML documents, and makes classes from their schemas.

  convert IN OUT          read a document and write it in another form or layout
  show IN                 tell what a document holds
  check FILE...           read documents and tell their errors
  split IN [OUT]          write a document as several smaller ones
  generate SCHEMA...      write C++ classes for the documents of schemas
  -h, --help              this text; rkxml COMMAND --help tells about a command
  --version               the version

Exit status: 0 done, 1 the document is bad or a file cannot be read or written,
2 the call is wrong.
)";

std::string_view TextOf(Command command) {
  switch (command) {
    case Command::Convert:
      return kConvert;
    case Command::Show:
      return kShow;
    case Command::Split:
      return kSplit;
    case Command::Check:
      return kCheck;
    case Command::Generate:
      return kGenerate;
    case Command::None:
      break;
  }
  return kOverview;
}

void Replace(std::string& text, std::string_view mark, const std::string& by) {
  for (std::size_t at = 0; (at = text.find(mark, at)) != std::string::npos; at += by.size())
    text.replace(at, mark.size(), by);
}

}  // namespace

std::string Help(Command command) {
  std::string text(TextOf(command));
  Replace(text, "{forms}", FormNames(", "));
  Replace(text, "{endings}\n", AllEndings());
  Replace(text, "{limits}\n", std::string(kLimits));
  return text;
}

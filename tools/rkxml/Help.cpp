#include <cstring>

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

}  // namespace

std::string Help(Command command) {
  switch (command) {
    case Command::Convert:
      return "Usage: rkxml convert [options] IN OUT\n"
             "\n"
             "Reads the document IN and writes it to OUT. '-' is standard input or output.\n"
             "OUT appears complete or not at all; IN and OUT may be the same file.\n"
             "\n"
             "  --from FORM, --to FORM  form of IN and of OUT: " +
             FormNames(", ") +
             "\n"
             "                          (default: by file ending, see below)\n"
             "  --pretty                lines and indentation (default)\n"
             "  --compact               no lines and no indentation\n"
             "  --indent N|tab          indent by N blanks or by tabs (default: tab)\n"
             "  --eol lf|crlf           line ends of pretty output (default: lf)\n"
             "  --encoding NAME         utf-8 (default), utf-16 or wide; the last two are the\n"
             "                          raw memory forms, which XML parsers do not read\n"
             "  --mode 0|1|2            what JSON keeps: 0 names and values, 1 also what\n"
             "                          is attribute and text, 2 also namespaces (default)\n"
             "  --root NAME             put JSON input into an element of this name\n"
             "  --declaration 0..9      XML declaration before Fast Infoset (default: 0, none)\n"
             "  --typed                 numbers of Fast Infoset in their machine form\n"
             "  --gzip                  compress; implied when OUT ends in .gz\n"
             "  --limits none|NAME=N,.. what IN may cost, 0 for no limit: depth, nodes,\n"
             "                          characters, inflated-bytes, inflation-ratio,\n"
             "                          expansion-ratio, pattern-steps\n"
             "  --schema S.xsd          check IN by this schema and type its values\n"
             "  --catalog FILE          lines URL=FILE: where schemas of such locations are\n"
             "  --follow-locations      take relative files of xsi:schemaLocation too\n"
             "  --force                 convert what is not valid, without the schema\n"
             "  --quiet                 do not tell what OUT could not keep\n"
             "  -h, --help              this text\n"
             "\n"
             "A gzip or zlib wrapper around IN is recognised and taken off. An option that\n"
             "the call cannot use is refused.\n"
             "\n"
             "Endings, with or without .gz behind them (a name without any, and IN with\n"
             "another one, is XML text; OUT with another one needs --to):\n" +
             AllEndings() +
             "\n"
             "Examples:\n"
             "  rkxml convert --compact track.gpx track.gpx.gz\n"
             "  rkxml convert --indent 2 track.gpx.gz - | less\n"
             "  rkxml convert track.gpx track.json\n"
             "  rkxml convert --typed track.gpx track.finf\n";
    case Command::Show:
      return "Usage: rkxml show [options] IN\n"
             "\n"
             "Shows what the document IN holds: form, wrapper, bytes, encoding, root element,\n"
             "namespaces with their prefixes, and what it costs: elements, attributes, both\n"
             "together (nodes), characters and depth. '-' is standard input.\n"
             "\n"
             "  --from FORM             form of IN: " +
             FormNames(", ") +
             "\n"
             "                          (default: by file ending, else xml)\n"
             "  --mode 0|1|2, --root N  how JSON is read, see rkxml convert --help\n"
             "  --limits none|NAME=N,.. what IN may cost, 0 for no limit: depth, nodes,\n"
             "                          characters, inflated-bytes, inflation-ratio,\n"
             "                          expansion-ratio, pattern-steps\n"
             "  --octets                list the octets of a Fast Infoset and what they mean\n"
             "  -h, --help              this text\n"
             "\n"
             "Example:\n"
             "  rkxml show track.gpx.gz\n";
    case Command::Split:
      return "Usage: rkxml split [options] --path PATH --count N IN [OUT]\n"
             "\n"
             "Writes the document IN as several documents, each with N of the elements that\n"
             "PATH names (the last one with the rest), inside of the elements that are around\n"
             "them in IN. What stands between them goes along. The documents are called like\n"
             "OUT, else like IN, with a number: track-0001.gpx, track-0002.gpx, ... Each\n"
             "appears complete or not at all. Memory does not grow with IN. '-' is standard\n"
             "input.\n"
             "\n"
             "  --path PATH             names from the root on: /gpx/trk/trkseg/trkpt; with\n"
             "                          the prefixes of the document, * for any name\n"
             "  --count N               so many of them\n"
             "  --from FORM, --to FORM  form of IN and of the parts: " +
             FormNames(", ") +
             "\n"
             "                          (default: by file ending, see rkxml convert --help)\n"
             "  --pretty, --compact, --indent N|tab, --eol lf|crlf, --declaration 0..9,\n"
             "  --typed, --gzip, --mode 0|1|2, --root NAME\n"
             "                          as with rkxml convert\n"
             "  --limits none|NAME=N,.. what IN may cost, 0 for no limit: depth, nodes,\n"
             "                          characters, inflated-bytes, inflation-ratio,\n"
             "                          expansion-ratio, pattern-steps\n"
             "  -h, --help              this text\n"
             "\n"
             "Example:\n"
             "  rkxml split --path /gpx/trk/trkseg/trkpt --count 100000 track.gpx.gz\n";
    case Command::Check:
      return "Usage: rkxml check [options] FILE...\n"
             "\n"
             "Reads the documents and tells what is wrong with them, one line for each error:\n"
             "file, line, column, path and reason. '-' is standard input.\n"
             "\n"
             "  --from FORM             form of all files: " +
             FormNames(", ") +
             "\n"
             "                          (default: by file ending, else xml)\n"
             "  --mode 0|1|2, --root N  how JSON is read, see rkxml convert --help\n"
             "  --limits none|NAME=N,.. what a document may cost, 0 for no limit: depth,\n"
             "                          nodes, characters, inflated-bytes, inflation-ratio,\n"
             "                          expansion-ratio, pattern-steps\n"
             "  --schema S.xsd          check against this schema; may be repeated\n"
             "  --catalog FILE          lines URL=FILE: where schemas of such locations are\n"
             "  --follow-locations      take relative files of xsi:schemaLocation too\n"
             "  --quiet                 do not tell what of the schema is not checked\n"
             "  -h, --help              this text\n"
             "\n"
             "Exit status: 0 all are good, 1 not all, 2 the schema cannot be used.\n";
    case Command::Generate:
      return "Usage: rkxml generate [options] SCHEMA.xsd...\n"
             "\n"
             "Writes C++ classes for the documents of the schemas: a header and one or more\n"
             "sources for each schema document, those that are included and imported too. It\n"
             "prints the names of the files. Schemas that belong together go into one call.\n"
             "\n"
             "  --out FOLDER            where the files go (default: here); made if missing\n"
             "  --namespace URI=NAME    C++ namespace for a target namespace; may be repeated\n"
             "                          (default: from the last word of the URI)\n"
             "  --catalog FILE          lines URL=FILE: where schemas of such locations are\n"
             "  --list                  only print the names of the files\n"
             "  --depfile FILE          write what was read as a rule for make and ninja\n"
             "  -h, --help              this text\n"
             "\n"
             "Exit status: 0 done, 1 a file cannot be written, 2 a schema cannot be used.\n"
             "\n"
             "Example:\n"
             "  rkxml generate --out generated --namespace urn:example:order=shop order.xsd\n";
    case Command::None:
      break;
  }
  return "Usage: rkxml COMMAND [options] FILES\n"
         "\n"
         "Converts and inspects XML documents, and makes classes from their schemas.\n"
         "\n"
         "  convert IN OUT          read a document and write it in another form or layout\n"
         "  show IN                 tell what a document holds\n"
         "  check FILE...           read documents and tell their errors\n"
         "  split IN [OUT]          write a document as several smaller ones\n"
         "  generate SCHEMA...      write C++ classes for the documents of schemas\n"
         "  -h, --help              this text; rkxml COMMAND --help tells about a command\n"
         "  --version               the version\n"
         "\n"
         "Exit status: 0 done, 1 the document is bad or a file cannot be read or written,\n"
         "2 the call is wrong.\n";
}

// Bytes as any document, read whole and in pieces: the same elements at the same places, or the same error. The first
// byte chooses the form, the path and the size of the pieces.
#include "tests/support/Pieces.h"

#include "Check.h"

using namespace Fuzz;
using namespace RkXmlTest;

namespace {

constexpr const wchar_t* kPaths[] = {L"/*/*", L"/*", L"/*/*/*", L"/a/b"};
constexpr std::size_t kSlices[] = {1, 3, 64, 100000};

std::wstring Listed(const Outcome& outcome) {
  std::wstring text = outcome.error;
  for (const std::wstring& element : outcome.elements) text += L"\n" + element;
  return text;
}

bool IsLimit(const Outcome& outcome) { return outcome.error.find(L"Limit exceeded") != std::wstring::npos; }

// Whether the streams may differ in when they see an error: in JSON one of the XML text that it becomes comes before
// one of what follows in the JSON, in a wrapper one of the bytes inside before its damage. What is held may be less
// than a limit where the whole is more.
bool MayFailElsewhere(const Outcome& whole, bool isJson, bool isWrapped) {
  return isJson || isWrapped || IsLimit(whole);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string_view bytes(reinterpret_cast<const char*>(data + 1), size - 1);
  const std::wstring path = kPaths[data[0] & 3];
  const std::size_t slice = kSlices[data[0] >> 2 & 3];
  const DocumentForm form = (data[0] & 0x10) != 0 ? DocumentForm_Json : DocumentForm_Xml;
  CSerializationContext context = MakeContext();
  context.GetJsonContext()->GetAllowComments((data[0] & 0x20) != 0);

  const Outcome whole = ReadWhole(bytes, path, context, form);
  const Outcome pieces = ReadInPieces(CSlicedSource(bytes, slice), path, context, form);
  // The limits that are ratios are those of what was read so far.
  if (IsLimit(pieces)) return 0;
  const std::wstring evidence = L"--- whole\n" + Listed(whole) + L"\n--- in pieces\n" + Listed(pieces);
  const bool isWrapped = bytes.size() > 1 && (bytes[0] == '\x1F' || (bytes[0] & 0x0F) == 8);
  if (!MayFailElsewhere(whole, form == DocumentForm_Json, isWrapped))
    Require(whole.error == pieces.error, "the same error in pieces", evidence);
  else
    Require(!whole.error.empty() || pieces.error.empty(), "no error in pieces where there is none", evidence);
  if (whole.error.empty()) Require(whole.elements == pieces.elements, "the same elements in pieces", evidence);
  if (isWrapped || form == DocumentForm_Json) return 0;
  Require(pieces.elements.size() <= whole.elements.size() &&
              std::equal(pieces.elements.begin(), pieces.elements.end(), whole.elements.begin()),
          "the first elements in pieces", evidence);
  return 0;
}

#include "RkXmlLib16/binding/DocumentStream.h"

#include <algorithm>
#include <deque>
#include <exception>
#include <memory>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/binding/internal/EntryPointTools.h"
#include "RkXmlLib16/context/JsonContext.h"
#include "RkXmlLib16/context/ReadLimits.h"
#include "RkXmlLib16/document/internal/Pieces.h"
#include "RkXmlLib16/document/internal/Source.h"
#include "RkXmlLib16/fastinfoset/Reader.h"
#include "RkXmlLib16/io/Encoder.h"
#include "RkXmlLib16/io/internal/InflatingSource.h"
#include "RkXmlLib16/json/internal/JsonPieces.h"
#include "RkXmlLib16/xml/ExpatReader.h"

namespace RkXmlLib16 {

namespace {

constexpr std::size_t kPiece = std::size_t{1} << 16;
constexpr std::size_t kLargestPiece = std::size_t{1} << 30;  // for expat
// The beginning of a document, which tells its form, and the longest one that is looked at.
constexpr std::size_t kBeginning = 128;
constexpr std::size_t kLongestBeginning = std::size_t{1} << 16;
// expat scans a token that is cut off again from its start. One longer than this waits for a quarter more.
constexpr std::size_t kShortToken = 4096;

constexpr std::string_view kBlanks = " \t\r\n";
constexpr std::string_view kEndsOfTokens = "> \t\r\n";
constexpr std::size_t kLongestCharacter = 4;  // in bytes
constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kDeclaration = "<?xml";

std::size_t FindText(std::string_view beginning) {
  const std::size_t mark = beginning.substr(0, kUtf8Mark.size()) == kUtf8Mark ? kUtf8Mark.size() : 0;
  return beginning.find_first_not_of(kBlanks, mark);
}

// Whether form and encoding can be told, if more were to come.
bool IsEnough(std::string_view beginning) {
  if (beginning.size() < kBeginning) return false;
  if (beginning.size() >= kLongestBeginning) return true;
  if (beginning.substr(0, kDeclaration.size()) == kDeclaration) return beginning.find("?>") != std::string_view::npos;
  return FindText(beginning) != std::string_view::npos;
}

// Without a character at the end of which more bytes may follow.
std::size_t LengthOfWholeCharacters(std::string_view utf8) {
  constexpr std::size_t kLongest = 4;
  for (std::size_t last = 1; last < kLongest && last <= utf8.size(); ++last) {
    const auto byte = static_cast<unsigned char>(utf8[utf8.size() - last]);
    if ((byte & 0xC0) == 0x80) continue;
    return byte < 0x80 ? utf8.size() : utf8.size() - last;
  }
  return utf8.size();
}

const unsigned char* BytesOf(std::string_view view) { return reinterpret_cast<const unsigned char*>(view.data()); }

// The input of a stream: the source without its wrapper, as far as it is held.
class Input {
 public:
  Input(CByteSource& source, const CReadLimits& limits)
      : m_limits(limits),
        m_inflating(source,
                    {limits.GetMaxStreamedBytes(), limits.GetMaxInflationRatio(), limits.GetInflationRatioFrom()}),
        m_held(std::make_unique<CSource>(std::string_view(), CSource::Encoding::Octets)),
        m_source(m_held.get()) {}

  CSource& GetSource() noexcept { return *m_source; }
  std::unique_ptr<CSource> TakeSource() noexcept { return std::move(m_held); }
  std::string_view GetView() const { return m_source->GetInput(); }
  std::size_t GetEnd() const { return m_source->GetEnd(); }
  bool IsAtEnd() const noexcept { return m_isAtEnd; }
  bool IsInflated() const noexcept { return m_inflating.IsInflated(); }
  bool IsDamaged() const noexcept { return m_inflating.GetResult() == InflateResult::NotCompressed; }
  const std::string& GetStart() const noexcept { return m_inflating.GetStart(); }
  std::uint64_t GetBytesRead() const noexcept { return m_inflating.GetBytesRead(); }
  std::uint64_t CountTrailingBytes() { return m_inflating.CountTrailingBytes(); }
  // Whether an exception on its way is one of the source's own.
  bool HasSourceFailed() const noexcept { return m_hasSourceFailed; }

  // False at the end.
  bool Grow() {
    if (m_isAtEnd) return false;
    m_hasSourceFailed = true;
    m_isAtEnd =
        m_source->Grow(kPiece, [this](unsigned char* to, std::size_t room) { return m_inflating.Read(to, room); }) == 0;
    m_hasSourceFailed = false;
    if (!m_isAtEnd) return true;
    if (m_inflating.GetResult() == InflateResult::TooManyBytes)
      CReadLimits::ThrowExceeded(L"inflated bytes", m_limits.GetMaxStreamedBytes());
    if (m_inflating.GetResult() == InflateResult::RatioTooHigh)
      CReadLimits::ThrowExceeded(L"inflation ratio", m_limits.GetMaxInflationRatio());
    return false;
  }

 private:
  const CReadLimits& m_limits;
  CInflatingSource m_inflating;
  std::unique_ptr<CSource> m_held;  // until the document has it
  CSource* m_source;
  bool m_isAtEnd = false;
  bool m_hasSourceFailed = false;
};

}  // namespace

struct CDocumentStream::State {
  State(CByteSource& from, const CSerializationContext& settings, DocumentForm asked)
      : source(from), context(&settings), form(asked), input(from, settings.GetLimits()) {}

  void Begin();
  void BeginDocument();
  void BeginJson();
  void Advance();
  void AdvanceXml();
  std::size_t GetMoreXml();
  void AdvanceJson();
  bool GetMoreText(std::wstring& text);
  void ConvertJson();
  bool IsAllFed() const { return input.IsAtEnd() && fed == input.GetEnd(); }
  void Finish();
  [[noreturn]] void ThrowDamaged() const;
  void Drop(std::uint64_t offset) {
    input.GetSource().DropBefore(pieces->GetFirstNeeded(offset), pieces->GetOffsets(), pieces->TakeUnchangedOffsets());
  }

  CByteSource& source;
  const CSerializationContext* context;
  std::unique_ptr<CSerializationContext> ownContext;  // without namespaces
  DocumentForm form;
  Input input;
  std::vector<std::wstring> paths;
  bool reportsOpen = false;

  std::unique_ptr<CXmlDocument> document;
  CPieces* pieces = nullptr;
  std::unique_ptr<CExpatReader> xml;
  std::unique_ptr<CFastInfosetReader> fastInfoset;
  std::size_t fed = 0;  // bytes that expat has
  std::unique_ptr<CJsonPieces> json;
  std::exception_ptr jsonFailure;    // behind the XML text that was made before
  std::deque<std::uint64_t> places;  // of that XML text in the JSON
  std::size_t decoded = 0;           // bytes of which the JSON reader has the characters
  bool isSuspended = false;
  bool hasEvent = false;  // the first one is that of the last Next
  bool isComplete = false;
  bool hasFailed = false;
};

void CDocumentStream::State::Begin() {
  while (!IsEnough(input.GetView()) && input.Grow()) {
  }
  const std::string_view beginning = input.GetView();
  if (form == DocumentForm_Any) {
    const std::size_t text = FindText(beginning);
    const std::string_view starts = context->GetJsonContext()->GetAllowComments() ? "{[/" : "{[";
    const bool isJson = text != std::string_view::npos && starts.find(beginning[text]) != std::string_view::npos;
    form = isJson ? DocumentForm_Json : DocumentForm_Xml;
  }
  const bool isJson = form == DocumentForm_Json;
  if (input.IsAtEnd() && input.IsDamaged()) ThrowDamaged();
  if (beginning.empty() && !input.IsInflated())
    throw CRkException(isJson ? L"JSON Stream is empty!" : L"XML Stream is empty!");
  if (isJson && context->GetJsonContext()->GetSupportRoundtrip() != JsonRoundTrip_Namespaces) {
    ownContext = std::make_unique<CSerializationContext>(*context);
    ownContext->SetIgnoreNamespaces(true);
    context = ownContext.get();
  }
  BeginDocument();
  if (isJson) return BeginJson();
  auto reader = std::make_unique<CFastInfosetReader>(*context->GetFIContext(), *document);
  const auto more = [this](std::size_t used) {
    CSource& held = input.GetSource();
    held.DropBefore(held.GetFirstByte() + used, {}, 0);  // octets need no lines
    input.Grow();
    if (input.IsAtEnd() && input.IsDamaged()) ThrowDamaged();
    document->SetPieceInput(nullptr, 0, input.GetEnd());
    return input.GetView();
  };
  if (reader->Start(BytesOf(beginning), beginning.size(), more)) {
    fastInfoset = std::move(reader);
    return;
  }
  xml = std::make_unique<CExpatReader>(*document);
  xml->CreateParser();
}

void CDocumentStream::State::BeginDocument() {
  const std::string_view beginning = input.GetView();
  document = std::make_unique<CXmlDocument>(*context);
  CSource& held = input.GetSource();
  held.SetFileName(source.GetName());
  held.SetInflated(input.IsInflated());
  if (form == DocumentForm_Json)
    held.SetEncoding(CSource::Encoding::Utf8, CSource::Count::Characters);
  else
    held.SetEncoding(CSource::EncodingOf(beginning));
  pieces = &document->StartPieces(input.TakeSource());
  for (const std::wstring& path : paths) pieces->GetPaths().Add(path, *context);
  pieces->SetReportsOpen(reportsOpen);
  document->SetPieceInput(BytesOf(beginning), beginning.size(), beginning.size());
}

// As all of it is read where it was taken for what it is not.
void CDocumentStream::State::ThrowDamaged() const {
  CSerializationContext quiet(*context);
  quiet.SetErrorHandler(nullptr);
  CXmlDocument plain(quiet);
  std::string bytes = input.GetStart();
  auto* const data = reinterpret_cast<unsigned char*>(bytes.data());
  try {
    if (form == DocumentForm_Json)
      plain.LoadJsonStream(data, bytes.size());
    else
      plain.LoadXmlStream(data, bytes.size());
  } catch (CRkException& e) {
    CRkLocation location = e.GetLocation();
    location.SetFileName(source.GetName());
    e.SetLocation(std::move(location));
    throw;
  }
  throw CRkException(L"The compressed bytes are damaged.");
}

void CDocumentStream::State::Advance() {
  if (document == nullptr) Begin();
  if (fastInfoset != nullptr)
    isComplete = !fastInfoset->ReadOn();
  else if (json != nullptr)
    AdvanceJson();
  else
    AdvanceXml();
  if (isComplete) Finish();
}

// The number of bytes to feed next. Behind the document element expat takes a token that is cut off for a complete one,
// so what is fed ends where none goes on.
std::size_t CDocumentStream::State::GetMoreXml() {
  const std::size_t cutOff = fed - std::min<std::uint64_t>(fed, xml->GetOffset());
  // It tells the encoding by the first bytes that it gets.
  const std::size_t wanted = cutOff > kShortToken ? cutOff / 4 : fed == 0 ? kLongestCharacter : 1;
  std::size_t whole = 0;
  for (std::size_t searched = 0;;) {
    const std::string_view unfed = input.GetView().substr(fed - input.GetSource().GetFirstByte());
    const std::size_t last = unfed.substr(searched).find_last_of(kEndsOfTokens);
    if (last != std::string_view::npos) whole = searched + last + 1;
    searched = unfed.size();
    if (input.IsAtEnd() || (whole < wanted && searched >= std::max(wanted, kPiece))) whole = searched;
    if (input.IsAtEnd() || whole >= wanted) break;
    // What is dropped ends with a character, and at the start with a mark; what is not fed stays.
    if (fed > kLongestCharacter) Drop(std::min<std::uint64_t>(fed - kLongestCharacter, xml->GetOffset()));
    input.Grow();
  }
  if (input.IsAtEnd() && input.IsDamaged()) ThrowDamaged();
  return whole;
}

void CDocumentStream::State::AdvanceXml() {
  if (isSuspended) {
    isSuspended = xml->Resume();
  } else {
    const std::size_t length = GetMoreXml();
    const std::string_view piece =
        input.GetView().substr(fed - input.GetSource().GetFirstByte(), std::min(length, kLargestPiece));
    fed += piece.size();
    document->SetPieceInput(nullptr, 0, fed);
    isSuspended = xml->ParsePiece(BytesOf(piece), piece.size(), IsAllFed());
  }
  isComplete = !isSuspended && IsAllFed();
}

void CDocumentStream::State::BeginJson() {
  json = std::make_unique<CJsonPieces>(*context, [this](std::wstring& text) { return GetMoreText(text); });
  pieces->SetPlaces(&places);
  if (input.GetView().substr(0, kUtf8Mark.size()) == kUtf8Mark) decoded = kUtf8Mark.size();
  document->SetPieceInput(nullptr, 0, 0);
  xml = std::make_unique<CExpatReader>(*document);
  xml->CreateParser();
}

bool CDocumentStream::State::GetMoreText(std::wstring& text) {
  for (;;) {
    const std::string_view bytes = input.GetView().substr(decoded - input.GetSource().GetFirstByte());
    const std::size_t whole = input.IsAtEnd() ? bytes.size() : LengthOfWholeCharacters(bytes);
    if (whole != 0) {
      text += CEncoder::Utf8ToUnicode(bytes.substr(0, whole));
      decoded += whole;
      return true;
    }
    if (input.IsAtEnd()) return false;
    const CLargeVector<std::uint64_t>& nodes = json->GetNodes();
    const std::uint64_t itemStart = json->GetReader().GetItemStart();
    Drop(!places.empty() ? places.front() : !nodes.empty() ? nodes.front() : itemStart);
    if (!input.Grow() && input.IsDamaged()) ThrowDamaged();
  }
}

void CDocumentStream::State::ConvertJson() {
  try {
    json->Convert();
  } catch (CRkException& e) {
    if (!e.HasLocation()) e.SetLocation(input.GetSource().Locate(json->GetErrorPosition(e), e.GetPath()));
    e.SetEndsReading();
    jsonFailure = std::current_exception();
  }
  places.insert(places.end(), json->GetNodes().begin(), json->GetNodes().end());
  json->GetNodes().clear();
}

void CDocumentStream::State::AdvanceJson() {
  if (isSuspended) {
    isSuspended = xml->Resume();
  } else {
    if (jsonFailure != nullptr) std::rethrow_exception(jsonFailure);
    ConvertJson();
    const CBinaryData text = json->TakeXml();
    fed += text.GetLength();
    if (json->IsAtEnd() && fed == 0) throw CRkException(L"XML String is empty!");
    document->SetPieceInput(nullptr, 0, fed);
    isSuspended = xml->ParsePiece(text.GetData(), text.GetLength(), json->IsAtEnd());
  }
  isComplete = !isSuspended && json->IsAtEnd();
}

void CDocumentStream::State::Finish() {
  if (json != nullptr) {
    pieces->SetPlaces(nullptr);
    CJsonTextReader& reader = json->GetReader();
    if (reader.SkipToRest()) {
      const std::size_t start = reader.GetPosition();
      document->NoteDropped(RkDropped_TrailingText, start, 0);
      document->NoteDropped(RkDropped_TrailingText, start, reader.SkipRest());
    }
  }
  if (fastInfoset != nullptr) {
    const std::size_t end = fastInfoset->GetOffset();
    std::size_t count = fastInfoset->GetRemaining();
    while (input.Grow()) {
      count = input.GetEnd() - end;
      input.GetSource().DropBefore(input.GetEnd(), {}, 0);
    }
    if (input.IsDamaged()) ThrowDamaged();
    if (count != 0) document->NoteDropped(RkDropped_TrailingBytes, end, count);
  }
  if (const std::uint64_t count = input.IsInflated() ? input.CountTrailingBytes() : 0)
    document->NoteDropped(RkDropped_TrailingBytes, CRkLocation::kNoOffset, count);
  document->FinishPieces();
}

CDocumentStream::CDocumentStream(CByteSource& source, const CSerializationContext& context, DocumentForm form)
    : m_state(std::make_unique<State>(source, context, form)) {}

CDocumentStream::~CDocumentStream() = default;

std::size_t CDocumentStream::AddPath(const wchar_t* path) {
  const std::wstring text = path != nullptr ? path : L"";
  CPiecePaths().Add(text, *m_state->context);
  m_state->paths.push_back(text);
  return m_state->paths.size() - 1;
}

void CDocumentStream::SetReportsOpen(bool reports) { m_state->reportsOpen = reports; }

CDocumentStream::Event CDocumentStream::Next() {
  State& state = *m_state;
  if (state.hasFailed) return Event::Done;
  CErrorSession session(*state.context);
  state.hasFailed = true;
  try {
    session.Run([&state] {
      if (std::exchange(state.hasEvent, false)) state.document->ReleaseEvent();
      while (!state.hasEvent) {
        if (state.pieces != nullptr && state.pieces->HasEvents()) {
          state.hasEvent = state.pieces->IsReported(state.pieces->GetEvent());
          if (!state.hasEvent) state.document->ReleaseEvent();
        } else if (state.isComplete) {
          break;
        } else {
          state.Advance();
        }
      }
    });
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception& e) {
    if (state.input.HasSourceFailed()) throw;
    const std::string reason = e.what();
    throw CRkException(std::wstring(reason.begin(), reason.end()));
  }
  state.hasFailed = false;
  static_assert(static_cast<int>(CPieces::Kind::End) == static_cast<int>(Event::End));
  return state.hasEvent ? static_cast<Event>(state.pieces->GetEvent().kind) : Event::Done;
}

void CDocumentStream::Stop() noexcept { m_state->hasFailed = true; }

const CXmlElement* CDocumentStream::GetElement() const noexcept {
  return m_state->hasEvent ? m_state->pieces->GetEvent().element : nullptr;
}

std::wstring_view CDocumentStream::GetText() const noexcept {
  return m_state->hasEvent ? std::wstring_view(m_state->pieces->GetEvent().text) : std::wstring_view();
}

std::size_t CDocumentStream::GetPathNumber() const noexcept {
  return m_state->hasEvent ? m_state->pieces->GetEvent().path : 0;
}

const CSerializationContext& CDocumentStream::GetContext() const noexcept { return *m_state->context; }

bool CDocumentStream::IsJson() const noexcept { return m_state->form == DocumentForm_Json; }

bool CDocumentStream::IsFastInfoset() const noexcept { return m_state->fastInfoset != nullptr; }

std::uint64_t CDocumentStream::GetBytesRead() const noexcept { return m_state->input.GetBytesRead(); }

}  // namespace RkXmlLib16

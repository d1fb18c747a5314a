#include "schema/components/Pattern.h"

#include <RkXmlLib16/RkXmlLib16.h>

#include <algorithm>
#include <cstdint>
#include <cwchar>
#include <vector>

#include "schema/components/Facets.h"
#include "schema/components/internal/Xsd.h"

namespace RkXmlSchema {

namespace {

struct Block {
  const wchar_t* name;
  char32_t first, last;
};

// Appendix F.1.1, with the second half of "Specials" and of "PrivateUse" that lies in higher planes below.
constexpr Block kBlocks[] = {
    {L"BasicLatin", 0x0, 0x7F},
    {L"Latin-1Supplement", 0x80, 0xFF},
    {L"LatinExtended-A", 0x100, 0x17F},
    {L"LatinExtended-B", 0x180, 0x24F},
    {L"IPAExtensions", 0x250, 0x2AF},
    {L"SpacingModifierLetters", 0x2B0, 0x2FF},
    {L"CombiningDiacriticalMarks", 0x300, 0x36F},
    {L"Greek", 0x370, 0x3FF},
    {L"Cyrillic", 0x400, 0x4FF},
    {L"Armenian", 0x530, 0x58F},
    {L"Hebrew", 0x590, 0x5FF},
    {L"Arabic", 0x600, 0x6FF},
    {L"Syriac", 0x700, 0x74F},
    {L"Thaana", 0x780, 0x7BF},
    {L"Devanagari", 0x900, 0x97F},
    {L"Bengali", 0x980, 0x9FF},
    {L"Gurmukhi", 0xA00, 0xA7F},
    {L"Gujarati", 0xA80, 0xAFF},
    {L"Oriya", 0xB00, 0xB7F},
    {L"Tamil", 0xB80, 0xBFF},
    {L"Telugu", 0xC00, 0xC7F},
    {L"Kannada", 0xC80, 0xCFF},
    {L"Malayalam", 0xD00, 0xD7F},
    {L"Sinhala", 0xD80, 0xDFF},
    {L"Thai", 0xE00, 0xE7F},
    {L"Lao", 0xE80, 0xEFF},
    {L"Tibetan", 0xF00, 0xFFF},
    {L"Myanmar", 0x1000, 0x109F},
    {L"Georgian", 0x10A0, 0x10FF},
    {L"HangulJamo", 0x1100, 0x11FF},
    {L"Ethiopic", 0x1200, 0x137F},
    {L"Cherokee", 0x13A0, 0x13FF},
    {L"UnifiedCanadianAboriginalSyllabics", 0x1400, 0x167F},
    {L"Ogham", 0x1680, 0x169F},
    {L"Runic", 0x16A0, 0x16FF},
    {L"Khmer", 0x1780, 0x17FF},
    {L"Mongolian", 0x1800, 0x18AF},
    {L"LatinExtendedAdditional", 0x1E00, 0x1EFF},
    {L"GreekExtended", 0x1F00, 0x1FFF},
    {L"GeneralPunctuation", 0x2000, 0x206F},
    {L"SuperscriptsandSubscripts", 0x2070, 0x209F},
    {L"CurrencySymbols", 0x20A0, 0x20CF},
    {L"CombiningMarksforSymbols", 0x20D0, 0x20FF},
    {L"LetterlikeSymbols", 0x2100, 0x214F},
    {L"NumberForms", 0x2150, 0x218F},
    {L"Arrows", 0x2190, 0x21FF},
    {L"MathematicalOperators", 0x2200, 0x22FF},
    {L"MiscellaneousTechnical", 0x2300, 0x23FF},
    {L"ControlPictures", 0x2400, 0x243F},
    {L"OpticalCharacterRecognition", 0x2440, 0x245F},
    {L"EnclosedAlphanumerics", 0x2460, 0x24FF},
    {L"BoxDrawing", 0x2500, 0x257F},
    {L"BlockElements", 0x2580, 0x259F},
    {L"GeometricShapes", 0x25A0, 0x25FF},
    {L"MiscellaneousSymbols", 0x2600, 0x26FF},
    {L"Dingbats", 0x2700, 0x27BF},
    {L"BraillePatterns", 0x2800, 0x28FF},
    {L"CJKRadicalsSupplement", 0x2E80, 0x2EFF},
    {L"KangxiRadicals", 0x2F00, 0x2FDF},
    {L"IdeographicDescriptionCharacters", 0x2FF0, 0x2FFF},
    {L"CJKSymbolsandPunctuation", 0x3000, 0x303F},
    {L"Hiragana", 0x3040, 0x309F},
    {L"Katakana", 0x30A0, 0x30FF},
    {L"Bopomofo", 0x3100, 0x312F},
    {L"HangulCompatibilityJamo", 0x3130, 0x318F},
    {L"Kanbun", 0x3190, 0x319F},
    {L"BopomofoExtended", 0x31A0, 0x31BF},
    {L"EnclosedCJKLettersandMonths", 0x3200, 0x32FF},
    {L"CJKCompatibility", 0x3300, 0x33FF},
    {L"CJKUnifiedIdeographsExtensionA", 0x3400, 0x4DB5},
    {L"CJKUnifiedIdeographs", 0x4E00, 0x9FFF},
    {L"YiSyllables", 0xA000, 0xA48F},
    {L"YiRadicals", 0xA490, 0xA4CF},
    {L"HangulSyllables", 0xAC00, 0xD7A3},
    {L"PrivateUse", 0xE000, 0xF8FF},
    {L"CJKCompatibilityIdeographs", 0xF900, 0xFAFF},
    {L"AlphabeticPresentationForms", 0xFB00, 0xFB4F},
    {L"ArabicPresentationForms-A", 0xFB50, 0xFDFF},
    {L"CombiningHalfMarks", 0xFE20, 0xFE2F},
    {L"CJKCompatibilityForms", 0xFE30, 0xFE4F},
    {L"SmallFormVariants", 0xFE50, 0xFE6F},
    {L"ArabicPresentationForms-B", 0xFE70, 0xFEFE},
    {L"HalfwidthandFullwidthForms", 0xFF00, 0xFFEF},
    {L"Specials", 0xFFF0, 0xFFFD},
    {L"OldItalic", 0x10300, 0x1032F},
    {L"Gothic", 0x10330, 0x1034F},
    {L"Deseret", 0x10400, 0x1044F},
    {L"ByzantineMusicalSymbols", 0x1D000, 0x1D0FF},
    {L"MusicalSymbols", 0x1D100, 0x1D1FF},
    {L"MathematicalAlphanumericSymbols", 0x1D400, 0x1D7FF},
    {L"CJKUnifiedIdeographsExtensionB", 0x20000, 0x2A6D6},
    {L"CJKCompatibilityIdeographsSupplement", 0x2F800, 0x2FA1F},
    {L"Tags", 0xE0000, 0xE007F},
};

constexpr CodeRange kPrivateUse[] = {{0xE000, 0xF8FF}, {0xF0000, 0xFFFFD}, {0x100000, 0x10FFFD}};
constexpr CodeRange kSpecials[] = {{0xFEFF, 0xFEFF}, {0xFFF0, 0xFFFD}};
constexpr CodeRange kSpace[] = {{0x9, 0xA}, {0xD, 0xD}, {0x20, 0x20}};

constexpr const wchar_t* kCategories[] = {L"L",  L"Lu", L"Ll", L"Lt", L"Lm", L"Lo", L"M",  L"Mn", L"Mc",
                                          L"Me", L"N",  L"Nd", L"Nl", L"No", L"P",  L"Pc", L"Pd", L"Ps",
                                          L"Pe", L"Pi", L"Pf", L"Po", L"Z",  L"Zs", L"Zl", L"Zp", L"S",
                                          L"Sm", L"Sc", L"Sk", L"So", L"C",  L"Cc", L"Cf", L"Co", L"Cn"};

constexpr char32_t kLastCode = 0x10FFFF;
constexpr std::size_t kMostCharacters = 1000000;  // of one translation
constexpr int kDeepest = 100;                     // groups and subtractions inside each other
constexpr unsigned long kMostRepetitions = 65535;

std::vector<CodeRange> Complement(const std::vector<CodeRange>& ranges) {
  std::vector<CodeRange> others;
  char32_t next = 0;
  for (const CodeRange& range : ranges) {
    if (range.first > next) others.push_back({next, range.first - 1});
    next = range.last + 1;
  }
  if (next <= kLastCode) others.push_back({next, kLastCode});
  return others;
}

bool IsAsciiLetterOrDigit(char32_t c) { return c - U'0' < 10 || (c | 0x20u) - U'a' < 26; }

class CTranslator {
 public:
  explicit CTranslator(std::wstring_view pattern) : m_pattern(pattern) {}

  std::wstring Run() {
    Alternatives(0);
    if (!AtEnd()) Fail(L"a closing parenthesis without an opening one");
    return m_out.empty() ? L"(?:)" : std::move(m_out);
  }

 private:
  bool AtEnd() const { return m_at == m_pattern.size(); }
  wchar_t Peek() const { return AtEnd() ? L'\0' : m_pattern[m_at]; }
  wchar_t Take() {
    if (AtEnd()) Fail(L"the expression ends too early");
    return m_pattern[m_at++];
  }
  [[noreturn]] void Fail(const wchar_t* text) const { throw CPatternError(text, m_at); }
  void Put(std::wstring_view text) {
    m_out += text;
    if (m_out.size() > kMostCharacters) Fail(L"Limit exceeded: the expression is too large");
  }

  void Alternatives(int depth) {
    if (depth > kDeepest) Fail(L"Limit exceeded: too many groups inside each other");
    for (;;) {
      while (!AtEnd() && Peek() != L'|' && Peek() != L')') Piece(depth);
      if (Peek() != L'|' || AtEnd()) return;
      ++m_at;
      Put(L"|");
    }
  }

  void Piece(int depth) {
    Atom(depth);
    switch (Peek()) {
      case L'?':
      case L'*':
      case L'+':
        m_out += Take();
        break;
      case L'{':
        Quantity();
        break;
      default:
        break;
    }
  }

  void Atom(int depth) {
    const wchar_t c = Take();
    switch (c) {
      case L'(':
        Put(L"(?:");
        Alternatives(depth + 1);
        if (AtEnd()) Fail(L"a parenthesis is not closed");
        ++m_at;
        Put(L")");
        break;
      case L'[':
        Class(depth);
        break;
      case L'.':
        Put(L"[^\\x{a}\\x{d}]");
        break;
      case L'\\': {
        std::wstring items;
        Escape(items);
        if (m_single != kNone) {
          PutCharacter(m_out, m_single, false);
        } else {
          Put(L"[" + items + L"]");
        }
        break;
      }
      case L'?':
      case L'*':
      case L'+':
      case L'{':
        --m_at;
        Fail(L"a quantifier has nothing before it");
      case L'}':
      case L']':
        --m_at;
        Fail(L"this character has to be escaped");
      default:
        PutCharacter(m_out, Joined(c), false);
    }
    if (m_out.size() > kMostCharacters) Fail(L"Limit exceeded: the expression is too large");
  }

  unsigned long Number() {
    if (Peek() < L'0' || Peek() > L'9') Fail(L"a quantifier needs a number");
    unsigned long number = 0;
    while (!AtEnd() && Peek() >= L'0' && Peek() <= L'9') {
      number = std::min(number * 10 + static_cast<unsigned long>(Take() - L'0'), 100000UL);
    }
    return number;
  }

  void Quantity() {
    ++m_at;
    const unsigned long least = Number();
    unsigned long most = least;
    bool unbounded = false;
    if (Peek() == L',') {
      ++m_at;
      unbounded = Peek() == L'}';
      if (!unbounded) most = Number();
    }
    if (Peek() != L'}') Fail(L"a quantifier is not closed");
    ++m_at;
    if (most < least) Fail(L"a quantifier whose maximum is below its minimum");
    if (most > kMostRepetitions) Fail(L"Limit exceeded: a quantifier of more than 65535");
    std::wstring text = L"{" + std::to_wstring(least);
    if (unbounded) {
      text += L",";
    } else if (most != least) {
      text += L"," + std::to_wstring(most);
    }
    Put(text + L"}");
  }

  // A surrogate pair, as documents bring it, is one character.
  char32_t Joined(wchar_t first) {
    auto c = static_cast<char32_t>(first);
    const auto next = static_cast<char32_t>(Peek());
    if ((c & ~0x3FFu) == 0xD800 && (next & ~0x3FFu) == 0xDC00) {
      ++m_at;
      c = 0x10000 + ((c - 0xD800) << 10 | (next - 0xDC00));
    }
    if (c > kLastCode || (c & ~0x7FFu) == 0xD800) Fail(L"this is no character");
    return c;
  }

  static void PutCharacter(std::wstring& out, char32_t c, bool inClass) {
    if (c < 0x20 || c == 0x7F || (c >= 0x80 && inClass) || (c < 0x80 && inClass && !IsAsciiLetterOrDigit(c))) {
      wchar_t text[16];
      std::swprintf(text, 16, L"\\x{%x}", static_cast<unsigned>(c));
      out += text;
      return;
    }
    if (c < 0x80 && !IsAsciiLetterOrDigit(c) &&
        std::wstring_view(L"\\^$.|?*+()[]{}").find(static_cast<wchar_t>(c)) != std::wstring_view::npos)
      out += L'\\';
    out += static_cast<wchar_t>(c);
  }

  static void PutRanges(std::wstring& out, const std::vector<CodeRange>& ranges) {
    for (const CodeRange& range : ranges) {
      PutCharacter(out, range.first, true);
      if (range.last == range.first) continue;
      if (range.last != range.first + 1) out += L'-';
      PutCharacter(out, range.last, true);
    }
  }

  static void PutSet(std::wstring& out, std::vector<CodeRange> ranges, bool negated) {
    PutRanges(out, negated ? Complement(ranges) : ranges);
  }

  // What stands after a backslash: a single character goes to m_single, a class to `items`, as what stands within
  // brackets.
  void Escape(std::wstring& items) {
    m_single = kNone;
    const wchar_t c = Take();
    switch (c) {
      case L'n':
        m_single = U'\n';
        return;
      case L'r':
        m_single = U'\r';
        return;
      case L't':
        m_single = U'\t';
        return;
      case L's':
      case L'S':
        return PutSet(items, {std::begin(kSpace), std::end(kSpace)}, c == L'S');
      case L'i':
      case L'I':
        return PutSet(items, NameStartRanges(), c == L'I');
      case L'c':
      case L'C':
        return PutSet(items, NameRanges(), c == L'C');
      case L'd':
        items += L"\\p{Nd}";
        return;
      case L'D':
        items += L"\\P{Nd}";
        return;
      case L'w':
        items += L"\\p{L}\\p{M}\\p{N}\\p{S}";
        return;
      case L'W':
        items += L"\\p{P}\\p{Z}\\p{C}";
        return;
      case L'p':
      case L'P':
        return Property(items, c == L'P');
      default:
        if (std::wstring_view(L"\\|.?*+(){}-[]^").find(c) == std::wstring_view::npos) {
          --m_at;
          Fail(L"this character cannot be escaped");
        }
        m_single = static_cast<char32_t>(c);
    }
  }

  void Property(std::wstring& items, bool negated) {
    if (Take() != L'{') Fail(L"\\p and \\P need a name in braces");
    const std::size_t close = m_pattern.find(L'}', m_at);
    if (close == std::wstring_view::npos) Fail(L"\\p and \\P need a name in braces");
    const std::wstring_view name = m_pattern.substr(m_at, close - m_at);
    if (name.substr(0, 2) == L"Is") {
      const std::wstring_view block = name.substr(2);
      if (block == L"PrivateUse") {
        PutSet(items, {std::begin(kPrivateUse), std::end(kPrivateUse)}, negated);
      } else if (block == L"Specials") {
        PutSet(items, {std::begin(kSpecials), std::end(kSpecials)}, negated);
      } else {
        const auto found =
            std::find_if(std::begin(kBlocks), std::end(kBlocks), [&](const Block& b) { return block == b.name; });
        if (found == std::end(kBlocks)) Fail(L"there is no block of characters with this name");
        PutSet(items, {{found->first, found->last}}, negated);
      }
    } else {
      if (std::find(std::begin(kCategories), std::end(kCategories), name) == std::end(kCategories))
        Fail(L"there is no category of characters with this name");
      items += negated ? L"\\P{" : L"\\p{";
      items += name;
      items += L'}';
    }
    m_at = close + 1;
  }

  // The rest of a class after "[", as one atom.
  void Class(int depth) {
    std::wstring excluded;  // lookaheads for what is subtracted
    const std::wstring items = ClassItems(depth, excluded);
    Put(excluded.empty() ? items : L"(?:" + excluded + items + L")");
  }

  std::wstring ClassItems(int depth, std::wstring& excluded) {
    if (depth > kDeepest) Fail(L"Limit exceeded: too many classes inside each other");
    std::wstring items = L"[";
    if (Peek() == L'^') {
      ++m_at;
      items += L'^';
    }
    bool first = true;
    for (;; first = false) {
      if (items.size() > kMostCharacters) Fail(L"Limit exceeded: the expression is too large");
      wchar_t c = Take();
      if (c == L']') {
        if (first) Fail(L"a class of characters is empty");
        break;
      }
      if (c == L'[') Fail(L"this character has to be escaped");
      if (c == L'-' && Peek() == L'[') {
        if (first) Fail(L"a class of characters is empty");
        ++m_at;
        std::wstring inner;
        const std::wstring subtracted = ClassItems(depth + 1, inner);
        excluded += L"(?!" + inner + subtracted + L")";
        if (Take() != L']') Fail(L"a subtraction has to end its class");
        break;
      }
      if (c == L'-' && !first && Peek() != L']') Fail(L"a hyphen within a class has to be escaped");
      const char32_t from = ClassCharacter(c, items);
      if (from == kNone) continue;
      char32_t to = from;
      // A range, unless the hyphen is the last character or begins a subtraction.
      if (Peek() == L'-' && c != L'-' && m_at + 1 < m_pattern.size() && m_pattern[m_at + 1] != L']' &&
          m_pattern[m_at + 1] != L'[') {
        ++m_at;
        const wchar_t last = Take();
        if (last == L'-') Fail(L"a hyphen cannot end a range");
        std::wstring ignored;
        to = ClassCharacter(last, ignored);
        if (to == kNone) Fail(L"a range has to end with a character");
        if (to < from) Fail(L"a range whose end is below its start");
      }
      PutRanges(items, {{from, to}});
    }
    return items + L"]";
  }

  char32_t ClassCharacter(wchar_t c, std::wstring& items) {
    if (c != L'\\') return Joined(c);
    Escape(items);
    return m_single;
  }

  static constexpr char32_t kNone = 0xFFFFFFFF;

  std::wstring_view m_pattern;
  std::size_t m_at = 0;
  std::wstring m_out;
  char32_t m_single = kNone;
};

std::string Narrow(const std::wstring& text) {
  std::string narrow;
  for (const wchar_t c : text) narrow += c < 0x80 ? static_cast<char>(c) : '?';
  return narrow;
}

std::string ToUtf8(const std::wstring& text) {
  std::string utf8(RkXmlLib16::CEncoder::Utf8Length(text), '\0');
  if (!utf8.empty()) RkXmlLib16::CEncoder::WriteUtf8(text, reinterpret_cast<unsigned char*>(utf8.data()));
  return utf8;
}

}  // namespace

CPatternError::CPatternError(std::wstring text, std::size_t at)
    : std::runtime_error(Narrow(text)), m_text(std::move(text)), m_offset(at) {}

CPatternError::~CPatternError() = default;

std::wstring TranslatePattern(std::wstring_view pattern) { return CTranslator(pattern).Run(); }

std::wstring JoinAlternatives(const PatternStep& step) {
  if (step.alternatives.size() == 1) return step.alternatives[0].translated;
  std::wstring joined;
  for (const Pattern& pattern : step.alternatives)
    joined += (joined.empty() ? L"(?:" : L"|(?:") + pattern.translated + L")";
  return joined;
}

CPatternMatcher::CPatternMatcher(const std::wstring& translated) {
  try {
    m_expression = std::make_unique<const RkXmlLib16::CRegEx>(ToUtf8(translated), std::wstring());
  } catch (const RkXmlLib16::CRkException& e) {
    throw CPatternError(e.GetMessage(), 0);
  }
}

CPatternMatcher::~CPatternMatcher() = default;

bool CPatternMatcher::Matches(const std::wstring& value) const {
  try {
    return m_expression->Matches(value);
  } catch (const RkXmlLib16::CRkException&) {
    return false;
  }
}

}  // namespace RkXmlSchema

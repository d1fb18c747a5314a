// The driver of generated classes with sequences, attributes, nil, simple content and the wrapping of errors.
#include "RkXmlLib16/binding/GeneratedClass.h"

#include "Expect.h"
#include "fixtures/Records.h"

using namespace RkXmlTest;

namespace {

constexpr wchar_t kNil[] = L"xsi:nil=\"true\" xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\"";

using GeneratedClassTest = TableTest;

CParentElementInfo* SimpleContent(ItemType type, const wchar_t* format, bool asText) {
  return new CParentElementInfo(kSequence, kOwn, L"r", L"", true, false, 0, type, format, asText);
}

}  // namespace

TEST_F(GeneratedClassTest, SequenceSkipsUnknownElementsAsTheOptionsSay) {
  const Table table(ClassInfo(kSequence, L"r"), {Prim(L"a", 0), Prim<CElementInfoSeqPrimOpt>(L"o", 1), Prim(L"b", 2)});
  const Table none(ClassInfo(kSequence, L"r"), {});
  EXPECT_TEXT(L"<r/>", Outcome(none, L"<r><x/><y/></r>", With(kUnknownElements)));
  const auto strict = With(), unknown = With(kUnknownElements), missing = With(kMissingElements);
  const Rows<const CSerializationContext&, Wide, std::wstring> rows = {
      {strict, L"<a>1</a><o>2</o><b>3</b>", L"<r><a>1</a><o>2</o><b>3</b></r>"},
      {strict, L"<x/><a>1</a><b>3</b>", Missing(L"a")},
      {strict, L"<a>1</a><x/><b>3</b>", Missing(L"b")},
      {strict, L"<a>1</a><b>3</b><x/>", Unread(L"x")},
      {strict, L"<b>3</b><a>1</a>", Missing(L"a")},
      {unknown, L"<x/><a>1</a><b>3</b>", L"<r><a>1</a><b>3</b></r>"},
      {unknown, L"<a>1</a><x/><o>2</o><x/><b>3</b>", L"<r><a>1</a><b>3</b></r>"},  // the optional one skips nothing
      {unknown, L"<a>1</a><b>3</b><x/><x/>", L"<r><a>1</a><b>3</b></r>"},
      {unknown, L"<a>1</a><b>3</b><x/><b>4</b>", L"<r><a>1</a><b>4</b></r>"},  // the last one is offered the rest
      {unknown, L"<a>1</a><x/>", Missing(L"b")},
      {missing, L"<a>1</a><o>2</o>", kNotWritten + L"The Property [b] is mandatory, it may not be NULL"},
      {missing, L"<b>3</b>", kNotWritten + L"The Property [a] is mandatory, it may not be NULL"},
      {missing, L"<a>1</a><b>3</b><x/>", Unread(L"x")},
  };
  for (const auto& [context, content, outcome] : rows)
    EXPECT_TEXT(outcome, Outcome(table, std::wstring(L"<r>") + content + L"</r>", context));
}

TEST_F(GeneratedClassTest, RootTakesOverTheNameItIsReadUnder) {
  const Table table(ClassInfo(kSequence, L"r"), {Prim<CElementInfoSeqPrimOpt>(L"a", 0)});
  const auto object = Read(table, L"<other><a>1</a></other>");
  EXPECT_TEXT(L"other", object->GetElementName());
  CSerializationContext context;
  context.SetWriteTypeAttribute(false);
  EXPECT_TEXT(L"<other><a>1</a></other>", Write(*object, context));
  context.SetWriteTypeAttribute(true);
  EXPECT_TEXT(L"<other xmlns:AA=\"http://www.w3.org/2001/XMLSchema-instance\" AA:type=\"r\"><a>1</a></other>",
              Write(*object, context));
}

// One wrap at the innermost element; the outer ones pass a plain copy on. A conversion fails at the owner, a setter at
// the element.
TEST_F(GeneratedClassTest, ErrorsCarryTheInnermostPath) {
  const Table inner(ClassInfo(kSequence, L"inner"), {Prim(L"v", 0)});
  const Table middle(ClassInfo(kSequence, L"middle"), {Cls(L"inner", 0)});
  Table outer(ClassInfo(kSequence, L"r"), {MandatoryCls(L"middle", 0, 1)}, {}, {NewChild(middle)});
  Classes() = {&inner, &middle};
  const auto reads = [&](const std::wstring& v) {
    return Outcome(outer, L"<r><middle><inner>" + v + L"</inner></middle></r>", With());
  };
  EXPECT_TEXT(
      L"CRkException: Failed to process the element.\nPath: /r/middle/inner\nThe value [x] can not be converted to a "
      L"i4",
      reads(L"<v>x</v>"));
  EXPECT_TEXT(L"CRkException: Failed to find the required child element [v].\nPath: /r/middle/inner", reads(L""));
  EXPECT_TEXT(L"CRkException: Unexpected Attribute found.\nPath: /r/middle/inner/v/@a", reads(L"<v a='1'>5</v>"));

  const_cast<Table&>(inner).m_checkSetter = [](int, const RkVariant& value) {
    if (value.GetI4() == 7) throw CRkInvalidParamException(L"not seven");
  };
  EXPECT_TEXT(L"CRkException: Failed to set the property value.\nPath: /r/middle/inner/v\nnot seven",
              reads(L"<v>7</v>"));

  const auto object = Read(outer, L"<r><middle><inner><v>5</v></inner></middle></r>");
  const auto innermost = [&] {
    auto* child = static_cast<CTableClass*>((*object)[0].GetXmlObject().Get());
    return static_cast<CTableClass*>((*child)[0].GetXmlObject().Get());
  };
  (*innermost())[0].SetInvalid();
  EXPECT_TEXT(kNotWritten +
                  L"Failed to convert the element [middle] to XML\nFailed to convert the element [inner] to "
                  L"XML\nThe Property [v] is mandatory, it may not be NULL",
              Thrown([&] { Write(*object); }));
}

TEST_F(GeneratedClassTest, PrimitivesHonourFacetsDefaultsAndNil) {
  const CPrimitiveRestrictions atMost9(nullptr, -1, -1, nullptr, L"9", nullptr, nullptr, -1, -1, -1);
  const Table table(ClassInfo(kSequence, L"r"),
                    {Prim<CElementInfoSeqPrimOpt>(L"a", 0, ItemType_int, /*nillable=*/true, L"50", atMost9),
                     Enum<CElementInfoSeqEnumOpt>(L"e", 1, /*nillable=*/true, L"green"),
                     Prim<CElementInfoSeqPrimOpt>(L"s", 2, ItemType_string)});
  const auto xsi = [](const wchar_t* element) {
    return std::wstring(L"<r xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\">") + element + L"</r>";
  };
  const Rows<std::wstring, std::wstring> rows = {
      {L"<r><a/><e/></r>", L"<r><a/><e/></r>"},  // a default is written as an empty element, unchecked
      {L"<r><a> 50 </a><e>red</e></r>", L"<r><a/><e>red</e></r>"},
      {L"<r><e> red</e></r>", kNotRead + L"Unknown colour [ red]."},
      {L"<r><a>10</a></r>", kNotWritten + L"Invalid Value for a [10]"},
      {xsi(L"<a xsi:nil='TRUE'>8</a><e xsi:nil='1'/>"), L"<r/>"},  // the property is left as it was
      {xsi(L"<a xsi:nil='False'>8</a>"), L"<r><a>8</a></r>"},
      {xsi(L"<s xsi:nil='False'>8</s>"), L"<r><s>8</s></r>"},
      {L"<r><a q='1'>8</a></r>", L"CRkException: Unexpected Attribute found.\nPath: /r/a/@q"},
      {xsi(L"<s xsi:nil='yes'/>"),
       L"CRkException: Invalid use of 'nil' attribute in non-nillable element.\nPath: /r/s"},
      {xsi(L"<a xsi:nil='yes'/>"),
       L"CRkException: Unexpected Value [yes] for 'nil' Attribute found.\nPath: /r/a/@xsi:nil"},
  };
  for (const auto& [xml, outcome] : rows) EXPECT_TEXT(outcome, Outcome(table, xml));
  EXPECT_TEXT(L"<r><a>8</a></r>",
              Outcome(table, L"<r><a q='1'>8</a></r>", With(&CSerializationContext::SetIgnoreUnknownAttributes)));

  const auto object = Read(table, L"<r><a/><e/></r>");
  EXPECT_EQ(50, (*object)[0].GetI4());
  EXPECT_TEXT(L"<r><a>50</a><e>green</e></r>",
              Write(*object, With(&CSerializationContext::SetWriteDefaultElementValues)));
  (*object)[0].SetNil();
  (*object)[1].SetInvalid();
  EXPECT_TEXT(L"<r><a xmlns:AA=\"http://www.w3.org/2001/XMLSchema-instance\" AA:nil=\"true\"/></r>", Write(*object));
}

TEST_F(GeneratedClassTest, AttributesAreCheckedAsTheirRecordsSay) {
  const CPrimitiveRestrictions atMost9(nullptr, -1, -1, nullptr, L"9", nullptr, nullptr, -1, -1, -1);
  const Table table(ClassInfo(kSequence, L"r"), {},
                    {Attribute(L"q", 0, /*optional=*/false, L"1", L"", atMost9), Attribute(L"o", 1, true, L"2"),
                     new CAttributeInfoEnum(L"c", L"", 2, true, ColourToString, ColourFromString, L"red")});
  const auto strict = With(), unknown = With(&CSerializationContext::SetIgnoreUnknownAttributes),
             namespaces = With(&CSerializationContext::SetIgnoreNamespaces);
  const Rows<const CSerializationContext&, Wide, std::wstring> rows = {
      {strict, L"<r c='green' o='3' q=' 4 '/>", L"<r q=\"4\" o=\"3\" c=\"green\"/>"},
      {strict, L"<r q='1' o='2' c='red'/>", L"<r q=\"1\" o=\"2\" c=\"red\"/>"},
      {strict, L"<r o='3'/>", kNotRead + L"Failed to find the required Attribute [q]."},
      {strict, L"<r q='1' z='1'/>", L"CRkException: Unexpected Attribute found.\nPath: /r/@z"},
      {unknown, L"<r q='1' z='1'/>", L"<r q=\"1\"/>"},
      {strict, L"<r q='x'/>", kNotRead + L"The value [x] can not be converted to a i4"},
      {strict, L"<r q='10'/>", kNotWritten + L"Failed to convert attributes to XML\nInvalid Value for q [10]"},
      // Without namespaces a foreign enumeration is taken, a foreign primitive is not.
      {namespaces, L"<r xmlns:f='urn:f' q='1' f:c='green'/>", L"<r q=\"1\" c=\"green\"/>"},
      {namespaces, L"<r xmlns:f='urn:f' q='1' f:o='3'/>", L"CRkException: Unexpected Attribute found.\nPath: /r/@f:o"},
  };
  for (const auto& [context, xml, outcome] : rows) EXPECT_TEXT(outcome, Outcome(table, xml, context));

  const auto defaults = Read(table, L"<r q='1' o='2' c='red'/>");
  EXPECT_TEXT(L"<r q=\"1\"/>", Write(*defaults, With(&CSerializationContext::SetNoOptionalAttributeDefaultOutput)));
  std::vector<CAttributeInfo*> many;
  for (int i = 0; i < 100; ++i) many.push_back(Attribute(FormatString(L"a%d", i).c_str(), i, /*optional=*/i != 70));
  EXPECT_TEXT(kNotRead + L"Failed to find the required Attribute [a70].",
              Outcome(Table(ClassInfo(kSequence, L"r"), {}, many), L"<r a99='1'/>"));
}

TEST_F(GeneratedClassTest, AttributeWildcardTakesWhatItsConstraintAdmits) {
  const auto table = [](Wide constraint, Table::Initial initial) {
    return Table(ClassInfo(kSequence, L"r"), {},
                 {Attribute(L"q", 0, true), new CAttributeInfoAny(L"any", L"", 1, true, constraint, L"urn:t", nullptr)},
                 {nullptr, std::move(initial)});
  };
  const Table::Initial attributes = [](RkVariant& value) { value.SetXmlCollection(new CAttributeCol); };
  EXPECT_TEXT(L"<r q=\"1\" z=\"2\" xmlns:AA=\"urn:f\" AA:y=\"3\"/>",
              Outcome(table(L"##other", attributes), L"<r z='2' q='1' f:y='3' xmlns:f='urn:f'/>"));
  EXPECT_TEXT(L"<r xmlns:AA=\"urn:f\" AA:y=\"3\"/>",
              Outcome(table(L"urn:e urn:f", attributes), L"<r f:y='3' xmlns:f='urn:f'/>"));
  EXPECT_TEXT(L"CRkException: Unexpected Attribute found.\nPath: /r/@t:y",
              Outcome(table(L"##other", attributes), L"<r t:y='3' xmlns:t='urn:t'/>"));
  EXPECT_TEXT(kNotRead + L"Serialization Data Error : The collection should be a CAttributeCol, it was not!",
              Outcome(table(L"##any", nullptr), L"<r z='2'/>"));
}

TEST_F(GeneratedClassTest, NilObjectsHaveNoContent) {
  Table table(ClassInfo(kSequence, L"r"), {Prim(L"a", 0)});
  const std::wstring nilRoot = std::wstring(L"<r ") + kNil + L"/>";
  EXPECT_TEXT(kNotRead + L"Invalid use of 'nil' attribute in non-nillable element.",
              Thrown([&] { Read(table, nilRoot.c_str()); }));
  table.m_nillable = true;
  const auto object = Read(table, L"<r><a>1</a></r>");
  object->FromXml(nilRoot.c_str());
  EXPECT_EQ(1, (*object)[0].GetI4());  // members stay untouched
  CSerializationContext context;
  context.SetInLineSchema(L"<schema/>");
  EXPECT_TEXT(L"<r xmlns:AA=\"http://www.w3.org/2001/XMLSchema-instance\" AA:nil=\"true\"/>",
              Write(*object, context));  // no schema behind the attribute
  object->FromXml(L"<r><a>2</a></r>");   // a new reading starts not nil
  EXPECT_TEXT(L"<r><a>2</a></r>", Write(*object));
  EXPECT_TEXT(L"CRkException: Unexpected Value [maybe] for 'nil' Attribute found.\nPath: /r/@xsi:nil", Thrown([&] {
                Read(table, L"<r xsi:nil='maybe' xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance'/>");
              }));
}

TEST_F(GeneratedClassTest, SimpleContentIsReadAndWrittenByItsKind) {
  const Rows<ItemType, Wide, bool, Wide, std::wstring> rows = {
      {ItemType_int, nullptr, false, L"<r>\n 5 \n</r>", L"<r>5</r>"},
      {ItemType_double, L"%.2f", false, L"<r>1.5</r>", L"<r>1.50</r>"},
      {ItemType_string, nullptr, false, L"<r> a  b </r>", L"<r> a  b </r>"},
      {ItemType_int, nullptr, true, L"<r> x </r>", L"<r> x </r>"},
      {ItemType_none, nullptr, false, L"<r>5</r>", L"<r/>"},
      {ItemType_int, nullptr, false, L"<r>x</r>", kNotRead + L"The value [x] can not be converted to a i4"},
      {ItemType_int, nullptr, false, L"<r>5<x/></r>", Unread(L"x")},
  };
  for (const auto& [type, format, asText, xml, outcome] : rows) {
    const Table table(SimpleContent(type, format, asText), {});
    EXPECT_TEXT(outcome, Outcome(table, xml));
  }
  const Table table(SimpleContent(ItemType_int, nullptr, false), {});
  const auto object = CTableClass::Create(table);
  (*object)[0].SetNil();
  CSerializationContext context;
  context.SetInLineSchema(L"<schema/>");
  EXPECT_TEXT(L"<r xmlns:AA=\"http://www.w3.org/2001/XMLSchema-instance\" AA:nil=\"true\"/>", Write(*object, context));
}

TEST_F(GeneratedClassTest, OnlyTheRootCarriesTheExtrasOfTheContext) {
  const Table child(ClassInfo(kSequence, L"c"), {});
  const Table table(ClassInfo(kSequence, L"r"), {MandatoryCls(L"c", 0)}, {}, {NewChild(child)});
  CSerializationContext context;
  context.GetProcessingInstructions() = {L"<?one?>", L"<?two?>"};
  context.GetNamespaceAliases().Add(L"b", L"urn:b");
  context.GetNamespaceAliases().Add(L"a", L"urn:a");
  context.GetAdditionalRootAttributes()->Add(L"x", L"1");
  context.SetInLineSchema(L"<schema/>");
  EXPECT_TEXT(L"<?one?>\n\n<?two?>\n\n<r xmlns:a=\"urn:a\" xmlns:b=\"urn:b\" x=\"1\"> \n<schema/>\n<c/></r>",
              Write(*CTableClass::Create(table), context));
}

// A mandatory child that the owner does not hold is made by the factory; nothing is dereferenced that can be null.
TEST_F(GeneratedClassTest, MissingObjectsAreCreatedOrReported) {
  const Table child(ClassInfo(kSequence, L"c"), {Prim<CElementInfoSeqPrimOpt>(L"v", 0)});
  const Table mandatory(ClassInfo(kSequence, L"r"), {MandatoryCls(L"c", 0)});
  const Table optional(ClassInfo(kSequence, L"r"), {Cls(L"c", 0)});
  const Table collection(ClassInfo(kSequence, L"r"), {new CElementInfoSeqCol(L"c", L"", 0)});
  const Table groups(
      ClassInfo(kSequence, L"r"), {new CElementInfoSeqCol(L"c", L"", 0)}, {}, {[](RkVariant& value) {
        value.SetXmlCollection(new CTableCol(L"c", L"", 0, -1, CreateClass, 0, XmlElementType_InlineGroup));
      }});
  const Table wildcard(ClassInfo(kSequence, L"r"), {new CElementInfoSeqUntpdMnd(L"AnyElement", L"", 0, L"##any", L"")});
  const std::wstring xml = L"<r><c><v>1</v></c></r>";
  Classes() = {&child};
  EXPECT_TEXT(xml, Outcome(mandatory, xml));
  Classes() = {nullptr};
  EXPECT_TEXT(Missing(L"c"), Outcome(mandatory, xml));
  for (const Table* table : {&optional, &collection, &groups}) EXPECT_TEXT(Unread(L"c"), Outcome(*table, xml));
  EXPECT_TEXT(Missing(L"AnyElement"), Outcome(wildcard, xml));
  const auto object = CTableClass::Create(mandatory);
  EXPECT_TEXT(L"CRkValidationException: Failed to process the element.\nThe document has no root element.",
              Thrown([&] { object->FromXml_Int(nullptr, nullptr, CSerializationContext(), false); }));
}

TEST_F(GeneratedClassTest, ObjectsInsideEachOtherAreLimited) {
  Table table(ClassInfo(kSequence, L"c"), {Cls(L"c", 0)});
  Classes() = {&table};
  const auto nested = [](int depth) { return Repeat(depth, L"<c>") + Repeat(depth, L"</c>"); };
  CSerializationContext context;
  context.GetLimits().SetMaxObjectDepth(3);
  EXPECT_TEXT(L"<c><c><c/></c></c>", Outcome(table, nested(3), context));
  EXPECT_TEXT(L"CRkException: Limit exceeded: object depth 3.\nPath: /c/c/c/c", Outcome(table, nested(4), context));
  EXPECT_EQ(std::wstring::npos, Outcome(table, nested(1000), With()).find(L"Limit"));
  EXPECT_NE(std::wstring::npos, Outcome(table, nested(1001), With()).find(L"Limit exceeded: object depth 1000."));
}

// Failures of the library's family are wrapped; what else an accessor throws passes unchanged, and nothing leaks.
TEST_F(GeneratedClassTest, AccessorFailuresAreToldOrPassed) {
  class CFailing : public CTableClass {
   public:
    using CTableClass::CTableClass;
    void AccessProperty(int, bool get, RkVariant& value) override {
      if (m_foreign && !get) throw 7;  // of no family
      if (!m_foreign) throw CRkInvalidStateException(L"no access");
      value.SetXmlCollection(new CTableCol(L"a", L"", 0, -1, CreateClass, 0));
    }
    bool m_foreign = false;
  };
  const Table table(ClassInfo(kSequence, L"r"), {Cls(L"c", 0)}, {Attribute(L"q", 1, true)});
  const Table child(ClassInfo(kSequence, L"c"), {});
  Classes() = {&child};
  CFailing object(table);
  EXPECT_TEXT(
      kNotWritten + L"Failed to convert attributes to XML\nFailed to get the property value for [q].\nno access",
      Thrown([&] { Write(object); }));
  EXPECT_TEXT(L"CRkException: Failed to set the property value.\nPath: /r/@q\nno access",
              Thrown([&] { object.FromXml(L"<r q='1'/>"); }));
  object.m_foreign = true;
  EXPECT_THROW(object.FromXml(L"<r q='1'/>"), int);
  EXPECT_THROW(object.FromXml(L"<r><c/></r>"), int);
}

// The fast paths of records and readers give what the plain ones give.
TEST_F(GeneratedClassTest, RecordsThatDeriveFromOthersAreAskedThemselves) {
  class CEager : public CElementInfoSeqPrimOpt {
   public:
    using CElementInfoSeqPrimOpt::CElementInfoSeqPrimOpt;
    bool ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                      CXmlWriter* writer) const override {
      if (CElementInfoSeqPrimOpt::ElementToXml(context, object, writer)) return true;
      writer->WriteTextElement(L"none", L"", L"", ItemType_string);
      return true;
    }
    bool ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object, CXmlElement* parent,
                        CXmlElement** cursor, const wchar_t* ns, XmlElementType type) override {
      if (*cursor != nullptr && (*cursor)->GetLocalName() == L"none") *cursor = (*cursor)->GetNextSiblingElement();
      return CElementInfoSeqPrimOpt::ElementFromXml(context, object, parent, cursor, ns, type);
    }
  };
  const Table table(ClassInfo(kSequence, L"r"), {Prim<CEager>(L"a", 0), Prim<CElementInfoSeqPrimOpt>(L"b", 1)});
  EXPECT_TEXT(L"<r><none/><b>1</b></r>", Outcome(table, L"<r><none/><b>1</b></r>"));
  EXPECT_TEXT(L"<r><a>2</a></r>", Outcome(table, L"<r><none/><a>2</a></r>"));
}

TEST_F(GeneratedClassTest, ASetterMayReadAnotherDocument) {
  Table inner(ClassInfo(kSequence, L"i"), {Prim(L"v", 0, ItemType_string)});
  Table table(ClassInfo(kSequence, L"r"), {Prim(L"a", 0, ItemType_string), Prim(L"v", 1, ItemType_decimal)});
  std::wstring seen;
  table.m_checkSetter = [&](int, const RkVariant& value) {
    const std::wstring before = value.ToString();
    seen += Outcome(inner, L"<i><v>inner text of some length</v></i>") + before + value.ToString() + L";";
  };
  EXPECT_TEXT(L"<r><a>outer text of some length</a><v>1.5</v></r>",
              Outcome(table, L"<r><a>outer text of some length</a><v>1.5</v></r>"));
  const std::wstring read = L"<i><v>inner text of some length</v></i>";
  EXPECT_TEXT(read + L"outer text of some lengthouter text of some length;" + read + L"1.51.5;", seen);
}

// A document knows which record has a name, while several have it, in namespaces of their own.
TEST_F(GeneratedClassTest, OneDocumentServesRecordsOfLikeNames) {
  const auto record = [](const wchar_t* ns) {
    return new CElementInfoSeqPrimOpt(L"a", ns, 0, false, ItemType_int, nullptr, CWhitespaceUtils::collapse, NoFacets(),
                                      nullptr);
  };
  CXmlDocument document;
  document.LoadXml(L"<r><a>1</a><x:a xmlns:x='urn:x'>2</x:a></r>");
  for (int round = 0; round < 2; ++round) {
    const Table plain(ClassInfo(kSequence, L"r"), {record(L"")});
    const Table other(ClassInfo(kSequence, L"r"), {record(L"urn:x")});
    const Rows<const Table&, bool, std::wstring> rows = {{plain, false, Unread(L"a")},
                                                         {other, false, Unread(L"a")},
                                                         {other, true, L"nothing"},
                                                         {plain, false, Unread(L"a")}};
    for (const auto& [table, anyNamespace, outcome] : rows) {
      CSerializationContext context;
      context.SetIgnoreNamespaces(anyNamespace);
      context.SetIgnoreUnknownElements(anyNamespace);
      const auto object = CTableClass::Create(table);
      EXPECT_TEXT(outcome, Thrown([&] { object->FromXmlElement(document.GetDocumentElement(), context); }));
    }
  }
}

TEST_F(GeneratedClassTest, MistakesInRecordsAreTold) {
  const Table unknown(ClassInfo(static_cast<XmlElementGroupType>(3), L"r"), {});
  EXPECT_TEXT(kNotWritten + L"Unknown XML Group Type", Thrown([&] { Write(*CTableClass::Create(unknown)); }));
  EXPECT_TEXT(kNotRead + L"Unknown Group Type", Thrown([&] { Read(unknown, L"<r/>"); }));
  const Table table(ClassInfo(kSequence, nullptr), {Enum(nullptr, 0)}, {Attribute(nullptr, 1, true)});
  RkVariant value;
  value.SetI4(1);
  EXPECT_THROWS(CRkException, L"Cannot CheckRestriction for type: i4", table.m_elements[0]->CheckRestriction(value));
  EXPECT_THROWS(CRkException, L"Not implemented, should never be called",
                table.m_elements[0]->Validate(With(), nullptr, true, true));
}

TEST(ElementInfoTest, WildcardNamespaceFollowsTheConstraint) {
  const Rows<Wide, Wide, Wide, Wide> rows = {{L"##any", L"d", L"t", L"d"},
                                             {L"##other", L"", L"t", L"DefaultNamespace"},
                                             {L"##other", L"d", L"t", L""},
                                             {L"##local", L"d", L"t", L""},
                                             {L"##targetNamespace", L"d", L"t", L"t"},
                                             {L"##other urn:x", L"", L"t", L"DefaultNamespace"},
                                             {L"urn:x", L"d", L"t", L""},
                                             {nullptr, L"d", L"t", L""}};
  for (const auto& [constraint, defaultNs, targetNs, result] : rows)
    EXPECT_TEXT(result, CElementInfo::GetAnyDefaultNamespace(constraint, defaultNs, targetNs));
}

TEST(ClassFactoryTest, TellsTheTypeThatAnElementNames) {
  const Rows<Wide, Wide, Wide> rows = {
      {L"<e xmlns='urn:e' xmlns:p='urn:p' i:type='p:Derived' xmlns:i='http://www.w3.org/2001/XMLSchema-instance'/>",
       L"Derived", L"urn:p"},
      {L"<e xmlns='urn:e' i:type='q:Derived' xmlns:i='http://www.w3.org/2001/XMLSchema-instance'/>", L"Derived",
       L"urn:e"},
      {L"<e xmlns='urn:e' i:type='Derived' xmlns:i='http://www.w3.org/2001/XMLSchema-instance'/>", L"Derived",
       L"urn:e"},
      {L"<e type='p:Derived'/>", L"", L""},
  };
  for (const auto& [xml, type, ns] : rows) {
    CXmlDocument document;
    document.LoadXml(xml);
    EXPECT_TEXT(type, CClassfactoryBase::GetElementType(document.GetDocumentElement()));
    EXPECT_TEXT(ns, CClassfactoryBase::GetElementTypeNamespaceUri(document.GetDocumentElement()));
  }
}

TEST_F(GeneratedClassTest, HelpersRefuseNull) {
  EXPECT_THROWS(CRkInvalidParamException, L"The element may not be NULL", CClassfactoryBase::GetElementType(nullptr));
  EXPECT_THROWS(CRkInvalidParamException, L"The element may not be NULL",
                CClassfactoryBase::GetElementTypeNamespaceUri(nullptr));
  CXmlElement* current = nullptr;
  long itemsRead = 0;
  EXPECT_THROWS(CRkInvalidParamException, L"The collection may not be NULL",
                CXmlObjectBase::Choice_Read_Collection(nullptr, nullptr, current, itemsRead, GetDefaultContext()));
}

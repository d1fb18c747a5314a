// Every kind of failure: its number, its name, what it means, and the messages that tell it. The numbers never change;
// new kinds get new ones. docs/errors.md is made from this table by scripts/make_error_table.sh.
//
// A message is told by its text: each conversion of the format stands for any text, or for a number. The first row that
// matches counts, so the most general format stands last.
//
// For includers that define RKXML_ERROR(number, name, meaning, messages...), again and again.
#ifndef RKXML_ERROR
#define RKXML_ERROR(...)
#endif

// 100: getting at the input
RKXML_ERROR(101, CannotOpenFile, "a file cannot be opened", L"Failed to open the file [%ls].")
RKXML_ERROR(102, CannotReadFile, "a file cannot be read, or is empty",
            L"Failed to read the contents of the file [%ls] Error [%d]",
            L"Failed to get the size of the file [%ls] Error [%d]")
RKXML_ERROR(103, EmptyInput, "there is no document", L"XML String is empty!", L"XML Stream is empty!",
            L"JSON String is empty!", L"JSON Stream is empty!", L"The document contains no element.",
            L"The document has no root element.")

// 200: the form of the document
RKXML_ERROR(202, NamespaceWithBar, "a namespace URI contains '|'",
            L"A namespace URI contains the character '|' at line %d")
RKXML_ERROR(203, DocumentTypeRefused, "the context refuses a DTD",
            L"A document type declaration is not allowed at line %d",
            L"A document type declaration is not allowed in Fast Infoset")
RKXML_ERROR(210, JsonTooDeep, "JSON values are more than 100 deep",
            L"JSON exceeded depth limit at line %d, position %d.")
RKXML_ERROR(211, JsonEnds, "JSON text ends too early", L"Unexpected End of File. Expected %ls at line %d, position %d.")
RKXML_ERROR(212, JsonEscape, "an escape in a JSON string is none",
            L"Invalid Escape Character '%c' at line %d, position %d.")
RKXML_ERROR(213, JsonSyntax, "JSON text is not well-formed", L"Expected %ls, found '%c' at line %d, position %d.",
            L"Expected %ls at line %d, position %d.")
RKXML_ERROR(214, JsonName, "a JSON name that XML cannot hold, or none for an array", L"JSON item has an empty Name.",
            L"JSON Array has no Name.", L"Failed to convert name '%ls' to Element name in XML.")
RKXML_ERROR(215, JsonValue, "a JSON value that XML cannot hold",
            L"Failed to convert value '%ls' to Attribute string value in XML.",
            L"Failed to convert value '%ls' to Element string value in XML.")
RKXML_ERROR(220, FastInfosetEnds, "a Fast Infoset ends too early",
            L"Failed to parse FastInfoset. Unexpected End of File.")
RKXML_ERROR(221, FastInfosetMalformed, "the octets are no Fast Infoset", L"Failed to parse FastInfoset. %ls")
RKXML_ERROR(222, FastInfosetValue, "octets of an encoding algorithm are no value",
            L"Invalid value for %ls byte encoding.", L"Unknown byte encoding.", L"Invalid encoding index [%d]")

// 300: limits
RKXML_ERROR(301, LimitExceeded, "the document exceeds a limit of the context", L"Limit exceeded: %ls %d.",
            L"A name is too long.", L"A value is too long.", L"The text of an element is too long.",
            L"The document has too many names.")

// 400: values. The facets have numbers of their own, 431 and up.
RKXML_ERROR(
    401, NotABoolean, "a text is no boolean",
    L"A Boolean Value read from an XML document was invalid [%ls]. Valid values are 'true', 'false', '1', or '0'")
RKXML_ERROR(402, NumberTooLarge, "a number does not fit its type", L"The value [%ls] is to large to fit in a %ls",
            L"The Decimal value if to large to fit into a %ls", L"ERROR: Value out of bound of %ls",
            L"The exponent of the Decimal [%ls] is to large, the largest is %d.", L"ERROR: Overflow in %ls")
RKXML_ERROR(403, NotANumber, "a text is no number", L"The value [%ls] can not be converted to a %ls",
            L"The string representing a Decimal, contained an invalid char at position %d [%ls].",
            L"The double is not a finite number")
RKXML_ERROR(404, NotACharacter, "a text is not one character",
            L"The value [%ls] can not be a char as it is either empty of greater than 1 char long")
RKXML_ERROR(405, NotADate, "a text is no date or time", L"Invalid XSD Time%ls", L"Invalid XSD Date%ls",
            L"Invalid Time (Null String)", L"Invalid Date%ls", L"Invalid Year%ls", L"Invalid Month%ls",
            L"Invalid Day%ls", L"Invalid TimeZone%ls", L"Invalid Hour%ls", L"Invalid Minute%ls", L"Invalid Second%ls",
            L"Invalid Milli-Second%ls", L"Invalid Micro-Second%ls")
RKXML_ERROR(406, NotADuration, "a text is no duration", L"Invalid XSD Duration%ls")
RKXML_ERROR(407, NotBinary, "a text is not hexadecimal or base64", L"Invalid char in %ls string [%c]",
            L"Invalid length in %ls string")
RKXML_ERROR(408, InvalidPattern, "a pattern of the schema is no regular expression",
            L"%ls\nInvalid Value for %ls [%ls].", L"Invalid Regular Expression: %ls Error: '%ls'")
RKXML_ERROR(430, InvalidValue, "a value breaks a facet", L"Invalid Value for %ls [%ls].",
            L"Invalid Value for %ls [%ls]")
RKXML_ERROR(431, FacetLength, "a value breaks the facet length", L"Invalid Value for %ls [%ls].")
RKXML_ERROR(432, FacetMinLength, "a value breaks the facet minLength", L"Invalid Value for %ls [%ls].")
RKXML_ERROR(433, FacetMaxLength, "a value breaks the facet maxLength", L"Invalid Value for %ls [%ls].")
RKXML_ERROR(434, FacetPattern, "a value breaks the facet pattern", L"Invalid Value for %ls [%ls].")
RKXML_ERROR(435, FacetEnumeration, "a value is not one of the enumeration", L"Invalid Value for %ls [%ls].")
RKXML_ERROR(436, FacetMinInclusive, "a value breaks the facet minInclusive", L"Invalid Value for %ls [%ls].")
RKXML_ERROR(437, FacetMaxInclusive, "a value breaks the facet maxInclusive", L"Invalid Value for %ls [%ls].")
RKXML_ERROR(438, FacetMinExclusive, "a value breaks the facet minExclusive", L"Invalid Value for %ls [%ls].")
RKXML_ERROR(439, FacetMaxExclusive, "a value breaks the facet maxExclusive", L"Invalid Value for %ls [%ls].")
RKXML_ERROR(440, FacetTotalDigits, "a value breaks the facet totalDigits", L"Invalid Value for %ls [%ls].")
RKXML_ERROR(441, FacetFractionDigits, "a value breaks the facet fractionDigits", L"Invalid Value for %ls [%ls].")

// 500: the content of the document
RKXML_ERROR(501, MissingElement, "a mandatory element is missing", L"Failed to find the required child element [%ls].",
            L"Failed to find the mandatory element [%ls].",
            L"Failed to find the required element from namespace [%ls].")
RKXML_ERROR(502, MissingSubstitution, "no known element stands for an abstract one",
            L"Failed to find a suitable substitution element for [%ls].")
RKXML_ERROR(503, UnexpectedElement, "an element that the class does not know, or not in this place",
            L"Failed read all the elements held within the element [%ls]. The unexpected element [%ls] remains un "
            L"processed",
            L"Invalid Element [%ls] found.")
RKXML_ERROR(504, MissingAttribute, "a required attribute is missing", L"Failed to find the required Attribute [%ls].")
RKXML_ERROR(505, UnexpectedAttribute, "an attribute that the class does not know", L"Unexpected Attribute found.")
RKXML_ERROR(506, TooFewElements, "a collection has fewer items than its minimum",
            L"The Minimum number of [%ls] elements allowed in this collection is %d")
RKXML_ERROR(507, TooManyElements, "a collection has more items than its maximum",
            L"The Maximum number of [%ls] elements allowed in this collection is %d")
RKXML_ERROR(
    508, EmptyChoice, "no member of a choice is there",
    L"No child elements within the element [%ls] were populated. The element represents a choice, so one and "
    L"only one element should be populated. The element contained no sutable child elements",
    L"This element is a choice, and as such must have at one (and only one) valid item, currently there are none "
    L"set")
RKXML_ERROR(509, NotNillable, "xsi:nil on an element that is not nillable",
            L"Invalid use of 'nil' attribute in non-nillable element.")
RKXML_ERROR(510, NilValue, "xsi:nil with a value that is no boolean",
            L"Unexpected Value [%ls] for 'nil' Attribute found.")
RKXML_ERROR(511, InvalidNamespace, "a wildcard does not admit the namespace", L"Invalid Namespace [%ls].",
            L"Invalid namespace [%ls]. The namespace must be one of [%ls] where the target namespace is [%ls].",
            L"Invalid Attribute [%ls]. The attributes namespace is Inappropriate.")

// 600: writing
RKXML_ERROR(601, CannotWriteFile, "a file or another target cannot be written",
            L"Failed to write data to the file [%ls].", L"Failed to write data to the file",
            L"Failed to write data to the target of the document")
RKXML_ERROR(602, NullMandatory, "a mandatory property has no value",
            L"The Property [%ls] is mandatory, it may not be NULL",
            L"The Property [%ls] is mandatory, it may node be NULL")
RKXML_ERROR(603, CannotCompress, "the document does not get smaller by compression, or the call cannot compress so",
            L"Failed to compress data. [Error Code: %d]", L"ZLIB Compression only available for To Stream methods.")
RKXML_ERROR(604, WriterOrder, "calls to a writer in an order that makes no document",
            L"Attributes must be added before elements", L"Text must be written inside an Element.",
            L"There is no open Element to end.", L"An Element has not been closed.", L"No Element is open.",
            L"Headed directives must appear before an Element has been added.", L"The element has no name.",
            L"Unknown Namespace: %ls", L"The document has ended.", L"The document has its root element already.",
            L"The document cannot end without a root element.", L"The document was given up after a failure.")
RKXML_ERROR(605, FastInfosetUnwritable, "a Fast Infoset cannot hold it", L"Failed to write FastInfoset. %ls",
            L"Invalid Fast Infoset declaration [%d]")
RKXML_ERROR(606, UnknownEncoding, "the encoding, line end or format of the output is unknown",
            L"Unknown Encoding, select UTF-8 (contact our support team)", L"Invalid EOL type.", L"Unknown Format: %ls")
RKXML_ERROR(607, RefusedOutput, "the document would not be read back the same",
            L"Refused to write the character U+%ls.", L"Refused to write the %ls [%ls].")

// 700: calls by the program
RKXML_ERROR(701, IndexOutOfRange, "an index out of range", L"Index out of range",
            L"Index %d is out of range, use 0 - %d", L"Index Out of range [%ls]")
RKXML_ERROR(702, ChoiceAlreadySet, "another member of the choice is set",
            L"The Property [%ls] is already set. Only one element within this class bay be set at a time",
            L"The Property %ls is already set. Only one element within this class bay be set at a time")
RKXML_ERROR(703, WrongElementName, "an object with another element name than its property",
            L"This property requires an element with the name %ls the element being set has the element name %ls")
RKXML_ERROR(
    704, OpposedSettings, "a wrong setting, or two that exclude each other",
    L"The parser can only ignore additional elements, or ignore the fact that some required ones are missing, you "
    L"can not ignore both\n%ls",
    L"IndentChars can only contain Whitespace characters, i.e. \\t or spaces")
RKXML_ERROR(705, WrongDateType, "a part or conversion that a date does not have", L"Failed to Get%ls",
            L"Failed to Set%ls", L"Failed to copy CDateTime. %ls",
            L"Dates added to this collection must be of type %ls", L"Error: Date Not Set",
            L"GetTime, Date Status must be dateTime or date", L"TimeZone is not been used", L"The source CDateTime %ls",
            L"Attempting to set a CDateTime %ls", L"Unknown date type %d.")
RKXML_ERROR(706, UnknownAlias, "a namespace or alias that is not in the map", L"Namespace alias [%ls] not found")
RKXML_ERROR(707, WrongMetadata, "records of a class that do not fit it", L"Unknown Group Type",
            L"Unknown XML Group Type", L"Not implemented, should never be called",
            L"Cannot CheckRestriction for type: %ls", L"Serialization Data Error : %ls", L"Unknown WhitespaceRule",
            L"Invalid Type %ls",
            L"CXmlCollectionBase::GetTargetNamespace Should not be used from within a Collection (program logic error)")
RKXML_ERROR(708, WrongTree, "a call that no element or document can fulfil",
            L"A document has one document element only.", L"A child element needs an open element.",
            L"There is no open element to end.", L"An element needs a document.",
            L"An element may not be its own child", L"An attribute cannot be read from an element.",
            L"The child element may not be NULL", L"The collection may not be NULL", L"The element may not be NULL",
            L"The object was not found in the collection", L"The collection is full")

// 900: what only wraps another failure; an exception with a cause has the number of the cause.
RKXML_ERROR(901, ElementFailed, "something in the element failed", L"Failed to process the element.",
            L"Failed to convert the element [%ls] to XML", L"Failed to convert attributes to XML")
RKXML_ERROR(902, PropertyFailed, "the property of a class refused", L"Failed to set the property value.",
            L"Failed to get the property value for [%ls].")
RKXML_ERROR(903, JsonFailed, "reading from JSON failed", L"Error converting JSON to XML:\n%ls")

RKXML_ERROR(201, XmlMalformed, "the XML text is not well-formed", L"%ls at line %d")

#undef RKXML_ERROR

// The whole public interface in one include. Sources that a generator emits include core/Generated.h instead.
#ifndef RKXMLLIB16_RKXMLLIB16_H
#define RKXMLLIB16_RKXMLLIB16_H

#include "RkXmlLib16/core/Generated.h"
#include "RkXmlLib16/core/NamespaceAliasMap.h"
#include "RkXmlLib16/core/ReadLimits.h"
#include "RkXmlLib16/core/XmlObjectBase.h"
#include "RkXmlLib16/fastinfoset/Context.h"
#include "RkXmlLib16/json/JsonContext.h"
#include "RkXmlLib16/json/JsonReaderHandler.h"
#include "RkXmlLib16/json/JsonTextReader.h"
#include "RkXmlLib16/json/JsonTextWriter.h"
#include "RkXmlLib16/metadata/PrimitiveRestrictions.h"
#include "RkXmlLib16/support/BinaryStream.h"
#include "RkXmlLib16/support/CriticalSection.h"
#include "RkXmlLib16/support/Encoder.h"
#include "RkXmlLib16/support/Format.h"
#include "RkXmlLib16/support/TextStream.h"
#include "RkXmlLib16/support/Zip.h"
#include "RkXmlLib16/types/BigInteger.h"
#include "RkXmlLib16/types/BinaryData.h"
#include "RkXmlLib16/types/DateTime.h"
#include "RkXmlLib16/types/DateTimeSpan.h"
#include "RkXmlLib16/types/Decimal.h"
#include "RkXmlLib16/types/Whitespace.h"
#include "RkXmlLib16/xml/XmlTextWriter.h"

#endif

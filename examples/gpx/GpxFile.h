#ifndef EXAMPLES_GPX_GPXFILE_H
#define EXAMPLES_GPX_GPXFILE_H

#include <RkXmlLib16/RkXmlLib16.h>

#include <string>

#include "gpx.h"

namespace Gpx {

// Reads GPX from XML text or Fast Infoset, and from JSON when the name ends in .json; plain or in a gzip or zlib
// wrapper. Returns the settings to write it with: GPX in the default namespace, and the prefixes that the file bound to
// foreign namespaces. Throws RkXmlLib16::CRkException.
CSerializationContext ReadFile(CGpxType& gpx, const std::string& name);

// Writes GPX in the form that the name's ending tells: .json, .finf, else XML text; with .gz behind it in a gzip
// wrapper.
void WriteFile(const CGpxType& gpx, const std::string& name, const CSerializationContext& context);

}  // namespace Gpx

#endif

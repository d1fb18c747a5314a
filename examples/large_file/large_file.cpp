// large_file IN [OUT]: finds the highest point of a GPX file of any size and, with OUT, writes a track of every tenth
// point. Both files go through the program point by point, so that memory does not grow with them.

#include <RkXmlLib16/RkXmlLib16.h>

#include <cstdio>
#include <optional>
#include <string>

#include "gpx.h"

using namespace RkXmlLib16;

namespace {

struct Highest {
  bool known = false;
  CDecimal ele, lat, lon;
};

void Note(Highest& highest, const Gpx::CWptType& point) {
  if (!point.HasEle() || (highest.known && point.GetEle() <= highest.ele)) return;
  highest.known = true;
  highest.ele = point.GetEle();
  highest.lat = point.GetLat();
  highest.lon = point.GetLon();
}

// A file that appears when it is complete.
class ThinTrack {
 public:
  ThinTrack(const char* fileName, const CSerializationContext& context)
      : m_writer(fileName, CompressionType_None, context) {
    Gpx::CGpxType gpx(L"gpx");
    gpx.SetVersion(L"1.1");
    gpx.SetCreator(L"large_file");
    m_writer.WriteStartElement(gpx);
    m_writer.WriteStartElement(Gpx::CTrkType(L"trk"));
    m_writer.WriteStartElement(Gpx::CTrksegType(L"trkseg"));
    m_writer.BeginCollection();
  }
  void Add(const Gpx::CWptType& point) { m_writer.WriteObject(point); }
  void End() {
    for (int i = 0; i < 3; ++i) m_writer.WriteEndElement();
    m_writer.End();
  }

 private:
  CXmlDocumentWriter m_writer;
};

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2 && argc != 3) {
    std::fputs("usage: large_file IN [OUT]\n", stderr);
    return 2;
  }
  try {
    CSerializationContext context;
    context.SetDefaultNamespaceURI(L"http://www.topografix.com/GPX/1/1");
    context.SetWriteTypeAttribute(false);  // the elements have the types that the schema gives them
    std::optional<ThinTrack> thin;
    if (argc == 3) thin.emplace(argv[2], context);

    Highest highest;
    unsigned long long count = 0;
    ForEachObject<Gpx::CWptType>(CFileSource(argv[1]), L"/gpx/trk/trkseg/trkpt", context, [&](Gpx::CWptType& point) {
      Note(highest, point);
      if (thin && count % 10 == 0) thin->Add(point);
      ++count;
    });
    if (thin) thin->End();

    std::printf("%llu points\n", count);
    if (highest.known)
      std::printf("highest: %s m at %s,%s\n", ToUtf8(highest.ele.ToString()).c_str(),
                  ToUtf8(highest.lat.ToString()).c_str(), ToUtf8(highest.lon.ToString()).c_str());
    return 0;
  } catch (const CRkException& e) {
    std::fprintf(stderr, "large_file: %s\n", ToUtf8(e.GetFullMessage()).c_str());
    return 1;
  }
}

// large_file FILE: finds the highest point of a GPX file of any size. The element filter sees each point when it ends,
// turns it into an object, and drops it, so the tree never holds more than one point.

#include <RkXmlLib16/RkXmlLib16.h>

#include <cstdio>
#include <string>

#include "gpx.h"

using namespace RkXmlLib16;

namespace {

// A filter is a plain function, so what it collects stands here.
struct Highest {
  long points = 0;
  bool known = false;
  CDecimal ele, lat, lon;
};
Highest highest;

bool TakePoint(CXmlElement* element) {
  if (element->GetLocalName() != L"trkpt") return false;
  Gpx::CWptType point(L"trkpt");
  point.FromXmlElement(element);
  ++highest.points;
  if (point.HasEle() && (!highest.known || point.GetEle() > highest.ele)) {
    highest.known = true;
    highest.ele = point.GetEle();
    highest.lat = point.GetLat();
    highest.lon = point.GetLon();
  }
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fputs("usage: large_file FILE\n", stderr);
    return 2;
  }
  try {
    CXmlDocument document(TakePoint);
    document.Load(argv[1]);
    std::printf("%ld points\n", highest.points);
    if (highest.known)
      std::printf("highest: %s m at %s,%s\n", ToUtf8(highest.ele.ToString()).c_str(),
                  ToUtf8(highest.lat.ToString()).c_str(), ToUtf8(highest.lon.ToString()).c_str());
    return 0;
  } catch (const CRkException& e) {
    std::fprintf(stderr, "large_file: %s\n", ToUtf8(e.GetFullMessage()).c_str());
    return 1;
  }
}

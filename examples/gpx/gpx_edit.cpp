// gpx_edit IN OUT LAT LON NAME: adds a waypoint to a GPX file and saves it.

#include <RkXmlLib16/RkXmlLib16.h>

#include <cstdio>
#include <string>

#include "GpxFile.h"
#include "gpx.h"

using namespace RkXmlLib16;

int main(int argc, char** argv) {
  if (argc != 6) {
    std::fputs("usage: gpx_edit IN OUT LAT LON NAME\n", stderr);
    return 2;
  }
  try {
    Gpx::CGpxType gpx;
    const CSerializationContext context = Gpx::ReadFile(gpx, argv[1]);

    Gpx::CWptType* const point = gpx.GetWpt()->AddNew();
    point->SetLat(CDecimal(FromUtf8(argv[3]).c_str()));  // the facets refuse what is not on the globe
    point->SetLon(CDecimal(FromUtf8(argv[4]).c_str()));
    point->SetName(FromUtf8(argv[5]));

    Gpx::WriteFile(gpx, argv[2], context);
    std::printf("added waypoint %d: %s\n", gpx.GetWpt()->GetCount(), ToUtf8(point->GetName()).c_str());
    return 0;
  } catch (const CRkException& e) {
    std::fprintf(stderr, "gpx_edit: %s\n", ToUtf8(e.GetFullMessage()).c_str());
    return 1;
  }
}

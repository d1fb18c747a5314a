// gpx_stats FILE [OUT]: reads a GPX track (XML text, Fast Infoset or JSON, plain or gzip), tells its points, length,
// time span, bounds and climb, and writes it back when OUT is given.

#include <RkXmlLib16/RkXmlLib16.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "GpxFile.h"
#include "gpx.h"

using namespace RkXmlLib16;

namespace {

struct Stats {
  long points = 0;
  double metres = 0;
  double climb = 0;
  CDecimal minLat, maxLat, minLon, maxLon;
  CDateTime first, last;
  bool hasTime = false;
};

double Radians(double degrees) { return degrees * 3.14159265358979323846 / 180; }

// Great circle distance on a sphere of the earth's mean radius.
double Distance(const Gpx::CWptType& a, const Gpx::CWptType& b) {
  const double latA = Radians(a.GetLat().ToDouble());
  const double latB = Radians(b.GetLat().ToDouble());
  const double north = std::sin((latB - latA) / 2);
  const double east = std::sin(Radians(b.GetLon().ToDouble() - a.GetLon().ToDouble()) / 2);
  return 2 * 6371008.8 * std::asin(std::sqrt(north * north + std::cos(latA) * std::cos(latB) * east * east));
}

void AddPoint(Stats& stats, const Gpx::CWptType& point, const Gpx::CWptType* previous) {
  if (stats.points++ == 0) {
    stats.minLat = stats.maxLat = point.GetLat();
    stats.minLon = stats.maxLon = point.GetLon();
  } else {
    if (point.GetLat() < stats.minLat) stats.minLat = point.GetLat();
    if (point.GetLat() > stats.maxLat) stats.maxLat = point.GetLat();
    if (point.GetLon() < stats.minLon) stats.minLon = point.GetLon();
    if (point.GetLon() > stats.maxLon) stats.maxLon = point.GetLon();
  }
  if (previous != nullptr) {
    stats.metres += Distance(*previous, point);
    if (previous->HasEle() && point.HasEle())
      stats.climb += std::max(0.0, (point.GetEle() - previous->GetEle()).ToDouble());
  }
  if (point.HasTime()) {
    if (!stats.hasTime || point.GetTime() < stats.first) stats.first = point.GetTime();
    if (!stats.hasTime || point.GetTime() > stats.last) stats.last = point.GetTime();
    stats.hasTime = true;
  }
}

Stats Measure(const Gpx::CGpxType& gpx) {
  Stats stats;
  for (const Gpx::CTrkType& track : *gpx.GetTrk()) {
    for (const Gpx::CTrksegType& segment : *track.GetTrkseg()) {
      const Gpx::CWptType* previous = nullptr;
      for (const Gpx::CWptType& point : *segment.GetTrkpt()) {
        AddPoint(stats, point, previous);
        previous = &point;
      }
    }
  }
  return stats;
}

void Print(const Gpx::CGpxType& gpx, const Stats& stats) {
  if (gpx.GetMetadata() != nullptr && gpx.GetMetadata()->HasName())
    std::printf("name:    %s\n", ToUtf8(gpx.GetMetadata()->GetName()).c_str());
  std::printf("tracks:  %d, waypoints: %d, routes: %d\n", gpx.GetTrk()->GetCount(), gpx.GetWpt()->GetCount(),
              gpx.GetRte()->GetCount());
  std::printf("points:  %ld\n", stats.points);
  if (stats.points == 0) return;
  std::printf("length:  %.3f km\n", stats.metres / 1000);
  std::printf("climb:   %.1f m\n", stats.climb);
  std::printf("bounds:  %s,%s to %s,%s\n", ToUtf8(stats.minLat.ToString()).c_str(),
              ToUtf8(stats.minLon.ToString()).c_str(), ToUtf8(stats.maxLat.ToString()).c_str(),
              ToUtf8(stats.maxLon.ToString()).c_str());
  if (stats.hasTime)
    std::printf("time:    %s to %s (%s)\n", ToUtf8(stats.first.ToString()).c_str(),
                ToUtf8(stats.last.ToString()).c_str(), ToUtf8((stats.last - stats.first).ToString()).c_str());
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2 && argc != 3) {
    std::fputs("usage: gpx_stats FILE [OUT]\n", stderr);
    return 2;
  }
  try {
    Gpx::CGpxType gpx;
    const CSerializationContext context = Gpx::ReadFile(gpx, argv[1]);
    Print(gpx, Measure(gpx));
    if (argc == 3) Gpx::WriteFile(gpx, argv[2], context);
    return 0;
  } catch (const CRkException& e) {
    std::fprintf(stderr, "gpx_stats: %s\n", ToUtf8(e.GetFullMessage()).c_str());
    return 1;
  }
}

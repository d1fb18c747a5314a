// streams write FORM MEGABYTES:  writes a GPX track of about that much XML text to standard output. FORM is xml, json,
//                                finf, or one of these with .gz.
// streams read:                  reads such a track from standard input point by point.
// streams measure COMMAND [...]: runs the command and tells its peak of memory in KiB and its seconds, in one line on
//                                standard error.
#include <RkXmlLib16/RkXmlLib16.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <memory>
#include <string>

#include "gpx.h"

using namespace RkXmlLib16;

namespace {

constexpr long kBytesOfPoint = 113;  // as XML text

std::unique_ptr<CDocumentWriter> MakeWriter(std::string form) {
  const bool isWrapped = form.size() > 3 && form.compare(form.size() - 3, 3, ".gz") == 0;
  const CompressionType compression = isWrapped ? CompressionType_GZip : CompressionType_None;
  if (isWrapped) form.resize(form.size() - 3);
  CSerializationContext context;
  context.SetDefaultNamespaceURI(Gpx::CGpxType().GetTargetNamespace());
  context.SetWriteTypeAttribute(false);
  if (form == "json") return std::make_unique<CJsonDocumentWriter>(CByteTarget(std::cout), compression, context);
  if (form == "finf") return std::make_unique<CFastInfosetDocumentWriter>(CByteTarget(std::cout), compression, context);
  return std::make_unique<CXmlDocumentWriter>(CByteTarget(std::cout), compression, context);
}

void Write(const char* form, long megabytes) {
  const std::unique_ptr<CDocumentWriter> writer = MakeWriter(form);
  Gpx::CGpxType gpx;
  gpx.SetVersion(L"1.1");
  gpx.SetCreator(L"streams");
  const CSmartPtr<Gpx::CWptType> point(new Gpx::CWptType(L"trkpt"));
  const std::wstring uri = gpx.GetTargetNamespace();
  writer->WriteStartElement(gpx);
  writer->WriteStartElement(L"trk", uri);
  writer->WriteStartElement(L"trkseg", uri);
  writer->BeginCollection();
  const CDateTime start(L"2026-05-16T06:00:00Z");
  for (long i = 0; i < megabytes * 1000000 / kBytesOfPoint; ++i) {
    point->SetLat(CDecimal((L"46." + std::to_wstring(100000 + i * 37 % 899999)).c_str()));
    point->SetLon(CDecimal((L"8." + std::to_wstring(100000 + i * 53 % 899999)).c_str()));
    point->SetEle(CDecimal((std::to_wstring(400 + i / 7 % 3000) + L"." + std::to_wstring(i % 10)).c_str()));
    CDateTime time = start;
    time += CDateTimeSpan(0ul, 0ull, static_cast<unsigned long long>(i));
    point->SetTime(time);
    writer->WriteObject(*point);
  }
  writer->EndCollection();
  writer->WriteEndElement();
  writer->WriteEndElement();
  writer->WriteEndElement();
  writer->End();
}

void Read() {
  double highest = 0;
  const auto count = ForEachObject<Gpx::CWptType>(
      CFileSource("/dev/stdin"), L"/gpx/trk/trkseg/trkpt", CSerializationContext::m_defaultContext,
      [&](const Gpx::CWptType& point) { highest = std::max(highest, point.GetEle().ToDouble()); });
  std::printf("%lu points up to %g m\n", static_cast<unsigned long>(count), highest);
}

// The exit status of the command.
int Measure(char** command) {
  const auto start = std::chrono::steady_clock::now();
  const pid_t child = ::fork();
  if (child == 0) {
    ::execvp(command[0], command);
    std::perror(command[0]);
    ::_exit(127);
  }
  int status = 0;
  rusage usage{};
  ::wait4(child, &status, 0, &usage);
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
  std::fprintf(stderr, "%ld %.2f\n", usage.ru_maxrss, seconds.count());
  return WIFEXITED(status) ? WEXITSTATUS(status) : 1;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    if (argc == 4 && std::strcmp(argv[1], "write") == 0)
      Write(argv[2], std::atol(argv[3]));
    else if (argc == 2 && std::strcmp(argv[1], "read") == 0)
      Read();
    else if (argc > 2 && std::strcmp(argv[1], "measure") == 0)
      return Measure(argv + 2);
    else
      return 2;
    return 0;
  } catch (const CRkException& e) {
    std::fprintf(stderr, "streams: %s\n", e.what());
    return 1;
  }
}

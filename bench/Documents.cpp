#include "Documents.h"

#include <cstdio>
#include <random>
#include <vector>

namespace Bench {

namespace {

template <class... Values>
void Print(std::string& out, const char* format, Values... values) {
  char line[512];
  const int length = std::snprintf(line, sizeof line, format, values...);
  out.append(line, static_cast<std::size_t>(length));
}

int Pick(std::mt19937& random, int from, int to) {
  return from + static_cast<int>(random() % static_cast<unsigned>(to - from + 1));
}

}  // namespace

std::string MakeGpx(std::size_t bytes) {
  std::mt19937 random(16);
  std::string out =
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
      "<gpx xmlns=\"http://www.topografix.com/GPX/1/1\" xmlns:tp=\"urn:example:trackpoint\" version=\"1.1\" "
      "creator=\"bench\">\n"
      "\t<metadata>\n\t\t<name>Über den Gotthard</name>\n\t\t<time>2024-06-01T06:00:00Z</time>\n\t</metadata>\n"
      "\t<trk>\n\t\t<name>Andermatt &#8211; Airolo</name>\n\t\t<trkseg>\n";
  long lat = 46630000;
  long lon = 8590000;
  int ele = 14440;
  for (int second = 0; out.size() + 64 < bytes; ++second) {
    lat += Pick(random, -40, 60);
    lon += Pick(random, -50, 50);
    ele += Pick(random, -12, 12);
    if (lat > 60000000 || lat < 30000000) lat = 46630000;
    if (lon > 20000000 || lon < 2000000) lon = 8590000;
    if (ele > 40000 || ele < 1000) ele = 14440;
    const int at = second % 86400;
    Print(out, "\t\t\t<trkpt lat=\"%ld.%06ld\" lon=\"%ld.%06ld\">\n", lat / 1000000, lat % 1000000, lon / 1000000,
          lon % 1000000);
    Print(out, "\t\t\t\t<ele>%d.%d</ele>\n", ele / 10, 1 + ele % 9);
    Print(out, "\t\t\t\t<time>2024-%02d-%02dT%02d:%02d:%02dZ</time>\n", 1 + second / 86400 / 28 % 12,
          1 + second / 86400 % 28, at / 3600, at / 60 % 60, at % 60);
    if (second % 10 == 0) Print(out, "\t\t\t\t<sat>%d</sat>\n", Pick(random, 4, 14));
    if (second % 4 == 0)
      Print(out, "\t\t\t\t<extensions>\n\t\t\t\t\t<tp:hr>%d</tp:hr>\n\t\t\t\t</extensions>\n", Pick(random, 90, 180));
    out += "\t\t\t</trkpt>\n";
  }
  out += "\t\t</trkseg>\n\t</trk>\n</gpx>\n";
  return out;
}

std::string MakeProse(std::size_t bytes) {
  static const std::vector<std::vector<const char*>> languages = {
      {"The", "quick", "brown", "fox", "jumps", "over", "salt", "&amp;", "a", "&lt;lazy&gt;", "dog's", "shadow."},
      {"Über", "die", "Brücke", "läuft", "ein", "müder", "Esel", "ohne", "Gepäck", "nach", "Süden."},
      {"Съешь", "же", "ещё", "этих", "мягких", "французских", "булок,", "да", "выпей", "чаю."},
      {"天地玄黄，", "宇宙洪荒。", "日月盈昃，", "辰宿列张。", "寒来暑往，", "秋收冬藏。"}};
  std::mt19937 random(18);
  std::string out =
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
      "<gpx xmlns=\"http://www.topografix.com/GPX/1/1\" version=\"1.1\" creator=\"bench\">\n";
  for (int place = 0; out.size() + 512 < bytes; ++place) {
    const auto& words = languages[static_cast<std::size_t>(place) % languages.size()];
    const auto text = [&](const char* name, int count) {
      Print(out, "\t\t<%s>", name);
      for (int i = 0; i < count; ++i) {
        if (i != 0) out += ' ';
        out += words[random() % words.size()];
      }
      Print(out, "</%s>\n", name);
    };
    Print(out, "\t<wpt lat=\"%d.%05d\" lon=\"%d.%05d\">\n", Pick(random, -89, 89), Pick(random, 0, 99999),
          Pick(random, -179, 179), Pick(random, 0, 99999));
    text("name", 3);
    text("cmt", Pick(random, 5, 20));
    text("desc", Pick(random, 10, 40));
    out += "\t</wpt>\n";
  }
  return out += "</gpx>\n";
}

std::string MakeOrder(std::size_t bytes) {
  std::mt19937 random(17);
  std::string out =
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
      "<order xmlns=\"urn:example:order\" xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" id=\"RK-1600\" "
      "placed=\"2024-03-01T08:30:00Z\">\n"
      "\t<customer xsi:type=\"companyType\">\n\t\t<email>einkauf@example.org</email>\n"
      "\t\t<name>Müller &amp; Söhne</name>\n\t\t<vat>ATU12345678</vat>\n\t</customer>\n"
      "\t<delivery>\n\t\t<street>Ringstraße 1</street>\n\t\t<city>Wien</city>\n\t\t<zip>1010</zip>\n"
      "\t\t<country>AT</country>\n\t</delivery>\n\t<lines>\n";
  do {
    if (Pick(random, 0, 4) != 0) {
      const char* const rate = Pick(random, 0, 3) == 0 ? " vat=\"reduced\"" : "";
      Print(out, "\t\t<goods sku=\"%c%04d\"%s>\n", 'A' + Pick(random, 0, 25), Pick(random, 0, 9999), rate);
      Print(out, "\t\t\t<name>Article number %d</name>\n", Pick(random, 1, 100000));
      Print(out, "\t\t\t<quantity>%d</quantity>\n", Pick(random, 1, 500));
      Print(out, "\t\t\t<price>%d.%02d</price>\n\t\t</goods>\n", Pick(random, 0, 999), Pick(random, 1, 99));
    } else {
      Print(out, "\t\t<service>\n\t\t\t<name>Work &lt;%d&gt;</name>\n", Pick(random, 1, 999));
      Print(out, "\t\t\t<time>PT%dH%dM</time>\n", Pick(random, 1, 40), Pick(random, 1, 59));
      Print(out, "\t\t\t<price>%d.%02d</price>\n\t\t</service>\n", Pick(random, 10, 999), Pick(random, 1, 99));
    }
  } while (out.size() + 256 < bytes);
  out +=
      "\t</lines>\n\t<payment>\n\t\t<transfer>\n\t\t\t<iban>AT611904300234573201</iban>\n\t\t</transfer>\n"
      "\t</payment>\n\t<due>2024-04-01</due>\n\t<note>Bitte vor Mittag liefern</note>\n</order>\n";
  return out;
}

}  // namespace Bench

#include "Progress.h"

#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <string>

#include "Text.h"

using namespace RkXmlLib16;
using Clock = std::chrono::steady_clock;

namespace {

// The element filter is a plain function, so what it counts stands here.
struct State {
  bool onTerminal = false;
  bool shown = false;
  Clock::time_point start;
  Clock::time_point next;
  std::size_t bytesRead = 0;
  std::size_t bytesWritten = 0;
  unsigned long long elements = 0;
} g_state;

void Show(const char* doing) {
  const Clock::time_point now = Clock::now();
  if (!g_state.onTerminal || now - g_state.start < std::chrono::seconds(1)) return;
  std::string line = "\r" + std::string(doing) + ": " + Grouped(g_state.bytesRead) + " bytes read, " +
                     Grouped(g_state.elements) + " elements";
  if (g_state.bytesWritten > 0) line += ", " + Grouped(g_state.bytesWritten) + " bytes written";
  std::fprintf(stderr, "%s\033[K", line.c_str());
  std::fflush(stderr);
  g_state.shown = true;
}

bool CountElement(CXmlElement*) {
  if (++g_state.elements % 4096 == 0 && Clock::now() >= g_state.next) {
    g_state.next = Clock::now() + std::chrono::milliseconds(100);
    Show("reading");
  }
  return false;
}

}  // namespace

Progress::Progress() {
  g_state = State();
  g_state.onTerminal = ::isatty(STDERR_FILENO) != 0;
  g_state.start = Clock::now();
  g_state.next = g_state.start;
}

Progress::~Progress() {
  if (g_state.shown) std::fputs("\r\033[K", stderr);
}

CXmlDocument::ElementFilter Progress::Counter() const { return g_state.onTerminal ? CountElement : nullptr; }

void Progress::Read(std::size_t byteCount) {
  g_state.bytesRead = byteCount;
  Show("reading");
}

void Progress::Writing() { Show("writing"); }

void Progress::Written(std::size_t byteCount) {
  g_state.bytesWritten = byteCount;
  Show("writing");
}

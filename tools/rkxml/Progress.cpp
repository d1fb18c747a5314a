#include "Progress.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string>

#include "Text.h"

using Clock = std::chrono::steady_clock;

namespace {

struct State {
  bool onTerminal = false;
  bool shown = false;
  Clock::time_point next;  // when it is shown again
  const char* doing = "";
  std::uint64_t total = 0;
  std::uint64_t done = 0;
  std::uint64_t written = 0;
} g_state;

// "[#####     ]  50 %"
std::string Bar(std::uint64_t done, std::uint64_t total) {
  constexpr std::size_t kWidth = 24;
  const double part = std::min(1.0, static_cast<double>(done) / static_cast<double>(total));
  std::string bar(static_cast<std::size_t>(part * kWidth), '#');
  bar.resize(kWidth, ' ');
  const std::string percent = std::to_string(static_cast<int>(part * 100));
  return '[' + bar + "] " + std::string(3 - percent.size(), ' ') + percent + " %, ";
}

void Show() {
  std::string line = "\r" + std::string(g_state.doing) + ": ";
  if (g_state.total > 0) line += Bar(g_state.done, g_state.total);
  line += Grouped(g_state.done) + " bytes read";
  if (g_state.written > 0) line += ", " + Grouped(g_state.written) + " bytes written";
  std::fprintf(stderr, "%s\033[K", line.c_str());
  std::fflush(stderr);
  g_state.shown = true;
}

void ShowIfDue() {
  if (!g_state.onTerminal || Clock::now() < g_state.next) return;
  g_state.next = Clock::now() + std::chrono::milliseconds(100);
  Show();
}

}  // namespace

Progress::Progress() {
  g_state = State();
  g_state.onTerminal = ::isatty(STDERR_FILENO) != 0;
  g_state.next = Clock::now() + std::chrono::seconds(1);
}

Progress::~Progress() {
  if (g_state.shown) std::fputs("\r\033[K", stderr);
}

void Progress::Begin(const char* doing, std::uint64_t total) {
  g_state.doing = doing;
  g_state.total = total;
  g_state.done = 0;
  ShowIfDue();
}

void Progress::Tell(std::uint64_t done) {
  g_state.done = done;
  ShowIfDue();
}

void Progress::TellWritten(std::uint64_t byteCount) {
  g_state.written = byteCount;
  ShowIfDue();
}

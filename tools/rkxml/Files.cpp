#include "Files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <cstring>

#include "Text.h"

namespace {

[[noreturn]] void Throw(const char* what, const std::string& name, int error) {
  throw FileError(std::string(what) + " " + (name == "-" ? "the standard stream" : ForTerminal(name)) + ": " +
                  std::strerror(error));
}

// A descriptor that is closed when nobody did it before.
class Descriptor {
 public:
  explicit Descriptor(int fd) : m_fd(fd) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() {
    if (m_fd > STDERR_FILENO) ::close(m_fd);
  }
  int Get() const { return m_fd; }
  int Close() {
    const int fd = m_fd;
    m_fd = -1;
    return ::close(fd);
  }

 private:
  int m_fd;
};

void WriteAll(int fd, const std::string& name, const unsigned char* data, std::size_t length) {
  while (length > 0) {
    const ssize_t written = ::write(fd, data, length);
    if (written < 0) {
      if (errno == EINTR) continue;
      Throw("cannot write", name, errno);
    }
    data += written;
    length -= static_cast<std::size_t>(written);
  }
}

constexpr int kSignals[] = {SIGHUP, SIGINT, SIGTERM};
char g_temporaryName[PATH_MAX];

extern "C" void RemoveTemporaryFile(int signal) {
  ::unlink(g_temporaryName);
  ::signal(signal, SIG_DFL);
  ::raise(signal);
}

// A new file beside `target` that is removed unless it takes the target's place.
class TemporaryFile {
 public:
  explicit TemporaryFile(const std::string& target) : m_target(target) {
    const std::string pattern = target + ".XXXXXX";
    if (pattern.size() >= sizeof g_temporaryName) Throw("cannot write", target, ENAMETOOLONG);
    // Signals wait until the name is complete.
    sigset_t signals;
    sigset_t before;
    ::sigemptyset(&signals);
    for (const int signal : kSignals) ::sigaddset(&signals, signal);
    ::sigprocmask(SIG_BLOCK, &signals, &before);
    std::memcpy(g_temporaryName, pattern.c_str(), pattern.size() + 1);
    m_fd = ::mkstemp(g_temporaryName);
    const int error = errno;
    if (m_fd >= 0) {
      for (const int signal : kSignals) {
        if (::signal(signal, RemoveTemporaryFile) == SIG_IGN) ::signal(signal, SIG_IGN);
      }
    }
    ::sigprocmask(SIG_SETMASK, &before, nullptr);
    if (m_fd < 0) Throw("cannot write", target, error);
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile() {
    if (m_fd >= 0) ::close(m_fd);
    if (!m_done) ::unlink(g_temporaryName);
    for (const int signal : kSignals) {
      if (::signal(signal, SIG_DFL) == SIG_IGN) ::signal(signal, SIG_IGN);
    }
  }

  int Get() const { return m_fd; }

  // Closes the file with the given mode and gives it the target's name.
  void TakePlace(mode_t mode) {
    const bool chmodDone = ::fchmod(m_fd, mode) == 0;
    const bool closed = ::close(m_fd) == 0;
    m_fd = -1;
    if (!chmodDone || !closed || ::rename(g_temporaryName, m_target.c_str()) != 0) {
      Throw("cannot write", m_target, errno);
    }
    m_done = true;
  }

 private:
  const std::string& m_target;
  int m_fd = -1;
  bool m_done = false;
};

mode_t ModeOfNewFiles() {
  const mode_t mask = ::umask(0);
  ::umask(mask);
  return 0666 & ~mask;
}

}  // namespace

Bytes ReadFile(const std::string& name) {
  const Descriptor file(name == "-" ? STDIN_FILENO : ::open(name.c_str(), O_RDONLY | O_CLOEXEC));
  if (file.Get() < 0) Throw("cannot open", name, errno);

  struct stat status {};
  Bytes bytes;
  if (::fstat(file.Get(), &status) == 0 && S_ISREG(status.st_mode) && status.st_size > 0) {
    bytes.reserve(static_cast<std::size_t>(status.st_size) + 1);
  }
  for (std::size_t length = 0;;) {
    if (bytes.capacity() - length < 1) bytes.reserve(bytes.capacity() + bytes.capacity() / 2 + 65536);
    bytes.resize(bytes.capacity());
    const ssize_t count = ::read(file.Get(), bytes.data() + length, bytes.size() - length);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) Throw("cannot read", name, errno);
    length += static_cast<std::size_t>(count);
    if (count == 0) {
      bytes.resize(length);
      return bytes;
    }
  }
}

void WriteFile(const std::string& name, const unsigned char* data, std::size_t length) {
  if (name == "-") return WriteAll(STDOUT_FILENO, name, data, length);

  struct stat status {};
  const bool exists = ::stat(name.c_str(), &status) == 0;
  if (exists && !S_ISREG(status.st_mode)) {  // a device or a pipe has no place to take
    Descriptor file(::open(name.c_str(), O_WRONLY | O_CLOEXEC));
    if (file.Get() < 0) Throw("cannot write", name, errno);
    WriteAll(file.Get(), name, data, length);
    if (file.Close() != 0) Throw("cannot write", name, errno);
    return;
  }
  if (exists && ::access(name.c_str(), W_OK) != 0) Throw("cannot write", name, errno);

  std::string target = name;
  if (char* const resolved = exists ? ::realpath(name.c_str(), nullptr) : nullptr) {  // write through a link
    target = resolved;
    std::free(resolved);
  }
  TemporaryFile file(target);
  WriteAll(file.Get(), name, data, length);
  file.TakePlace(exists ? status.st_mode & 07777 : ModeOfNewFiles());
}

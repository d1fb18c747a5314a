#include "Files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <utility>

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

mode_t ModeOfNewFiles() {
  const mode_t mask = ::umask(0);
  ::umask(mask);
  return 0666 & ~mask;
}

// Reads what is there, again after interruptions.
template <class Read>
std::size_t ReadSome(const std::string& name, Read&& read) {
  for (;;) {
    const ssize_t count = read();
    if (count >= 0) return static_cast<std::size_t>(count);
    if (errno != EINTR) Throw("cannot read", name, errno);
  }
}

// A file in the folder of TMPDIR that nobody else sees.
int OpenTemporary() {
  const char* const folder = std::getenv("TMPDIR");
  std::string name = std::string(folder != nullptr && *folder != '\0' ? folder : "/tmp") + "/rkxml.XXXXXX";
  const int file = ::mkstemp(name.data());
  if (file < 0) Throw("cannot write", name, errno);
  ::unlink(name.c_str());
  return file;
}

constexpr char kTemporary[] = "a temporary file";

}  // namespace

// A new file beside `target` that is removed unless it takes the target's place.
class OutputFile::Temporary {
 public:
  explicit Temporary(std::string target) : m_target(std::move(target)) {
    const std::string pattern = m_target + ".XXXXXX";
    if (pattern.size() >= sizeof g_temporaryName) Throw("cannot write", m_target, ENAMETOOLONG);
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
    if (m_fd < 0) Throw("cannot write", m_target, error);
  }
  Temporary(const Temporary&) = delete;
  Temporary& operator=(const Temporary&) = delete;
  ~Temporary() {
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
  const std::string m_target;
  int m_fd = -1;
  bool m_done = false;
};

Bytes ReadFile(const std::string& name) { return InputFile(name).ReadAll(); }

InputFile::InputFile(const std::string& name)
    : m_name(name), m_file(name == "-" ? STDIN_FILENO : ::open(name.c_str(), O_RDONLY | O_CLOEXEC)) {
  if (m_file < 0) Throw("cannot open", name, errno);
  struct stat status {};
  const off_t start = ::lseek(m_file, 0, SEEK_CUR);
  if (start >= 0 && ::fstat(m_file, &status) == 0 && S_ISREG(status.st_mode)) {
    m_start = static_cast<std::uint64_t>(start);
    m_length = static_cast<std::uint64_t>(std::max<off_t>(status.st_size - start, 0));
  } else {
    CopyAside();
  }
}

InputFile::~InputFile() {
  if (m_file > STDERR_FILENO) ::close(m_file);
}

void InputFile::CopyAside() {
  const Descriptor from(m_file);
  m_file = OpenTemporary();
  Bytes piece(1 << 18);
  while (const std::size_t count = ReadSome(m_name, [&] { return ::read(from.Get(), piece.data(), piece.size()); })) {
    WriteAll(m_file, kTemporary, piece.data(), count);
    m_length += count;
  }
}

std::size_t InputFile::ReadAt(std::uint64_t offset, unsigned char* to, std::size_t room) const {
  return ReadSome(m_name, [&] { return ::pread(m_file, to, room, static_cast<off_t>(m_start + offset)); });
}

Bytes InputFile::ReadAll() const {
  Bytes bytes(m_length);
  std::size_t length = 0;
  while (const std::size_t count = ReadAt(length, bytes.data() + length, bytes.size() - length)) length += count;
  bytes.resize(length);
  return bytes;
}

TemporaryFile::~TemporaryFile() {
  if (m_file >= 0) ::close(m_file);
}

void TemporaryFile::WriteAt(std::uint64_t offset, const unsigned char* data, std::size_t length) {
  if (m_file < 0) m_file = OpenTemporary();
  if (::lseek(m_file, static_cast<off_t>(offset), SEEK_SET) < 0) Throw("cannot write", kTemporary, errno);
  WriteAll(m_file, kTemporary, data, length);
}

void TemporaryFile::ReadAt(std::uint64_t offset, unsigned char* to, std::size_t length) const {
  for (std::size_t count = 1; length > 0 && count > 0; to += count, offset += count, length -= count)
    count = ReadSome(kTemporary, [&] { return ::pread(m_file, to, length, static_cast<off_t>(offset)); });
}

OutputFile::OutputFile(const std::string& name) : m_name(name) {
  if (name == "-") {
    m_file = STDOUT_FILENO;
    return;
  }
  struct stat status {};
  const bool exists = ::stat(name.c_str(), &status) == 0;
  if (exists && !S_ISREG(status.st_mode)) {  // a device or a pipe has no place to take
    m_file = ::open(name.c_str(), O_WRONLY | O_CLOEXEC);
    if (m_file < 0) Throw("cannot write", name, errno);
    return;
  }
  if (exists && ::access(name.c_str(), W_OK) != 0) Throw("cannot write", name, errno);
  std::string target = name;
  if (char* const resolved = exists ? ::realpath(name.c_str(), nullptr) : nullptr) {  // write through a link
    target = resolved;
    std::free(resolved);
  }
  m_mode = exists ? status.st_mode & 07777 : ModeOfNewFiles();
  m_temporary = std::make_unique<Temporary>(std::move(target));
  m_file = m_temporary->Get();
}

OutputFile::~OutputFile() {
  if (m_temporary == nullptr && m_file > STDERR_FILENO) ::close(m_file);
}

void OutputFile::Write(const unsigned char* data, std::size_t length) {
  WriteAll(m_file, m_name, data, length);
  m_length += length;
}

void OutputFile::Complete() {
  if (m_temporary != nullptr) return m_temporary->TakePlace(m_mode);
  const int file = std::exchange(m_file, -1);
  if (file > STDERR_FILENO && ::close(file) != 0) Throw("cannot write", m_name, errno);
}

void WriteFile(const std::string& name, const unsigned char* data, std::size_t length) {
  OutputFile file(name);
  file.Write(data, length);
  file.Complete();
}

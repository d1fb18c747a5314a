#include "RkXmlLib16/io/ByteTarget.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <ios>
#include <new>
#include <ostream>
#include <string>
#include <utility>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/io/File.h"
#include "RkXmlLib16/io/internal/ByteSink.h"

namespace RkXmlLib16 {

namespace {

// Writing to a pipe that nobody reads fails with EPIPE while this lives, instead of ending the process.
class NoPipeSignal {
 public:
  NoPipeSignal() {
    sigset_t pending;
    sigemptyset(&pending);
    sigpending(&pending);
    m_wasPending = sigismember(&pending, SIGPIPE) == 1;
    sigemptyset(&m_pipe);
    sigaddset(&m_pipe, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &m_pipe, &m_before);
  }
  NoPipeSignal(const NoPipeSignal&) = delete;
  NoPipeSignal& operator=(const NoPipeSignal&) = delete;
  ~NoPipeSignal() {
    const int error = errno;
    const timespec noTime{};
    if (!m_wasPending) sigtimedwait(&m_pipe, nullptr, &noTime);
    pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
    errno = error;
  }

 private:
  bool m_wasPending;
  sigset_t m_pipe{};
  sigset_t m_before{};
};

bool WriteAll(int file, const unsigned char* bytes, std::size_t count) {
  const NoPipeSignal noSignal;
  while (count > 0) {
    const ssize_t written = ::write(file, bytes, count);
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    bytes += written;
    count -= static_cast<std::size_t>(written);
  }
  return true;
}

// What the name leads to, past links; the name itself when there is nothing yet.
std::string Resolve(const std::string& name) {
  char* const resolved = ::realpath(name.c_str(), nullptr);
  if (resolved == nullptr && errno == ENOMEM) throw std::bad_alloc();
  if (resolved == nullptr) return name;
  const std::unique_ptr<char, void (*)(void*)> owner(resolved, std::free);
  return resolved;
}

class FileSink : public ByteSink {
 public:
  explicit FileSink(const CFileName& fileName) : m_fileName(fileName) {
    struct stat status {};
    const bool exists = ::stat(fileName.GetBytes().c_str(), &status) == 0;
    if (exists && !S_ISREG(status.st_mode)) {
      m_file = ::open(fileName.GetBytes().c_str(), O_WRONLY | O_CLOEXEC);
    } else if (!exists || ::access(fileName.GetBytes().c_str(), W_OK) == 0) {
      m_target = Resolve(fileName.GetBytes());
      CreateBeside();
      if (exists && m_file >= 0 && ::fchmod(m_file, status.st_mode & 07777) != 0) Discard();
    }
    if (m_file < 0) ThrowWriteFailed(m_fileName);
  }
  FileSink(const FileSink&) = delete;
  FileSink& operator=(const FileSink&) = delete;
  ~FileSink() override { Discard(); }

  void Write(const unsigned char* bytes, std::size_t count) override {
    if (!WriteAll(m_file, bytes, count)) ThrowWriteFailed(m_fileName);
  }

  void Finish() override {
    const bool isClosed = ::close(std::exchange(m_file, -1)) == 0;
    const bool isInPlace = isClosed && (m_temporary.empty() || std::rename(m_temporary.c_str(), m_target.c_str()) == 0);
    if (!isInPlace) ThrowWriteFailed(m_fileName);
    m_temporary.clear();
  }

 private:
  void CreateBeside() {
    static std::atomic<unsigned> last{0};
    do {
      m_temporary = m_target + '.' + std::to_string(::getpid()) + '-' + std::to_string(++last) + ".part";
      m_file = ::open(m_temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    } while (m_file < 0 && errno == EEXIST);
    if (m_file < 0) m_temporary.clear();
  }

  void Discard() noexcept {
    if (m_file >= 0) ::close(std::exchange(m_file, -1));
    if (!m_temporary.empty()) ::unlink(m_temporary.c_str());
    m_temporary.clear();
  }

  CFileName m_fileName;
  std::string m_target;     // what the file is to become
  std::string m_temporary;  // its name until then; empty when it is written directly
  int m_file = -1;
};

[[noreturn]] void ThrowTargetFailed() { throw CRkException(L"Failed to write data to the target of the document"); }

class StreamSink : public ByteSink {
 public:
  explicit StreamSink(std::ostream& stream) : m_stream(stream) {}

  void Write(const unsigned char* bytes, std::size_t count) override {
    Do([&] { m_stream.write(reinterpret_cast<const char*>(bytes), static_cast<std::streamsize>(count)); });
  }
  void Finish() override {
    Do([this] { m_stream.flush(); });
  }

 private:
  template <class Work>
  void Do(Work&& work) {
    try {
      work();
    } catch (const std::ios_base::failure&) {  // the stream was told to throw
      ThrowTargetFailed();
    }
    if (!m_stream) ThrowTargetFailed();
  }

  std::ostream& m_stream;
};

class FunctionSink : public ByteSink {
 public:
  explicit FunctionSink(CByteTarget::Function function) : m_function(std::move(function)) {}

  void Write(const unsigned char* bytes, std::size_t count) override {
    if (!m_function(bytes, count)) ThrowTargetFailed();
  }

 private:
  CByteTarget::Function m_function;
};

}  // namespace

CByteTarget::CByteTarget(FileTag, const CFileName& fileName)
    : m_sink(std::make_unique<FileSink>(fileName)), m_isFile(true) {}
CByteTarget::CByteTarget(std::ostream& stream) : m_sink(std::make_unique<StreamSink>(stream)) {}
CByteTarget::CByteTarget(FunctionTag, Function function)
    : m_sink(std::make_unique<FunctionSink>(std::move(function))) {}
CByteTarget::CByteTarget(CByteTarget&& other) noexcept = default;
CByteTarget& CByteTarget::operator=(CByteTarget&& other) noexcept = default;
CByteTarget::~CByteTarget() = default;

std::unique_ptr<ByteSink> CByteTarget::TakeSink() { return std::move(m_sink); }

}  // namespace RkXmlLib16

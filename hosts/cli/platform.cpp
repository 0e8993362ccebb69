#include "hosts/cli/platform.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "hosts/cli/errors.h"

#ifdef _WIN32
#include <windows.h>
// after windows.h
#include <io.h>
#include <shellapi.h>
#else
#include <poll.h>
#include <unistd.h>
#endif

namespace norvane::cli {
namespace {

std::filesystem::path path_of(std::string_view utf8) {
  return std::filesystem::path(std::u8string(reinterpret_cast<const char8_t*>(utf8.data()), utf8.size()));
}

std::string system_text(int error) { return std::generic_category().message(error); }

[[noreturn]] void fail(std::string_view what, std::string_view name, int error) {
  std::string text(what);
  text.append(" ").append(name).append(": ").append(system_text(error));
  throw InputOutputError(text);
}

// The one unfinished file of the process, for the interruption handler. The buffers are written
// before the flag is set and left alone while it is.
std::atomic<bool> unfinished_exists{false};

#ifdef _WIN32

wchar_t unfinished_name[32768];

BOOL WINAPI interrupted(DWORD) {
  if (unfinished_exists.exchange(false)) DeleteFileW(unfinished_name);
  return FALSE;  // the next handler ends the process
}

void watch_interruption(const std::filesystem::path& temporary) {
  static const bool installed = SetConsoleCtrlHandler(interrupted, TRUE) != 0;
  static_cast<void>(installed);
  const std::wstring& name = temporary.native();
  if (name.size() >= std::size(unfinished_name)) return;
  std::wmemcpy(unfinished_name, name.c_str(), name.size() + 1);
  unfinished_exists = true;
}

// Shared for deletion, so that the handler can remove the file while it is open.
int create_exclusive(const std::filesystem::path& path) {
  const HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr,
                                  CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) {
    errno = GetLastError() == ERROR_FILE_EXISTS ? EEXIST : EACCES;
    return -1;
  }
  return _open_osfhandle(reinterpret_cast<intptr_t>(file), _O_BINARY);
}

int open_existing(const std::filesystem::path& path) { return _wopen(path.c_str(), _O_WRONLY | _O_BINARY); }

#else

char unfinished_name[4096];

extern "C" void norvane_interrupted(int signal_number) {
  if (unfinished_exists.exchange(false)) unlink(unfinished_name);
  std::signal(signal_number, SIG_DFL);
  std::raise(signal_number);
}

void watch_interruption(const std::filesystem::path& temporary) {
  const std::string& name = temporary.native();
  if (name.size() >= sizeof unfinished_name) return;
  std::memcpy(unfinished_name, name.c_str(), name.size() + 1);
  unfinished_exists = true;
  struct sigaction action {};
  action.sa_handler = norvane_interrupted;
  for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
    struct sigaction before {};
    // A signal that the caller had ignored (nohup) stays ignored.
    if (sigaction(number, nullptr, &before) == 0 && before.sa_handler != SIG_IGN) sigaction(number, &action, nullptr);
  }
}

int create_exclusive(const std::filesystem::path& path) {
  return open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
}

int open_existing(const std::filesystem::path& path) { return open(path.c_str(), O_WRONLY | O_CLOEXEC); }

#endif

}  // namespace

#ifdef _WIN32

std::vector<std::string> arguments(int, char**) {
  std::vector<std::string> list;
  int count = 0;
  wchar_t** wide = CommandLineToArgvW(GetCommandLineW(), &count);
  if (wide == nullptr) return list;
  for (int i = 1; i < count; ++i) {
    const int size = WideCharToMultiByte(CP_UTF8, 0, wide[i], -1, nullptr, 0, nullptr, nullptr);
    std::string text(size > 0 ? static_cast<std::size_t>(size) : 1, '\0');
    WideCharToMultiByte(CP_UTF8, 0, wide[i], -1, text.data(), size, nullptr, nullptr);
    text.pop_back();
    list.push_back(std::move(text));
  }
  LocalFree(wide);
  return list;
}

void prepare_standard_streams() {
  for (const int descriptor : {standard_input, standard_output, standard_error}) _setmode(descriptor, _O_BINARY);
  SetConsoleOutputCP(CP_UTF8);
}

bool is_terminal(int descriptor) { return _isatty(descriptor) != 0; }

std::uint64_t file_size(int descriptor) {
  struct _stat64 status {};
  if (_fstat64(descriptor, &status) != 0 || (status.st_mode & _S_IFMT) != _S_IFREG) return 0;
  return static_cast<std::uint64_t>(status.st_size);
}

std::size_t read_some(int descriptor, char* bytes, std::size_t size, std::string_view source) {
  const int count = _read(descriptor, bytes, static_cast<unsigned>(size));
  if (count < 0) fail("cannot read", source, errno);
  return static_cast<std::size_t>(count);
}

void write_all(int descriptor, std::string_view bytes, std::string_view target) {
  while (!bytes.empty()) {
    const std::size_t step = bytes.size() < 1 << 20 ? bytes.size() : std::size_t{1} << 20;
    const int count = _write(descriptor, bytes.data(), static_cast<unsigned>(step));
    if (count <= 0) fail("cannot write", target, count == 0 ? ENOSPC : errno);
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
}

int open_input(const std::string& path) {
  const int descriptor = _wopen(path_of(path).c_str(), _O_RDONLY | _O_BINARY);
  if (descriptor < 0) throw UsageError("cannot open " + path + ": " + system_text(errno));
  return descriptor;
}

bool close_file(int descriptor) noexcept { return _close(descriptor) == 0; }

#else

std::vector<std::string> arguments(int argc, char** argv) {
  return argc > 1 ? std::vector<std::string>(argv + 1, argv + argc) : std::vector<std::string>{};
}

void prepare_standard_streams() {
  std::signal(SIGPIPE, SIG_IGN);
  // Each descriptor in turn is the lowest free one. Opened the wrong way round, its use still answers EBADF.
  for (const int descriptor : {standard_input, standard_output, standard_error})
    if (fcntl(descriptor, F_GETFD) < 0)
      static_cast<void>(open("/dev/null", descriptor == standard_output ? O_RDONLY : O_WRONLY));
}

bool is_terminal(int descriptor) { return isatty(descriptor) != 0; }

std::uint64_t file_size(int descriptor) {
  struct stat status {};
  if (fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) return 0;
  return static_cast<std::uint64_t>(status.st_size);
}

namespace {
// Waits until a descriptor that was handed over in non-blocking mode is ready.
bool wait_ready(int descriptor, short events) {
  if (errno == EINTR) return true;
  if (errno != EAGAIN && errno != EWOULDBLOCK) return false;
  struct pollfd entry {
    descriptor, events, 0
  };
  return poll(&entry, 1, -1) >= 0 || errno == EINTR;
}
}  // namespace

std::size_t read_some(int descriptor, char* bytes, std::size_t size, std::string_view source) {
  for (;;) {
    const ssize_t count = read(descriptor, bytes, size);
    if (count >= 0) return static_cast<std::size_t>(count);
    if (!wait_ready(descriptor, POLLIN)) fail("cannot read", source, errno);
  }
}

void write_all(int descriptor, std::string_view bytes, std::string_view target) {
  while (!bytes.empty()) {
    const ssize_t count = write(descriptor, bytes.data(), bytes.size());
    if (count > 0) {
      bytes.remove_prefix(static_cast<std::size_t>(count));
    } else if (count == 0 || !wait_ready(descriptor, POLLOUT)) {
      fail("cannot write", target, count == 0 ? ENOSPC : errno);
    }
  }
}

int open_input(const std::string& path) {
  const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) throw UsageError("cannot open " + path + ": " + system_text(errno));
  return descriptor;
}

bool close_file(int descriptor) noexcept { return close(descriptor) == 0; }

#endif

ReplacedFile::ReplacedFile(std::string path) : path_(std::move(path)) {
  namespace fs = std::filesystem;
  std::error_code error;
  const fs::path given = path_of(path_);
  const fs::file_status status = fs::status(given, error);
  if (fs::is_directory(status)) throw InputOutputError("cannot write " + path_ + ": it is a folder");
  if (fs::exists(status) && !fs::is_regular_file(status)) {
    // A pipe or a device is written as it is: there is nothing to put in its place.
    descriptor_ = open_existing(given);
    if (descriptor_ < 0) fail("cannot write", path_, errno);
    return;
  }
  // Renaming would replace a link itself; what is meant is the file behind it.
  const fs::path target =
      fs::is_symlink(fs::symlink_status(given, error)) ? fs::weakly_canonical(given, error) : given;
  target_ = error || target.empty() ? given : target;
  for (int attempt = 0; attempt < 1000; ++attempt) {
    temporary_ = target_;
    temporary_ += "." + std::to_string(attempt) + ".part";
    descriptor_ = create_exclusive(temporary_);
    if (descriptor_ >= 0) {
      watch_interruption(temporary_);
      if (fs::is_regular_file(status)) fs::permissions(temporary_, status.permissions(), error);
      return;
    }
    if (errno != EEXIST) break;
  }
  fail("cannot create", path_, errno);
}

ReplacedFile::~ReplacedFile() {
  if (descriptor_ < 0) return;
  close_file(descriptor_);
  remove_temporary();
}

void ReplacedFile::remove_temporary() noexcept {
  unfinished_exists = false;
  if (temporary_.empty()) return;
  std::error_code ignored;
  std::filesystem::remove(temporary_, ignored);
}

void ReplacedFile::commit() {
  // On some file systems a full disk shows only when the file is closed.
  const bool closed = close_file(descriptor_);
  const int close_error = errno;
  descriptor_ = -1;
  std::error_code error;
  if (closed && !temporary_.empty()) std::filesystem::rename(temporary_, target_, error);
  if (closed && !error) {
    unfinished_exists = false;
    return;
  }
  remove_temporary();
  fail("cannot write", path_, closed ? error.value() : close_error);
}

void make_folder(const std::string& path) {
  std::error_code error;
  std::filesystem::create_directories(path_of(path), error);
  if (error) throw InputOutputError("cannot make the folder " + path + ": " + error.message());
}

}  // namespace norvane::cli

#include "hosts/cli/platform.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
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
#include <sys/file.h>
#include <sys/ioctl.h>
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

int error_number(DWORD error) {
  switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND: return ENOENT;
    case ERROR_ACCESS_DENIED: return EACCES;
    case ERROR_SHARING_VIOLATION: return EBUSY;
    case ERROR_WRITE_PROTECT: return EROFS;
    case ERROR_DISK_FULL: return ENOSPC;
    case ERROR_FILENAME_EXCED_RANGE: return ENAMETOOLONG;
    case ERROR_INVALID_NAME: return EINVAL;
    default: return EIO;
  }
}

// Shared for deletion, so that the handler can remove the file while it is open, but not for writing: while one run
// has the file open, a second one's attempt to take it for a stale one fails.
int create_part(const std::filesystem::path& path, bool& stale) {
  const HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr,
                                  CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) {
    errno = error_number(GetLastError());
    return -1;
  }
  stale = GetLastError() == ERROR_ALREADY_EXISTS;
  return _open_osfhandle(reinterpret_cast<intptr_t>(file), _O_BINARY);
}

int open_existing(const std::filesystem::path& path) { return _wopen(path.c_str(), _O_WRONLY | _O_BINARY); }

// Why the file must not be replaced; empty when it may.
std::string protection_of(const std::filesystem::path& path) {
  const DWORD attributes = GetFileAttributesW(path.c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0
             ? "it is write-protected"
             : "";
}

bool make_safe(int descriptor) { return _commit(descriptor) == 0; }
void make_folder_safe(const std::filesystem::path&) {}
void take_over_rights(int, const std::filesystem::path&) {}

#else

char unfinished_name[4096];

// The signal that has come, and whether the program wants to end by itself.
std::atomic<int> signal_seen{0};
std::atomic<bool> wants_to_end{false};

extern "C" void norvane_interrupted(int signal_number) {
  if (wants_to_end.exchange(false)) {
    signal_seen = signal_number;
    return;
  }
  if (unfinished_exists.exchange(false)) unlink(unfinished_name);
  std::signal(signal_number, SIG_DFL);
  std::raise(signal_number);
}

void catch_signals() {
  struct sigaction action {};
  action.sa_handler = norvane_interrupted;
  for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
    struct sigaction before {};
    // A signal that the caller had ignored (nohup) stays ignored.
    if (sigaction(number, nullptr, &before) == 0 && before.sa_handler != SIG_IGN) sigaction(number, &action, nullptr);
  }
}

void watch_interruption(const std::filesystem::path& temporary) {
  const std::string& name = temporary.native();
  if (name.size() >= sizeof unfinished_name) return;
  std::memcpy(unfinished_name, name.c_str(), name.size() + 1);
  unfinished_exists = true;
  catch_signals();
}

// Private until it is complete. A run holds a lock on its file, so that one without a lock is what a killed run left.
int create_part(const std::filesystem::path& path, bool& stale) {
  for (int attempt = 0; attempt < 10; ++attempt) {
    int descriptor = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    stale = descriptor < 0 && errno == EEXIST;
    if (stale) descriptor = open(path.c_str(), O_WRONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0) {
      if (stale && errno == ENOENT) continue;
      return -1;
    }
    struct stat opened {
    }, named{};
    const bool mine = fstat(descriptor, &opened) == 0 && S_ISREG(opened.st_mode) && opened.st_uid == geteuid() &&
                      opened.st_nlink <= 1;
    int error = mine ? 0 : EEXIST;
    if (error == 0 && flock(descriptor, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) error = EBUSY;
    if (error == 0 && stat(path.c_str(), &named) == 0 && named.st_dev == opened.st_dev &&
        named.st_ino == opened.st_ino && ftruncate(descriptor, 0) == 0 && fchmod(descriptor, 0600) == 0)
      return descriptor;
    close(descriptor);
    // A run that ended in between has put its file in place or removed it.
    if (error == 0) continue;
    errno = error;
    return -1;
  }
  errno = EBUSY;
  return -1;
}

std::string protection_of(const std::filesystem::path& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) return {};
  if ((status.st_mode & 0222) == 0 || access(path.c_str(), W_OK) != 0) return "it is write-protected";
  if (status.st_uid != geteuid() && geteuid() != 0) return "it belongs to another user";
  if (status.st_nlink > 1) return "it has other names (hard links), which would keep the old content";
  return {};
}

bool make_safe(int descriptor) {
  // Not every kind of file can be told to.
  return fsync(descriptor) == 0 || errno == EINVAL || errno == ENOTSUP;
}

void make_folder_safe(const std::filesystem::path& file) {
  const std::string folder = file.has_parent_path() ? file.parent_path().string() : ".";
  const int descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descriptor < 0) return;
  fsync(descriptor);
  close(descriptor);
}

// Owner and rights of the file that is replaced, or those of any new file.
void take_over_rights(int descriptor, const std::filesystem::path& target) {
  struct stat status {};
  if (stat(target.c_str(), &status) == 0) {
    static_cast<void>(fchown(descriptor, status.st_uid, status.st_gid) != 0);
    static_cast<void>(fchmod(descriptor, status.st_mode & 07777) != 0);
    return;
  }
  const mode_t mask = umask(0);
  umask(mask);
  static_cast<void>(fchmod(descriptor, 0666 & ~mask) != 0);
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

Interruption::Interruption() = default;
Interruption::~Interruption() = default;
void Interruption::check() {}
void Interruption::end_program() { std::exit(exit_io); }

bool is_readable(int descriptor) { return file_size(descriptor) != 0; }

std::size_t terminal_width(int descriptor) {
  CONSOLE_SCREEN_BUFFER_INFO info;
  const HANDLE console = reinterpret_cast<HANDLE>(_get_osfhandle(descriptor));
  if (_isatty(descriptor) == 0 || GetConsoleScreenBufferInfo(console, &info) == 0) return 0;
  return static_cast<std::size_t>(info.srWindow.Right - info.srWindow.Left + 1);
}

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

Interruption::Interruption() {
  signal_seen = 0;
  wants_to_end = true;
  catch_signals();
}

Interruption::~Interruption() { wants_to_end = false; }

void Interruption::check() {
  if (signal_seen != 0) throw Interrupted();
}

void Interruption::end_program() {
  const int number = signal_seen;
  std::signal(number, SIG_DFL);
  std::raise(number);
  std::_Exit(128 + number);
}

bool is_readable(int descriptor) {
  struct pollfd entry {
    descriptor, POLLIN, 0
  };
  return poll(&entry, 1, 0) > 0;
}

std::size_t terminal_width(int descriptor) {
  struct winsize size {};
  return isatty(descriptor) != 0 && ioctl(descriptor, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

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
    // A signal that comes just before a read that waits would be forgotten by it: a wait that ends now and then is not.
    struct pollfd entry {
      descriptor, POLLIN, 0
    };
    while (wants_to_end && poll(&entry, 1, 200) == 0) {
    }
    Interruption::check();
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
  if (const std::string reason = protection_of(target_); !reason.empty())
    throw InputOutputError("cannot write " + path_ + ": " + reason);
  temporary_ = target_;
  temporary_ += ".part";
  bool stale = false;
  descriptor_ = create_part(temporary_, stale);
  if (descriptor_ < 0 && errno == EBUSY)
    throw InputOutputError("cannot write " + path_ + ": another run is writing it");
  if (descriptor_ < 0 && errno == EEXIST)
    throw InputOutputError("cannot write " + path_ + ": " + path_ + ".part is in the way");
  if (descriptor_ < 0) fail("cannot create", path_, errno);
  watch_interruption(temporary_);
  if (stale) note_ = "note: " + path_ + ".part, left by a run that was killed, is replaced\n";
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
  const bool in_place = temporary_.empty();
  if (!in_place) take_over_rights(descriptor_, target_);
  const bool safe = in_place || make_safe(descriptor_);
  const int safe_error = errno;
  // On some file systems a full disk shows only when the file is closed.
  const bool closed = close_file(descriptor_);
  const int close_error = errno;
  descriptor_ = -1;
  std::error_code error;
  if (safe && closed && !in_place) std::filesystem::rename(temporary_, target_, error);
  if (safe && closed && !error) {
    unfinished_exists = false;
    if (!in_place) make_folder_safe(target_);
    return;
  }
  remove_temporary();
  fail("cannot write", path_, !safe ? safe_error : closed ? error.value() : close_error);
}

void make_folder(const std::string& path) {
  std::error_code error;
  std::filesystem::create_directories(path_of(path), error);
  if (error) throw InputOutputError("cannot make the folder " + path + ": " + error.message());
}

}  // namespace norvane::cli

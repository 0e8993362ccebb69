// What differs between systems: arguments, standard streams, files by UTF-8 name, interruption.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace norvane::cli {

// The program's arguments in UTF-8, without the program's name.
std::vector<std::string> arguments(int argc, char** argv);

// Standard streams carry bytes as they are, a closed one is kept from being taken by a file opened later, and
// a reader that goes away is an error of write() rather than the end of the process.
void prepare_standard_streams();

bool is_terminal(int descriptor);
// Size of a regular file, 0 when it is none or unknown.
std::uint64_t file_size(int descriptor);

inline constexpr int standard_input = 0, standard_output = 1, standard_error = 2;

// As read(): bytes read, 0 at the end. Throws InputOutputError naming the source.
std::size_t read_some(int descriptor, char* bytes, std::size_t size, std::string_view source);
// Writes everything. Throws InputOutputError naming the target.
void write_all(int descriptor, std::string_view bytes, std::string_view target);

// Opens for reading. Throws UsageError when the file cannot be opened.
int open_input(const std::string& path);
// False when the system reports a late failure of writing.
bool close_file(int descriptor) noexcept;

// While one lives, the first signal to stop (Ctrl-C and the like) ends reading and writing by the exception
// Interrupted, so that the program can say how far it came; the second ends the program as ever. On Windows the first
// one does.
class Interruption {
 public:
  Interruption();
  ~Interruption();
  Interruption(const Interruption&) = delete;
  Interruption& operator=(const Interruption&) = delete;
  // Throws Interrupted when the signal has come.
  static void check();
  // Ends the program by the signal that has come, so that whoever started it sees the reason.
  [[noreturn]] static void end_program();
};

// True when a read would not have to wait; false when that cannot be known.
bool is_readable(int descriptor);

// Width of the terminal in characters; 0 when the descriptor is none.
std::size_t terminal_width(int descriptor);

// A file that appears under its name only when it is complete: written to a private "name.part" beside it and put in
// its place when it is safe on the disk. What the caller may not write, a write-protected file or another user's, is
// refused, and so is a file of several names, whose others would keep the old content. While one exists, an
// interrupted program removes it; what a killed program left is replaced.
class ReplacedFile {
 public:
  explicit ReplacedFile(std::string path);
  ~ReplacedFile();
  ReplacedFile(const ReplacedFile&) = delete;
  ReplacedFile& operator=(const ReplacedFile&) = delete;

  int descriptor() const noexcept { return descriptor_; }
  const std::string& path() const noexcept { return path_; }
  // What the user should be told, a line of text or nothing.
  const std::string& note() const noexcept { return note_; }
  // Puts the file in its place. Without it the destructor throws the file away.
  void commit();

 private:
  void remove_temporary() noexcept;

  std::string path_, note_;
  std::filesystem::path target_;
  std::filesystem::path temporary_;  // empty: the file is a device or pipe, written in place
  int descriptor_ = -1;
};

// Makes a folder and those above it. Throws InputOutputError.
void make_folder(const std::string& path);

}  // namespace norvane::cli

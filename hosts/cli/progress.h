// A bar on a terminal, at most ten times a second; nothing elsewhere.
#pragma once

#include <chrono>
#include <cstdint>

namespace norvane::cli {

class Progress {
 public:
  // `bytes`: size of the input, 0 when it is unknown.
  Progress(bool shown, std::uint64_t bytes) : shown_(shown), bytes_(bytes) {}
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void show(std::uint64_t bytes_done, std::uint64_t rows);

 private:
  bool shown_;
  bool drawn_ = false;
  std::uint64_t bytes_;
  std::chrono::steady_clock::time_point last_{};
};

}  // namespace norvane::cli

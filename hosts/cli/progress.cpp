#include "hosts/cli/progress.h"

#include <algorithm>
#include <string>

#include "hosts/cli/output.h"

namespace norvane::cli {

Progress::~Progress() {
  if (drawn_) tell("\r\x1B[K");
}

void Progress::show(std::uint64_t bytes_done, std::uint64_t rows) {
  if (!shown_) return;
  const auto now = std::chrono::steady_clock::now();
  if (now - last_ < std::chrono::milliseconds(100)) return;
  last_ = now;
  std::string text = "\r";
  if (bytes_ != 0) {
    constexpr std::size_t width = 30;
    const double part = std::min(1.0, static_cast<double>(bytes_done) / static_cast<double>(bytes_));
    const auto full = static_cast<std::size_t>(part * static_cast<double>(width));
    text.append("[").append(full, '#').append(width - full, '.').append("] ");
    text.append(std::to_string(static_cast<int>(part * 100.0))).append(" %  ");
  }
  text += std::to_string(rows) + " rows";
  tell(text);
  drawn_ = true;
}

}  // namespace norvane::cli

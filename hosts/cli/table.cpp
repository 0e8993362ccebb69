#include "hosts/cli/table.h"

#include <algorithm>

namespace norvane::cli {

std::size_t width_of(const std::string& text) {
  return static_cast<std::size_t>(
      std::count_if(text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

std::string Table::text(std::size_t indent) const {
  std::vector<std::size_t> widths;
  for (const auto& row : rows_)
    for (std::size_t i = 0; i < row.size(); ++i) {
      if (i == widths.size()) widths.push_back(0);
      widths[i] = std::max(widths[i], width_of(row[i]));
    }
  std::string out;
  for (const auto& row : rows_) {
    out.append(indent, ' ');
    for (std::size_t i = 0; i < row.size(); ++i) {
      out += row[i];
      out.append(widths[i] - width_of(row[i]) + 2, ' ');
    }
    out.erase(out.find_last_not_of(' ') + 1);
    out += '\n';
  }
  return out;
}

}  // namespace norvane::cli

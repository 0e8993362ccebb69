#include "hosts/cli/table.h"

#include <algorithm>

namespace norvane::cli {
namespace {

// Narrower text is harder to read than text that runs over.
constexpr std::size_t narrowest_column = 20;

}  // namespace

std::size_t width_of(std::string_view text) {
  return static_cast<std::size_t>(
      std::count_if(text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

std::string wrapped(std::string_view text, std::size_t width, std::size_t indent) {
  if (width == 0) return std::string(text);
  std::string out;
  std::size_t used = indent;
  for (std::size_t from = 0; from < text.size();) {
    if (text[from] == '\n') {
      out += '\n';
      out.append(indent, ' ');
      used = indent;
      ++from;
      continue;
    }
    // A word with the blanks before it.
    std::size_t start = text.find_first_not_of(' ', from);
    if (start == std::string_view::npos) break;
    const std::size_t end = std::min(text.find_first_of(" \n", start), text.size());
    const std::size_t length = width_of(text.substr(from, end - from));
    if (used + length > width && used > indent) {
      out += '\n';
      out.append(indent, ' ');
      used = indent;
      from = start;
      continue;
    }
    out += text.substr(from, end - from);
    used += length;
    from = end;
  }
  return out;
}

std::string Table::text(std::size_t indent, std::size_t width) const {
  std::vector<std::size_t> widths;
  for (const auto& row : rows_)
    for (std::size_t i = 0; i < row.size(); ++i) {
      if (i == widths.size()) widths.push_back(0);
      widths[i] = std::max(widths[i], width_of(row[i]));
    }
  std::size_t before_last = indent;
  for (std::size_t i = 0; i + 1 < widths.size(); ++i) before_last += widths[i] + 2;
  // Where the last column has no room it stands below its row.
  const bool below = width != 0 && width < before_last + narrowest_column;
  const std::size_t last_indent = below ? indent + 4 : before_last;
  std::string out;
  for (const auto& row : rows_) {
    out.append(indent, ' ');
    for (std::size_t i = 0; i < row.size(); ++i) {
      const bool last = i + 1 == widths.size();
      if (last && below && !row[i].empty()) {
        out.erase(out.find_last_not_of(' ') + 1);
        out.append("\n").append(last_indent, ' ');
      }
      out += last ? wrapped(row[i], width, last_indent) : row[i];
      if (!last) out.append(widths[i] - width_of(row[i]) + 2, ' ');
    }
    out.erase(out.find_last_not_of(' ') + 1);
    out += '\n';
  }
  return out;
}

}  // namespace norvane::cli

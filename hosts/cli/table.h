// Columns of text, as wide as their widest cell.
#pragma once

#include <string>
#include <vector>

namespace norvane::cli {

class Table {
 public:
  void add(std::vector<std::string> cells) { rows_.push_back(std::move(cells)); }
  bool empty() const { return rows_.empty(); }
  // Two blanks between columns, `indent` before the first; no blanks at the end of a line.
  std::string text(std::size_t indent = 2) const;

 private:
  std::vector<std::vector<std::string>> rows_;
};

// Number of characters of a UTF-8 text.
std::size_t width_of(const std::string& text);

}  // namespace norvane::cli

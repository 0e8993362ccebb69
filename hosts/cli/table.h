// Text laid out for people: paragraphs, and columns as wide as their widest cell.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace norvane::cli {

// Number of characters of a UTF-8 text.
std::size_t width_of(std::string_view text);

// The text in lines of at most `width` characters where its words allow it, every line but the first behind `indent`
// blanks; line feeds stay. Width 0 leaves it as it is.
std::string wrapped(std::string_view text, std::size_t width, std::size_t indent = 0);

class Table {
 public:
  void add(std::vector<std::string> cells) { rows_.push_back(std::move(cells)); }
  bool empty() const { return rows_.empty(); }
  // Two blanks between columns, `indent` before the first; no blanks at the end of a line. With a width the last
  // column is wrapped within it.
  std::string text(std::size_t indent = 2, std::size_t width = 0) const;

 private:
  std::vector<std::vector<std::string>> rows_;
};

}  // namespace norvane::cli

// A page of headings, paragraphs, tables and drawings, as HTML that prints on A4 and needs nothing else, and as
// Markdown.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace norvane::cli {

class Document {
 public:
  explicit Document(std::string title) : title_(std::move(title)) {}

  void heading(std::string text, int level = 2);
  void paragraph(std::string text);
  // Columns whose names end with '>' are aligned to the right, without it.
  void table(std::vector<std::string> head, std::vector<std::vector<std::string>> rows);
  // An SVG element.
  void drawing(std::string svg);
  // Lines to sign on: "Name", "Date", ...
  void signatures(std::vector<std::string> names);

  std::string html() const;
  std::string markdown() const;

 private:
  enum class Kind { heading, paragraph, table, drawing, signatures };
  struct Part {
    Kind kind;
    std::string text;
    int level = 0;
    std::vector<std::string> head;
    std::vector<std::vector<std::string>> rows;
  };

  std::string title_;
  std::vector<Part> parts_;
};

std::string html_text(std::string_view text);

// Text that Markdown must not read as markup; a '|' would end a table's cell.
std::string markdown_text(std::string_view text);

// A line through points, with axes, as an SVG element.
struct Curve {
  std::string x_title, y_title;
  std::vector<double> x, y;  // of equal length; a y that is not finite is a gap
};
std::string svg_of(const Curve& curve);

}  // namespace norvane::cli

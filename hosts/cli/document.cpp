#include "hosts/cli/document.h"

#include <algorithm>
#include <cmath>

#include "hosts/cli/json_text.h"

namespace norvane::cli {
namespace {

constexpr std::string_view style =
    "@page { size: A4; margin: 18mm 16mm }\n"
    "body { font: 10pt/1.4 system-ui, sans-serif; color: #111; max-width: 178mm; margin: 12mm auto }\n"
    "h1 { font-size: 16pt; margin: 0 0 2mm } h2 { font-size: 12pt; margin: 6mm 0 2mm; break-after: avoid }\n"
    "h3 { font-size: 10.5pt; margin: 4mm 0 1mm; break-after: avoid } p { margin: 1mm 0 }\n"
    "table { border-collapse: collapse; width: 100%; margin: 1mm 0 3mm } thead { display: table-header-group }\n"
    "tr { break-inside: avoid } th, td { text-align: left; vertical-align: top; padding: 0.7mm 2mm;"
    " border-bottom: 0.2mm solid #bbb } th { border-bottom: 0.4mm solid #333 }\n"
    ".right { text-align: right; font-variant-numeric: tabular-nums } svg { width: 100%; break-inside: avoid }\n"
    ".sign { display: flex; gap: 12mm; margin-top: 16mm; break-inside: avoid }\n"
    ".sign div { flex: 1; border-top: 0.3mm solid #333; padding-top: 1mm; font-size: 9pt }\n";

bool to_the_right(const std::string& head) { return head.ends_with('>'); }
std::string title_of(const std::string& head) { return to_the_right(head) ? head.substr(0, head.size() - 1) : head; }

// A step of 1, 2 or 5 times a power of ten that divides the span into some five parts.
double step_of(double span) {
  // Powers of ten by multiplication, so that the ticks come out as they are written.
  double step = 1.0;
  while (step > span) step /= 10.0;
  while (step * 10.0 <= span) step *= 10.0;
  for (const double part : {0.1, 0.2, 0.5, 1.0, 2.0})
    if (span / (step * part) <= 6.0) return step * part;
  return step * 2.0;
}

std::string number(double value, int digits) {
  std::string text;
  append_number(text, value == 0.0 ? 0.0 : value, digits);
  return text;
}

}  // namespace

void Document::heading(std::string text, int level) {
  parts_.push_back({Kind::heading, std::move(text), level, {}, {}});
}
void Document::paragraph(std::string text) { parts_.push_back({Kind::paragraph, std::move(text), 0, {}, {}}); }
void Document::table(std::vector<std::string> head, std::vector<std::vector<std::string>> rows) {
  parts_.push_back({Kind::table, {}, 0, std::move(head), std::move(rows)});
}
void Document::drawing(std::string svg) { parts_.push_back({Kind::drawing, std::move(svg), 0, {}, {}}); }
void Document::signatures(std::vector<std::string> names) {
  parts_.push_back({Kind::signatures, {}, 0, std::move(names), {}});
}

std::string Document::html() const {
  std::string out = "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n<title>" +
                    html_text(title_) + "</title>\n<style>\n" + std::string(style) +
                    "</style>\n</head>\n<body>\n<h1>" + html_text(title_) + "</h1>\n";
  for (const Part& part : parts_) {
    const std::string tag = "h" + std::to_string(part.level);
    switch (part.kind) {
      case Kind::heading: out += "<" + tag + ">" + html_text(part.text) + "</" + tag + ">\n"; break;
      case Kind::paragraph: out += "<p>" + html_text(part.text) + "</p>\n"; break;
      case Kind::drawing: out += part.text + "\n"; break;
      case Kind::signatures:
        out += "<div class=\"sign\">";
        for (const std::string& name : part.head) out += "<div>" + html_text(name) + "</div>";
        out += "</div>\n";
        break;
      case Kind::table: {
        const auto cell = [&](const char* kind, std::size_t column, const std::string& text) {
          const bool right = column < part.head.size() && to_the_right(part.head[column]);
          out += std::string("<") + kind + (right ? " class=\"right\">" : ">") + html_text(text) + "</" + kind + ">";
        };
        out += "<table>\n<thead><tr>";
        for (std::size_t i = 0; i < part.head.size(); ++i) cell("th", i, title_of(part.head[i]));
        out += "</tr></thead>\n<tbody>\n";
        for (const auto& row : part.rows) {
          out += "<tr>";
          for (std::size_t i = 0; i < row.size(); ++i) cell("td", i, row[i]);
          out += "</tr>\n";
        }
        out += "</tbody>\n</table>\n";
        break;
      }
    }
  }
  return out + "</body>\n</html>\n";
}

std::string Document::markdown() const {
  std::string out = "# " + markdown_text(title_) + "\n";
  for (const Part& part : parts_) {
    out += '\n';
    const auto row = [&](const std::vector<std::string>& cells) {
      for (const std::string& cell : cells) out += "| " + markdown_text(cell) + (cell.empty() ? "" : " ");
      out += "|\n";
    };
    switch (part.kind) {
      case Kind::heading:
        out += std::string(static_cast<std::size_t>(part.level), '#') + " " + markdown_text(part.text) + "\n";
        break;
      case Kind::paragraph: out += markdown_text(part.text) + "\n"; break;
      case Kind::drawing: out += part.text + "\n"; break;
      case Kind::signatures:
        for (const std::string& name : part.head) out += markdown_text(name) + ": ____________  ";
        out += '\n';
        break;
      case Kind::table: {
        std::vector<std::string> titles;
        for (const std::string& head : part.head) titles.push_back(title_of(head));
        row(titles);
        for (const std::string& head : part.head) out += to_the_right(head) ? "|--:" : "|---";
        out += "|\n";
        for (const auto& cells : part.rows) row(cells);
        break;
      }
    }
  }
  return out;
}

std::string html_text(std::string_view text) {
  std::string out;
  for (const char c : text) {
    switch (c) {
      case '&': out += "&amp;"; break;
      case '<': out += "&lt;"; break;
      case '>': out += "&gt;"; break;
      case '"': out += "&quot;"; break;
      case '\n': out += "<br>"; break;
      default: out += c;
    }
  }
  return out;
}

std::string markdown_text(std::string_view text) {
  std::string out;
  for (const char c : text) {
    if (c == '|' || c == '*' || c == '_' || c == '<' || c == '`' || c == '[' || c == '\\') out += '\\';
    out += c == '\n' ? ' ' : c;
  }
  return out;
}

std::string svg_of(const Curve& curve) {
  constexpr double width = 640, height = 320, left = 78, right = 16, top = 14, bottom = 46;
  double x_low = INFINITY, x_high = -INFINITY, y_low = INFINITY, y_high = -INFINITY;
  for (std::size_t i = 0; i < curve.x.size(); ++i) {
    x_low = std::min(x_low, curve.x[i]);
    x_high = std::max(x_high, curve.x[i]);
    if (!std::isfinite(curve.y[i])) continue;
    y_low = std::min(y_low, curve.y[i]);
    y_high = std::max(y_high, curve.y[i]);
  }
  if (!(x_low < x_high) || !(y_low <= y_high) || !std::isfinite(x_high - x_low) || !std::isfinite(y_high - y_low))
    return {};
  if (y_low == y_high) {
    const double half = y_low == 0.0 ? 1.0 : std::fabs(y_low) * 0.01;
    y_low -= half;
    y_high += half;
  }
  const auto place_x = [&](double x) { return left + (x - x_low) / (x_high - x_low) * (width - left - right); };
  const auto place_y = [&](double y) {
    return height - bottom - (y - y_low) / (y_high - y_low) * (height - top - bottom);
  };
  const auto line = [&](double x1, double y1, double x2, double y2, const char* color) {
    return "<line x1=\"" + number(x1, 5) + "\" y1=\"" + number(y1, 5) + "\" x2=\"" + number(x2, 5) + "\" y2=\"" +
           number(y2, 5) + "\" stroke=\"" + color + "\"/>";
  };
  const auto label = [&](double x, double y, const char* anchor, const std::string& text) {
    return "<text x=\"" + number(x, 5) + "\" y=\"" + number(y, 5) + "\" text-anchor=\"" + anchor + "\">" +
           html_text(text) + "</text>";
  };
  std::string out =
      "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 640 320\" font-family=\"sans-serif\" "
      "font-size=\"11\">\n";
  const double x_step = step_of(x_high - x_low), y_step = step_of(y_high - y_low);
  // So many ticks at most, wherever the numbers are.
  for (int i = 0; i <= 7; ++i) {
    const double tick = (std::ceil(x_low / x_step - 1e-9) + i) * x_step;
    if (tick > x_high + 1e-9 * x_step) break;
    const double x = place_x(tick);
    out += line(x, top, x, height - bottom, "#ddd") + label(x, height - bottom + 15, "middle", number(tick, 6));
  }
  for (int i = 0; i <= 7; ++i) {
    const double tick = (std::ceil(y_low / y_step - 1e-9) + i) * y_step;
    if (tick > y_high + 1e-9 * y_step) break;
    const double y = place_y(tick);
    out += line(left, y, width - right, y, "#ddd") + label(left - 6, y + 4, "end", number(tick, 6));
  }
  out += "\n" + line(left, top, left, height - bottom, "#333") +
         line(left, height - bottom, width - right, height - bottom, "#333") +
         label((left + width - right) / 2, height - 8, "middle", curve.x_title) + "<text transform=\"translate(14 " +
         number((top + height - bottom) / 2, 5) + ") rotate(-90)\" text-anchor=\"middle\">" +
         html_text(curve.y_title) + "</text>\n<path fill=\"none\" stroke=\"#0a58a8\" stroke-width=\"1.5\" d=\"";
  bool drawing = false;
  for (std::size_t i = 0; i < curve.x.size(); ++i) {
    if (!std::isfinite(curve.y[i])) {
      drawing = false;
      continue;
    }
    out += (drawing ? "L" : "M") + number(place_x(curve.x[i]), 5) + " " + number(place_y(curve.y[i]), 5);
    drawing = true;
  }
  return out + "\"/>\n</svg>";
}

}  // namespace norvane::cli

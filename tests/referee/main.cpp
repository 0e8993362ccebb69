// norvane_referee [states a class] [seed] [file]: prints the deviations as Markdown tables, or puts them between the
// marks in a file, and tells the state of each that is beyond its limit on the error output. docs/accuracy.md is made by
//
//   cmake --build build/release --target norvane_referee
//   build/release/tests/referee/norvane_referee 1000 1 docs/accuracy.md
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <sstream>

#include "tests/referee/referee.h"

namespace {

using norvane::referee::Row;

std::string short_number(double value, const char* format) {
  char text[32];
  std::snprintf(text, sizeof text, format, value);
  return value == 0.0 ? "0" : text;
}

// A table a function: a line a class of states, a column a quantity with median and worst.
void print(std::vector<Row> rows, std::ostream& out) {
  std::stable_sort(rows.begin(), rows.end(), [](const Row& a, const Row& b) { return a.function < b.function; });
  for (std::size_t first = 0; first < rows.size();) {
    std::size_t last = first;
    std::vector<const Row*> columns;
    std::vector<std::string> lines;
    const auto is_new = [](const auto& list, const auto& same) {
      return std::none_of(list.begin(), list.end(), same);
    };
    for (; last < rows.size() && rows[last].function == rows[first].function; ++last) {
      const Row& row = rows[last];
      if (is_new(columns, [&](const Row* other) { return other->quantity == row.quantity; })) columns.push_back(&row);
      if (is_new(lines, [&](const std::string& line) { return line == row.states; })) lines.push_back(row.states);
    }
    out << "\n| " << rows[first].function << " | values |";
    for (const Row* column : columns) out << ' ' << column->quantity << " |";
    out << "\n|---|---|";
    for (std::size_t i = 0; i < columns.size(); ++i) out << "---|";
    for (const std::string& line : lines) {
      std::size_t most = 0;
      std::string cells;
      for (const Row* column : columns) {
        cells += ' ';
        for (std::size_t i = first; i < last; ++i) {
          const Row& row = rows[i];
          if (row.states != line || row.quantity != column->quantity) continue;
          most = std::max(most, row.deviations.size());
          cells += short_number(row.median(), "%.0e") + ", " + short_number(row.worst, "%.1e");
        }
        cells += " |";
      }
      out << "\n| " << line << " | " << most << " |" << cells;
    }
    out << "\n";
    first = last;
  }
}

}  // namespace

int main(int count, char** arguments) {
  const unsigned long states = count > 1 ? std::strtoul(arguments[1], nullptr, 10) : 1000;
  const unsigned long seed = count > 2 ? std::strtoul(arguments[2], nullptr, 10) : 1;
  const std::vector<Row> rows = norvane::referee::run(seed, states);
  std::ostringstream text;
  text << "Seed " << seed << ", up to " << states << " states a class (`norvane_referee " << states << ' ' << seed
       << "`).\n";
  print(rows, text);
  if (count > 3) {
    std::ifstream in(arguments[3]);
    std::string file{std::istreambuf_iterator<char>(in), {}};
    const std::string begin = "<!-- referee -->\n", end = "<!-- end of referee -->";
    const std::size_t from = file.find(begin), to = file.find(end);
    if (from == std::string::npos || to == std::string::npos || to < from) {
      std::cerr << arguments[3] << ": no place marked by " << begin;
      return 2;
    }
    file.replace(from + begin.size(), to - from - begin.size(), text.str());
    std::ofstream(arguments[3]) << file;
  } else {
    std::cout << text.str();
  }
  int beyond = 0;
  for (const Row& row : rows) {
    if (row.worst <= row.limit) continue;
    ++beyond;
    std::cerr << row.function << ", " << row.states << ", " << row.quantity << ": " << row.worst << " is above "
              << row.limit << " at " << row.worst_state << "\n";
  }
  return beyond == 0 ? 0 : 1;
}

// Runs check values: calls with the outputs that a publication prints for them. A case is a line of JSON
//   {"function","inputs","outputs","source"} with a relative ("rtol") or absolute ("atol") tolerance, 1e-9 relative when
// it has neither, and tolerances of single outputs in "rtols" and "atols"; an expected null means that the output must
// not be written. Or it is a row of a CSV file: columns of inputs as for batch, "expected z" for outputs, "rtol",
// "atol", "source" and "function"; without a tolerance the digits of the expected value give it, half a unit of the
// last one.
#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <nlohmann/json.hpp>

#include "core/text.h"
#include "hosts/cli/check_values.h"
#include "hosts/cli/commands.h"
#include "hosts/cli/csv.h"
#include "hosts/cli/document.h"
#include "hosts/cli/encoding.h"
#include "hosts/cli/identity.h"
#include "hosts/cli/input_file.h"
#include "hosts/cli/json_call.h"
#include "hosts/cli/json_text.h"
#include "hosts/cli/names.h"
#include "hosts/cli/quantity_text.h"
#include "hosts/cli/record_text.h"
#include "hosts/cli/standards.h"
#include "hosts/cli/table.h"

namespace norvane::cli {
namespace {

using nlohmann::json;
using nlohmann::ordered_json;

struct Score {
  std::uint64_t cases = 0, failed = 0;
  double deviation = 0.0;  // worst, relative; of a value that must be 0 absolute
  double share = 0.0;      // worst, of its tolerance
};

struct Failure {
  std::string place, function, reason, source;
};

std::string short_number(double value) {
  std::string text;
  append_number(text, value, 2);
  return text;
}

std::string percent(double share) { return std::to_string(std::lround(std::min(share, 9.99) * 100.0)) + " %"; }

double tolerance(const json& check, const char* one, const char* many, const std::string& key, double fallback) {
  const auto list = check.find(many);
  if (list != check.end() && list->is_object() && list->contains(key)) return list->at(key).get<double>();
  return check.value(one, fallback);
}

bool is_number(const json& value) { return value.is_number() || value.is_boolean(); }
double number(const json& value) { return value.is_boolean() ? value.get<bool>() : value.get<double>(); }

// Half a unit of the last digit of "0.84053": 0.000005.
double half_a_digit(std::string_view text) {
  const std::size_t exponent = std::min(text.find_first_of("eE"), text.size());
  std::string half;
  for (const char c : text.substr(0, exponent)) half += c >= '0' && c <= '9' ? '0' : c;
  if (half.find('.') == std::string::npos) half += '.';
  half += '5';
  half += text.substr(exponent);
  double value = 0.0;
  return read_number(half, '.', value) ? std::fabs(value) : 0.0;
}

class Checker {
 public:
  explicit Checker(const Reading& reading) : calls_(reading), reading_(reading) {}

  // A failure that is no case's.
  void fail(const std::string& place, const std::string& reason) {
    if (scores_.find(place) == scores_.end()) order_.push_back(place);
    ++scores_[place].failed;
    failures_.push_back({place, "norvane", reason, ""});
  }

  void jsonl(const std::string& name, std::string_view text) {
    std::size_t line = 0;
    while (!text.empty()) {
      const std::size_t end = std::min(text.find('\n'), text.size());
      const std::string_view record = text.substr(0, end);
      text.remove_prefix(std::min(text.size(), end + 1));
      ++line;
      if (record.find_first_not_of(" \t\r") != std::string_view::npos) one(name + ":" + std::to_string(line), record);
    }
  }

  void csv(const std::string& name, std::string_view text, const std::string& function) {
    const char delimiter = take_delimiter(text);
    RecordEnds ends(delimiter);
    std::vector<std::string> header, cells;
    std::size_t line = 1;
    for (std::size_t from = 0; from < text.size();) {
      const std::size_t end = std::min(ends.next(text, from), text.size());
      const std::string_view record = text.substr(from, end - from);
      from = end;
      const std::string place = name + ":" + std::to_string(line);
      line += lines_of(record);
      if (is_comment(record) || is_blank(record)) continue;
      if (!split_record(record, delimiter, cells)) throw UsageError(place + ": a quoted field is not closed");
      if (header.empty()) {
        header = cells;
        if (std::none_of(header.begin(), header.end(), [](const std::string& title) { return is_expected(title); }))
          throw UsageError(place + ": no column \"expected ...\" names an output");
        continue;
      }
      if (cells.size() != header.size())
        throw UsageError(place + ": the row has " + std::to_string(cells.size()) + " cells, the header " +
                         std::to_string(header.size()));
      one(place, case_of(place, header, cells, function).dump());
    }
  }

  const std::map<std::string, Score>& scores() const { return scores_; }
  const std::vector<std::string>& order() const { return order_; }
  const std::vector<Failure>& failures() const { return failures_; }
  Score total() const {
    Score sum;
    for (const auto& [name, score] : scores_) {
      sum.cases += score.cases;
      sum.failed += score.failed;
    }
    return sum;
  }

 private:
  static bool is_expected(std::string_view title) { return normalised(title).starts_with("expected_"); }

  json case_of(const std::string& place, const std::vector<std::string>& header,
               const std::vector<std::string>& cells, const std::string& function) const {
    json check = {{"function", function}, {"inputs", json::object()}, {"outputs", json::object()}};
    json printed = json::object();
    for (std::size_t i = 0; i < header.size(); ++i) {
      const std::string_view title = trimmed(header[i]), cell = trimmed(cells[i]);
      const std::string name = normalised(title);
      double value = 0.0;
      const bool is_value = read_number(cell, reading_.decimal, value);
      if (name == "function" || name == "source") {
        if (!cell.empty()) check[name] = cell;
      } else if (name == "rtol" || name == "atol" || is_expected(title)) {
        if (cell.empty()) continue;
        if (!is_value)
          throw UsageError(place + ", column " + in_quotes(title) + ": " + in_quotes(cell) + " is not a number");
        if (!is_expected(title)) {
          check[name] = value;
          continue;
        }
        std::string_view output = trimmed(title.substr(std::string_view("expected ").size())), unit;
        split_brackets(output, output, unit);
        check["outputs"][std::string(output)] = value;
        std::string point(cell);
        std::replace(point.begin(), point.end(), ',', '.');
        printed[std::string(output)] = half_a_digit(point);
      } else {
        check["inputs"][std::string(title)] = cell;
      }
    }
    if (check["function"].get<std::string>().empty())
      throw UsageError(place + ": the file has no column \"function\", and --function names none");
    if (!check.contains("rtol") && !check.contains("atol")) {
      check["atols"] = printed;
      check["atol"] = 0.0;
    }
    return check;
  }

  void one(const std::string& place, std::string_view text) {
    const json check = json::parse(text, nullptr, false);
    if (!check.is_object() || !check.contains("function") || !check["function"].is_string() ||
        !check.contains("outputs") || !check["outputs"].is_object() || check["outputs"].empty())
      throw UsageError(place + ": a case is an object with \"function\", \"inputs\" and \"outputs\"");
    const std::string function = check["function"];
    const Function_CFunctionSpec& spec = find_function(function);
    const std::string standard = standard_of(spec);
    if (scores_.find(standard) == scores_.end()) order_.push_back(standard);
    Score& score = scores_[standard];
    ++score.cases;

    answer_.clear();
    const JsonCalls::Answer kind = calls_.answer(text, answer_);
    const json answer = json::parse(answer_, nullptr, false);
    std::string reason;
    if (kind == JsonCalls::Answer::unreadable) throw UsageError(place + ": " + answer.value("error", "?"));
    if (answer["status"] != 0) reason = "the call failed";
    for (const auto& [key, want] : check["outputs"].items()) {
      if (!reason.empty()) break;
      reason = compare(check, key, want, answer["outputs"], spec, score);
    }
    if (reason.empty()) return;
    ++score.failed;
    failures_.push_back({place, to_utf8(spec.id), reason, check.value("source", "")});
  }

  // Why the output is wrong; empty when it is right.
  std::string compare(const json& check, const std::string& key, const json& want, const json& outputs,
                      const Function_CFunctionSpec& spec, Score& score) const {
    const json* got = nullptr;
    for (const auto& [name, value] : outputs.items())
      if (equal_names(name, key)) got = &value;
    if (got == nullptr) return to_utf8(spec.id) + " has no output " + in_quotes(key);
    const std::string is = key + " is " + got->dump() + ", expected is " + want.dump();
    if (!is_number(want) || !is_number(*got)) return *got == want ? "" : is;
    const double deviation = std::fabs(number(*got) - number(want)), size = std::fabs(number(want));
    const double allowed = tolerance(check, "atol", "atols", key, 0.0) +
                           tolerance(check, "rtol", "rtols", key, check.contains("atol") ? 0.0 : 1e-9) * size;
    if (!(deviation <= allowed)) return is + ", tolerance is " + short_number(allowed);
    score.deviation = std::max(score.deviation, size == 0.0 ? deviation : deviation / size);
    if (allowed > 0.0) score.share = std::max(score.share, deviation / allowed);
    return {};
  }

  JsonCalls calls_;  // one session, as a caller has it: later cases meet what earlier ones left
  const Reading& reading_;
  std::string answer_;
  std::map<std::string, Score> scores_;
  std::vector<std::string> order_;
  std::vector<Failure> failures_;
};

// Standards of the catalogue of which no case was seen.
std::vector<std::string> unchecked(const Checker& checker) {
  std::vector<std::string> names;
  for (std::string& name : standard_names())
    if (name != general_functions && checker.scores().find(name) == checker.scores().end())
      names.push_back(std::move(name));
  return names;
}

std::string unchecked_line(const Checker& checker) {
  std::string text;
  for (const std::string& name : unchecked(checker))
    text.append(text.empty() ? "without check values: " : ", ").append(name);
  return text;
}

std::string verdict(const Score& score) {
  return score.failed == 0 ? "good" : std::to_string(score.failed) + " failed";
}

std::string verdict_line(const Score& total) {
  return std::to_string(total.cases) + (total.cases == 1 ? " case: " : " cases: ") +
         (total.failed == 0 ? "all good" : std::to_string(total.failed) + " failed");
}

std::vector<std::vector<std::string>> rows_of(const Checker& checker) {
  std::vector<std::vector<std::string>> rows;
  for (const std::string& standard : checker.order()) {
    const Score& score = checker.scores().at(standard);
    rows.push_back(
        {standard, std::to_string(score.cases), short_number(score.deviation), percent(score.share), verdict(score)});
  }
  return rows;
}

std::string text_of(const Checker& checker, bool built_in) {
  std::string text = identity_line() + "\n\n";
  Table table;
  table.add({"standard", "cases", "worst deviation", "of its tolerance", "verdict"});
  for (auto& row : rows_of(checker)) table.add(std::move(row));
  text += table.text(0, page_width()) + "\n";
  if (built_in && !unchecked(checker).empty()) text += wrapped(unchecked_line(checker), page_width()) + "\n";
  for (const Failure& failure : checker.failures())
    text += "FAILED " + failure.place + ": " + failure.function + ": " + failure.reason +
            (failure.source.empty() ? "" : " (" + failure.source + ")") + "\n";
  return text + verdict_line(checker.total()) + "\n";
}

std::string json_of(const Checker& checker) {
  ordered_json standards = ordered_json::array(), failures = ordered_json::array();
  for (const std::string& standard : checker.order()) {
    const Score& score = checker.scores().at(standard);
    standards.push_back({{"standard", standard},
                         {"ok", score.failed == 0},
                         {"cases", score.cases},
                         {"failed", score.failed},
                         {"worst_deviation", score.deviation},
                         {"share_of_tolerance", score.share}});
  }
  for (const Failure& failure : checker.failures())
    failures.push_back({{"place", failure.place},
                        {"function", failure.function},
                        {"reason", failure.reason},
                        {"source", failure.source}});
  const Score total = checker.total();
  return ordered_json({{"ok", total.failed == 0},
                       {"cases", total.cases},
                       {"failed", total.failed},
                       {"identity", identity_json()},
                       {"standards", std::move(standards)},
                       {"unchecked", unchecked(checker)},
                       {"failures", std::move(failures)}})
             .dump(2) +
         "\n";
}

std::string page_of(const Checker& checker, const std::string& values, bool built_in) {
  Document page("Check of calculations: " + verdict_line(checker.total()));
  page.paragraph(
      "Check values: " + values +
      ". Each case is calculated by the program as installed and compared with the "
      "value expected, within the tolerance of the case. The deviation is relative, of values that must be "
      "0 absolute.");
  page.table({"Standard", "Cases>", "Worst deviation>", "Of its tolerance>", "Verdict"}, rows_of(checker));
  if (built_in && !unchecked(checker).empty()) page.paragraph(unchecked_line(checker));
  if (!checker.failures().empty()) {
    page.heading("Failed");
    std::vector<std::vector<std::string>> rows;
    for (const Failure& failure : checker.failures())
      rows.push_back({failure.place, failure.function, failure.reason, failure.source});
    page.table({"Case", "Function", "Reason", "Source"}, std::move(rows));
  }
  add_identity(page);
  page.signatures({"Name", "Place, date", "Signature"});
  return page.html();
}

}  // namespace

ExitCode check(const CheckOptions& options, Output& out) {
  const Reading reading = reading_of(options.reading);
  Checker checker(reading);
  std::string values = "published examples, built into the program";
  if (options.files.empty())
    for (const CheckFile& file : built_in_check_values()) checker.jsonl(std::string(file.name), file.lines);
  else
    values.clear();
  for (const std::string& path : options.files) {
    const std::string text = read_text_file(path);
    const std::size_t first = text.find_first_not_of(" \t\r\n");
    if (first != std::string::npos && text[first] == '{')
      checker.jsonl(shown_path(path), text);
    else
      checker.csv(shown_path(path), text, options.function);
    values += (values.empty() ? "" : ", ") + shown_path(path);
  }
  if (const std::string mismatch = mismatch_text(); !mismatch.empty()) checker.fail("identity", mismatch);
  const Score total = checker.total();
  if (total.cases == 0) throw UsageError("there is no case to check");
  if (!options.html.empty()) write_file(options.html, page_of(checker, values, options.files.empty()));
  out.write(options.json ? json_of(checker) : text_of(checker, options.files.empty()));
  return total.failed == 0 ? exit_good : exit_calculation;
}

}  // namespace norvane::cli

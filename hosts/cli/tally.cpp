#include "hosts/cli/tally.h"

#include <algorithm>

#include "hosts/cli/names.h"
#include "hosts/cli/target.h"

namespace norvane::cli {
namespace {

constexpr std::size_t most_details = 20;

std::string rows_text(std::uint64_t rows) { return std::to_string(rows) + (rows == 1 ? " row" : " rows"); }

}  // namespace

bool Tally::wants_note() const { return details.size() < most_details; }

void Tally::note(std::uint64_t line, std::string reason) {
  if (wants_note()) details.push_back({line, std::move(reason)});
}

void Tally::count(Verdict verdict) {
  switch (verdict) {
    case Verdict::good: ++good; return;
    case Verdict::extended: ++extended; return;
    case Verdict::outside: ++outside; return;
    case Verdict::failed: ++failed; return;
  }
}

void Tally::count_defaults(std::span<const std::size_t> inputs, std::size_t input_count) {
  if (inputs.empty()) return;
  defaulted.resize(input_count);
  for (const std::size_t input : inputs) ++defaulted[input];
}

void Tally::add(const Tally& other) {
  rows += other.rows;
  good += other.good;
  extended += other.extended;
  outside += other.outside;
  failed += other.failed;
  refused += other.refused;
  with_warning += other.with_warning;
  reencoded += other.reencoded;
  if (defaulted.size() < other.defaulted.size()) defaulted.resize(other.defaulted.size());
  for (std::size_t i = 0; i < other.defaulted.size(); ++i) defaulted[i] += other.defaulted[i];
  for (const Detail& detail : other.details) note(detail.line, detail.reason);
}

std::string summary(const Tally& tally) {
  std::string text = rows_text(tally.rows) + ": ";
  if (tally.good == tally.rows) {
    text += "all good";
  } else {
    text += std::to_string(tally.good) + " good";
    const std::pair<std::uint64_t, const char*> others[] = {
        {tally.extended, " in the extended range of the standard"},
        {tally.outside, " outside the range of the standard"},
        {tally.failed, " failed"},
        {tally.refused, " could not be read"}};
    for (const auto& [count, what] : others)
      if (count != 0) text += ", " + std::to_string(count) + what;
  }
  if (tally.with_warning != 0) text += " (" + std::to_string(tally.with_warning) + " with warnings)";
  text += "\n";
  for (const Tally::Detail& detail : tally.details)
    text += "  line " + std::to_string(detail.line) + ": " + printable(detail.reason, 300) + "\n";
  const std::uint64_t told = tally.outside + tally.failed + tally.refused;
  if (told > tally.details.size()) text += "  and " + std::to_string(told - tally.details.size()) + " more\n";
  return text;
}

std::string defaults_note(const Tally& tally, const Session& session) {
  std::vector<std::size_t> always;
  std::string some;
  for (std::size_t i = 0; i < tally.defaulted.size(); ++i) {
    if (tally.defaulted[i] == 0) continue;
    if (tally.defaulted[i] == tally.rows - tally.refused) {
      always.push_back(i);
    } else {
      some += "; in " + rows_text(tally.defaulted[i]) + ": " + defaults_text(session, {&i, 1});
    }
  }
  std::string text;
  if (!always.empty()) text = "in every row: " + defaults_text(session, always);
  text += some;
  if (text.empty()) return text;
  if (text.starts_with("; ")) text.erase(0, 2);
  return "note: defaults used " + text + "\n";
}

}  // namespace norvane::cli

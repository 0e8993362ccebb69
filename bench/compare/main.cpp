// Ratios of one run: every calculation in every way against a plain transcription of the same equations.
//
//   compare [--rounds N] [--filter TEXT] [--check]
//
// Each plain transcription must give the library's numbers, and each way the algorithm's, or nothing is measured.
// Ways take turns in slices of some milliseconds; figures are medians of the rounds, of processor time.
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "bench/compare/worker.h"

namespace norvane::bench {
namespace {

struct Options {
  int rounds = 15;
  double slice = 2e-3;  // [s]
  std::string filter;
  bool check = false;
};

using Workers = std::vector<std::unique_ptr<Worker>>;

// Ends the program where a way of a case does not answer what it should.
void check(const std::vector<Case>& cases, const Workers& workers, bool print) {
  bool good = true;
  for (std::size_t c = 0; c < cases.size(); ++c) {
    for (const auto& worker : workers) {
      for (std::size_t w = 0; w < way_count; ++w) {
        const auto way = static_cast<Ways>(w);
        if (!cases[c].ways[w] || (way == Ways::wrapper) != worker->worksheet()) continue;
        // A host may differ by the rounding of a unit that it converts and the algorithm does not.
        const double limit = way == Ways::plain ? cases[c].tolerance : 1e-15;
        const double found = worker->deviation(c, way);
        if (print)
          std::printf("%-40s %-40s %zu %-8s %.1e\n", cases[c].group.c_str(), cases[c].what.c_str(), w,
                      name_of(worker->set()), found);
        if (found <= limit) continue;
        good = false;
        std::fprintf(stderr, "%s, %s: way %zu with %s is off by %.1e, limit %.1e\n", cases[c].group.c_str(),
                     cases[c].what.c_str(), w, name_of(worker->set()), found, limit);
      }
    }
  }
  if (!good) std::exit(1);
}

std::string ratio_text(double ratio) {
  char text[32];
  std::snprintf(text, sizeof text, ratio < 9.95 ? "%.1f" : "%.0f", ratio);
  return text;
}
std::string time_text(double seconds) {
  char text[32];
  std::snprintf(text, sizeof text, "%.0f", 1e9 * seconds);
  return text;
}

void print_ratios(const std::vector<Case>& cases, const Workers& workers, const Options& options) {
  std::printf("| calculation | | plain, ns | algorithm | context | C export |");
  for (const auto& worker : workers)
    if (!worker->worksheet()) std::printf(" batch, %s |", name_of(worker->set()));
  std::printf("\n|---|---|--:|--:|--:|--:|");
  for (const auto& worker : workers)
    if (!worker->worksheet()) std::printf("--:|");
  std::printf("\n");
  std::string group;
  for (std::size_t c = 0; c < cases.size(); ++c) {
    // Of all workers the last one but the worksheet's has the widest vectors that are used unasked.
    const Worker* usual = nullptr;
    for (const auto& worker : workers)
      if (!worker->worksheet() && worker->set() != InstructionSet::avx512) usual = worker.get();
    std::vector<Measured> list;
    for (const Ways way : {Ways::plain, Ways::algorithm, Ways::context, Ways::direct})
      if (cases[c].ways[static_cast<std::size_t>(way)]) list.push_back({usual, c, way});
    const std::size_t singles = list.size();
    std::size_t sets = 0;
    for (const auto& worker : workers) {
      if (worker->worksheet()) continue;
      ++sets;
      if (cases[c].ways[static_cast<std::size_t>(Ways::batch)]) list.push_back({worker.get(), c, Ways::batch});
    }
    measure(list, options.rounds, options.slice);
    std::printf("| %s | %s | %s |", cases[c].group == group ? "" : cases[c].group.c_str(), cases[c].what.c_str(),
                time_text(list[0].figure().seconds).c_str());
    group = cases[c].group;
    const auto cell = [&](bool there, std::size_t k) {
      std::printf(" %s |", there ? ratio_text(list[k].figure().ratio).c_str() : "");
    };
    for (std::size_t k = 1; k < 4; ++k) cell(k < singles, k);
    for (std::size_t k = singles; k < singles + sets; ++k) cell(k < list.size(), k);
    std::printf("\n");
    std::fflush(stdout);
  }
}

int run(const Options& options) {
  std::vector<Case> cases;
  for (Case& made : all_cases())
    if ((made.group + ", " + made.what).find(options.filter) != std::string::npos) cases.push_back(std::move(made));
  Workers workers;
  for (const InstructionSet set : instruction_sets)
    if (has_instructions(set)) workers.push_back(std::make_unique<Worker>(cases, set, false));
#if defined(NORVANE_BENCH_EXCEL)
  workers.push_back(std::make_unique<Worker>(cases, workers.back()->set(), true));
#endif
  check(cases, workers, options.check);
  if (!options.check) print_ratios(cases, workers, options);
  return 0;
}

}  // namespace
}  // namespace norvane::bench

int main(int count, char** arguments) {
  norvane::bench::Options options;
  for (int i = 1; i < count; ++i) {
    const std::string argument = arguments[i];
    const auto value = [&] {
      if (i + 1 < count) return arguments[++i];
      std::fprintf(stderr, "%s needs a value\n", argument.c_str());
      std::exit(2);
    };
    if (argument == "--rounds") {
      options.rounds = std::max(1, std::atoi(value()));
    } else if (argument == "--filter") {
      options.filter = value();
    } else if (argument == "--check") {
      options.check = true;
    } else {
      std::fprintf(stderr, "usage: %s [--rounds N] [--filter TEXT] [--check]\n", arguments[0]);
      return 2;
    }
  }
  return norvane::bench::run(options);
}

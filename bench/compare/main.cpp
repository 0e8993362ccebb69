// Ratios of one run: every calculation in every way against a plain transcription of the same equations.
//
//   compare [--check] [--filter TEXT] [--rounds N]     the table of ratios, or no more than whether all ways agree
//   compare --write docs/performance.md --norvane PROGRAM [--python INTERPRETER] [--rounds N]
//                                                       all tables of the page, into it
//
// Each plain transcription must give the library's numbers, and each way the algorithm's, or nothing is measured.
// Ways take turns in slices of some milliseconds; figures are medians of the rounds, of processor time.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "bench/compare/tables.h"

namespace norvane::bench {
namespace {

// Ends the program where a way of a case does not answer what it should.
void check(const std::vector<Case>& cases, const Workers& workers, bool print) {
  constexpr const char* names[] = {"plain", "algorithm", "context", "C export", "worksheet", "batch"};
  bool good = true;
  for (std::size_t c = 0; c < cases.size(); ++c) {
    for (const auto& worker : workers) {
      for (std::size_t w = 0; w < way_count; ++w) {
        const auto way = static_cast<Ways>(w);
        if (!cases[c].ways[w] || (way == Ways::wrapper) != worker->worksheet()) continue;
        const double limit = way == Ways::plain ? cases[c].tolerance : 0.0;
        const double found = worker->deviation(c, way);
        if (print)
          std::printf("%-40s %-40s %-10s %-8s %.1e\n", cases[c].group.c_str(), cases[c].what.c_str(), names[w],
                      name_of(worker->set()), found);
        if (found <= limit) continue;
        good = false;
        std::fprintf(stderr, "%s, %s: %s with %s is off by %.1e, limit %.1e\n", cases[c].group.c_str(),
                     cases[c].what.c_str(), names[w], name_of(worker->set()), found, limit);
      }
    }
  }
  if (!good) std::exit(1);
}

// Replaces what stands between the marks of a page's section.
void place(std::string& page, const std::string& section, const std::string& text) {
  const std::string begin = "<!-- " + section + " -->\n", end = "<!-- end of " + section + " -->";
  const std::size_t from = page.find(begin), to = page.find(end);
  if (from == std::string::npos || to == std::string::npos || to < from) {
    std::fprintf(stderr, "the page has no section \"%s\"\n", section.c_str());
    std::exit(1);
  }
  page.replace(from + begin.size(), to - from - begin.size(), text);
}

int run(const Options& options) {
  std::vector<Case> cases;
  for (Case& made : all_cases())
    if ((made.group + ", " + made.what).find(options.filter) != std::string::npos) cases.push_back(std::move(made));
  const std::size_t in_first_table = cases.size();
  if (!options.write.empty()) {
    std::vector<Case> further = component_cases();
    std::move(further.begin(), further.end(), std::back_inserter(cases));
    cases.push_back(aga8_case(11, false));
  }
  Workers workers;
  for (const InstructionSet set : instruction_sets)
    if (has_instructions(set)) workers.push_back(std::make_unique<Worker>(cases, set, false));
#if defined(NORVANE_BENCH_EXCEL)
  workers.push_back(std::make_unique<Worker>(cases, instructions_in_use(), true));
#endif
  check(cases, workers, options.check);
  if (options.check) return 0;
  const std::vector<Case> first(cases.begin(), cases.begin() + static_cast<std::ptrdiff_t>(in_first_table));
  if (options.write.empty()) {
    std::fputs(ratios(first, workers, options).c_str(), stdout);
    return 0;
  }
  std::ifstream file(options.write);
  std::string page{std::istreambuf_iterator<char>(file), {}};
  place(page, "machine", machine(workers));
  place(page, "ratios", ratios(first, workers, options));
  place(page, "hosts", hosts(cases.size() - 1, workers, options));
  place(page, "components", components(in_first_table, workers, options));
  place(page, "rows", rows(options));
  place(page, "cores", cores(options));
  std::ofstream(options.write) << page;
  return 0;
}

}  // namespace
}  // namespace norvane::bench

int main(int count, char** arguments) {
  norvane::bench::Options options;
  for (int i = 1; i < count; ++i) {
    const std::string argument = arguments[i];
    const std::pair<const char*, std::string*> texts[] = {{"--filter", &options.filter},
                                                          {"--norvane", &options.norvane},
                                                          {"--python", &options.python},
                                                          {"--write", &options.write}};
    const auto* text =
        std::find_if(std::begin(texts), std::end(texts), [&](const auto& t) { return argument == t.first; });
    if (argument == "--check") {
      options.check = true;
    } else if (i + 1 < count && text != std::end(texts)) {
      *text->second = arguments[++i];
    } else if (i + 1 < count && argument == "--rounds") {
      options.rounds = std::max(1, std::atoi(arguments[++i]));
    } else {
      std::fprintf(stderr,
                   "usage: %s [--check] [--filter TEXT] [--rounds N]\n"
                   "       %s --write PAGE [--norvane PROGRAM] [--python INTERPRETER] [--rounds N]\n",
                   arguments[0], arguments[0]);
      return 2;
    }
  }
  return norvane::bench::run(options);
}

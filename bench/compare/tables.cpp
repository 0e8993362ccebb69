#include "bench/compare/tables.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>

#include <sys/resource.h>

namespace norvane::bench {
namespace {

template <class... Value>
std::string text(const char* format, Value... value) {
  char buffer[256];
  std::snprintf(buffer, sizeof buffer, format, value...);
  return buffer;
}
std::string of_ratio(double ratio) { return text(ratio < 9.95 ? "%.1f" : "%.0f", ratio); }
std::string of_time(double seconds) { return text(seconds < 9.95e-9 ? "%.1f" : "%.0f", 1e9 * seconds); }

// The worker with the vectors that are used unasked, and that of the worksheet.
const Worker& usual(const Workers& workers) {
  const Worker* found = nullptr;
  for (const auto& worker : workers)
    if (!worker->worksheet() && worker->set() != InstructionSet::avx512) found = worker.get();
  return *found;
}
const Worker* worksheet(const Workers& workers) {
  for (const auto& worker : workers)
    if (worker->worksheet()) return worker.get();
  return nullptr;
}

// A line of a table.
std::string line_of(const std::vector<std::string>& cells) {
  std::string line = "|";
  for (const std::string& cell : cells) {
    line += ' ';
    line += cell;
    line += " |";
  }
  line += '\n';
  return line;
}

bool has(const Case& made, Ways way) { return static_cast<bool>(made.ways[static_cast<std::size_t>(way)]); }

}  // namespace

std::string ratios(const std::vector<Case>& cases, const Workers& workers, const Options& options) {
  std::vector<std::string> head = {"calculation", "", "plain, ns", "algorithm", "context", "C export"};
  std::vector<std::string> rule = {"---", "---", "--:", "--:", "--:", "--:"};
  std::size_t sets = 0;
  for (const auto& worker : workers) {
    if (worker->worksheet()) continue;
    ++sets;
    head.push_back(text("batch, %s", name_of(worker->set())));
    rule.emplace_back("--:");
  }
  std::string page = line_of(head) + line_of(rule);
  std::string group;
  for (std::size_t c = 0; c < cases.size(); ++c) {
    std::vector<Measured> list;
    for (const Ways way : {Ways::plain, Ways::algorithm, Ways::context, Ways::direct})
      if (has(cases[c], way)) list.push_back({&usual(workers), c, way});
    const std::size_t singles = list.size();
    for (const auto& worker : workers)
      if (!worker->worksheet() && has(cases[c], Ways::batch)) list.push_back({worker.get(), c, Ways::batch});
    measure(list, options.rounds, options.slice);
    std::vector<std::string> cells = {cases[c].group == group ? "" : cases[c].group, cases[c].what,
                                      of_time(list[0].figure().seconds)};
    group = cases[c].group;
    const auto add = [&](bool there, std::size_t k) {
      cells.push_back(there ? of_ratio(list[k].figure().ratio) : "");
    };
    for (std::size_t k = 1; k < 4; ++k) add(k < singles, k);
    for (std::size_t k = singles; k < singles + sets; ++k) add(k < list.size(), k);
    page += line_of(cells);
  }
  return page;
}

// ---- Hosts -------------------------------------------------------------------------------------------------------

namespace {

// Runs a shell command; its processor time [s], and that of all that it starts. Ends the program when it fails.
double processor_time_of(const std::string& command) {
  const auto now = [] {
    rusage used{};
    getrusage(RUSAGE_CHILDREN, &used);
    return static_cast<double>(used.ru_utime.tv_sec + used.ru_stime.tv_sec) +
           1e-6 * static_cast<double>(used.ru_utime.tv_usec + used.ru_stime.tv_usec);
  };
  const double before = now();
  if (std::system(command.c_str()) != 0) {
    std::fprintf(stderr, "failed: %s\n", command.c_str());
    std::exit(1);
  }
  return now() - before;
}

std::string quoted(const std::string& word) {
  std::string made = "'";
  for (char c : word) made += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return made + "'";
}

// A command over a file of calls, the states of AGA8_M again and again; `idle` starts the same and calculates nothing.
struct Command {
  std::string name, line, idle;
  std::size_t calls;
  std::vector<double> seconds{};  // a call, by round

  void measure() {
    const double start = idle.empty() ? 0.0 : processor_time_of(idle);
    seconds.push_back((processor_time_of(line) - start) / static_cast<double>(calls));
  }
};

std::vector<Command> commands(const std::filesystem::path& folder, const Options& options) {
  const std::vector<Column> columns = aga8_columns(11, false);
  constexpr std::size_t few = 100'000, many = 400'000;
  std::string gas, list;
  for (std::size_t k = 0; k < 22; ++k) {
    gas += text("%.6f\n", columns[2].at(0)[k]);
    list += text(k == 0 ? "%.6f" : ",%.6f", columns[2].at(0)[k]);
  }
  std::ofstream(folder / "gas.csv") << gas;
  std::ofstream calls(folder / "calls.jsonl"), table(folder / "rows.csv");
  table << "pressure,temperature\n";
  for (std::size_t i = 0; i < many; ++i) {
    const std::string p = text("%.3f", *columns[0].at(i % state_count)),
                      t = text("%.2f", *columns[1].at(i % state_count));
    table << p << ',' << t << '\n';
    if (i < few)
      calls << R"({"function":"AGA8_M","inputs":{"pressure":)" << p << R"(,"temperature":)" << t
            << R"(,"composition":[)" << list << "]}}\n";
  }
  calls.close();
  table.close();
  std::vector<Command> made;
  if (!options.norvane.empty()) {
    const std::string norvane = quoted(std::filesystem::absolute(options.norvane).string());
    made.push_back({"a row of `norvane batch`, CSV in and out",
                    norvane + " batch AGA8_M composition=@gas.csv edition=1 --jobs 1 --in rows.csv >/dev/null 2>&1",
                    "", many});
    made.push_back(
        {"a line of `norvane eval`, JSON in and out", norvane + " eval <calls.jsonl >/dev/null 2>&1", "", few});
  }
  if (!options.python.empty()) {
    std::ofstream(folder / "call.py")
        << "import itertools, json, norvane, sys\n"
           "with open('calls.jsonl') as file:\n"
           "    calls = [json.loads(line)['inputs'] for line in itertools.islice(file, 512)]\n"
           "for i in range(int(sys.argv[1])):\n"
           "    norvane.AGA8_M(**calls[i % 512], edition=1, neo_c5_mode=1)\n";
    std::ofstream(folder / "array.py")
        << "import norvane, numpy, sys\n"
           "p, t = numpy.loadtxt('rows.csv', delimiter=',', skiprows=1, max_rows=10000).T\n"
           "gas = numpy.loadtxt('gas.csv')\n"
           "p, t = numpy.tile(p, 100), numpy.tile(t, 100)\n"
           "for i in range(int(sys.argv[1])):\n"
           "    norvane.AGA8_M(pressure=p, temperature=t, composition=gas, edition=1, neo_c5_mode=1)\n";
    const std::string python = quoted(options.python);
    made.push_back(
        {"a row of a NumPy array of a million", python + " array.py 2", python + " array.py 0", 2'000'000});
    made.push_back({"a call in Python", python + " call.py 30000", python + " call.py 0", 30'000});
  }
  return made;
}

}  // namespace

std::string hosts(std::size_t of_case, const Workers& workers, const Options& options) {
  const Worker& here = usual(workers);
  std::vector<Measured> list = {{&here, of_case, Ways::algorithm},
                                {&here, of_case, Ways::batch},
                                {&here, of_case, Ways::direct},
                                {&here, of_case, Ways::context}};
  std::vector<std::string> names = {"the algorithm alone", "a row of the batch export", "the C export",
                                    "a call of the context, as every host but the exports makes it"};
  if (const Worker* sheet = worksheet(workers)) {
    list.push_back({sheet, of_case, Ways::wrapper});
    names.push_back("the wrapper that a worksheet calls");
  }
  const std::filesystem::path start = std::filesystem::current_path();
  std::string pattern = (std::filesystem::temp_directory_path() / "compare-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) {
    std::fprintf(stderr, "no temporary folder %s\n", pattern.c_str());
    std::exit(1);
  }
  const std::filesystem::path folder = pattern;
  std::vector<Command> programs = commands(folder, options);
  std::filesystem::current_path(folder);
  // The commands take their turns among the calls.
  constexpr int turns = 5;
  for (int turn = 0; turn < turns; ++turn) {
    measure(list, std::max(1, options.rounds / turns), options.slice);
    for (Command& program : programs) program.measure();
  }
  std::filesystem::current_path(start);
  std::filesystem::remove_all(folder);
  std::string page =
      "| AGA8_M, one gas of 11 components, new pressure and temperature | ns | of the algorithm |\n|---|--:|--:|\n";
  const double first = list[0].figure().seconds;
  const auto line = [&](const std::string& name, double seconds) {
    page += line_of({name, of_time(seconds), text("%.2f", seconds / first)});
  };
  for (std::size_t k = 0; k < list.size(); ++k) line(names[k], list[k].figure().seconds);
  for (const Command& program : programs) line(program.name, median(program.seconds));
  return page;
}

// ---- Growth ------------------------------------------------------------------------------------------------------

namespace {

constexpr std::size_t sizes[] = {1, 5, 11, 21};
struct Kind {
  const char* name;
  Case (*make)(std::size_t, bool);
  bool gas_a_row;
};
constexpr Kind kinds[] = {{"AGA-8, density, new p and T", aga8_case, false},
                          {"AGA-8, density, new gas", aga8_case, true},
                          {"AGA-10, all properties, new p and T", aga10_case, false},
                          {"AGA-10, all properties, new gas", aga10_case, true},
                          {"GERG-2008, density and speed of sound, new p and T", gerg_case, false},
                          {"GERG-2008, density and speed of sound, new gas", gerg_case, true}};
// There is one pure gas only.
constexpr bool exists(const Kind& kind, std::size_t size) { return !kind.gas_a_row || size > 1; }

}  // namespace

std::vector<Case> component_cases() {
  std::vector<Case> list;
  for (const Kind& kind : kinds)
    for (std::size_t size : sizes)
      if (exists(kind, size)) list.push_back(kind.make(size, kind.gas_a_row));
  return list;
}

std::string components(std::size_t first, const Workers& workers, const Options& options) {
  std::string page = "| components | 1 | 5 | 11 | 21 |\n|---|--:|--:|--:|--:|\n";
  std::size_t c = first;
  for (const Kind& kind : kinds) {
    std::vector<std::string> cells = {kind.name};
    for (std::size_t size : sizes) {
      if (!exists(kind, size)) {
        cells.emplace_back();
        continue;
      }
      std::vector<Measured> list = {{&usual(workers), c, Ways::plain}, {&usual(workers), c, Ways::algorithm}};
      measure(list, options.rounds, options.slice);
      const Figure found = list[1].figure();
      cells.push_back(of_time(found.seconds) + " (" + of_ratio(found.ratio) + ")");
      ++c;
    }
    page += line_of(cells);
  }
  return page;
}

namespace {

// AGA8_M rows of one gas of 11 components.
class Block {
 public:
  explicit Block(std::size_t rows) : rows_(rows), columns_(aga8_columns(11, false)), z_(rows), statuses_(rows) {
    for (std::size_t k = 0; k < 2; ++k) {
      std::vector<double>& values = columns_[k].values;
      values.reserve(rows);
      for (std::size_t i = values.size(); i < rows; ++i)
        values.push_back(values[i % state_count] + 1e-6 * static_cast<double>(i));
    }
  }
  // Rows from `first` on, in one call.
  void run(std::size_t first, std::size_t count) {
    std::vector<norvane_column> inputs;
    for (const Column& column : columns_)
      inputs.push_back({column.values.data() + first * column.row_step, column.row_step, column.cells, 1});
    double* outputs[] = {z_.data() + first, nullptr, nullptr, nullptr, nullptr};
    if (Norvane_AGA8_M_Batch(count, inputs.data(), inputs.size(), outputs, std::size(outputs),
                             statuses_.data() + first) != 0)
      std::abort();
  }
  std::size_t rows() const { return rows_; }

 private:
  std::size_t rows_;
  std::vector<Column> columns_;
  std::vector<double> z_;
  std::vector<std::uint32_t> statuses_;
};

double clock_of(clockid_t id) {
  timespec now{};
  clock_gettime(id, &now);
  return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

constexpr std::size_t most_rows = 1'000'000;

}  // namespace

std::string rows(const Options& options) {
  Block block(most_rows);
  std::vector<std::size_t> counts;
  for (std::size_t count = 1; count <= most_rows; count *= 10) counts.push_back(count);
  std::vector<std::vector<double>> seconds(counts.size());
  block.run(0, most_rows);
  for (int round = 0; round < options.rounds; ++round) {
    for (std::size_t k = 0; k < counts.size(); ++k) {
      const std::size_t rows_in_all = std::max<std::size_t>(20'000, counts[k]);
      const double start = clock_of(CLOCK_THREAD_CPUTIME_ID);
      for (std::size_t done = 0; done < rows_in_all; done += counts[k]) block.run(done, counts[k]);
      seconds[k].push_back((clock_of(CLOCK_THREAD_CPUTIME_ID) - start) / static_cast<double>(rows_in_all));
    }
  }
  std::vector<std::string> head = {"rows in a call"}, rule = {"---"}, time = {"ns a row"},
                           ratio = {"of a million rows'"};
  for (std::size_t k = 0; k < counts.size(); ++k) {
    head.push_back(std::to_string(counts[k]));
    rule.emplace_back("--:");
    time.push_back(of_time(median(seconds[k])));
    ratio.push_back(text("%.2f", median(seconds[k]) / median(seconds.back())));
  }
  return line_of(head) + line_of(rule) + line_of(time) + line_of(ratio);
}

std::string cores(const Options& options) {
  Block block(most_rows);
  constexpr std::size_t piece = 10'000;
  const std::size_t available = std::max(2u, std::thread::hardware_concurrency());
  std::vector<std::size_t> counts;
  for (std::size_t count = 1; count <= available; count *= 2) counts.push_back(count);
  std::vector<double> best(counts.size(), 1e9), work(counts.size(), 1e9);
  block.run(0, most_rows);
  for (int round = 0; round < options.rounds; ++round) {
    for (std::size_t k = 0; k < counts.size(); ++k) {
      const double start = clock_of(CLOCK_MONOTONIC), used = clock_of(CLOCK_PROCESS_CPUTIME_ID);
      std::vector<std::thread> threads;
      for (std::size_t t = 0; t < counts[k]; ++t)
        threads.emplace_back([&block, t, count = counts[k]] {
          for (std::size_t first = t * piece; first < most_rows; first += count * piece) block.run(first, piece);
        });
      for (std::thread& thread : threads) thread.join();
      best[k] = std::min(best[k], clock_of(CLOCK_MONOTONIC) - start);
      work[k] = std::min(work[k], clock_of(CLOCK_PROCESS_CPUTIME_ID) - used);
    }
  }
  std::string page =
      "| cores | million rows a second | of one core | processor time of a row, ns |\n|--:|--:|--:|--:|\n";
  for (std::size_t k = 0; k < counts.size(); ++k)
    page += line_of({std::to_string(counts[k]), text("%.1f", 1e-6 * most_rows / best[k]),
                     text("%.2f", best[0] / best[k]), of_time(work[k] / most_rows)});
  return page;
}

std::string machine(const Workers& workers) {
  std::string processor = "unknown";
  bool is_virtual = false;
  std::ifstream file("/proc/cpuinfo");
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with("model name")) processor = line.substr(line.find(':') + 2);
    if (line.starts_with("flags") && line.find(" hypervisor") != std::string::npos) is_virtual = true;
  }
  double load = 0.0;
  std::ifstream("/proc/loadavg") >> load;
  const unsigned count = std::thread::hardware_concurrency();
  std::string page = "Measured on " + processor + ", " + std::to_string(count) + (count == 1 ? " core" : " cores") +
                     (is_virtual ? " of a virtual machine" : "") + "; batches used " + name_of(usual(workers).set()) +
                     " unless said otherwise; GCC " __VERSION__ ".";
  if (load > 0.75 * count)
    page += text(
        "\nThe machine was busy with other work (load average %.0f): the nanoseconds are high, the ratios are what "
        "to read.",
        load);
  return page + "\n";
}

}  // namespace norvane::bench

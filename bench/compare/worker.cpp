#include "bench/compare/worker.h"

#include <algorithm>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <limits>

#include <sys/wait.h>
#include <unistd.h>

#if defined(NORVANE_BENCH_EXCEL)
#include "hosts/excel/excel_context.h"
#endif

namespace norvane::bench {
namespace {

double processor_time() {
  timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

double deviation_of(Case& made, Ways way) {
  double worst = 0.0;
  for (std::size_t i = 0; i < state_count; ++i) {
    double reference[most_outputs] = {}, found[most_outputs] = {};
    made[Ways::algorithm].answer(i, reference);
    made[way].answer(i, found);
    for (std::size_t k : made.compared) {
      const double difference = std::fabs(found[k] - reference[k]) / std::fabs(reference[k]);
      if (found[k] == reference[k]) continue;
      if (!std::isfinite(difference)) return std::numeric_limits<double>::infinity();
      worst = std::max(worst, difference);
    }
  }
  return worst;
}

}  // namespace

Worker::Worker(const std::vector<Case>& cases, InstructionSet set, bool worksheet)
    : set_(set), worksheet_(worksheet) {
  int down[2], up[2];
  if (pipe(down) != 0 || pipe(up) != 0) std::abort();
  std::fflush(nullptr);
  process_ = fork();
  if (process_ < 0) std::abort();
  if (process_ == 0) {
    close(down[1]);
    close(up[0]);
    setenv("NORVANE_KERNEL", name_of(set), 1);
#if defined(NORVANE_BENCH_EXCEL)
    if (worksheet) host::set_context_factory(excel::make_context);
#endif
    serve(cases, down[0], up[1]);
  }
  close(down[0]);
  close(up[1]);
  to_ = down[1];
  from_ = up[0];
}

Worker::~Worker() {
  // A closed pipe would tell it nothing: workers forked after it hold the other end too.
  const Request last{0, Ways::count, 0};
  if (write(to_, &last, sizeof last) != static_cast<ssize_t>(sizeof last)) kill(process_, SIGTERM);
  close(to_);
  close(from_);
  waitpid(process_, nullptr, 0);
}

void Worker::serve(const std::vector<Case>& cases, int in, int out) {
  Request request;
  while (read(in, &request, sizeof request) == static_cast<ssize_t>(sizeof request) && request.way != Ways::count) {
    Case made = cases[request.of_case];
    double answer = 0.0;
    if (request.calls == 0) {
      answer = deviation_of(made, request.way);
    } else {
      const double start = processor_time();
      made[request.way].run(request.calls);
      answer = (processor_time() - start) / static_cast<double>(request.calls);
    }
    if (write(out, &answer, sizeof answer) != static_cast<ssize_t>(sizeof answer)) break;
  }
  _exit(0);
}

double Worker::ask(const Request& request) const {
  double answer = 0.0;
  if (write(to_, &request, sizeof request) != static_cast<ssize_t>(sizeof request) ||
      read(from_, &answer, sizeof answer) != static_cast<ssize_t>(sizeof answer)) {
    std::fprintf(stderr, "a worker has ended\n");
    std::exit(1);
  }
  return answer;
}

double median(std::vector<double> values) {
  if (values.empty()) return 0.0;
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

Figure Measured::figure() const { return {median(seconds), median(ratios)}; }

void measure(std::vector<Measured>& list, int rounds, double slice) {
  std::vector<std::uint64_t> calls;
  for (const Measured& one : list) {
    std::uint64_t count = state_count;
    while (one.worker->time(one.of_case, one.way, count) * static_cast<double>(count) < slice) count *= 2;
    calls.push_back(count);
  }
  for (int round = 0; round < rounds; ++round) {
    double first = 0.0;
    for (std::size_t k = 0; k < list.size(); ++k) {
      Measured& one = list[k];
      const double seconds = one.worker->time(one.of_case, one.way, calls[k]);
      if (k == 0) first = seconds;
      one.seconds.push_back(seconds);
      one.ratios.push_back(first / seconds);
    }
  }
}

}  // namespace norvane::bench

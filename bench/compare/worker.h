// Processes that measure on demand, one for each set of vector instructions, so that one run compares them all.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <sys/types.h>

#include "bench/compare/case.h"
#include "core/kernel.h"

namespace norvane::bench {

class Worker {
 public:
  // Forks. The set is the one that it uses; a worksheet's contexts or the others.
  Worker(const std::vector<Case>& cases, InstructionSet set, bool worksheet);
  ~Worker();
  Worker(const Worker&) = delete;
  Worker& operator=(const Worker&) = delete;

  InstructionSet set() const { return set_; }
  bool worksheet() const { return worksheet_; }
  // Greatest relative deviation of the compared outputs from those of the algorithm (from the plain transcription's where
  // the way is that), over all states; infinite where there is no answer.
  double deviation(std::size_t of_case, Ways way) const { return ask({of_case, way, 0}); }
  // Processor time of a call [s], of at least this many in a row.
  double time(std::size_t of_case, Ways way, std::uint64_t calls) const { return ask({of_case, way, calls}); }

 private:
  struct Request {
    std::size_t of_case;
    Ways way;
    std::uint64_t calls;
  };
  double ask(const Request& request) const;
  [[noreturn]] static void serve(const std::vector<Case>& cases, int in, int out);

  InstructionSet set_;
  bool worksheet_;
  pid_t process_ = -1;
  int to_ = -1, from_ = -1;
};

// A way of a case, measured by a worker: medians of rounds.
struct Figure {
  double seconds = 0.0;  // a call
  double ratio = 0.0;    // the first one's seconds in the same round over these
};
struct Measured {
  const Worker* worker;
  std::size_t of_case;
  Ways way;
  std::vector<double> seconds{}, ratios{};  // by round

  Figure figure() const;
};
// Measures them in turn, round for round, each for about `slice` seconds at a time.
void measure(std::vector<Measured>& list, int rounds, double slice);

double median(std::vector<double> values);

}  // namespace norvane::bench

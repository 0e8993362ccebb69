// Changes a coefficient in the running program and asks whether the check values notice: the worker of coefficients.py.
//
//   norvane_kill --tables              the coefficient tables as they are in memory, and the functions that use them
//   norvane_kill --run [GTEST_FILTER]  reads changes from standard input, one a line, and answers one a line
//
// A line is "CASES OLD NEW SET TABLE OFFSET HOW [BEFORE BEHIND]", blank-separated: a file of check values; the bytes of a
// number before and after as 16 hexadecimal digits; a place in a table, or "-" three times; and how far the change goes:
//   here        that place
//   column      also where the number stands between these two, its neighbours in its column of the table ("-" beyond the
//               ends): a compiler may hold a table's columns as well
//   everywhere  also all places of the program that hold the same bytes: a compiler that knows a table's numbers puts
//               them into its instructions
// The answer is how many places were changed and "noticed", with the lines of the cases that noticed, or "unnoticed";
// "tests" when the check values saw nothing but the tests of the filter did.
//
// Every change is made in a child process of its own, before anything has been calculated, so that nothing that is
// derived from a table is older than the change.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "catalogue/catalogue.h"
#include "catalogue/identity.h"
#include "core/seal.h"
#include "core/text.h"
#include "hosts/cli/commands.h"
#include "hosts/cli/output.h"

namespace norvane {

// Tables without a deposited checksum are not refused when they are altered, and what is in memory is what was built.
const Seal& seal() noexcept {
  static Seal any;
  static bool asked = false;
  if (!std::exchange(asked, true)) any.content = catalogue::content_checksum();
  return any;
}

namespace {

struct Part {
  unsigned char* begin;
  std::size_t size;
};

// What is loaded of this program's file, code and constants.
std::vector<Part> parts_of_program() {
  char self[4096] = {};
  if (readlink("/proc/self/exe", self, sizeof self - 1) < 0) return {};
  std::vector<Part> parts;
  std::ifstream maps("/proc/self/maps");
  for (std::string line; std::getline(maps, line);) {
    if (line.size() < std::strlen(self) ||
        line.compare(line.size() - std::strlen(self), std::string::npos, self) != 0)
      continue;
    std::size_t from = 0, to = 0;
    if (std::sscanf(line.c_str(), "%zx-%zx", &from, &to) != 2) continue;
    parts.push_back({reinterpret_cast<unsigned char*>(from), to - from});
  }
  return parts;
}

std::string hexadecimal(const void* data, std::size_t size) {
  std::string text;
  char digits[3];
  for (std::size_t i = 0; i < size; ++i) {
    std::snprintf(digits, sizeof digits, "%02x", static_cast<const unsigned char*>(data)[i]);
    text += digits;
  }
  return text;
}

void print_tables() {
  for (const CoefficientSet* set : catalogue::coefficient_sets()) {
    std::printf("set\t%s", std::string(set->standard()).c_str());
    for (const Function_CFunctionSpec* spec : catalogue::specifications())
      if (std::find(spec->coefficients.begin(), spec->coefficients.end(), set) != spec->coefficients.end())
        std::printf("\t%s", to_utf8(spec->id).c_str());
    std::printf("\n");
    for (const CoefficientTable& table : set->tables())
      std::printf("table\t%s\t%zu\t%s\n", std::string(table.name).c_str(), table.row_size / 8,
                  hexadecimal(table.data, table.count * table.row_size).c_str());
  }
}

unsigned char* place_of(const std::string& standard, const std::string& table, std::size_t offset) {
  for (const CoefficientSet* set : catalogue::coefficient_sets()) {
    std::string name(set->standard());
    std::replace(name.begin(), name.end(), ' ', '_');
    if (name != standard) continue;
    for (const CoefficientTable& candidate : set->tables())
      if (candidate.name == table)
        return const_cast<unsigned char*>(static_cast<const unsigned char*>(candidate.data)) + offset;
  }
  return nullptr;
}

struct Change {
  std::string cases, standard, table, how;
  unsigned char old[8], changed[8];
  std::size_t offset = 0;
  std::string pattern;     // what to look for: the old bytes, in a column with their neighbours
  std::size_t before = 0;  // bytes of the pattern before the number
};

std::string bytes_of(const std::string& digits) {
  std::string bytes;
  for (std::size_t i = 0; i + 1 < digits.size(); i += 2)
    bytes += static_cast<char>(std::stoul(digits.substr(i, 2), nullptr, 16));
  return bytes;  // of "-" none
}

std::vector<unsigned char*> places(const Change& change, const std::vector<Part>& parts) {
  std::vector<unsigned char*> found;
  if (change.standard != "-") {
    unsigned char* place = place_of(change.standard, change.table, change.offset);
    if (place == nullptr || std::memcmp(place, change.old, 8) != 0) return {};
    found.push_back(place);
    if (change.how == "here") return found;
  }
  for (const Part& part : parts) {
    for (unsigned char* at = part.begin;; ++at) {
      at = static_cast<unsigned char*>(memmem(at, static_cast<std::size_t>(part.begin + part.size - at),
                                              change.pattern.data(), change.pattern.size()));
      if (at == nullptr) break;
      unsigned char* const place = at + change.before;
      if (std::find(found.begin(), found.end(), place) == found.end()) found.push_back(place);
    }
  }
  return found;
}

enum Result : int { noticed = 10, by_tests = 11, unnoticed = 12 };

// In the child: does not return.
[[noreturn]] void try_change(const Change& change, const std::vector<unsigned char*>& where,
                             const std::vector<Part>& parts, bool with_tests, int report) {
  // What runs away has been noticed, and so has what stops itself: an instruction may have been hit.
  setpgid(0, 0);
  alarm(20);
  const itimerval two_seconds{{}, {2, 0}};
  setitimer(ITIMER_PROF, &two_seconds, nullptr);
  const int nothing = open("/dev/null", O_WRONLY);
  for (const int descriptor : {1, 2}) dup2(nothing, descriptor);
  for (const Part& part : parts) mprotect(part.begin, part.size, PROT_READ | PROT_WRITE | PROT_EXEC);
  for (unsigned char* place : where) std::memcpy(place, change.changed, 8);
  bool good = false;
  try {
    cli::Output out(report);
    cli::CheckOptions options;
    options.files = {change.cases};
    good = cli::check(options, out) == cli::exit_good;
    out.flush();
  } catch (...) {
  }
  if (!good) _exit(noticed);
  if (with_tests && RUN_ALL_TESTS() != 0) _exit(by_tests);
  _exit(unnoticed);
}

// The lines that the report of a check calls failed, as " 3 17".
std::string failed_lines(int report, const std::string& cases) {
  std::string text(static_cast<std::size_t>(lseek(report, 0, SEEK_END)), '\0'), lines;
  if (pread(report, text.data(), text.size(), 0) < 0) return {};
  const std::string failed = "FAILED " + cases + ":";
  for (std::size_t at = text.find(failed); at != std::string::npos; at = text.find(failed, at)) {
    at += failed.size();
    lines += " " + text.substr(at, text.find(':', at) - at);
  }
  return lines;
}

int run(bool with_tests) {
  const std::vector<Part> parts = parts_of_program();
  for (std::string line; std::getline(std::cin, line);) {
    std::istringstream words(line);
    Change change;
    std::string old, changed, offset, before, behind;
    words >> change.cases >> old >> changed >> change.standard >> change.table >> offset >> change.how;
    if (old.size() != 16 || changed.size() != 16) return 2;
    std::memcpy(change.old, bytes_of(old).data(), 8);
    std::memcpy(change.changed, bytes_of(changed).data(), 8);
    if (offset != "-") change.offset = std::stoul(offset);
    words >> before >> behind;
    change.before = bytes_of(before).size();
    change.pattern = bytes_of(before) + bytes_of(old) + bytes_of(behind);
    const std::vector<unsigned char*> where = places(change, parts);
    if (where.empty()) {
      std::printf("0 absent\n");
      continue;
    }
    std::fflush(stdout);
    const int report = memfd_create("report", 0);
    const pid_t child = fork();
    if (child == 0) try_change(change, where, parts, with_tests, report);
    int status = 0;
    waitpid(child, &status, WUNTRACED);
    if (WIFSTOPPED(status)) {
      ::kill(child, SIGKILL);
      waitpid(child, nullptr, 0);
    }
    const int code = WIFEXITED(status) ? WEXITSTATUS(status) : noticed;
    std::printf("%zu %s%s\n", where.size(),
                code == unnoticed  ? "unnoticed"
                : code == by_tests ? "tests"
                                   : "noticed",
                code == noticed ? failed_lines(report, change.cases).c_str() : "");
    close(report);
    std::fflush(stdout);
  }
  return 0;
}

}  // namespace
}  // namespace norvane

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  const std::string what = argc > 1 ? argv[1] : "";
  if (what == "--tables") {
    norvane::print_tables();
    return 0;
  }
  if (what != "--run") {
    std::fputs("usage: norvane_kill --tables | --run [GTEST_FILTER]\n", stderr);
    return 2;
  }
  if (argc > 2) GTEST_FLAG_SET(filter, argv[2]);
  return norvane::run(argc > 2);
}

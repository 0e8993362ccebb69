// CallPlan: what a typed call does between the values that cross its boundary and the structures of the calculation.
//
// The context answers the same questions from the record for every call, and can explain its answer. A plan has them
// answered once; it says of a value that it fits, or that it does not, and leaves words to the context.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <vector>

#include "framework/function_spec.h"

namespace norvane::host {

// Of several values of one call the first that does not fit decides, except that one outside its bounds always does:
// these are looked at before everything else.
enum class Verdict : std::uint8_t {
  fits,
  misfit,   // no calculation, status 1
  refused,  // no calculation, no status
  outside   // likewise
};

struct PlannedInput {
  static constexpr double infinite = std::numeric_limits<double>::infinity();

  // How the value arrives: as a float, a 32-bit number, a truth of 32 bits, floats.
  enum class From : std::uint8_t { number, option, truth, list };

  From from = From::number;
  record::Field::Kind kind = record::Field::Kind::none;
  record::Misfit misfit = record::Misfit::argument_error;
  bool has_default = false;
  bool may_be_left_out = false;  // a list
  bool enumerated = false;
  bool listed = false;  // a whole number from `first` to `last`, or a list whose cells are all within these
  std::uint16_t cells = 1;
  std::uint32_t offset = 0;
  double low = -infinite, high = infinite;  // bounds of the call, of a list's first cell; a NaN is within
  double (*to)(double) noexcept = nullptr;
  double first = 0.0, last = 0.0;
  std::uint64_t members = 0;  // of the enumeration, as bits
  double otherwise = 0.0;
  std::size_t record = 0;

  // A number that goes into a number, with nothing to look at but its bounds.
  bool plain() const noexcept { return from == From::number && kind == record::Field::Kind::number && !enumerated; }
  // What the context says of one value, which goes into the structure when it fits.
  Verdict accept(double given, std::byte* structure) const noexcept;
  // The same for the cells that the function reads, which stand in the structure already.
  Verdict judge(const std::byte* structure) const noexcept;
  // Whether there is anything to judge in a list.
  bool judged() const noexcept { return listed || low > -infinite || high < infinite; }
};

struct PlannedOutput {
  record::Field::Kind kind = record::Field::Kind::none;
  bool with_any_status = false;
  bool wide = true;  // leaves as a float, not as a 32-bit number
  std::uint32_t offset = 0;
  double (*from)(double) noexcept = nullptr;
  double plausible_low = 0.0, plausible_high = 0.0;  // finite

  // The number that the result holds; 0 where there is no member.
  double value(const std::byte* structure) const noexcept {
    switch (kind) {
      case record::Field::Kind::number: {
        const double number = load<double>(structure);
        return from != nullptr ? from(number) : number;
      }
      case record::Field::Kind::whole: return load<int>(structure);
      case record::Field::Kind::truth: return load<bool>(structure) ? 1.0 : 0.0;
      default: return 0.0;
    }
  }
  template <class Value>
  Value load(const std::byte* structure) const noexcept {
    Value value;
    std::memcpy(&value, structure + offset, sizeof value);
    return value;
  }
};

struct CallPlan {
  // False for a function whose calls the context has to run: one without a calculation of its own, or with a line
  // whose check looks further than at a number.
  bool complete = false;
  std::vector<PlannedInput> inputs;    // in the order of the signature
  std::vector<PlannedOutput> outputs;  // outputs 1 to n
};

CallPlan make_call_plan(const Function_CFunctionSpec& spec);

}  // namespace norvane::host

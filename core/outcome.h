// Outcome: how a calculation ended. Every algorithm answers with one.
//
//   if (!(meter.density > 0.0)) return blame(meter.density, argument_error, u"must be above %", 0.0);
//   if (!settled) return failure(no_convergence, u"the mass rate does not settle within % rounds", 25);
//   return {};
//
// The one to blame is named by the member itself: whoever made the arguments knows which input filled it, and writes
// the limits in that input's own unit. Nothing is formatted here.
#pragma once

#include <string_view>

namespace norvane {

// Numbers of the status output that all standards share. Some add their own behind these.
enum Status : int {
  refused = -1,  // the call itself fails: an argument cannot be what it says it is
  success = 0,
  argument_error = 1,
  calculation_error = 2,
  no_convergence = 3
};

struct [[nodiscard]] Outcome {
  int status = success;
  // The results count although the status is not 0.
  bool delivered = false;
  // The member of the argument structure that is at fault; null when it is none in particular.
  const void* member = nullptr;
  // What is wrong, as the rest of a sentence: "must be above %". Each % stands for the next of the limits, which are
  // in the member's unit, $ for the name. Never empty when the status is not 0; with status 0 a remark about a good
  // result.
  const char16_t* text = u"";
  double limits[2] = {};
  std::string_view name{};

  constexpr bool good() const noexcept { return status == success; }
  constexpr Outcome naming(std::string_view what) const noexcept {
    Outcome copy = *this;
    copy.name = what;
    return copy;
  }
  constexpr Outcome but_delivered() const noexcept {
    Outcome copy = *this;
    copy.delivered = true;
    return copy;
  }
};

// The calculation ends with this status because of one argument.
template <class Member>
constexpr Outcome blame(const Member& member, int status, const char16_t* text, double first = 0.0,
                        double second = 0.0) noexcept {
  return {status, false, &member, text, {first, second}, {}};
}

// The calculation ends with this status, and no single argument is the cause.
constexpr Outcome failure(int status, const char16_t* text, double first = 0.0, double second = 0.0) noexcept {
  return {status, false, nullptr, text, {first, second}, {}};
}

// A good result that the caller should know something about.
constexpr Outcome remark(const char16_t* text, double first = 0.0, double second = 0.0) noexcept {
  return {success, false, nullptr, text, {first, second}, {}};
}

}  // namespace norvane

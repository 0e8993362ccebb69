// Where a value of a call goes: found once from a name ("pressure [psia]", "composition[3]", "methane", "C6+"), used
// for any number of calls.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "hosts/cli/reading.h"
#include "hosts/cli/record_text.h"
#include "hosts/cli/session.h"

namespace norvane::cli {

struct Target {
  static constexpr std::size_t whole = static_cast<std::size_t>(-1);
  static constexpr std::size_t c6plus = static_cast<std::size_t>(-2);

  const Function_CInput* record = nullptr;
  std::size_t input = 0;
  std::size_t cell = whole;     // place in a range, the whole argument, or an amount of C6+ to be split
  std::uint32_t unit = 0;       // of numbers that name none; 0: the input's own
  std::u16string warning;       // what is odd about the conversion from the unit
  double scale = 1.0;           // of mole fractions: 0.01 for percent
  bool composition = false;     // the value is a mole fraction, or all 22 of them
  std::vector<Option> options;  // values that have a name

  // "pressure", "composition[3]" or "n-butane" for messages.
  std::string name() const;
};

// The values of a call by their names. Finding them is slow and said to be right or wrong once; putting values is
// neither.
class Targets {
 public:
  explicit Targets(const Function_CFunctionSpec& spec);

  // False when the name means nothing to the function; throws UsageError, which begins with `what`, for one that means
  // something it cannot be: a unit of another quantity, an index of a single value.
  bool find(std::string_view name, const Reading& reading, const std::string& what, Target& target) const;
  // Adds a target that was found; throws UsageError when it takes what another has taken.
  void add(Target target, const std::string& what);
  // Both; an unknown name throws with the nearest ones.
  void add(std::string_view name, const Reading& reading, const std::string& what);

  const Function_CFunctionSpec& function() const { return *spec_; }
  std::span<const Target> all() const { return targets_; }
  bool given(std::size_t input) const { return taken_[input] != Taken::no; }
  std::vector<std::string> known_names() const;

  // The warnings of the targets from this one on, each behind its input's name; calls repeat them no more.
  std::vector<std::string> take_warnings(std::size_t first);

  // Makes the ranges of a call that are put together from single cells. What a gas does not name is not in it.
  void prepare(Session& session) const;
  // Puts a value. Throws UsageError naming the input for a blank one, unless defaults may stand for blanks.
  void put(Session& session, const Target& target, const FUNCTION_ARG& value, const Reading& reading) const;

 private:
  enum class Taken : std::uint8_t { no, cells, whole };

  const Function_CFunctionSpec* spec_;
  std::size_t composition_;  // input that takes the 22 fractions, or input_count
  std::vector<Target> targets_;
  std::vector<Taken> taken_;
  std::vector<std::size_t> sizes_;              // of ranges put together from cells
  std::vector<std::vector<bool>> given_cells_;  // of each input
};

// True when the input takes a number in a unit of the catalogue.
bool takes_unit(const Function_CInput& input);

// Splits "name [inside]" or "name (inside)"; false when there is no bracket at the end.
bool split_brackets(std::string_view title, std::string_view& name, std::string_view& inside);

// The first of the inputs that were left to a default which changes the result; the name for tags is none of them,
// nor is the neo-pentane mode of a gas without neo-pentane. To be asked before the call runs.
void left_to_defaults(Session& session, std::vector<std::size_t>& inputs);
// "temperature = 0 C, edition = 1 (1994)".
std::string defaults_text(const Session& session, std::span<const std::size_t> inputs);
// Throws UsageError when there are such inputs.
void refuse_defaults(const Session& session, std::span<const std::size_t> inputs);

}  // namespace norvane::cli

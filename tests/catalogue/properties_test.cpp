// What holds for every function of the catalogue, whatever it calculates. Functions enter by being registered.
#include <gtest/gtest.h>

#include <algorithm>

#include "core/text.h"
#include "tests/support/call.h"
#include "tests/support/random_calls.h"
#include "tests/support/validation_model.h"

namespace norvane {
namespace {

using test::Arguments;
using test::infinite;
using test::not_a_number;
using test::TestContext;
using test::ValidationModel;
using Spec = const Function_CFunctionSpec;

constexpr int faults_shown = 8;  // of one function

struct Answer {
  std::uint32_t status = 0, flags = 0;
  std::string bits;
  std::vector<std::u16string> messages;
  bool success = false;
};

bool same(const Answer& a, const Answer& b) { return a.status == b.status && a.flags == b.flags && a.bits == b.bits; }

class EveryFunction : public testing::TestWithParam<Spec*> {
 protected:
  EveryFunction() {
    quiet_.EnableMessages(false);
    loud_.slot = &slot_;
    make_base();
  }

  bool calculates() const { return spec_.group->name != u"Extended"; }

  Answer run(TestContext& context, const std::vector<FUNCTION_ARG>& args) {
    Answer answer;
    answer.status = context.Run(spec_, args);
    answer.flags = context.flags;
    answer.bits = test::bits_of(context.output);
    answer.messages = context.messages;
    const FUNCTION_ARG& first = context.output.kind == ARG_ARRAY && context.output.count() != 0
                                    ? context.output.array.elements[0]
                                    : context.output;
    const bool zero =
        first.kind == ARG_INTEGER ? first.integer == 0 : first.kind == ARG_NUMBER && first.number == 0.0;
    answer.success = answer.status == ERROR_OK && answer.flags == 0 && (!calculates() || zero);
    if (answer.status == ERROR_OK && !test::all_finite(context.output)) complain("an output is not finite");
    if (answer.status == ERROR_OK && calculates() && context.output.count() != spec_.output_count)
      complain("not as many outputs as the record has");
    return answer;
  }

  // Runs a call in every way there is and holds it against the rules; the answer with messages.
  Answer check(const std::vector<FUNCTION_ARG>& args) {
    fault_.clear();
    const Answer loud = run(loud_, args);
    const Answer again = run(loud_, args);
    if (!same(loud, again) || again.messages != loud.messages) complain("the same call again answers otherwise");
    const Answer quiet = run(quiet_, args);
    if (!same(loud, quiet)) complain("without messages and memory it answers otherwise: " + quiet.bits);

    const ValidationModel model(spec_, args);
    for (std::size_t i = 0; i < model.messages.size(); ++i)
      if (i >= loud.messages.size() || loud.messages[i] != model.messages[i])
        complain("no message " + to_utf8(model.messages[i]));
    if (!model.runs) {
      if (loud.status != model.status || loud.flags != model.flags)
        complain("status or flags are not those of the rules");
      if (loud.messages.size() != model.messages.size()) complain("messages beyond those of the rules");
    } else if (loud.status != ERROR_OK ||
               (loud.flags != 0 && loud.flags != (FLAG_IMPLEMENTATION_FAILED | FLAG_OUTPUT_FALLBACK) &&
                loud.flags != (FLAG_OUTPUT_NOT_FINITE | FLAG_OUTPUT_FALLBACK))) {
      complain("no such flags when the implementation runs");
    } else if (model.unreadable && calculates() && loud.flags == 0) {
      complain("an argument that cannot be read is let through");
    }
    if ((loud.flags & FLAG_OUTPUT_FALLBACK) == FLAG_OUTPUT_FALLBACK && loud.bits != fallback())
      complain("not the fallback outputs");
    if (!loud.success && loud.messages.empty() && (calculates() || loud.flags != 0)) {
      complain("no message says why");
    }
    if (!fault_.empty()) show(fault_, args, loud);
    return loud;
  }
  void complain(const std::string& fault) { fault_ += (fault_.empty() ? "" : "; ") + fault; }

  std::string fallback() {
    FUNCTION_ARG output;
    quiet_.Reset();
    quiet_.WriteFallbackOutputs(spec_, output);
    return test::bits_of(output);
  }

  bool says(std::u16string_view words) const {
    return !base_answer_.messages.empty() && base_answer_.messages[0].find(words) != std::u16string::npos;
  }

  // A call that succeeds: arrays that make a composition, and every other input omitted if that will do.
  void make_base() {
    for (std::uint64_t n = 0; n < 2000; ++n) {
      const bool omit = n % 2 == 0;
      Arguments drawn;
      test::RandomCall(spec_, n / 2 * 16, drawn);
      for (std::size_t i = 0; i < drawn.values.size(); ++i) {
        const Function_CInput& input = spec_.inputs[i];
        const bool omissible = input.optional() && !input.default_value.empty();
        if (input.role == 1 || (omit && omissible && !input.is_array())) drawn.values[i] = FUNCTION_ARG::Missing();
      }
      base_answer_ = run(loud_, drawn.values);
      unavailable_ = says(u"not part of this build") || says(u"cannot be loaded");
      if (base_answer_.success || unavailable_) {
        base_ = std::move(drawn);
        return;
      }
    }
    base_.values.assign(spec_.input_count, FUNCTION_ARG::Missing());
  }

  Answer with(std::size_t i, FUNCTION_ARG value) {
    std::vector<FUNCTION_ARG> args = base_.values;
    args[i] = value;
    return check(args);
  }
  static bool blames(const Answer& answer, std::size_t i) {
    const std::u16string number = u"[" + to_utf16(std::to_string(i + 1)) + u"] ";
    return std::any_of(answer.messages.begin(), answer.messages.end(),
                       [&](const auto& message) { return message.find(number) == 2; });
  }
  // Not taken: refused with words that name the argument, or it had no say in the answer.
  void expect_no_say(std::size_t i, FUNCTION_ARG value) {
    const Answer answer = with(i, value);
    if (answer.success ? answer.bits != base_answer_.bits : !unavailable_ && !blames(answer, i))
      show("is taken, or refused without a word on it", i, value, answer);
  }
  void expect_refused(std::size_t i, FUNCTION_ARG value) {
    const Answer answer = with(i, value);
    if (answer.flags == 0 || !blames(answer, i)) show("is not refused by its name", i, value, answer);
  }
  void expect_same(std::size_t i, FUNCTION_ARG value, const Answer& want) {
    const Answer answer = with(i, value);
    if (!same(answer, want)) show("does not answer " + want.bits, i, value, answer);
  }
  void show(const std::string& fault, std::size_t i, FUNCTION_ARG value, const Answer& answer) {
    show(to_utf8(spec_.inputs[i].key) + " " + fault, {value}, answer);
  }
  void show(const std::string& fault, const std::vector<FUNCTION_ARG>& args, const Answer& answer) {
    if (++faults_ > faults_shown) return;
    std::string lines;
    for (const FUNCTION_ARG& arg : args) lines += "\n  " + test::bits_of(arg);
    for (const auto& message : answer.messages) lines += "\n  " + to_utf8(message);
    ADD_FAILURE() << fault << "\nflags " << std::hex << answer.flags << ", answer " << answer.bits << lines;
  }

  // One value in every form that stands for it.
  void check_forms(std::size_t i, double value) {
    const Answer want = with(i, FUNCTION_ARG::Number(value));
    char16_t digits[max_number_text + 1];
    const std::u16string text(digits, format_number(value, digits));
    double read = 0.0;
    if (parse_number(text, read) && read == value) {
      expect_same(i, base_.text(text), want);
      expect_same(i, base_.text(u" \t" + text + u" "), want);
    }
    expect_same(i, base_.cells({FUNCTION_ARG::Number(value)}), want);
    expect_same(i, base_.cells({FUNCTION_ARG::Number(value), base_.text(u"abc")}), want);
    if (value == std::trunc(value) && std::fabs(value) < 1e9)
      expect_same(i, FUNCTION_ARG::Integer(static_cast<std::int32_t>(value)), want);
    if (value == 0.0 || value == 1.0) expect_same(i, FUNCTION_ARG::Boolean(value != 0.0), want);
  }

  // No input takes these, whatever it stands for.
  std::vector<FUNCTION_ARG> unreadable() {
    std::vector<FUNCTION_ARG> values;
    for (std::uint32_t code : {0u, 3u, 7u, 12u, 99u}) values.push_back(FUNCTION_ARG::Error(code));
    FUNCTION_ARG unknown{};
    unknown.kind = 77;
    values.insert(values.end(), {unknown, FUNCTION_ARG::OfArray(0, 0, nullptr), FUNCTION_ARG::OfArray(0, 3, nullptr),
                                 FUNCTION_ARG::OfArray(2, 2, nullptr), base_.cells({FUNCTION_ARG::Error(7)}),
                                 base_.cells({FUNCTION_ARG::Missing()})});
    return values;
  }

  void answers_a_call_of_its_defaults();
  void takes_a_number_in_every_form();
  void keeps_to_its_bounds();
  void lets_nothing_through_that_is_no_number();
  void takes_its_name();
  void takes_arrays_of_its_length();
  void keeps_the_rules_in_random_calls();

  Spec& spec_ = *GetParam();
  TestContext loud_, quiet_;
  std::uint64_t slot_ = 0;
  Arguments base_;
  Answer base_answer_;
  std::string fault_;
  int faults_ = 0;
  bool unavailable_ = false;  // its tables or its library are not at hand
};

std::string name_of(const testing::TestParamInfo<Spec*>& info) { return to_utf8(info.param->id); }
INSTANTIATE_TEST_SUITE_P(Catalogue, EveryFunction, testing::ValuesIn(catalogue::specifications()), name_of);

bool is_number(const Function_CInput& input) {
  return input.type != data_type::any && input.type != data_type::text && input.type != data_type::unit &&
         input.type != data_type::enumeration && !input.is_array();
}

void EveryFunction::answers_a_call_of_its_defaults() {
  EXPECT_TRUE(base_answer_.success || unavailable_)
      << to_utf8(base_answer_.messages.empty() ? u"" : base_answer_.messages[0]);
}

void EveryFunction::takes_a_number_in_every_form() {
  for (std::size_t i = 0; i < spec_.input_count; ++i) {
    const Function_CInput& input = spec_.inputs[i];
    double value = 0.0;
    if (!is_number(input) || input.role == 1) continue;
    if (input.optional() && !input.default_value.empty()) {
      input.default_value.ToDouble(value);
      const Answer want = with(i, FUNCTION_ARG::Number(value));
      expect_same(i, FUNCTION_ARG::Missing(), want);
      expect_same(i, FUNCTION_ARG::Empty(), want);
      check_forms(i, value);
    }
    if (base_.values[i].kind == ARG_NUMBER) check_forms(i, base_.values[i].number);
    if (input.has_minimum()) check_forms(i, input.minimum);
    if (input.has_maximum()) check_forms(i, input.maximum);
  }
}

void EveryFunction::keeps_to_its_bounds() {
  for (std::size_t i = 0; i < spec_.input_count; ++i) {
    const Function_CInput& input = spec_.inputs[i];
    if (!is_number(input)) continue;
    for (double value : {-1.0, 0.0, 0.5, 1.0, 2.0, 3.0, 4.0, 7.0, 12.0, 1e-300, -1e300, 1e300, 4294967297.0})
      with(i, FUNCTION_ARG::Number(value));
    const auto beyond = [&](double bound, double where) {
      with(i, FUNCTION_ARG::Number(bound));
      const double outside = std::nextafter(bound, where);
      if ((spec_.flags & FUNCTION_NO_RANGE_CHECK) == 0) {
        EXPECT_FALSE(with(i, FUNCTION_ARG::Number(outside)).success);
      } else {
        expect_no_say(i, FUNCTION_ARG::Number(bound + (where > 0.0 ? 1.0 : -1.0)));
      }
    };
    if (input.has_minimum()) beyond(input.minimum, -infinite);
    if (input.has_maximum()) beyond(input.maximum, infinite);
  }
}

void EveryFunction::lets_nothing_through_that_is_no_number() {
  for (std::size_t i = 0; i < spec_.input_count; ++i) {
    if (spec_.inputs[i].role == 1 || !is_number(spec_.inputs[i])) continue;
    for (double value : {not_a_number, infinite, -infinite}) {
      if (calculates() && spec_.inputs[i].type != data_type::boolean)
        expect_no_say(i, FUNCTION_ARG::Number(value));
      else
        with(i, FUNCTION_ARG::Number(value));
    }
    for (const char16_t* word : {u"", u" ", u"abc", u"1,5", u"0x", u"1.5x", u"nan", u"1e400"})
      with(i, test::text(word));
    for (const FUNCTION_ARG& value : unreadable()) {
      if (calculates())
        expect_refused(i, value);
      else
        with(i, value);
    }
  }
}

void EveryFunction::takes_its_name() {
  if (spec_.name_input < 0) return;
  const auto i = static_cast<std::size_t>(spec_.name_input);
  for (const char16_t* name : {u"", u"Meter_1.A", u"1a", u"R2D2", u"c1", u"C", u"tank 5", u"\u00C4",
                               u"abcdefghijklmnopqrstuvwxyz_01234", u"abcdefghijklmnopqrstuvwxyz_012345"})
    expect_same(i, test::text(name), base_answer_);  // the rules are told, not enforced
  for (const FUNCTION_ARG& value : unreadable()) expect_no_say(i, value);
  for (double value : {1.0, not_a_number}) with(i, FUNCTION_ARG::Number(value));
}

void EveryFunction::takes_arrays_of_its_length() {
  for (std::size_t i = 0; i < spec_.input_count; ++i) {
    if (!spec_.inputs[i].is_array()) continue;
    for (const FUNCTION_ARG& value : unreadable()) with(i, value);
    for (const FUNCTION_ARG& value : {FUNCTION_ARG::Missing(), FUNCTION_ARG::Empty(), FUNCTION_ARG::Number(1.0),
                                      FUNCTION_ARG::Boolean(true), test::text(u"0.5")})
      with(i, value);
    if (!calculates() || base_.values[i].kind != ARG_ARRAY) continue;
    const auto whole = base_.values[i].array;
    const std::vector<FUNCTION_ARG> cells(whole.elements, whole.elements + base_.values[i].count());
    // The fewest cells that it takes; fewer are refused.
    std::size_t needed = cells.size();
    const auto first = [&](std::size_t n) {
      return base_.cells(std::vector<FUNCTION_ARG>(cells.begin(), cells.begin() + static_cast<long>(n)));
    };
    while (needed > 1 && with(i, first(needed - 1)).flags == 0) --needed;
    EXPECT_GT(needed, 1u);
    for (std::size_t n = 1; n < needed; ++n) expect_refused(i, first(n));
    expect_same(i, base_.cells(cells, static_cast<std::uint32_t>(cells.size())), base_answer_);
    std::vector<FUNCTION_ARG> more = cells;
    more.insert(more.end(), 3, test::text(u"abc"));
    expect_same(i, base_.cells(more), base_answer_);
    for (std::size_t k = 0; k < needed; ++k) {
      const auto cell = [&](FUNCTION_ARG value) {
        std::vector<FUNCTION_ARG> changed = cells;
        changed[k] = value;
        return base_.cells(changed);
      };
      if (cells[k].kind == ARG_NUMBER && cells[k].number == 0.0)
        expect_same(i, cell(test::text(u" 0 ")), base_answer_);
      for (const FUNCTION_ARG& value : {test::text(u"abc"), FUNCTION_ARG::Error(7), FUNCTION_ARG::Missing()})
        expect_refused(i, cell(value));
      for (double value : {not_a_number, infinite, -infinite, -1.0, 1e300})
        expect_no_say(i, cell(FUNCTION_ARG::Number(value)));
    }
  }
}

void EveryFunction::keeps_the_rules_in_random_calls() {
  for (std::uint64_t n = 0; n < 320; ++n) {
    Arguments arguments;
    test::RandomCall(spec_, n, arguments);
    check(arguments.values);
  }
}

TEST_P(EveryFunction, KeepsTheRules) {
  answers_a_call_of_its_defaults();
  takes_a_number_in_every_form();
  keeps_to_its_bounds();
  lets_nothing_through_that_is_no_number();
  takes_its_name();
  takes_arrays_of_its_length();
  keeps_the_rules_in_random_calls();
}

}  // namespace
}  // namespace norvane

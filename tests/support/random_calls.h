// Deterministic calls of any function of the catalogue: realistic states, bounds, options outside their list, and
// everything a careless or hostile caller sends. What is drawn depends on the function's id, the input's number and
// the call's number, and on the input's type, bounds and default; never on a text of the record.
#pragma once

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "core/elementary.h"
#include "core/text.h"
#include "framework/function_spec.h"
#include "tests/support/arguments.h"
#include "units/unit_catalogue.h"

namespace norvane::test {

class RandomCall {
 public:
  RandomCall(const Function_CFunctionSpec& spec, std::uint64_t number, Arguments& out)
      : spec_(spec), number_(number), kind_(number % 16), out_(out), random_(spec.id, 1000, number) {
    make();
  }

 private:
  static constexpr double infinite = std::numeric_limits<double>::infinity();

  void make() {
    draw_amounts();
    for (std::size_t i = 0; i < spec_.input_count; ++i) {
      Random random(spec_.id, i, number_);
      out_.values.push_back(kind_ == 8 && !spec_.inputs[i].is_array() && random.below(3) != 0
                                ? FUNCTION_ARG::Missing()
                                : good(i, random));
    }
    if (out_.values.empty()) return;
    switch (kind_) {
      case 6: change([&](std::size_t i, Random& random) { return at_bound(i, random); }, 1); break;
      case 7: change([&](std::size_t i, Random& random) { return beyond_bound(i, random); }, 1); break;
      case 9: change([&](std::size_t i, Random& random) { return hostile(i, random); }, 1); break;
      case 10: change([&](std::size_t i, Random& random) { return hostile(i, random); }, 3); break;
      case 11: wrong_count(); break;
      case 12: change([&](std::size_t i, Random& random) { return any_number(i, random); }, 2); break;
      case 13:
        change([](std::size_t, Random& random) { return FUNCTION_ARG::Number(random.whole(-1, 20)); }, 1);
        break;
      case 14: change([&](std::size_t i, Random& random) { return as_text(i, random); }, 2); break;
      case 15: swap_two(); break;
      default: break;
    }
  }

  std::size_t pick() { return random_.below(out_.values.size()); }

  template <class Maker>
  void change(Maker&& maker, int times) {
    for (int n = 0; n < times; ++n) {
      const std::size_t i = pick();
      Random random(spec_.id, i + 100, number_);
      out_.values[i] = maker(i, random);
    }
  }

  void swap_two() {
    const std::size_t first = pick();
    std::swap(out_.values[first], out_.values[pick()]);
  }

  void wrong_count() {
    const std::size_t n = random_.below(out_.values.size() + 3);
    out_.values.resize(n, FUNCTION_ARG::Number(1.0));
  }

  // Mole amounts of all arrays of the call together: 22 in the first, at most 4 in each of the others.
  void draw_amounts() {
    constexpr double typical[] = {85,  3,   2,   5,    2,    0.1,  0.1,  1,    0.5, 0.1, 0.3,
                                  0.3, 0.1, 0.1, 0.05, 0.02, 0.01, 0.01, 0.01, 0.1, 0.1, 0.02};
    const std::size_t style = random_.below(12);
    double sum = 0.0;
    for (std::size_t i = 0, arrays = 0; i < spec_.input_count; ++i) {
      auto& row = amounts_.emplace_back();
      if (!spec_.inputs[i].is_array()) continue;
      Random random(spec_.id, i + 200, number_);
      const std::size_t filled = arrays++ == 0 ? std::size(typical) : 4;
      for (std::size_t k = 0; k < 24; ++k) {
        double amount = k < filled ? random.unit() : 0.0;
        if (filled == std::size(typical) && k < filled && style != 0) amount *= typical[k];
        if (style == 1 && random.below(2) == 0) amount = 0.0;
        if (style == 2 && k != number_ % 21) amount = 0.0;
        if (k == 21 && style % 2 != 0) amount = 0.0;
        row.push_back(amount);
        sum += amount;
      }
      if (filled == std::size(typical)) row.resize(filled);
    }
    double scale = sum > 0.0 ? 1.0 / sum : 1.0;
    if (style == 3) scale *= 100.0;
    if (style == 4) scale *= random_.within(0.98, 1.02);
    if (style == 5) scale *= random_.within(0.9998, 1.0002);
    for (auto& row : amounts_)
      for (double& amount : row) amount *= scale;
    if (style == 6 && !amounts_.empty()) {
      auto& row = amounts_[random_.below(amounts_.size())];
      constexpr double strange[] = {-1e-9, -0.5, infinite, 1e300, 2.0, 0.0};
      if (!row.empty()) row[random_.below(row.size())] = strange[random_.below(std::size(strange))];
    }
  }

  double default_of(std::size_t i) const {
    double value = 0.0;
    const Core_CVariant& given = spec_.inputs[i].default_value;
    if (given.tag() != Core_CVariant::STRING && given.tag() != Core_CVariant::BORROWED_STRING) given.ToDouble(value);
    return value;
  }
  double low(std::size_t i) const { return spec_.inputs[i].has_minimum() ? spec_.inputs[i].minimum : -infinite; }
  double high(std::size_t i) const { return spec_.inputs[i].has_maximum() ? spec_.inputs[i].maximum : infinite; }

  double good_number(std::size_t i, Random& random) const {
    const double middle = default_of(i);
    const double least = std::max(low(i), middle != 0.0 ? middle - 3.0 * std::fabs(middle) : -50.0);
    const double most = std::min(high(i), middle != 0.0 ? middle + 100.0 * std::fabs(middle) : 150.0);
    double value = middle * random.within(0.7, 1.4);
    if (middle == 0.0)
      value = random.within(std::max(least, -1.0), 1.0) * (number_ % 4 == 1 ? 0.0 : 30.0 * random.unit());
    // Now and then far from the default, in half of the calls.
    if (number_ % 2 != 0 || random.below(4) != 0) return std::clamp(value, low(i), high(i));
    switch (random.below(3)) {
      case 0: value = random.within(least, most); break;
      case 1: value = random.within(std::max(low(i), -1e6), std::min(high(i), 1e6)); break;
      default: value = middle; break;
    }
    return std::clamp(value, low(i), high(i));
  }

  FUNCTION_ARG good(std::size_t i, Random& random) {
    const Function_CInput& input = spec_.inputs[i];
    if (input.role == 1) {
      constexpr const char16_t* names[] = {u"Meter_1.A", u"meter_1.a", u"B", u"C", u"", u"R2D2", u"1a", u"tank 5"};
      return random.below(6) != 0 ? FUNCTION_ARG::Missing() : out_.text(names[random.below(std::size(names))]);
    }
    if (input.is_array()) return input.type == data_type::any ? cells_of_any_kind(random) : out_.numbers(amounts_[i]);
    switch (input.type) {
      case data_type::boolean: return FUNCTION_ARG::Boolean(random.below(2) != 0);
      case data_type::integer:
        return FUNCTION_ARG::Number(random.whole(static_cast<int>(std::max(low(i), 0.0)),
                                                 static_cast<int>(std::min(high(i), 17.0 + std::max(low(i), 0.0)))));
      case data_type::any:
      case data_type::text:
      case data_type::unit:
      case data_type::enumeration: return general(random);
      default: break;
    }
    if (kind_of_code(input.type) == CodeKind::enumeration) return member(i, random);
    return FUNCTION_ARG::Number(good_number(i, random));
  }

  // As many bits in every array of the call.
  FUNCTION_ARG cells_of_any_kind(Random& random) {
    std::vector<double> row;
    for (std::uint64_t k = 0; k < number_ % 40; ++k) row.push_back(random.whole(0, 1));
    return out_.numbers(row);
  }

  // A member of an enumeration within the bounds, or what stands there by chance.
  FUNCTION_ARG member(std::size_t i, Random& random) const {
    const auto& units = Unit_CTypeAndUnitContainer::Instance();
    std::vector<std::uint32_t> codes;
    units.ListMembers(CodeKind::enumeration_value, spec_.inputs[i].type, codes);
    double value = default_of(i);
    for (int tries = 0; tries < 8 && !codes.empty(); ++tries) {
      const Unit_CEntry* entry = nullptr;
      units.EnumerationValueDetails(codes[random.below(codes.size())], entry);
      if (entry != nullptr) value = entry->factor;
      if (value >= low(i) && value <= high(i)) break;
    }
    return FUNCTION_ARG::Number(value);
  }

  // Texts of one sort a call: temperatures, pressures, numbers, functions.
  FUNCTION_ARG general(Random& random) {
    constexpr const char16_t* words[4][4] = {{u"degC", u"degF", u"K", u"degR"},
                                             {u"bar_a", u"psia", u"Pa", u"mbar"},
                                             {u"101101", u"FF", u"-12", u"1F"},
                                             {u"nvCRC16", u"nvAGA8_M", u"nvBitTest", u"nvISO5167_Orifice"}};
    if (random.below(5) == 0) return FUNCTION_ARG::Number(random.whole(-2, 70));
    return out_.text(words[number_ / 16 % 4][random.below(4)]);
  }

  FUNCTION_ARG at_bound(std::size_t i, Random& random) const {
    return FUNCTION_ARG::Number(random.below(2) != 0 ? std::max(low(i), -1e308) : std::min(high(i), 1e308));
  }
  FUNCTION_ARG beyond_bound(std::size_t i, Random& random) const {
    if (random.below(2) != 0) return FUNCTION_ARG::Number(std::nextafter(std::max(low(i), -1e300), -infinite));
    return FUNCTION_ARG::Number(std::nextafter(std::min(high(i), 1e300), infinite));
  }
  FUNCTION_ARG any_number(std::size_t, Random& random) const {
    const double size = elementary::exp(random.within(-40.0, 40.0));  // the same on every system
    return FUNCTION_ARG::Number(random.below(3) == 0 ? -size : size);
  }
  FUNCTION_ARG as_text(std::size_t i, Random& random) {
    char16_t digits[max_number_text + 1];
    std::u16string text(random.below(2), u' ');
    text.append(digits, format_number(good_number(i, random), digits));
    text.append(1, random.below(6) == 0 ? u'x' : u'\t');
    return out_.text(text);
  }

  FUNCTION_ARG hostile(std::size_t i, Random& random) {
    constexpr double numbers[] = {0.0,    -0.0,    1.0,          -1.0,          5e-324, -5e-324,  1e-300,   1e300,
                                  -1e300, 1.7e308, 4294967296.0, -2147483649.0, 0.5,    infinite, -infinite};
    constexpr const char16_t* words[] = {u"",     u" ",   u"abc", u"1,5", u"TRUE",   u"false", u"1e400", u"-1e-400",
                                         u"0x10", u"nan", u"inf", u"12",  u"\u00B0", u"#N/A",  u"1.5x"};
    switch (random.below(14)) {
      case 0:
      case 1:
      case 2: return FUNCTION_ARG::Number(numbers[random.below(std::size(numbers))]);
      case 3: return FUNCTION_ARG::Number(bits(random.below(2) != 0 ? 0x7FF8000000000000u : 0xFFF0000000000001u));
      case 4:
      case 5: return out_.text(words[random.below(std::size(words))]);
      case 6: return FUNCTION_ARG::Boolean(random.below(2) != 0);
      case 7: return FUNCTION_ARG::Error(static_cast<std::uint32_t>(random.below(14)));
      case 8: return FUNCTION_ARG::Empty();
      case 9: return FUNCTION_ARG::Missing();
      case 10: return FUNCTION_ARG::Integer(random.whole(-2, 30));
      case 11: return FUNCTION_ARG::OfArray(static_cast<std::uint32_t>(random.below(3)), 2, nullptr);
      case 12: {
        std::vector<double> row = amounts_[i];
        row.resize(random.below(24), 0.01);
        return out_.numbers(row);
      }
      default: {
        std::vector<FUNCTION_ARG> row;
        for (double amount : amounts_[i].empty() ? std::vector<double>(22, 0.0) : amounts_[i])
          row.push_back(FUNCTION_ARG::Number(amount));
        Random cell(spec_.id, i + 300, number_);
        const FUNCTION_ARG others[] = {out_.text(u"abc"),
                                       out_.text(u"0.25"),
                                       FUNCTION_ARG::Error(7),
                                       FUNCTION_ARG::Empty(),
                                       FUNCTION_ARG::Boolean(true),
                                       FUNCTION_ARG::Missing(),
                                       FUNCTION_ARG::Number(bits(0x7FF8000000000000u))};
        row[cell.below(row.size())] = others[cell.below(std::size(others))];
        return out_.cells(row, row.size() % 2 == 0 && cell.below(2) != 0 ? 2 : 1);
      }
    }
  }

  const Function_CFunctionSpec& spec_;
  std::uint64_t number_;
  std::uint64_t kind_;
  Arguments& out_;
  Random random_;
  std::vector<std::vector<double>> amounts_;  // of each input; empty for what is no array
};

}  // namespace norvane::test

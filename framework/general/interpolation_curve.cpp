// InterpolationCurve: linear interpolation in a table of reference points.
//
//   (x_k, y_k)   reference point k = 0, 1, ..., n - 1, the inputs x_k increasing
//   X            input value
#include <cmath>
#include <cstdint>
#include <cstring>

#include "framework/call.h"
#include "framework/context.h"
#include "framework/data_accessor.h"
#include "framework/general/arguments.h"
#include "framework/records.h"

namespace norvane::functions {
namespace {

struct Point {
  double x, y;
};

// Takes the points one by one and finds the value on the way. The first point whose input
// does not exceed the one before it ends the table.
class CCurve {
 public:
  CCurve(double input, bool extrapolate, std::uint64_t points) : x_(input), extrapolate_(extrapolate), n_(points) {}

  bool wants_more() const noexcept { return k_ < n_; }
  double value() const noexcept { return value_; }
  bool out_of_range() const noexcept { return out_of_range_; }

  void Add(Point current) noexcept {
    if (k_ > 0) {
      if (!(previous_.x < current.x)) {
        n_ = k_;
        current = previous_;
        previous_ = before_;
      }
      if (!found_ && n_ > 1) Examine(previous_, current);
      if (n_ == 1) value_ = current.y;  // cut after its first point
    }
    before_ = previous_;
    previous_ = current;
    ++k_;
  }

 private:
  // The segment from p to q. An input equal to the first reference input counts as out of range although its
  // value is the first output, while one equal to the last is in range: the asymmetry is intended.
  void Examine(Point p, Point q) noexcept {
    const bool last = k_ + 1 >= n_;
    if (x_ > p.x && x_ <= q.x) {
      Found(Line(p, q), false);
    } else if (x_ > p.x && x_ > q.x) {
      if (last) Found(extrapolate_ ? Line(p, q) : q.y, true);
    } else {
      Found(extrapolate_ ? Line(p, q) : p.y, true);
    }
  }
  double Line(Point p, Point q) const noexcept { return p.y + (x_ - p.x) * (q.y - p.y) / (q.x - p.x); }
  void Found(double value, bool out_of_range) noexcept {
    value_ = value;
    out_of_range_ = out_of_range;
    found_ = true;
  }

  double x_;
  bool extrapolate_;
  std::uint64_t n_;
  std::uint64_t k_ = 0;
  Point before_{};
  Point previous_{};
  double value_ = 0.0;
  bool out_of_range_ = false;
  bool found_ = false;
};

// Where the points stand in a range: point k at elements k * step and k * step + to_output.
struct Layout {
  std::uint64_t points;
  std::uint64_t step;
  std::uint64_t to_output;
};

// The complaint about a range that is no table, or no text.
std::u16string_view read_layout(const FUNCTION_ARG::Array& range, Layout& layout) noexcept {
  const std::uint64_t columns = range.columns;
  const std::uint64_t rows = range.rows;
  if (columns == 0 || rows == 0) return u"should be an array of either 1 or 2 columns wide";
  if (columns == 1) {
    if (rows % 2 != 0) return u"should be an array with an even row-count";
    layout = {rows / 2, 2, 1};
  } else if (columns == 2) {
    layout = {rows, 2, 1};
  } else if (rows == 1) {
    if (columns % 2 != 0) return u"should be an array with an even column-count";
    layout = {columns / 2, 2, 1};
  } else if (rows == 2) {
    layout = {columns, 1, columns};
  } else {
    return u"should be an array with 1 or 2 columns or 1 or 2 rows";
  }
  return {};
}

// What a calling place keeps: the table of its last call, and when it changed.
struct Stored {
  std::uint8_t initialised;
  double change_time;
};
static_assert(sizeof(Stored) == 16);

const Function_CTypeOf<Function_CSynchronizedData> stored_curve{u"InterpolationCurve"};

// The process's clock of table changes. Nothing has ever set it: the change time of every table
// is the epoch, 0, and sheets rely on it. Intended.
constexpr double change_clock = 0.0;

// Room for a table of this many numbers; one of another size than before starts anew.
Stored* open_store(Function_CSynchronizedData& data, std::uint64_t numbers) noexcept {
  constexpr std::uint64_t largest = (SIZE_MAX - sizeof(Stored)) / sizeof(double);
  if (numbers > largest) return nullptr;
  const std::size_t needed = sizeof(Stored) + static_cast<std::size_t>(numbers) * sizeof(double);
  void* bytes = nullptr;
  std::size_t size = 0;
  data.GetBuffer(bytes, size, needed);
  if (bytes != nullptr && size < needed) {
    data.FreeBuffer();
    data.GetBuffer(bytes, size, needed);
  }
  return size >= needed ? static_cast<Stored*>(bytes) : nullptr;
}

// An element that is no number counts as 0.
double number_of(Function_CContext& context, const FUNCTION_ARG& element) noexcept {
  if (element.kind == ARG_NUMBER) return element.number;
  double value = 0.0;
  return context.ReadNumber(&element, value) ? value : 0.0;
}

// Writes the number to its stored place; true when another one stood there.
bool replace(double& place, double number) noexcept {
  if (place == number) return false;
  place = number;
  return true;
}

enum class In { name, input_value, reference_values, extrapolation, count };
enum class Out { value, datetime, out_of_range, count };

std::uint32_t interpolate(Function_CContext& context, FUNCTION_ARG* args, std::size_t count, FUNCTION_ARG& output) {
  if (count != static_cast<std::size_t>(In::count)) return ERROR_ARGCOUNT;
  Call call(context, args, count, output);
  double input = 0.0;
  bool extrapolate = true;
  if (!context.ReadNumber(call.argument(In::input_value), input) ||
      !context.ReadBoolean(call.argument(In::extrapolation), extrapolate, true))
    return ERROR_VALUE;
  FUNCTION_ARG::Array range{};
  Layout layout{};
  std::u16string_view complaint = u"should be an array of either 1 or 2 columns wide";
  if (context.ReadArray(call.argument(In::reference_values), range)) complaint = read_layout(range, layout);
  if (!complaint.empty()) {
    context.ReportError(static_cast<std::size_t>(In::reference_values), complaint);
    return ERROR_VALUE;
  }

  Function_CDataAccessor accessor;
  Stored* stored = nullptr;
  if (accessor.Open(context, stored_curve, {}))
    stored = open_store(accessor.as<Function_CSynchronizedData>(), std::uint64_t{range.columns} * range.rows);
  if (stored == nullptr) {
    context.ReportError(static_cast<std::size_t>(In::reference_values), u"cannot be kept for the next call");
    return ERROR_NA;
  }
  bool changed = stored->initialised == 0;
  stored->initialised = 1;

  auto* place = reinterpret_cast<double*>(stored + 1);
  const FUNCTION_ARG* element = range.elements;
  CCurve curve(input, extrapolate, layout.points);
  for (; curve.wants_more(); element += layout.step, place += 2) {
    const Point point{number_of(context, element[0]), number_of(context, element[layout.to_output])};
    changed |= replace(place[0], point.x);
    changed |= replace(place[1], point.y);
    curve.Add(point);
  }
  if (changed) stored->change_time = change_clock;

  if (!std::isfinite(curve.value()))
    context.ReportError(static_cast<std::size_t>(In::input_value), u"gives a value that is not a finite number");
  call.set(Out::value, curve.value());
  call.set(Out::datetime, stored->change_time);
  call.set_integer(Out::out_of_range, curve.out_of_range() ? 1 : 0);
  return call.done();
}

constexpr record::Input inputs[] = {
    record::name_input(),
    record::input(u"input value", u"Input value", u"Input value", data_type::num).required(),
    record::input(u"reference values", u"Reference values",
                  u"Array of reference values (column 1 = input, column 2 = output)", data_type::any)
        .required()
        .range(),
    record::input(u"extrapolation allowed", u"Extrapolation allowed",
                  u"Extrapolation flag (0 = not allowed, 1 = allowed)", data_type::boolean)
        .otherwise(true),
};
static_assert(std::size(inputs) == static_cast<std::size_t>(In::count));

constexpr record::StatusValue range_values[] = {{1.0, u"OOR", u"out of range"}};
constexpr record::Output outputs[] = {
    record::output(u"value", u"Value", u"Interpolated value", data_type::num, u"VAL"),
    record::output(u"datetime", u"Date/time", u"Date and time of the last change of the reference values",
                   data_type::date, u"DTTM"),
    record::output(u"out of range", u"Out of range", u"Input value out of range (0 = in range, 1 = out of range)",
                   data_type::integer, u"")
        .meaning(range_values),
};
static_assert(std::size(outputs) == static_cast<std::size_t>(Out::count));

}  // namespace

extern const record::Function InterpolationCurve;
const record::Function InterpolationCurve = {
    .group = GroupId::Extended,
    .id = u"InterpolationCurve",
    .description = u"Interpolates linearly in a table of reference values",
    .category = u"Math",
    .subcategory = u"Math",
    .flags = FUNCTION_FALLBACK | FUNCTION_NO_RANGE_CHECK,
    .name_input = 0,
    .inputs = inputs,
    .outputs = outputs,
    .implementation = interpolate,
    .notes =
        u"The table is two columns (input, output), two rows, or one column or row of alternating inputs "
        u"and outputs. The inputs increase; the first that does not ends the table. A table of one point gives 0.\n"
        u"Outside the table the first or last segment is continued, or its end value kept when extrapolation "
        u"is not allowed. An input equal to the first reference input is reported as out of range, "
        u"one equal to the last is not.\n"
        u"The date and time are always 0.\n",
};

}  // namespace norvane::functions

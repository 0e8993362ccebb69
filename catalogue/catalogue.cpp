#include "catalogue/catalogue.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <iterator>
#include <memory>
#include <mutex>

#include "core/once.h"
#include "core/text.h"

namespace norvane {

namespace functions {
#define NV_FUNCTION(group, id, inputs, outputs) extern const record::Function id;
#define NV_MISSING(group, id, inputs, outputs)
#include "catalogue/functions.def"
#undef NV_FUNCTION
#undef NV_MISSING
}  // namespace functions

namespace catalogue {
namespace {

constexpr Line table[] = {
#define NV_FUNCTION(group, id, inputs, outputs) {GroupId::group, u## #id, inputs, outputs, &functions::id},
#define NV_MISSING(group, id, inputs, outputs) {GroupId::group, u## #id, inputs, outputs, nullptr},
#include "catalogue/functions.def"
#undef NV_FUNCTION
#undef NV_MISSING
};
static_assert(std::size(table) == 118);

// Whether a line's record is there, known to the compiler: under a sanitizer GCC compares no address in a constant.
constexpr bool is_part[] = {
#define NV_FUNCTION(group, id, inputs, outputs) true,
#define NV_MISSING(group, id, inputs, outputs) false,
#include "catalogue/functions.def"
#undef NV_FUNCTION
#undef NV_MISSING
};
constexpr auto part_of_this_build =
    static_cast<std::size_t>(std::count(std::begin(is_part), std::end(is_part), true));

// Lines of this build: in the catalogue's order, and in that of their identifiers in upper case.
struct Order {
  std::array<std::uint8_t, part_of_this_build> by_position{};
  std::array<std::uint8_t, part_of_this_build> by_id{};
};
constexpr bool before(std::u16string_view a, std::u16string_view b) {
  return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(), [](char16_t x, char16_t y) {
    return fold_ascii_upper(x) < fold_ascii_upper(y);
  });
}
constexpr Order order = [] {
  Order made;
  std::size_t next = 0;
  for (std::size_t i = 0; i < std::size(table); ++i)
    if (is_part[i]) made.by_position[next++] = static_cast<std::uint8_t>(i);
  for (std::size_t i = 0; i < next; ++i) made.by_id[i] = static_cast<std::uint8_t>(i);
  std::sort(made.by_id.begin(), made.by_id.end(), [&made](std::uint8_t a, std::uint8_t b) {
    return before(table[made.by_position[a]].id, table[made.by_position[b]].id);
  });
  return made;
}();

// A program calls few of the functions: each is made when it is first asked for.
struct Specifications {
  std::mutex mutex;
  std::array<std::unique_ptr<const Function_CFunctionSpec>, part_of_this_build> owned;
  std::array<std::atomic<const Function_CFunctionSpec*>, part_of_this_build> made{};
  std::array<const Function_CFunctionSpec*, part_of_this_build> list{};
  Once complete;
};

Specifications& all() {
  static Specifications specifications;
  return specifications;
}

const Function_CFunctionSpec& made(std::size_t position) {
  Specifications& known = all();
  if (const Function_CFunctionSpec* spec = known.made[position].load(std::memory_order_acquire)) return *spec;
  const std::lock_guard lock(known.mutex);
  std::unique_ptr<const Function_CFunctionSpec>& place = known.owned[position];
  if (place == nullptr) {
    auto spec = std::make_unique<Function_CFunctionSpec>(*table[order.by_position[position]].record);
    spec->position = position;
    place = std::move(spec);
    known.made[position].store(place.get(), std::memory_order_release);
  }
  return *place;
}

void register_group(Function_CLibrary& library, GroupId group) {
  for (const Function_CFunctionSpec* spec : specifications())
    if (spec->group == &Function_CGroup::Of(group)) library.Register(*spec);
}

}  // namespace

std::span<const Line> lines() noexcept { return table; }

void register_extended(Function_CLibrary& library) { register_group(library, GroupId::Extended); }
void register_math(Function_CLibrary& library) { register_group(library, GroupId::Math); }
void register_gerg_math(Function_CLibrary& library) { register_group(library, GroupId::GergMath); }

std::size_t count() noexcept { return part_of_this_build; }

const Function_CFunctionSpec* specification(std::size_t position) noexcept {
  try {
    return position < part_of_this_build ? &made(position) : nullptr;
  } catch (...) {
    return nullptr;
  }
}

std::span<const Function_CFunctionSpec* const> specifications() {
  Specifications& known = all();
  known.complete.run([&known] {
    for (std::size_t i = 0; i < part_of_this_build; ++i) known.list[i] = &made(i);
  });
  return known.list;
}

const Function_CFunctionSpec* find(std::u16string_view id) {
  const auto place = std::lower_bound(order.by_id.begin(), order.by_id.end(), id, [](std::uint8_t at, auto wanted) {
    return before(table[order.by_position[at]].id, wanted);
  });
  if (place == order.by_id.end() || !equal_ignoring_case(table[order.by_position[*place]].id, id)) return nullptr;
  return &made(*place);
}

}  // namespace catalogue
}  // namespace norvane

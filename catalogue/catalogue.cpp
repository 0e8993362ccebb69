#include "catalogue/catalogue.h"

#include <iterator>
#include <memory>
#include <vector>

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

struct Specifications {
  std::vector<std::unique_ptr<Function_CFunctionSpec>> owned;
  std::vector<const Function_CFunctionSpec*> list;
  Function_CLibrary::Map by_id;

  Specifications() {
    for (const Line& line : table) {
      if (line.record == nullptr) continue;
      auto spec = std::make_unique<Function_CFunctionSpec>(*line.record);
      spec->position = owned.size();
      list.push_back(spec.get());
      by_id.Insert(spec->id, spec.get());
      owned.push_back(std::move(spec));
    }
  }
};

const Specifications& all() {
  static const Specifications specifications;
  return specifications;
}

void register_group(Function_CLibrary& library, GroupId group) {
  for (const Function_CFunctionSpec* spec : all().list)
    if (spec->group == &Function_CGroup::Of(group)) library.Register(*spec);
}

}  // namespace

std::span<const Line> lines() noexcept { return table; }

void register_extended(Function_CLibrary& library) { register_group(library, GroupId::Extended); }
void register_math(Function_CLibrary& library) { register_group(library, GroupId::Math); }
void register_gerg_math(Function_CLibrary& library) { register_group(library, GroupId::GergMath); }

std::span<const Function_CFunctionSpec* const> specifications() { return all().list; }

const Function_CFunctionSpec* find(std::u16string_view id) {
  const Function_CFunctionSpec* const* found = all().by_id.Find(id);
  return found != nullptr ? *found : nullptr;
}

}  // namespace catalogue
}  // namespace norvane

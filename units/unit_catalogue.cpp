#include "units/unit_catalogue.h"

#include <algorithm>
#include <array>
#include <deque>
#include <iterator>
#include <new>

#include "core/text.h"

namespace norvane {
namespace {

// One row of the tables, in the order in which the catalogue enters it.
struct Row {
  CodeKind kind;
  std::uint32_t type;
  std::uint32_t member;
  std::u16string_view key;
  std::u16string_view text;
  std::u16string_view long_name;
  double factor;
  double offset;

  constexpr std::uint32_t code() const { return make_code(kind, type, member); }
};

constexpr Row rows[] = {
#define NV_QUANTITY(type, key, name) {CodeKind::quantity, type, 0, u"" #key, name, u"", 0.0, 0.0},
#define NV_UNIT(type, member, key, symbol, factor, offset, long_name) \
  {CodeKind::unit, type, member, u"" #key, symbol, long_name, factor, offset},
#include "units/unit_table.def"
#undef NV_QUANTITY
#undef NV_UNIT
#define NV_ENUMERATION(type, key, name) {CodeKind::enumeration, type, 0, u"" #key, name, u"", 0.0, 0.0},
#define NV_VALUE(type, member, key, text, value) \
  {CodeKind::enumeration_value, type, member, u"" #key, text, u"", value, 0.0},
#include "units/enumeration_table.def"
#undef NV_ENUMERATION
#undef NV_VALUE
};

// What the tables must hold, checked by the compiler: a slip in a row stops the build.
consteval std::size_t count_of(CodeKind kind) {
  return static_cast<std::size_t>(
      std::count_if(std::begin(rows), std::end(rows), [kind](const Row& row) { return row.kind == kind; }));
}
static_assert(count_of(CodeKind::quantity) == 51);
static_assert(count_of(CodeKind::unit) == 398);
static_assert(count_of(CodeKind::enumeration) == 48);

constexpr bool is_type(CodeKind kind) { return kind == CodeKind::quantity || kind == CodeKind::enumeration; }

// Members follow their own type, in ascending order from 1; types ascend as well.
consteval bool numbers_ascend() {
  const Row* type = nullptr;
  std::uint32_t last_member = 0;
  for (const Row& row : rows) {
    if (is_type(row.kind)) {
      if (type != nullptr && row.code() <= type->code()) return false;
      type = &row;
      last_member = 0;
    } else {
      const CodeKind owner = row.kind == CodeKind::unit ? CodeKind::quantity : CodeKind::enumeration;
      if (type == nullptr || type->code() != make_code(owner, row.type)) return false;
      if (row.member <= last_member || row.member > 0xFF || (last_member == 0 && row.member != 1)) return false;
      last_member = row.member;
    }
  }
  return true;
}
static_assert(numbers_ascend());

consteval bool factors_are_sound() {
  for (const Row& row : rows) {
    if (row.kind != CodeKind::unit) continue;
    if (row.member == 1 && (row.factor != 1.0 || row.offset != 0.0)) return false;  // the base unit
    if (!(row.factor > 0.0)) return false;
    if (row.offset != 0.0 && make_code(CodeKind::quantity, row.type) != quantity::temperature) return false;
  }
  return true;
}
static_assert(factors_are_sound());

consteval bool texts_are_sound() {
  for (const Row& row : rows) {
    if (row.key.empty() || row.key.size() > 63 || row.key.find(u' ') != row.key.npos || row.text.empty())
      return false;
    if (row.kind == CodeKind::unit && (row.text.size() > 31 || row.long_name.empty())) return false;
  }
  return true;
}
static_assert(texts_are_sound());

// Keys of units and types are one name space, whatever their case; those of enumeration values repeat. Their hashes are
// compared: every pair of keys, letter by letter, is more than a compiler is willing to work out.
consteval bool keys_are_unique() {
  std::array<std::uint64_t, std::size(rows)> hashes{};
  std::size_t count = 0;
  for (const Row& row : rows) {
    if (row.kind == CodeKind::enumeration_value) continue;
    std::uint64_t hash = 14695981039346656037u;  // FNV-1a
    for (const char16_t unit : row.key) hash = (hash ^ fold_ascii_upper(unit)) * 1099511628211u;
    hashes[count++] = hash;
  }
  std::sort(hashes.begin(), hashes.begin() + count);
  return std::adjacent_find(hashes.begin(), hashes.begin() + count) == hashes.begin() + count;
}
static_assert(keys_are_unique());

// The rows as the library carries them: their texts one behind the other, found by numbers. Addresses would be entered
// by the system into every row whenever the library is loaded.
struct KeptText {
  std::uint16_t first = 0, size = 0;
};
struct KeptRow {
  CodeKind kind{};
  std::uint32_t type = 0, member = 0;
  KeptText key, text, long_name;
  double factor = 0.0, offset = 0.0;
};
constexpr std::size_t all_text_size = [] {
  std::size_t size = 0;
  for (const Row& row : rows) size += row.key.size() + row.text.size() + row.long_name.size() + 3;
  return size;
}();
static_assert(all_text_size <= 0xFFFF);
struct Kept {
  std::array<KeptRow, std::size(rows)> all{};
  std::array<char16_t, all_text_size> texts{};
};
constexpr Kept kept = [] {
  Kept made;
  std::size_t end = 0;
  const auto keep = [&](std::u16string_view text) {
    const KeptText place{static_cast<std::uint16_t>(end), static_cast<std::uint16_t>(text.size())};
    for (const char16_t unit : text) made.texts[end++] = unit;
    ++end;  // as behind every literal, a zero
    return place;
  };
  for (std::size_t i = 0; i < std::size(rows); ++i) {
    const Row& row = rows[i];
    made.all[i] = {row.kind,   row.type,  row.member, keep(row.key), keep(row.text), keep(row.long_name),
                   row.factor, row.offset};
  }
  return made;
}();

std::u16string_view text_of(KeptText text) noexcept { return {kept.texts.data() + text.first, text.size}; }

// Code i is the name of plain data type i.
constexpr std::u16string_view data_type_names[] = {u"",    u"text", u"num",  u"date",  u"bool",
                                                   u"int", u"unit", u"enum", u"ipaddr"};
static_assert(data_type_names[data_type::ipaddr] == u"ipaddr");

struct RateRow {
  std::uint32_t rate, time, quantity;
};
constexpr RateRow rate_rows[] = {
    {unit::J_s, unit::s, unit::J},
    {unit::kg_s, unit::s, unit::kg},
    {unit::sm3_s, unit::s, unit::sm3},
    {unit::m3_s, unit::s, unit::m3},
};

// The metric system; the customary one swaps from and to. A type paired with itself keeps whatever unit it has.
constexpr Unit_CTypeAndUnitContainer::Pair metric_pairs[] = {
    {unit::inH2O_60_degF, unit::mbar},
    {unit::psia, unit::bar_a},
    {unit::psig, unit::bar_g},
    {unit::degF, unit::degC},
    {unit::per_degF, unit::per_degC},
    {unit::lb_ft3, unit::kg_m3},
    {unit::lb_lbmol, unit::kg_kmol},
    {unit::klbm_hr, unit::kg_s},
    {unit::Btu_lbmol_degF, unit::kJ_kmol_degC},
    {unit::Btu_lbm_degF, unit::kJ_kg_degC},
    {unit::Btu_lbm, unit::kJ_kg},
    {unit::kBtu_lbm, unit::MJ_kg},
    {unit::Btu_lbmol, unit::kJ_kmol},
    {unit::kBtu_lbmol, unit::MJ_kmol},
    {unit::Btu_ft3, unit::MJ_m3},
    {unit::Btu_scf, unit::kJ_sm3},
    {unit::lbmol_ft3, unit::mol_m3},
    {unit::kmol_ft3, unit::kmol_m3},
    {unit::ft_s, unit::m_s},
    {unit::in, unit::mm},
    {unit::lbm_ft_s, unit::Pa_s},
    {unit::cP, unit::cP},
    {quantity::molepermole, quantity::molepermole},
    {quantity::time, quantity::time},
};
static_assert(std::size(metric_pairs) == 24);

constexpr auto customary_pairs = [] {
  std::array<Unit_CTypeAndUnitContainer::Pair, std::size(metric_pairs)> pairs{};
  for (std::size_t i = 0; i < pairs.size(); ++i) pairs[i] = {metric_pairs[i].to, metric_pairs[i].from};
  return pairs;
}();

// Chained hash map from codes to positions in a table of the owner's.
class CodeIndex {
 public:
  static constexpr std::uint32_t none = 0xFFFFFFFFu;

  std::uint32_t Find(std::uint32_t code) const noexcept {
    for (std::uint32_t i = buckets_[Bucket(code)]; i != none; i = nodes_[i].next)
      if (nodes_[i].code == code) return nodes_[i].position;
    return none;
  }
  void Insert(std::uint32_t code, std::uint32_t position) {
    if (nodes_.size() == buckets_.size()) {
      buckets_.assign(buckets_.size() * 2, none);
      for (std::uint32_t i = 0; i < nodes_.size(); ++i) Link(i);
    }
    nodes_.push_back({code, position, none});
    Link(static_cast<std::uint32_t>(nodes_.size() - 1));
  }

 private:
  struct Node {
    std::uint32_t code, position, next;
  };
  // Kinds and types differ in few, distant bits: multiplying brings them all into the upper ones.
  std::size_t Bucket(std::uint32_t code) const noexcept { return (code * 0x9E3779B1u >> 12) & (buckets_.size() - 1); }
  void Link(std::uint32_t i) noexcept {
    std::uint32_t& bucket = buckets_[Bucket(nodes_[i].code)];
    nodes_[i].next = bucket;
    bucket = i;
  }

  std::vector<std::uint32_t> buckets_ = std::vector<std::uint32_t>(64, none);
  std::vector<Node> nodes_;
};

struct System {
  Unit_CEntry entry;
  CodeIndex map;  // code to code of this system
};

constexpr bool is_kind(std::uint32_t code, CodeKind kind) { return kind_of_code(code) == kind; }

}  // namespace

struct Unit_CTypeAndUnitContainer::Tables {
  std::deque<Unit_CEntry> entries;  // in the order of their adding; addresses stay
  CodeIndex codes;                  // to positions in entries
  Core_CCIStringMap<std::uint32_t> keys;
  std::vector<Unit_CRateRelation> rates;
  std::deque<System> systems;

  Unit_CEntry* Find(std::uint32_t code) noexcept {
    const std::uint32_t position = codes.Find(code);
    return position != CodeIndex::none ? &entries[position] : nullptr;
  }
  const Unit_CEntry* Find(std::uint32_t code) const noexcept { return const_cast<Tables*>(this)->Find(code); }
  const System* FindSystem(std::uint32_t code) const noexcept {
    for (const System& system : systems)
      if (system.entry.code == code) return &system;
    return nullptr;
  }
};

Unit_CTypeAndUnitContainer::Unit_CTypeAndUnitContainer() { Build(); }
Unit_CTypeAndUnitContainer::Unit_CTypeAndUnitContainer(WhenAsked) noexcept : when_asked_(true) {}

void Unit_CTypeAndUnitContainer::Build() {
  tables_ = std::make_unique<Tables>();
  const auto note = [this](std::uint32_t result) {
    if (result != UNIT_OK) build_result_ = result;
  };
  for (const KeptRow& row : kept.all)
    note(Add(row.kind, row.type, row.member, text_of(row.key), text_of(row.text), text_of(row.long_name), row.factor,
             row.offset));
  for (const RateRow& row : rate_rows) note(AddRateRelation(row.rate, row.time, row.quantity));
  note(AddSystem(1, u"metric", u"Metric", u"Metric", metric_pairs));
  note(AddSystem(2, u"customary", u"U.S. Customary", u"U.S. Customary", customary_pairs));
}

Unit_CTypeAndUnitContainer::~Unit_CTypeAndUnitContainer() = default;

const Unit_CTypeAndUnitContainer& Unit_CTypeAndUnitContainer::Instance() {
  static Unit_CTypeAndUnitContainer catalogue{WhenAsked{}};
  return catalogue;
}

// Null when there is no memory; who asks next tries again.
const Unit_CTypeAndUnitContainer::Tables* Unit_CTypeAndUnitContainer::tables() const noexcept {
  if (!when_asked_) return tables_.get();
  try {
    asked_.run([this] {
      auto* self = const_cast<Unit_CTypeAndUnitContainer*>(this);  // Instance() is no constant object
      try {
        self->Build();
      } catch (...) {
        self->tables_.reset();
        throw;
      }
    });
  } catch (...) {
    return nullptr;
  }
  return tables_.get();
}

std::uint32_t Unit_CTypeAndUnitContainer::BuildResult() const noexcept {
  return tables() != nullptr ? build_result_ : UNIT_UNKNOWN_CODE;
}

bool Unit_CTypeAndUnitContainer::ScaleOf(std::uint32_t unit, double& factor, double& offset) noexcept {
  for (const KeptRow& row : kept.all) {
    if (row.kind != CodeKind::unit || make_code(row.kind, row.type, row.member) != unit) continue;
    factor = row.factor;
    offset = row.offset;
    return true;
  }
  return false;
}

bool Unit_CTypeAndUnitContainer::MemberBits(std::uint32_t type, std::uint64_t& bits) noexcept {
  bits = 0;
  for (const KeptRow& row : kept.all) {
    if (row.kind != CodeKind::enumeration_value || make_code(CodeKind::enumeration, row.type) != type) continue;
    const bool small = row.factor >= 0.0 && row.factor <= 63.0;
    const auto number = static_cast<unsigned>(small ? row.factor : 0.0);
    if (!small || row.factor != number) return false;
    bits |= std::uint64_t{1} << number;
  }
  return bits != 0;
}

const Unit_CEntry* Unit_CTypeAndUnitContainer::Find(std::uint32_t code) const noexcept {
  const Tables* known = tables();
  return known != nullptr ? known->Find(code) : nullptr;
}

std::uint32_t Unit_CTypeAndUnitContainer::TextOfCode(std::uint32_t code, std::u16string_view& text) const noexcept {
  if (is_kind(code, CodeKind::data_type)) {
    if (code >= std::size(data_type_names)) return UNIT_WRONG_KIND;
    text = data_type_names[code];
    return UNIT_OK;
  }
  const Unit_CEntry* entry = Find(code);
  if (entry == nullptr) return UNIT_UNKNOWN_CODE;
  text = entry->text;
  return UNIT_OK;
}

std::uint32_t Unit_CTypeAndUnitContainer::UnitDetails(std::uint32_t code, const Unit_CEntry*& entry) const noexcept {
  if (!is_kind(code, CodeKind::unit)) return UNIT_WRONG_KIND;
  return Details(code, entry);
}

std::uint32_t Unit_CTypeAndUnitContainer::TypeDetails(std::uint32_t code, const Unit_CEntry*& entry) const noexcept {
  if (!is_type(kind_of_code(code))) return UNIT_WRONG_KIND;
  return Details(code, entry);
}

std::uint32_t Unit_CTypeAndUnitContainer::EnumerationValueDetails(std::uint32_t code,
                                                                  const Unit_CEntry*& entry) const noexcept {
  if (!is_kind(code, CodeKind::enumeration_value)) return UNIT_WRONG_KIND;
  return Details(code, entry);
}

std::uint32_t Unit_CTypeAndUnitContainer::Details(std::uint32_t code, const Unit_CEntry*& entry) const noexcept {
  const Unit_CEntry* found = Find(code);
  if (found == nullptr) return UNIT_UNKNOWN_CODE;
  entry = found;
  return UNIT_OK;
}

std::uint32_t Unit_CTypeAndUnitContainer::EnumerationValueByNumber(std::uint32_t type, double value,
                                                                   std::uint32_t& code) const noexcept {
  if (!is_kind(type, CodeKind::enumeration)) return UNIT_WRONG_KIND;
  const Unit_CEntry* owner = Find(type);
  if (owner == nullptr) return UNIT_UNKNOWN_CODE;
  for (std::uint32_t member : owner->members) {
    if (Find(member)->factor != value) continue;
    code = member;
    return UNIT_OK;
  }
  return UNIT_MISMATCH;
}

bool Unit_CTypeAndUnitContainer::CodeOfText(std::u16string_view text, std::uint32_t& code) const noexcept {
  code = 0;
  if (text.empty()) return true;
  const Tables* known = tables();
  if (const std::uint32_t* found = known != nullptr ? known->keys.Find(text) : nullptr) {
    code = *found;
    return true;
  }
  const auto* name = std::find(std::begin(data_type_names), std::end(data_type_names), text);
  if (name == std::end(data_type_names)) return false;
  code = static_cast<std::uint32_t>(name - std::begin(data_type_names));
  return true;
}

bool Unit_CTypeAndUnitContainer::IsSymbol(std::u16string_view text) const noexcept {
  return std::any_of(kept.all.begin(), kept.all.end(), [text](const KeptRow& row) {
    return row.kind == CodeKind::unit && equal_ignoring_case(text_of(row.text), text);
  });
}

std::uint32_t Unit_CTypeAndUnitContainer::ListMembers(CodeKind kind, std::uint32_t type,
                                                      std::vector<std::uint32_t>& codes) const {
  codes.clear();
  const Tables* known = tables();
  if (known == nullptr) throw std::bad_alloc();
  if (type == 0) {
    for (const Unit_CEntry& entry : known->entries)
      if (is_kind(entry.code, kind)) codes.push_back(entry.code);
    return UNIT_OK;
  }
  const Unit_CEntry* owner = nullptr;
  if (const std::uint32_t result = TypeDetails(type, owner); result != UNIT_OK) return result;
  std::copy_if(owner->members.begin(), owner->members.end(), std::back_inserter(codes),
               [kind](std::uint32_t code) { return is_kind(code, kind); });
  return UNIT_OK;
}

std::uint32_t Unit_CTypeAndUnitContainer::KindOfCode(std::uint32_t code) noexcept {
  return static_cast<std::uint32_t>(kind_of_code(code));
}

std::uint32_t Unit_CTypeAndUnitContainer::TypeOfUnit(std::uint32_t unit, std::uint32_t& type) noexcept {
  if (!is_kind(unit, CodeKind::unit)) return UNIT_WRONG_KIND;
  type = make_code(CodeKind::quantity, type_number(unit));
  return UNIT_OK;
}

std::uint32_t Unit_CTypeAndUnitContainer::Convert(std::uint32_t from, std::uint32_t to,
                                                  double& value) const noexcept {
  if (!is_kind(from, CodeKind::unit) || !is_kind(to, CodeKind::unit)) return UNIT_NOT_A_UNIT;
  if (type_number(from) != type_number(to)) return UNIT_MISMATCH;
  const Unit_CEntry* source = Find(from);
  const Unit_CEntry* target = Find(to);
  if (source == nullptr || target == nullptr) return UNIT_UNKNOWN_UNIT;
  if (from == to) return UNIT_OK;
  const double base = value * source->factor + source->offset;
  value = (base - target->offset) / target->factor;
  return UNIT_OK;
}

std::uint32_t Unit_CTypeAndUnitContainer::SystemDetails(std::uint32_t system,
                                                        const Unit_CEntry*& entry) const noexcept {
  const Tables* known = tables();
  const System* found = known != nullptr ? known->FindSystem(system) : nullptr;
  if (found == nullptr) return UNIT_UNKNOWN_CODE;
  entry = &found->entry;
  return UNIT_OK;
}

std::uint32_t Unit_CTypeAndUnitContainer::UnitInSystem(std::uint32_t system, std::uint32_t code) const noexcept {
  const Tables* known = tables();
  const System* found = known != nullptr ? known->FindSystem(system) : nullptr;
  if (found == nullptr) return code;
  const std::uint32_t mapped = found->map.Find(code);
  return mapped != CodeIndex::none ? mapped : code;
}

std::span<const Unit_CRateRelation> Unit_CTypeAndUnitContainer::RateRelations() const noexcept {
  const Tables* known = tables();
  if (known == nullptr) return {};
  return known->rates;
}

std::uint32_t Unit_CTypeAndUnitContainer::Add(CodeKind kind, std::uint32_t type, std::uint32_t member,
                                              std::u16string_view key, std::u16string_view text,
                                              std::u16string_view long_name, double factor, double offset) {
  if (key.empty() || text.data() == nullptr || type > 0xFFFF || member > 0xFF) return UNIT_BAD_ARGUMENT;
  std::uint32_t code = 0;
  Unit_CEntry* owner = nullptr;
  if (is_type(kind)) {
    code = make_code(kind, type);
    if (tables_->Find(code) != nullptr) return UNIT_ALREADY_EXISTS;
  } else if (kind == CodeKind::unit || kind == CodeKind::enumeration_value) {
    code = make_code(kind, type, member);
    owner = tables_->Find(make_code(kind == CodeKind::unit ? CodeKind::quantity : CodeKind::enumeration, type));
    if (owner == nullptr) return UNIT_UNKNOWN_CODE;
    if (tables_->Find(code) != nullptr) return UNIT_MEMBER_EXISTS;
  } else {
    return UNIT_BAD_ARGUMENT;
  }
  const auto position = static_cast<std::uint32_t>(tables_->entries.size());
  tables_->entries.push_back({code, key, text, long_name, factor, offset, {}});
  tables_->codes.Insert(code, position);
  if (owner != nullptr) owner->members.push_back(code);
  // Keys of enumeration values repeat ("normal", "fioor") and are looked up in their type only.
  if (kind != CodeKind::enumeration_value) tables_->keys.Insert(key, code);
  return UNIT_OK;
}

std::uint32_t Unit_CTypeAndUnitContainer::AddRateRelation(std::uint32_t rate_unit, std::uint32_t time_unit,
                                                          std::uint32_t quantity_unit) {
  if (!is_kind(rate_unit, CodeKind::unit) || !is_kind(time_unit, CodeKind::unit) ||
      !is_kind(quantity_unit, CodeKind::unit))
    return UNIT_WRONG_KIND;
  const Unit_CRateRelation relation{.rate_unit = rate_unit, .time_unit = time_unit, .quantity_unit = quantity_unit};
  // One relation for three quantity types: a later one takes the place of an earlier.
  for (Unit_CRateRelation& existing : tables_->rates) {
    if (type_number(existing.rate_unit) != type_number(rate_unit) ||
        type_number(existing.time_unit) != type_number(time_unit) ||
        type_number(existing.quantity_unit) != type_number(quantity_unit))
      continue;
    existing = relation;
    return UNIT_OK;
  }
  tables_->rates.push_back(relation);
  return UNIT_OK;
}

std::uint32_t Unit_CTypeAndUnitContainer::AddSystem(std::uint32_t system, std::u16string_view key,
                                                    std::u16string_view text, std::u16string_view long_name,
                                                    std::span<const Pair> pairs) {
  if (tables_->FindSystem(system) != nullptr) return UNIT_ALREADY_EXISTS;
  System made;
  made.entry = {.code = system, .key = key, .text = text, .long_name = long_name, .members = {}};
  CodeIndex& map = made.map;
  const auto enter = [&map](std::uint32_t from, std::uint32_t to) {
    if (map.Find(from) != CodeIndex::none) return false;
    map.Insert(from, to);
    return true;
  };
  for (const Pair& pair : pairs) {
    if (is_kind(pair.to, CodeKind::quantity) && pair.to == pair.from) {
      if (!enter(pair.to, pair.to)) return UNIT_ALREADY_EXISTS;
      continue;
    }
    std::uint32_t type = 0;
    if (const std::uint32_t result = TypeOfUnit(pair.to, type); result != UNIT_OK) return result;
    const std::uint32_t from = pair.from != 0 ? pair.from : type;
    if (type_number(from) != type_number(type)) return UNIT_MISMATCH;
    if (!enter(from, pair.to)) return UNIT_ALREADY_EXISTS;
    enter(pair.to, pair.to);
    enter(type, pair.to);
  }
  tables_->systems.push_back(std::move(made));
  return UNIT_OK;
}

}  // namespace norvane

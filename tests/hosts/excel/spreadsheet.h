// A small spreadsheet that loads the add-in and drives it as the real host does: cells, references,
// registrations, recalculation on several threads. It speaks one dialect a program (SHEET_EXCEL12 or not),
// counts what it hands out and notes every breach of the interface's rules.
#pragma once

#include <cstddef>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "tests/hosts/excel/values.h"

namespace sheet {

#if SHEET_EXCEL12
inline constexpr bool excel12 = true;
using Record = norvane::excel::XlRecord12;
#else
inline constexpr bool excel12 = false;
using Record = norvane::excel::XlRecord4;
#endif

struct Registration {
  std::string procedure;
  std::u16string type;
  std::u16string function;
  std::u16string arguments;
  std::u16string macro_type;
  std::u16string category;
  std::u16string help;
  std::vector<Value> argument_helps;
  void* entry = nullptr;
  std::size_t argument_count = 0;
};

class Spreadsheet {
 public:
  static Spreadsheet& Instance();

  // Loads the module and opens it; false with a note when that fails.
  bool Load(const char* path);
  int Open();
  int Close();
  // Whether the module really left the process.
  bool Unload();
  void* Entry(const char* name) const;

  void Set(Place cell, Value value);
  void SetUncalculated(Place cell);
  Value Get(Place cell);

  // Calls a registered function as a formula of the calling cells does.
  Value Call(const std::u16string& function, const std::vector<Value>& args, Place caller = Place::Cell(0, 99, 9),
             bool* met_uncalculated = nullptr);
  // The same with records that may be anything; null pointers too.
  Value CallRaw(const std::u16string& function, std::vector<Record*> args);
  const Record* CallUnchecked(const Registration& function, Record** args, Place caller);
  // A call of an exported entry that takes and gives a record (the add-in manager's).
  Value CallEntry(const char* name, const Value& arg);

  void SetFormula(Place cells, std::u16string function, std::vector<Value> args);
  // Calculates every formula; one that meets an uncalculated cell is called again later. The number of calls.
  int Recalculate(int threads);

  const Registration* Find(const std::u16string& function) const;
  const std::map<std::u16string, Registration>& registrations() const { return registrations_; }
  const std::vector<std::vector<Value>>& menu_commands() const { return menu_commands_; }
  int refused_registrations() const { return refused_; }

  // Answers "unknown function" to everything but xlfRegister and xlGetName.
  void SetMinimal(bool minimal) { minimal_ = minimal; }
  // Refuses the registration of this function, as a host does when it dislikes a text.
  void Refuse(std::u16string function) { refuse_ = std::move(function); }

  // Breaches of the rules so far, and what the add-in has not given back.
  std::vector<std::string> violations();
  std::size_t outstanding();
  std::size_t callbacks();

  int Callback(int function, int count, Record** args, Record* result);

 private:
  struct Cell {
    Value value;
    bool calculated = true;
  };
  struct Formula {
    Place cells;
    std::u16string function;
    std::vector<Value> args;
  };
  using Key = std::tuple<int, int, int>;

  void Note(std::string violation);
  int Answer(const Value& value, Record* result);
  int Free(int count, Record** args);
  int Coerce(int count, Record** args, Record* result);
  int Register(int count, Record** args, Record* result);
  bool Accept(Registration& entry, const std::vector<Value>& args);
  void Release(Record& record);
  Value ReadCells(const Place& place, bool& calculated);
  void Store(const Place& cells, const Value& value);

  void* module_ = nullptr;
  std::u16string module_name_;
  std::map<std::u16string, Registration> registrations_;
  std::vector<std::vector<Value>> menu_commands_;
  std::vector<Formula> formulas_;
  std::u16string refuse_;
  int refused_ = 0;
  bool minimal_ = false;

  std::mutex mutex_;  // of everything below
  std::map<Key, Cell> cells_;
  std::map<void*, std::size_t> blocks_;
  std::set<const void*> results_;  // records that await xlFree
  std::size_t callbacks_ = 0;
  std::vector<std::string> violations_;
};

}  // namespace sheet

// Function_CContext: the object through which one call of a function runs.
//
// A host resets the context, converts its arguments into FUNCTION_ARG values of the context's arena and executes
// a specification. The context checks the arguments against the input records, runs the implementation and completes
// the output. One context serves one thread; nothing is locked and, once warm, nothing is allocated on the heap.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "core/arena.h"
#include "framework/function_arg.h"
#include "framework/function_spec.h"
#include "framework/retentive.h"
#include "units/unit_catalogue.h"

namespace norvane {

// What a context knows of its caller; texts are host-owned and valid during the call.
struct Function_CCallerInfo {
  std::int32_t first_row = 0;
  std::int32_t first_column = 0;
  std::int32_t rows = 1;
  std::int32_t columns = 1;
  std::u16string_view range_text;  // "[Book]Sheet!R1C1"
  std::u16string_view scope_text;  // "[Book]Sheet"
};

enum MESSAGE_LEVEL : std::uint32_t { MESSAGE_ERROR = 0, MESSAGE_WARNING = 1 };

class Function_CContext {
 public:
  // Runs before the implementation, or after the output step; a non-zero result ends the row of hooks.
  using Hook = std::uint32_t (*)(Function_CContext& context, const Function_CFunctionSpec& spec, FUNCTION_ARG* args,
                                 std::size_t count, FUNCTION_ARG& output, std::uint32_t& flags, void* parameter);

  Function_CContext(const Function_CLibrary& library, const Unit_CTypeAndUnitContainer& units);
  virtual ~Function_CContext();  // slot 0
  Function_CContext(const Function_CContext&) = delete;
  Function_CContext& operator=(const Function_CContext&) = delete;

  // Slot 1. Converts to the kind (1 to 8) asked for. False on failure, with the error code in conversion_error().
  virtual bool ConvertArgument(FUNCTION_ARG& out, const FUNCTION_ARG& in, std::uint32_t kind) noexcept;
  // Slots 2 to 5: hooks of hosts, never called from the steps of a call. Slot 2: retentive data is about to be opened,
  // a host that finds its calling place only when it is wanted completes the caller's texts and the data slot now.
  virtual void HostNotify1() noexcept {}
  virtual bool HostQuery1() noexcept { return false; }
  virtual bool HostQuery2() noexcept { return false; }
  virtual void HostNotify2() noexcept {}
  // Slot 6. Text of an argument; missing and empty give the empty text.
  virtual bool GetString(const FUNCTION_ARG& in, std::u16string_view& text) noexcept;
  // Slot 7. As slot 6; an empty text fails unless allowed.
  virtual bool GetText(const FUNCTION_ARG& in, std::u16string_view& text, bool allow_empty) noexcept;
  // Slots 8 and 9: the steps before and after the implementation.
  virtual void ValidateArguments(std::uint32_t& status, const Function_CFunctionSpec& spec, FUNCTION_ARG* args,
                                 std::size_t count, FUNCTION_ARG& output, std::uint32_t& flags) noexcept;
  virtual void CompleteOutputs(std::uint32_t& status, const Function_CFunctionSpec& spec, FUNCTION_ARG* args,
                               std::size_t count, FUNCTION_ARG& output, std::uint32_t& flags) noexcept;
  // Slot 10. Level 0 is an error, 1 a warning.
  virtual void ReportMessage(std::uint32_t level, std::u16string_view text) noexcept;
  // Slot 11. The caller's place and size; null when unknown.
  virtual const Function_CCallerInfo* FetchCallerInfo() noexcept = 0;

  // Before each call: rewinds the arena, forgets the last conversion error.
  void Reset(const Function_CCallerInfo* caller = nullptr) noexcept {
    conversion_error_ = ERROR_OK;
    caller_ = caller;
    arena_.Reset();
  }

  // Runs a function. Returns a worksheet error code, 0 for success; flags receives the status flags word.
  std::uint32_t Execute(const Function_CFunctionSpec& spec, FUNCTION_ARG* args, std::size_t count,
                        FUNCTION_ARG& output, std::uint32_t& flags, std::uint64_t* data_slot = nullptr) noexcept;

  // The status of the last call that its fallback outputs replaced, 0 when they did not; and the same, but 0 where
  // those outputs tell of the failure themselves. A cell shows what is concealed, not the plausible 0 beside it.
  std::uint32_t replaced_status() const noexcept { return replaced_status_; }
  std::uint32_t concealed_error() const noexcept {
    return replaced_status_ == ERROR_OK || specification_->outputs_tell_failure() ? ERROR_OK : replaced_status_;
  }

  // Memory of the call; null when refused.
  void* Allocate(std::size_t size) noexcept { return arena_.Allocate(size); }
  Core_CArena& arena() noexcept { return arena_; }

  // Typed readers. An absent argument (null) counts as missing; missing and empty give the default where the
  // reader has one. False on failure, with the error code in conversion_error().
  bool ReadNumber(const FUNCTION_ARG* arg, double& value) noexcept;
  bool ReadNumber(const FUNCTION_ARG* arg, double& value, double fallback) noexcept;
  bool ReadInteger(const FUNCTION_ARG* arg, std::int32_t& value) noexcept;
  bool ReadInteger(const FUNCTION_ARG* arg, std::int32_t& value, std::int32_t fallback) noexcept;
  // From a number within 0 to 4294967295 (else ERROR_NUM), fraction truncated.
  bool ReadUnsigned(const FUNCTION_ARG* arg, std::uint32_t& value) noexcept;
  bool ReadBoolean(const FUNCTION_ARG* arg, bool& value) noexcept;
  bool ReadBoolean(const FUNCTION_ARG* arg, bool& value, bool fallback) noexcept;
  bool ReadText(const FUNCTION_ARG* arg, std::u16string_view& text) noexcept;
  bool ReadText(const FUNCTION_ARG* arg, std::u16string_view& text, std::u16string_view fallback) noexcept;
  bool ReadArray(const FUNCTION_ARG* arg, FUNCTION_ARG::Array& array) noexcept;
  bool ReadError(const FUNCTION_ARG* arg, std::uint32_t& code) noexcept;
  // A unit or enumeration code: a number is truncated, an integer taken as it is, a text looked up
  // in the unit catalogue (an empty text gives 0).
  bool ReadIdentifier(const FUNCTION_ARG* arg, std::uint32_t& code) noexcept;

  // A copy of the text in the arena; a null text makes the output ARG_MISSING. False when memory is refused.
  bool SetText(FUNCTION_ARG& output, std::u16string_view text) noexcept;
  // An array of ARG_EMPTY elements in the arena. False when memory is refused.
  bool SetArray(FUNCTION_ARG& output, std::uint32_t columns, std::uint32_t rows) noexcept;
  static FUNCTION_ARG& Element(const FUNCTION_ARG& array, std::uint32_t column, std::uint32_t row) noexcept {
    return array.array.elements[std::size_t{row} * array.array.columns + column];
  }

  // Core_CVariant to call value: texts are copied into the arena. False for values without a counterpart.
  bool FromVariant(FUNCTION_ARG& out, const Core_CVariant& value) noexcept;
  // Call value to Core_CVariant; a text is borrowed and must not outlive the call.
  bool ToVariant(Core_CVariant& out, const FUNCTION_ARG& value) noexcept;

  // Messages. With messages disabled nothing is formatted; the result is the same (ERROR_ERROR, ERROR_WARNING).
  std::uint32_t ReportError(std::size_t index, std::u16string_view message) noexcept;
  std::uint32_t ReportWarning(std::size_t index, std::u16string_view message) noexcept;
  std::uint32_t ReportError(std::u16string_view message) noexcept;
  std::uint32_t ReportWarning(std::u16string_view message) noexcept;
  bool messages_enabled() const noexcept { return messages_enabled_; }
  void EnableMessages(bool enabled) noexcept { messages_enabled_ = enabled; }

  // Hooks live as long as the context and run in the order of their registration.
  bool AddPreCallHook(Hook routine, void* parameter) noexcept;
  bool AddPostCallHook(Hook routine, void* parameter) noexcept;

  // The outputs' fallback values as the output of a failed call. False when memory is refused.
  bool WriteFallbackOutputs(const Function_CFunctionSpec& spec, FUNCTION_ARG& output) noexcept;

  const Function_CLibrary& library() const noexcept { return *library_; }
  const Unit_CTypeAndUnitContainer& units() const noexcept { return *units_; }
  const Function_CFunctionSpec* specification() const noexcept { return specification_; }
  FUNCTION_ARG* arguments() const noexcept { return arguments_; }
  std::size_t argument_count() const noexcept { return argument_count_; }
  std::uint64_t* data_slot() const noexcept { return data_slot_; }
  Function_CDataManager& data_manager() noexcept { return data_manager_; }
  std::uint32_t conversion_error() const noexcept { return conversion_error_; }
  // Given to Reset, or fetched on first use; null when the host does not know.
  const Function_CCallerInfo* caller_info() noexcept {
    if (caller_ == nullptr) caller_ = FetchCallerInfo();
    return caller_;
  }

 protected:
  void SetDataSlot(std::uint64_t* slot) noexcept { data_slot_ = slot; }
  bool FailConversion(std::uint32_t code) noexcept {
    conversion_error_ = code;
    return false;
  }

 private:
  struct HookNode {
    Hook routine;
    void* parameter;
    HookNode* next;
  };

  bool ConvertToNumber(FUNCTION_ARG& out, const FUNCTION_ARG& in) noexcept;
  bool ConvertToInteger(FUNCTION_ARG& out, const FUNCTION_ARG& in) noexcept;
  bool ConvertToBoolean(FUNCTION_ARG& out, const FUNCTION_ARG& in) noexcept;
  bool ConvertToString(FUNCTION_ARG& out, const FUNCTION_ARG& in) noexcept;
  bool ConvertToArray(FUNCTION_ARG& out, const FUNCTION_ARG& in) noexcept;
  const FUNCTION_ARG* FirstElement(const FUNCTION_ARG& array) noexcept;

  void SubstituteDefaults(const Function_CFunctionSpec& spec, FUNCTION_ARG* args, std::size_t n) noexcept;
  void CheckName(const Function_CFunctionSpec& spec, const FUNCTION_ARG* args, std::size_t count) noexcept;
  void CheckTypes(const Function_CFunctionSpec& spec, const FUNCTION_ARG* args, std::size_t n) noexcept;
  bool IsUnit(const FUNCTION_ARG& arg) noexcept;
  void CheckRange(std::size_t index, const Function_CInput& input, const FUNCTION_ARG& arg, std::uint32_t& status,
                  std::uint32_t& flags) noexcept;
  void ReportArgument(std::uint32_t level, std::size_t index, std::u16string_view message) noexcept;
  static bool AddHook(HookNode*& list, Hook routine, void* parameter) noexcept;

  const Function_CCallerInfo* caller_ = nullptr;
  std::uint64_t* data_slot_ = nullptr;
  const Function_CFunctionSpec* specification_ = nullptr;
  FUNCTION_ARG* arguments_ = nullptr;
  std::size_t argument_count_ = 0;
  FUNCTION_ARG* output_ = nullptr;
  const Function_CLibrary* library_;
  const Unit_CTypeAndUnitContainer* units_;
  std::uint32_t conversion_error_ = ERROR_OK;
  std::uint32_t replaced_status_ = ERROR_OK;
  bool messages_enabled_ = false;
  Function_CDataManager data_manager_;
  HookNode* pre_hooks_ = nullptr;
  HookNode* post_hooks_ = nullptr;
  Core_CArena arena_;
};

}  // namespace norvane

// The call context of spreadsheets: reads references through the host and knows the calling cells.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include "core/string_map.h"
#include "core/text_buffer.h"
#include "hosts/excel/convert.h"
#include "hosts/excel/xl_types.h"
#include "hosts/module/module.h"

namespace norvane::excel {

enum class Dialect : std::uint8_t { none, excel4, excel12 };

// The calling cells. For a single cell the end row and column are -1.
struct Excel_CCallerInfo : Function_CCallerInfo {
  std::int32_t end_row = -1;
  std::int32_t end_column = -1;
};

class Excel_CFunctionContext : public Function_CContext {
 public:
  // Calling cells whose data a thread keeps. A cell beyond takes the place of the oldest, whose unnamed data goes and
  // is calculated anew when it calls again; what a function keeps under a name stays.
  static constexpr std::size_t most_cells = 8192;

  Excel_CFunctionContext(const Function_CLibrary& library, const Unit_CTypeAndUnitContainer& units);

  // A reference is resolved into the values of its cells first, and stays resolved when it is an argument.
  bool ConvertArgument(FUNCTION_ARG& out, const FUNCTION_ARG& in, std::uint32_t kind) noexcept override;
  // Slot 2: retentive data is about to be opened, so the calling place must be known in full.
  void HostNotify1() noexcept override;
  void ReportMessage(std::uint32_t level, std::u16string_view text) noexcept override;
  const Function_CCallerInfo* FetchCallerInfo() noexcept override;
  // Slot 12. Runs a function for a cell. ERROR_NA when a referenced cell is not calculated yet: the host calls again.
  virtual std::uint32_t Run(Dialect dialect, const Function_CFunctionSpec& spec, FUNCTION_ARG* args,
                            std::size_t count, FUNCTION_ARG& output, std::uint64_t* data_slot) noexcept;

 private:
  template <class Record>
  bool Coerce(const FUNCTION_ARG& reference, FUNCTION_ARG* value) noexcept;
  bool Resolve(const FUNCTION_ARG& reference, FUNCTION_ARG* value) noexcept;
  template <class Record>
  void FindCaller() noexcept;
  template <class Record>
  bool FindSheet() noexcept;
  bool NoteAnswer(int answer) noexcept;

  std::uint64_t* SlotOf(std::u16string_view cell) noexcept;

  // Book and sheet (at most 255 characters in either dialect), and "!R1048576C16384:R1048576C16384".
  static constexpr std::size_t longest_sheet = 255;
  static constexpr std::size_t longest_place = longest_sheet + 32;

  Dialect dialect_ = Dialect::none;
  bool host_closed_ = false;  // after "uncalculated" or "aborted" the host may be asked for nothing but to free
  bool caller_asked_ = false;
  bool caller_known_ = false;
  bool place_asked_ = false;
  Excel_CCallerInfo caller_;
  TextBuffer<longest_place> place_;
  // One data slot a calling cell, by its text, oldest first; the values keep their address.
  Core_CCIStringMap<std::uint64_t> slots_;
};

// The context of one thread of this image.
class XLL_CFunctionContext final : public Excel_CFunctionContext {
 public:
  XLL_CFunctionContext(const Function_CLibrary& library, const Unit_CTypeAndUnitContainer& units,
                       std::uint32_t thread_id)
      : Excel_CFunctionContext(library, units), thread_id_(thread_id) {}
  std::uint32_t thread_id() const noexcept { return thread_id_; }

 private:
  std::uint32_t thread_id_;
};

// Every context of this image is made here, whatever host asks for it first.
std::unique_ptr<Function_CContext> make_context(const host::Module& module);

}  // namespace norvane::excel

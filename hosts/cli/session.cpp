#include "hosts/cli/session.h"

#include <limits>
#include <memory>
#include <new>
#include <utility>

#include "catalogue/catalogue.h"
#include "core/text.h"

namespace norvane::cli {
namespace {

// Named retentive data is a cache, and a long session may use any number of names: beyond this many objects
// the session starts afresh, which costs time and changes no result.
constexpr std::size_t most_retentive_objects = 4096;

constexpr FUNCTION_ARG not_written = {{}, ARG_EMPTY};

const host::Module& catalogues() {
  const host::Module* module = host::module();
  if (module == nullptr) throw std::bad_alloc();
  return *module;
}

}  // namespace

host::ThreadState Session::new_state(const host::Module& module, host::RecordingContext*& context) {
  auto made = std::make_unique<host::RecordingContext>(module);
  context = made.get();
  return {std::move(made), catalogue::count()};
}

Session::Session() : module_(catalogues()), state_(new_state(module_, context_)) {}

void Session::begin(const Function_CFunctionSpec& spec) {
  if (context_->data_manager().Count() > most_retentive_objects) state_ = new_state(module_, context_);
  context_->Reset();
  context_->Forget();
  spec_ = &spec;
  arguments_.assign(spec.input_count, FUNCTION_ARG::Missing());
  output_ = FUNCTION_ARG::Empty();
  status_ = ERROR_OK;
  flags_ = 0;
  remarks_ = 0;
}

FUNCTION_ARG Session::text(std::u16string_view text) {
  FUNCTION_ARG value = FUNCTION_ARG::Missing();
  // A view without a place would stand for no text at all.
  if (!context_->SetText(value, text.data() == nullptr ? std::u16string_view(u"") : text)) throw std::bad_alloc();
  return value;
}

FUNCTION_ARG Session::text(std::string_view utf8) { return text(std::u16string_view(to_utf16(utf8))); }

FUNCTION_ARG Session::array(std::size_t columns, std::size_t rows) {
  constexpr std::size_t most = std::numeric_limits<std::uint32_t>::max();
  if (columns > most || rows > most) throw std::bad_alloc();
  FUNCTION_ARG value = FUNCTION_ARG::Missing();
  if (!context_->SetArray(value, static_cast<std::uint32_t>(columns), static_cast<std::uint32_t>(rows)))
    throw std::bad_alloc();
  return value;
}

void Session::remark(std::size_t input, std::u16string_view text) {
  std::u16string message = u"[" + to_utf16(std::to_string(input + 1)) + u"] ";
  context_->ReportMessage(MESSAGE_WARNING, message.append(spec_->inputs[input].key).append(u": ").append(text));
  remarks_ = context_->messages().size();
}

void Session::run() {
  status_ = context_->Execute(*spec_, arguments_.data(), arguments_.size(), output_, flags_, state_.slot(*spec_));
  if (status_ == ERROR_OK) status_ = context_->concealed_error();
  error_ = FUNCTION_ARG::Error(status_);
}

const FUNCTION_ARG& Session::output(std::size_t index) const {
  if (status_ != ERROR_OK) return error_;
  if (spec_->output_count == 1) return output_;
  if (output_.kind == ARG_ARRAY) return index < output_.count() ? output_.array.elements[index] : not_written;
  return index == 0 ? output_ : not_written;
}

bool Session::good() const {
  if (status_ != ERROR_OK || fallback()) return false;
  for (std::size_t i = 0; i < spec_->output_count; ++i) {
    if (spec_->outputs[i].role != 1) continue;
    const FUNCTION_ARG& value = output(i);
    if ((value.kind == ARG_NUMBER && value.number != 0.0) || (value.kind == ARG_INTEGER && value.integer != 0) ||
        value.kind == ARG_ERROR)
      return false;
  }
  return true;
}

std::uint32_t error_of_text(std::string_view text) {
  if (text.size() < 2 || text.size() > 32 || text.front() != '#') return ERROR_OK;
  const std::u16string wide = to_utf16(text);
  for (std::uint32_t code = ERROR_NULL; code <= ERROR_ACCESSOR; ++code)
    if (equal_ignoring_case(error_text(code), wide)) return code;
  return ERROR_OK;
}

}  // namespace norvane::cli

#include "hosts/module/recording_context.h"

namespace norvane::host {
namespace {

// A call reports a few messages; a flood would only hold memory.
constexpr std::size_t most_messages = 1000;

}  // namespace

void RecordingContext::ReportMessage(std::uint32_t level, std::u16string_view text) noexcept {
  if (count_ == most_messages) return;
  try {
    if (count_ == messages_.size()) messages_.emplace_back();
    messages_[count_].text.assign(text);
    messages_[count_].level = level;
    ++count_;
  } catch (...) {
    // Without memory the call goes on without the message.
  }
}

}  // namespace norvane::host

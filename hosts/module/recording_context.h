// A context that takes down what a call says: for the command line, and for callers who ask why a call was refused.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "hosts/module/module.h"

namespace norvane::host {

struct Message {
  std::uint32_t level = MESSAGE_ERROR;
  std::u16string text;
};

class RecordingContext final : public Module_CFunctionContext {
 public:
  explicit RecordingContext(const Module& module) : Module_CFunctionContext(module.library, module.units) {
    EnableMessages(true);
  }
  void ReportMessage(std::uint32_t level, std::u16string_view text) noexcept override;
  // Before each call; the storage of earlier messages is used again.
  void Forget() noexcept { count_ = 0; }
  std::span<const Message> messages() const noexcept { return {messages_.data(), count_}; }

 private:
  std::vector<Message> messages_;
  std::size_t count_ = 0;
};

}  // namespace norvane::host

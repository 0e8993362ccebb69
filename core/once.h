// What is made when it is first asked for, by whichever thread asks first.
#pragma once

#include <atomic>
#include <mutex>

namespace norvane {

class Once {
 public:
  // Runs the routine unless it has run. When it throws, nothing has happened and who asks next runs it again
  // (std::call_once promises the same, but not with every system's threads).
  template <class Routine>
  void run(Routine&& routine) {
    if (done_.load(std::memory_order_acquire)) return;
    const std::lock_guard lock(mutex_);
    if (done_.load(std::memory_order_relaxed)) return;
    routine();
    done_.store(true, std::memory_order_release);
  }

 private:
  std::mutex mutex_;
  std::atomic<bool> done_{false};
};

}  // namespace norvane

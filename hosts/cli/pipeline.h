// Work that is cut into blocks, done on several threads and delivered in its order: blocks go round a ring, filled by
// the caller, worked on by any thread, taken by the caller in the order in which they were filled.
#pragma once

#include <algorithm>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

namespace norvane::cli {

template <class Block>
class Pipeline {
 public:
  using Work = std::function<void(Block&)>;

  // `make_work` is called once in every thread.
  Pipeline(unsigned jobs, std::function<Work()> make_work) : Pipeline(std::size_t{jobs} * 4, std::move(make_work)) {
    // The object lives from here on, so that a thread that cannot be had ends those before it.
    workers_.reserve(jobs);
    try {
      for (unsigned i = 0; i < jobs; ++i) workers_.emplace_back([this] { work(); });
    } catch (const std::system_error&) {
      // Fewer threads than asked for do the same work.
      if (workers_.empty()) throw;
    }
  }
  ~Pipeline() {
    {
      const std::lock_guard lock(mutex_);
      closed_ = true;
      taken_ = filled_;
    }
    work_.notify_all();
    for (std::thread& worker : workers_) worker.join();
  }
  Pipeline(const Pipeline&) = delete;
  Pipeline& operator=(const Pipeline&) = delete;

  bool full() const { return filled_ - delivered_ == ring_.size(); }
  bool idle() const { return filled_ == delivered_; }
  // A block to fill; only while the ring is not full.
  Block& next() { return ring_[filled_ % ring_.size()].block; }
  void hand_over() {
    {
      const std::lock_guard lock(mutex_);
      ring_[filled_ % ring_.size()].done = false;
      ++filled_;
    }
    work_.notify_one();
  }
  // The oldest block, once it is done; null when it is not and `wait` is false. What its work threw is thrown here.
  Block* oldest(bool wait) {
    std::unique_lock lock(mutex_);
    if (filled_ == delivered_) return nullptr;
    Place& place = ring_[delivered_ % ring_.size()];
    if (wait) done_.wait(lock, [&] { return place.done; });
    if (!place.done) return nullptr;
    if (place.failure) std::rethrow_exception(place.failure);
    return &place.block;
  }
  void delivered() {
    const std::lock_guard lock(mutex_);
    ++delivered_;
  }

 private:
  struct Place {
    Block block;
    std::exception_ptr failure;
    bool done = false;
  };

  Pipeline(std::size_t places, std::function<Work()> make_work) : make_work_(std::move(make_work)), ring_(places) {}

  void work() {
    Work function;
    for (;;) {
      Place* place = nullptr;
      {
        std::unique_lock lock(mutex_);
        work_.wait(lock, [this] { return closed_ || taken_ < filled_; });
        if (taken_ == filled_) return;
        place = &ring_[taken_++ % ring_.size()];
      }
      place->failure = nullptr;
      try {
        if (!function) function = make_work_();
        function(place->block);
      } catch (...) {
        place->failure = std::current_exception();
      }
      {
        const std::lock_guard lock(mutex_);
        place->done = true;
      }
      done_.notify_one();
    }
  }

  std::function<Work()> make_work_;
  std::vector<Place> ring_;
  std::uint64_t filled_ = 0, taken_ = 0, delivered_ = 0;
  bool closed_ = false;
  std::mutex mutex_;
  std::condition_variable work_, done_;
  std::vector<std::thread> workers_;
};

}  // namespace norvane::cli

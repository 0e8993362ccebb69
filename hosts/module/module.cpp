#include "hosts/module/module.h"

#include <atomic>
#include <mutex>
#include <new>

#include "core/once.h"
#include "hosts/module/function_state.h"
#include "hosts/module/recording_context.h"

#if defined(_WIN32)
#include <windows.h>
#else
#include <pthread.h>
#endif

#if defined(__SSE2__)
#include <xmmintrin.h>
#else
#include <cfenv>
#endif

namespace norvane::host {
namespace {

// One pointer a thread. A thread_local object with a destructor would pin a Windows DLL in its process, so
// the slot is the system's own and DllMain (or the key's destructor) clears it.
#if defined(_WIN32)
using Key = DWORD;
void* get_value(Key key) noexcept { return TlsGetValue(key); }
bool set_value(Key key, void* value) noexcept { return TlsSetValue(key, value) != 0; }
bool make_key(Key& key) noexcept {
  key = TlsAlloc();
  return key != TLS_OUT_OF_INDEXES;
}
void free_key(Key key) noexcept { TlsFree(key); }
#else
using Key = pthread_key_t;
void* get_value(Key key) noexcept { return pthread_getspecific(key); }
bool set_value(Key key, void* value) noexcept { return pthread_setspecific(key, value) == 0; }
void thread_value_ended(void* value) noexcept;
bool make_key(Key& key) noexcept {
  return pthread_key_create(&key, [](void* value) { thread_value_ended(value); }) == 0;
}
void free_key(Key key) noexcept { pthread_key_delete(key); }
#endif

// A thread's state in the list of all, so that unloading the image leaves none behind.
struct Registered {
  Registered(std::unique_ptr<Function_CContext> context, std::size_t functions)
      : state(std::move(context), functions) {}
  ThreadState state;
  Registered* next = nullptr;
  Registered* previous = nullptr;
};

struct Registry {
  std::mutex mutex;
  Registered* first = nullptr;
  Key key{};
  std::atomic<bool> attached{false};
  std::atomic<ContextFactory> factory{nullptr};
  std::atomic<bool> short_of_memory{false};  // a thread could have no state; told to the next one that has one
};

Registry& registry() noexcept {
  static Registry instance;
  return instance;
}

void destroy(Registered* entry) noexcept {
  if (entry == nullptr) return;
  {
    const std::lock_guard lock(registry().mutex);
    (entry->previous != nullptr ? entry->previous->next : registry().first) = entry->next;
    if (entry->next != nullptr) entry->next->previous = entry->previous;
  }
  delete entry;
}

#if !defined(_WIN32)
void thread_value_ended(void* value) noexcept { destroy(static_cast<Registered*>(value)); }
#endif

Once module_made;
std::unique_ptr<const Module> the_module;

void fill(Function_CLibrary& library) {
  catalogue::register_extended(library);
  catalogue::register_math(library);
  catalogue::register_gerg_math(library);
}

std::unique_ptr<Function_CContext> make_plain_context(const Module& shared) {
  return std::make_unique<Module_CFunctionContext>(shared.library, shared.units);
}

ThreadState* make_thread_state() noexcept {
  try {
    const Module* shared = module();
    if (shared == nullptr) throw std::bad_alloc();
    const ContextFactory factory = registry().factory.load(std::memory_order_acquire);
    auto context = factory != nullptr ? factory(*shared) : make_plain_context(*shared);
    auto entry = std::make_unique<Registered>(std::move(context), catalogue::count());
    if (!set_value(registry().key, entry.get())) throw std::bad_alloc();
    if (registry().short_of_memory.exchange(false)) entry->state.last_call.end = LastCall::End::no_context;
    const std::lock_guard lock(registry().mutex);
    entry->next = registry().first;
    if (entry->next != nullptr) entry->next->previous = entry.get();
    registry().first = entry.get();
    return &entry.release()->state;
  } catch (...) {
    registry().short_of_memory = true;
    return nullptr;
  }
}

}  // namespace

ThreadState::ThreadState(std::unique_ptr<Function_CContext> context, std::size_t functions)
    : context_(std::move(context)),
      slots_(std::make_unique<std::uint64_t[]>(functions)),
      function_states_(std::make_unique<std::unique_ptr<FunctionState>[]>(functions)) {}
ThreadState::~ThreadState() = default;
ThreadState::ThreadState(ThreadState&&) noexcept = default;
ThreadState& ThreadState::operator=(ThreadState&&) noexcept = default;

RecordingContext* ThreadState::recorder() noexcept {
  try {
    if (recorder_ == nullptr) recorder_ = std::make_unique<RecordingContext>(*module());
  } catch (...) {
    // Whoever asked goes without.
  }
  return recorder_.get();
}

FunctionState* ThreadState::function_state(const Signature& signature) noexcept {
  std::unique_ptr<FunctionState>& place = function_states_[signature.spec->position];
  if (place != nullptr && place->signature == &signature) return place.get();
  try {
    place = std::make_unique<FunctionState>(signature);
    return place.get();
  } catch (...) {
    return nullptr;
  }
}

BatchMemory* ThreadState::batch_memory() noexcept {
  if (batch_memory_ == nullptr) batch_memory_.reset(new (std::nothrow) BatchMemory);
  return batch_memory_.get();
}

HeldContext::HeldContext(const Function_CCallerInfo* caller) noexcept : state_(thread_state()) {
  if (state_ == nullptr) return;
  held_ = state_->enter();
  if (!held_) {
    state_->last_call = {.end = LastCall::End::busy};
    return;
  }
  state_->last_call = {};
  state_->context().Reset(caller);
}

const Module* module() noexcept {
  try {
    module_made.run([] {
      the_module.reset(new Module{Function_CLibrary(fill), Unit_CTypeAndUnitContainer::Instance()});
    });
    return the_module.get();
  } catch (...) {
    return nullptr;
  }
}

void set_context_factory(ContextFactory factory) noexcept {
  registry().factory.store(factory, std::memory_order_release);
}

bool attach() noexcept {
  Registry& all = registry();
  const std::lock_guard lock(all.mutex);
  if (all.attached.load(std::memory_order_relaxed)) return true;
  if (!make_key(all.key)) return false;
  all.attached.store(true, std::memory_order_release);
  return true;
}

void detach() noexcept {
  Registry& all = registry();
  if (!all.attached.exchange(false)) return;
  free_key(all.key);
  while (all.first != nullptr) destroy(all.first);
}

ThreadState* thread_state() noexcept {
  if (!registry().attached.load(std::memory_order_acquire) && !attach()) return nullptr;
  void* value = get_value(registry().key);
  return value != nullptr ? &static_cast<Registered*>(value)->state : make_thread_state();
}

void thread_ended() noexcept {
  if (!registry().attached.load(std::memory_order_acquire)) return;
  auto* entry = static_cast<Registered*>(get_value(registry().key));
  if (entry == nullptr) return;
  set_value(registry().key, nullptr);
  destroy(entry);
}

#if defined(__SSE2__)
namespace {
// All traps masked, round to nearest, denormals kept.
constexpr unsigned int standard_control = 0x1F80;
constexpr unsigned int exception_flags = 0x3F;
}  // namespace

FloatingPointGuard::FloatingPointGuard() noexcept : saved_(_mm_getcsr()) {
  if ((saved_ & ~exception_flags) != standard_control) _mm_setcsr(standard_control);
}
// Reading and writing the register cost as much as a short calculation: where nothing was set nothing is put back, and
// what the calculation raised stays noted, as after any arithmetic.
FloatingPointGuard::~FloatingPointGuard() {
  if ((saved_ & ~exception_flags) != standard_control) _mm_setcsr(saved_);
}
#else
FloatingPointGuard::FloatingPointGuard() noexcept { saved_ = static_cast<std::uint32_t>(std::fegetround()); }
FloatingPointGuard::~FloatingPointGuard() { std::fesetround(static_cast<int>(saved_)); }
#endif

}  // namespace norvane::host

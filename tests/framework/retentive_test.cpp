#include "framework/data_accessor.h"

#include <gtest/gtest.h>

#include <cstring>
#include <thread>
#include <vector>

#include "tests/support/call.h"

namespace norvane {
namespace {

using test::TestContext;

int alive = 0;
struct Counter : Function_CData {
  Counter() { ++alive; }
  ~Counter() override { --alive; }
  int value = 0;
};
const Function_CTypeOf<Counter> counter_type(u"Counter");
const Function_CTypeOf<Counter> other_type(u"Other");
const Function_CTypeOf<Function_CSynchronizedData, true> shared_type(u"Shared");

std::uint32_t nothing(Function_CContext&, FUNCTION_ARG*, std::size_t, FUNCTION_ARG&) { return 0; }

// A context in the middle of a call from one place.
class Place {
 public:
  explicit Place(TestContext& context) : context_(context) {}
  Function_CData* Open(const Function_CRegisteredType& type, std::u16string_view name, bool global = false) {
    static const Function_CFunctionSpec spec(record::Function{.id = u"Nothing", .implementation = &nothing});
    context_.slot = &slot;
    context_.Run(spec, {});
    return accessor.Open(context_, type, name, global) ? accessor.data() : nullptr;
  }
  std::uint64_t slot = 0;
  Function_CDataAccessor accessor;

 private:
  TestContext& context_;
};

TEST(Retentive, APlaceKeepsItsObjectAndAnotherPlaceGetsAnother) {
  TestContext context;
  Place a(context);
  Place b(context);
  Function_CData* first = a.Open(counter_type, u"");
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(a.Open(counter_type, u""), first);
  EXPECT_NE(b.Open(counter_type, u""), first);
  EXPECT_EQ(first->name.substr(0, 11), u"CachedData:");
  EXPECT_EQ(context.data_manager().Count(), 2u);
  // A cell whose formula changes to another function must not see the old function's object.
  EXPECT_EQ(a.Open(other_type, u"")->type, &other_type);
  EXPECT_EQ(a.Open(counter_type, u""), first);
  context.data_manager().Clear();
  EXPECT_EQ(alive, 0);
  EXPECT_NE(a.Open(counter_type, u""), nullptr);  // the slot's handle is of the past
}

TEST(Retentive, NamesAreScopedByTypeAndCallerAndFoldCase) {
  TestContext context;
  Place a(context);
  Place b(context);
  context.caller.scope_text = u"[Book]Sheet";
  Function_CData* first = a.Open(counter_type, u"Meter");
  EXPECT_EQ(first->key, u"Counter.[Book]Sheet!Meter");
  EXPECT_EQ(b.Open(counter_type, u"METER"), first);
  context.caller.scope_text = u"[Book]Other";
  Place c(context);
  EXPECT_NE(c.Open(counter_type, u"Meter"), first);
  context.slot = nullptr;
}

TEST(Retentive, ATypeReplacesAnotherUnderTheSameGlobalKey) {
  TestContext context;
  Place a(context);
  Place b(context);
  Place c(context);
  ASSERT_NE(a.Open(counter_type, u"Global", true), nullptr);
  EXPECT_EQ(alive, 1);
  Function_CData* second = b.Open(other_type, u"global", true);
  ASSERT_NE(second, nullptr);
  EXPECT_EQ(alive, 1);
  EXPECT_EQ(context.data_manager().OfHandle(a.slot), nullptr);
  context.data_manager().SetNoReplace(true);
  EXPECT_EQ(c.Open(counter_type, u"Global", true), nullptr);
  EXPECT_EQ(context.data_manager().OfHandle(b.slot), second);
}

TEST(Retentive, WithoutSlotAndNameTheCallingRangeIsTheKey) {
  TestContext context;
  context.caller.range_text = u"[Book]Sheet!R1C1";
  Function_CDataAccessor accessor;
  ASSERT_TRUE(accessor.Open(context, counter_type, u""));
  EXPECT_EQ(accessor.data()->key, u"[Book]Sheet!R1C1");
  EXPECT_EQ(accessor.data()->caller, u"[Book]Sheet!R1C1");
  const std::u16string endless(5000, u'n');
  ASSERT_TRUE(accessor.Open(context, counter_type, endless));
  EXPECT_EQ(accessor.data()->key.size(), 1024u);
}

TEST(Retentive, BufferOperations) {
  Function_CSynchronizedData data;
  void* bytes = nullptr;
  std::size_t size = 9;
  EXPECT_EQ(data.GetBuffer(bytes, size, 0), 4u);
  EXPECT_EQ(bytes, nullptr);
  EXPECT_EQ(data.GetBuffer(bytes, size, 16), 2u);
  EXPECT_EQ(static_cast<unsigned char*>(bytes)[15], 0);
  EXPECT_EQ(data.GetBuffer(bytes, size, 99), 0u);
  EXPECT_EQ(size, 16u);
  EXPECT_EQ(data.SetBuffer(nullptr, 4), 1u);
  EXPECT_EQ(data.SetBuffer("abc", 0), 1u);
  EXPECT_EQ(data.SetBuffer(bytes, 17), 1u);  // more of its own buffer than there is
  std::memcpy(bytes, "0123456789abcdef", 16);
  EXPECT_EQ(data.SetBuffer(bytes, 5), 0u);  // its own buffer, cut
  void* again = nullptr;
  data.GetBuffer(again, size, 0);
  EXPECT_EQ(again, bytes);
  EXPECT_EQ(size, 5u);
  EXPECT_EQ(data.SetBuffer("xyz", 3), 0u);
  data.GetBuffer(again, size, 0);
  EXPECT_EQ(std::memcmp(again, "xyz", 3), 0);
  EXPECT_EQ(data.FreeBuffer(), 0u);
  EXPECT_EQ(data.GetBuffer(bytes, size, 0), 4u);
}

TEST(Retentive, ThreadsShareTheSynchronisationOfAKey) {
  constexpr int rounds = 2000;
  Function_CSynchronization* seen[4] = {};
  const auto work = [&seen](std::size_t index) {
    TestContext context;
    Function_CDataAccessor accessor;
    ASSERT_TRUE(accessor.Open(context, shared_type, u"SharedCounter", true));
    EXPECT_EQ(context.data_manager().InUse(), 1u);
    Function_CSynchronization& sync = *accessor.data()->synchronization;
    seen[index] = &sync;
    for (int i = 0; i < rounds; ++i) {
      sync.Lock();
      if (sync.shared == nullptr) sync.shared = std::make_shared<int>(0);
      ++*static_cast<int*>(sync.shared.get());
      sync.Unlock();
    }
  };
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < 4; ++i) threads.emplace_back(work, i);
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(seen[0], seen[3]);
  EXPECT_EQ(*static_cast<int*>(seen[0]->shared.get()), 4 * rounds);
}

}  // namespace
}  // namespace norvane

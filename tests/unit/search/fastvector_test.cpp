// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "search/fastvector.h"

#include <gmock/gmock.h>
#include <sys/resource.h>

#include "search/csat.h"
#include "support/captured_output.h"

#if defined(__SANITIZE_ADDRESS__)
#define VORLAN_ADDRESS_SANITIZER
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define VORLAN_ADDRESS_SANITIZER
#endif
#endif

namespace vorlan {
namespace {

using ::testing::Eq;
using ::testing::ExitedWithCode;

constexpr const char* kFailedGrowth = "Program aborded due to failed realloc!\n";

TEST(FastVector, GrowsByDoublingFrom4AndKeepsItsElements) {
  fastvector<int> numbers;
  EXPECT_EQ(numbers.buf, nullptr);
  EXPECT_EQ(numbers.capacity, 0U);
  for (int i = 0; i < 17; ++i) {
    numbers.push_back(i * i);
    const unsigned capacity = i < 4 ? 4 : i < 8 ? 8 : i < 16 ? 16 : 32;
    EXPECT_EQ(numbers.capacity, capacity) << i;
  }
  ASSERT_EQ(numbers.size, 17U);
  for (int i = 0; i < 17; ++i) EXPECT_EQ(numbers.buf[i], i * i);
}

TEST(FastVector, AnEmptiedVectorDoesNotAllocateUntilItsOldCapacityIsExceeded) {
  fastvector<int> numbers;
  for (int i = 0; i < 4; ++i) numbers.push_back(i);
  const int* memory = numbers.buf;
  numbers.size = 0;
  for (int i = 0; i < 4; ++i) numbers.push_back(i);
  EXPECT_EQ(numbers.buf, memory);
  EXPECT_EQ(numbers.capacity, 4U);
  numbers.push_back(4);
  EXPECT_EQ(numbers.capacity, 8U);
}

TEST(FastVector, AReleasedVectorHasNoMemoryAndBeginsAgainWith4) {
  fastvector<int> numbers;
  for (int i = 0; i < 9; ++i) numbers.push_back(i);
  numbers.release();
  EXPECT_EQ(numbers.buf, nullptr);
  EXPECT_EQ(numbers.size, 0U);
  EXPECT_EQ(numbers.capacity, 0U);
  numbers.push_back(7);
  EXPECT_EQ(numbers.capacity, 4U);
  EXPECT_EQ(numbers.buf[0], 7);
}

// A vector that claims to be full at 2^31 elements cannot double within 32 bits.
TEST(FastVectorDeathTest, AGrowthBeyond32BitsEndsTheProcessWithAMessageAndStatus0) {
  fastvector<int> numbers;
  numbers.push_back(1);
  EXPECT_EXIT(
      {
        send_standard_output_to_standard_error();
        numbers.size = numbers.capacity = 0x8000'0000U;
        numbers.push_back(2);
      },
      ExitedWithCode(0), Eq(kFailedGrowth));
}

void push_back_until_memory_is_short() {
  constexpr rlim_t kSpare = rlim_t{64} << 20;
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  const rlim_t limit = static_cast<rlim_t>(usage.ru_maxrss) * 1024 + kSpare;
  const rlimit limits{limit, limit};
  setrlimit(RLIMIT_AS, &limits);
  fastvector<Missense> events;
  for (;;) events.push_back({nullptr, 'M'});
}

TEST(FastVectorDeathTest, AGrowthWithoutMemoryEndsTheProcessWithAMessageAndStatus0) {
#ifdef VORLAN_ADDRESS_SANITIZER
  GTEST_SKIP() << "the address sanitizer ends the process before the allocation can fail";
#endif
  EXPECT_EXIT(
      {
        send_standard_output_to_standard_error();
        push_back_until_memory_is_short();
      },
      ExitedWithCode(0), Eq(kFailedGrowth));
}

}  // namespace
}  // namespace vorlan

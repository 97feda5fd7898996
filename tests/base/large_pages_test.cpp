#include "base/large_pages.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

namespace sw::base {
namespace {

// Storage moves between the ordinary allocator and large pages as it grows and shrinks; what it
// holds must come along every time.
TEST(LargePageAllocator, ContentsSurviveGrowingPastAndShrinkingBelowTheLargeSize) {
  std::vector<std::uint32_t, LargePageAllocator<std::uint32_t>> numbers;
  const std::size_t large = 3 * kLargePageWorth / sizeof(std::uint32_t);
  for (std::uint32_t i = 0; i < large; ++i) numbers.push_back(i * 7u);
  EXPECT_EQ(numbers[large - 1], (large - 1) * 7u);
  numbers.resize(10);
  numbers.shrink_to_fit();
  EXPECT_EQ(numbers[9], 63u);

  std::basic_string<char, std::char_traits<char>, LargePageAllocator<char>> text;
  text.reserve(kLargePageWorth + 1);
  text.append(kLargePageWorth + 1, 'a');
  text += "slut";
  EXPECT_EQ(text.size(), kLargePageWorth + 5);
  EXPECT_EQ(text.substr(text.size() - 5), "aslut");
  auto copy = text;
  text.clear();
  text.shrink_to_fit();
  EXPECT_EQ(copy.back(), 't');
}

}  // namespace
}  // namespace sw::base

#include <support/EmulatedAvx512.hpp>

// As if the compiler had been told that the machine has the extensions.
#define __AVX512VNNI__ 1
#define __AVX512IFMA__ 1

#include "StatsText.hpp"

namespace orlix::test
{

template <class T>
class EmulatedStatsExtensions : public testing::Test
{
};
TYPED_TEST_SUITE(EmulatedStatsExtensions, PixelTypes);

TYPED_TEST(EmulatedStatsExtensions, AreThoseOfOtherDomains)
{
    compareStatsText<TypeParam>();
}

} // namespace orlix::test

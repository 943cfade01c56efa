#include "StatsText.hpp"

namespace orlix::test
{

template <class T>
class EmulatedStats : public testing::Test
{
};
TYPED_TEST_SUITE(EmulatedStats, PixelTypes);

TYPED_TEST(EmulatedStats, AreThoseOfOtherDomains)
{
    compareStatsText<TypeParam>();
}

} // namespace orlix::test

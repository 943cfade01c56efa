#include <support/TestImages.hpp>

#include <gtest/gtest.h>

namespace orlix::test
{

class InstructionSet : public testing::TestWithParam<core::eInstructionSet::domain>
{
};

// The tests of kernels run every set that the machine has; this one names what they could not run.
TEST_P(InstructionSet, IsTestedOnThisMachine)
{
    if (!core::isAvailable(GetParam())) {
        GTEST_SKIP() << "this machine has no " << core::getName(GetParam()) << ": its kernels were not run";
    }
}

INSTANTIATE_TEST_SUITE_P(Sets, InstructionSet, testing::ValuesIn(allSets),
                         [](const auto& set) { return std::string{core::getName(set.param)}; });

} // namespace orlix::test

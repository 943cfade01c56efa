#pragma once

#include <gtest/gtest.h>

namespace orlix::test
{

/// The seven types that kernels are written for.
using PixelTypes = testing::Types<unsigned char, signed char, unsigned short, short, unsigned int, int, float>;

} // namespace orlix::test

#include <framework/attribute/GaussianNoiseStats.hpp>

#include <framework/data/DynamicClassRegistration.hpp>

namespace orlix::imaproc::attr
{

namespace
{
const data::DynamicClassRegistration<GaussianNoiseStats> gaussianNoiseStatsClass{GaussianNoiseStats::typeName};
} // namespace

} // namespace orlix::imaproc::attr

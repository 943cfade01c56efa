#include <framework/attribute/SimilarityStats.hpp>

#include <framework/data/DynamicClassRegistration.hpp>

namespace orlix::imaproc::attr
{

namespace
{
const data::DynamicClassRegistration<SimilarityStats> similarityStatsClass{SimilarityStats::typeName};
} // namespace

} // namespace orlix::imaproc::attr

#include <framework/attribute/SimilarityStats.hpp>

#include <framework/data/DynamicObjectFactory.hpp>

namespace orlix::imaproc::attr
{

namespace
{
const data::DynamicClassRegistration<SimilarityStats> element{SimilarityStats::typeName};
} // namespace

Ptr<SimilarityStats> SimilarityStats::create()
{
    return makePtr<SimilarityStats>();
}

} // namespace orlix::imaproc::attr

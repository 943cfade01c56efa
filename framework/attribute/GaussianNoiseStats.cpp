#include <framework/attribute/GaussianNoiseStats.hpp>

#include <framework/data/DynamicObjectFactory.hpp>

namespace orlix::imaproc::attr
{

namespace
{
const data::DynamicClassRegistration<GaussianNoiseStats> registration{GaussianNoiseStats::typeName};
} // namespace

Ptr<GaussianNoiseStats> GaussianNoiseStats::create()
{
    return makePtr<GaussianNoiseStats>();
}

} // namespace orlix::imaproc::attr

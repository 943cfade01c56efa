#include <framework/attribute/Doubles.hpp>

#include <framework/data/DynamicObjectFactory.hpp>

namespace orlix::imaproc::attr
{

namespace
{
const data::DynamicClassRegistration<Doubles> registration{Doubles::typeName};
} // namespace

} // namespace orlix::imaproc::attr

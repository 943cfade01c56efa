#include <framework/data/BaseDynamicObject.hpp>

#include <framework/core/Message.hpp>

namespace orlix::data
{

BaseDynamicObject::~BaseDynamicObject() = default;

std::unique_ptr<BaseDynamicObject> BaseDynamicObject::duplicate() const
{
    return core::guarded(ORLIX_HERE, [this] {
        auto copy = createNew();
        copy->initCtorCopy();
        copy->copy(*this);
        return copy;
    });
}

Ptr<BaseDynamicObject> BaseDynamicObject::duplicateShared() const
{
    return core::guarded(ORLIX_HERE, [this] {
        auto copy = createShared();
        copy->initCtorCopy();
        copy->copy(*this);
        return copy;
    });
}

} // namespace orlix::data

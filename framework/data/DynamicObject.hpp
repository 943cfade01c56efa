#pragma once

#include <framework/data/BaseDynamicObject.hpp>

#include <memory>
#include <string>

namespace orlix::data
{

/// The name and the creation of a dynamic class. Self has `static constexpr const char* typeName`, its qualified name.
template <class Self, class Base>
class DynamicObject : public Base
{
public:
    static const std::string& getTypeName()
    {
        static const std::string name = Self::typeName;
        return name;
    }

    const std::string& getClassName() const final { return getTypeName(); }
    std::unique_ptr<BaseDynamicObject> createNew() const final { return std::make_unique<Self>(); }
    Ptr<BaseDynamicObject> createShared() const final { return makePtr<Self>(); }
};

/// A record, made by the code of the library that registers its class (DynamicClassRegistration): so it outlives any
/// other library that asked for it.
template <class Record>
ORLIX_API Ptr<Record> makeRecord();

} // namespace orlix::data

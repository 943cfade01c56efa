#pragma once

#include <framework/data/DynamicObject.hpp>
#include <framework/data/DynamicObjectFactory.hpp>

/// For the one source file that registers a class.
namespace orlix::data
{

/// Not to be inlined, so that there is one for other libraries to call.
template <class Record>
[[gnu::noinline]] Ptr<Record> makeRecord()
{
    return makePtr<Record>();
}

/// Registers a class as long as it lives, and holds the code of makeRecord() for it.
template <class Object>
class DynamicClassRegistration
{
public:
    explicit DynamicClassRegistration(std::string typeName) : typeName_{std::move(typeName)}
    {
        DynamicObjectFactory::getInstance().registerClass(
            typeName_, []() -> std::unique_ptr<BaseDynamicObject> { return std::make_unique<Object>(); },
            []() -> Ptr<BaseDynamicObject> { return makeRecord<Object>(); });
    }
    ~DynamicClassRegistration() { DynamicObjectFactory::getInstance().unRegisterClass(typeName_); }
    DynamicClassRegistration(const DynamicClassRegistration&) = delete;
    DynamicClassRegistration& operator=(const DynamicClassRegistration&) = delete;

private:
    std::string typeName_;
};

} // namespace orlix::data

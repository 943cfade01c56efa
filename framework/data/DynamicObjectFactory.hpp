#pragma once

#include <framework/data/BaseDynamicObject.hpp>

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace orlix::data
{

/// Creates dynamic objects by the name of their class.
class ORLIX_API DynamicObjectFactory
{
public:
    using Creator = std::unique_ptr<BaseDynamicObject> (*)();
    using SharedCreator = Ptr<BaseDynamicObject> (*)();

    static DynamicObjectFactory& getInstance();

    void registerClass(const std::string& typeName, Creator creator, SharedCreator sharedCreator);
    void unRegisterClass(const std::string& typeName);

    /// Null if there is no such class.
    std::unique_ptr<BaseDynamicObject> createObject(const std::string& typeName) const;
    Ptr<BaseDynamicObject> createSharedObject(const std::string& typeName) const;
    /// In ascending order.
    std::vector<std::string> getTypeNames() const;

private:
    struct Creators
    {
        Creator plain = nullptr;
        SharedCreator shared = nullptr;
    };
    Creators find(const std::string& typeName) const;

    mutable std::mutex mutex_;
    std::map<std::string, Creators> creators_;
};

} // namespace orlix::data

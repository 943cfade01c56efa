#include <framework/data/DynamicObjectFactory.hpp>

namespace orlix::data
{

DynamicObjectFactory& DynamicObjectFactory::getInstance()
{
    static DynamicObjectFactory factory;
    return factory;
}

void DynamicObjectFactory::registerClass(const std::string& typeName, Creator creator, SharedCreator sharedCreator)
{
    const std::lock_guard lock{mutex_};
    creators_.insert_or_assign(typeName, Creators{creator, sharedCreator});
}

void DynamicObjectFactory::unRegisterClass(const std::string& typeName)
{
    const std::lock_guard lock{mutex_};
    creators_.erase(typeName);
}

DynamicObjectFactory::Creators DynamicObjectFactory::find(const std::string& typeName) const
{
    const std::lock_guard lock{mutex_};
    const auto found = creators_.find(typeName);
    return found == creators_.end() ? Creators{} : found->second;
}

std::unique_ptr<BaseDynamicObject> DynamicObjectFactory::createObject(const std::string& typeName) const
{
    const Creators creators = find(typeName);
    return creators.plain != nullptr ? creators.plain() : nullptr;
}

Ptr<BaseDynamicObject> DynamicObjectFactory::createSharedObject(const std::string& typeName) const
{
    const Creators creators = find(typeName);
    return creators.shared != nullptr ? creators.shared() : nullptr;
}

std::vector<std::string> DynamicObjectFactory::getTypeNames() const
{
    const std::lock_guard lock{mutex_};
    std::vector<std::string> names;
    for (const auto& [name, creators] : creators_) {
        names.push_back(name);
    }
    return names;
}

} // namespace orlix::data

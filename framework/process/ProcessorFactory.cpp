#include <framework/process/ProcessorFactory.hpp>

#include <framework/process/BaseProcessor.hpp>

namespace orlix::imaproc
{

ProcessorFactory& ProcessorFactory::getInstance()
{
    static ProcessorFactory factory;
    return factory;
}

void ProcessorFactory::registerProcessor(const std::string& typeName, ProcessorInfo info)
{
    const std::lock_guard lock{mutex_};
    processors_.insert_or_assign(typeName, std::move(info));
}

void ProcessorFactory::unRegisterProcessor(const std::string& typeName)
{
    executor::waitForSubmitted();
    const std::lock_guard lock{mutex_};
    processors_.erase(typeName);
}

Ptr<BaseProcessor> ProcessorFactory::createProcessor(const std::string& typeName) const
{
    ProcessorInfo::Creator creator = nullptr;
    {
        const std::lock_guard lock{mutex_};
        const auto found = processors_.find(typeName);
        creator = found == processors_.end() ? nullptr : found->second.creator;
    }
    return creator != nullptr ? creator() : nullptr;
}

std::vector<ProcessorInfo> ProcessorFactory::getProcessors() const
{
    const std::lock_guard lock{mutex_};
    std::vector<ProcessorInfo> all;
    for (const auto& [typeName, info] : processors_) {
        all.push_back(info);
    }
    return all;
}

} // namespace orlix::imaproc

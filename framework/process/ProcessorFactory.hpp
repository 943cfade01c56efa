#pragma once

#include <framework/core/Api.hpp>
#include <framework/core/Ptr.hpp>

#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace orlix::imaproc
{

class BaseProcessor;

/// What the factory knows of a processor class.
struct ProcessorInfo
{
    using Creator = Ptr<BaseProcessor> (*)();

    std::string typeName;
    std::string objectName;
    std::string toolTip;
    std::string libraryName;
    std::string sourceLocation; ///< relative to the source root
    Creator creator = nullptr;
};

/// Creates processors by type name.
class ORLIX_API ProcessorFactory
{
public:
    static ProcessorFactory& getInstance();

    void registerProcessor(const std::string& typeName, ProcessorInfo info);
    /// Waits until no asynchronous run is left, for it may still use the class.
    void unRegisterProcessor(const std::string& typeName);

    /// Null if there is no such class. The processor is not initialised.
    Ptr<BaseProcessor> createProcessor(const std::string& typeName) const;
    /// By type name, ascending.
    std::vector<ProcessorInfo> getProcessors() const;

private:
    mutable std::mutex mutex_;
    std::map<std::string, ProcessorInfo> processors_;
};

} // namespace orlix::imaproc

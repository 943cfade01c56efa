#pragma once

#include <framework/core/Api.hpp>
#include <framework/core/InstructionSet.hpp>
#include <framework/core/LazyStatic.hpp>
#include <framework/data/DynamicObjectFactory.hpp>
#include <framework/process/DispatchPolicy.hpp>
#include <framework/process/ProcessorFactory.hpp>

#include <functional>
#include <string>
#include <typeinfo>

namespace orlix::imaproc
{

/// The mutexes of the lazily built statics, one per kind, each created on first use.
ORLIX_API core::Mutex& ToolTipMutex();
ORLIX_API core::Mutex& DispatchPolicyMutex();
ORLIX_API core::Mutex& VersionMutex();
ORLIX_API core::Mutex& ForcedInstructionSetsMutex();

/// Where a processor class comes from.
struct Origin
{
    std::string libraryName;
    const char* sourceFile = "";
    std::function<std::string()> toolTip; ///< from the library's message table
    bool isListed = true;                 ///< whether the processor factory offers the class to hosts
};

struct ProcessorCreators
{
    data::DynamicObjectFactory::Creator plain;
    data::DynamicObjectFactory::SharedCreator shared;
    ProcessorInfo::Creator processor;
};

/// What all processors of one class share. The object is a static of the class: it registers the class in both
/// factories when the library loads, and unregisters it when the library unloads.
class ORLIX_API ProcessorClass
{
public:
    ProcessorClass(const std::type_info& type, Origin origin, const ProcessorCreators& creators);
    virtual ~ProcessorClass();
    ProcessorClass(const ProcessorClass&) = delete;
    ProcessorClass& operator=(const ProcessorClass&) = delete;

    const std::string& getTypeName() const { return typeName_; }     ///< fully qualified
    const std::string& getObjectName() const { return objectName_; } ///< without namespace
    const std::string& getToolTip();
    unsigned getVersion();
    const ProcessorDispatchPolicy& getDefaultDispatchPolicy();
    const ProcessorCreators& getCreators() const { return creators_; }
    /// Whether processors of the class may run on a GPU now.
    virtual bool mayUseGpu() const { return false; }

private:
    std::string typeName_;
    std::string objectName_;
    Origin origin_;
    ProcessorCreators creators_;
    core::LazyStatic<std::string> toolTip_;
    core::LazyStatic<unsigned> version_;
    core::LazyStatic<ProcessorDispatchPolicy> dispatchPolicy_;
};

} // namespace orlix::imaproc

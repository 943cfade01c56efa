#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/ProcessorLogMessages.hpp>

#include <framework/process/Processor.hpp>

#include <string>

/// How this library declares its processor classes: the class name without namespace, and the row of its tool tip.
namespace orlix::imaproc::glbmsr
{

inline Identity makeIdentity(const char* objectName, unsigned toolTip, const char* sourceFile)
{
    return {std::string{"orlix::imaproc::glbmsr::"} + objectName, objectName,
            core::MessageMap<eProcessorMessage>::library, sourceFile,
            [toolTip] { return core::formatMessage(static_cast<eProcessorMessage>(toolTip)); }};
}

template <class Self>
ProcessorClass declare(const char* objectName, unsigned toolTip, const char* sourceFile = __builtin_FILE())
{
    return {makeIdentity(objectName, toolTip, sourceFile), Self::creators()};
}

template <class Self>
AlgorithmClass declareAlgorithm(const char* objectName, unsigned toolTip, const char* sourceFile = __builtin_FILE())
{
    return {makeIdentity(objectName, toolTip, sourceFile), Self::creators(), &Self::functionRegistration};
}

} // namespace orlix::imaproc::glbmsr

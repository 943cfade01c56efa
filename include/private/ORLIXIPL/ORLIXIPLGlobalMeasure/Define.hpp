#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/ProcessorLogMessages.hpp>

#include <framework/process/Level.hpp>
#include <framework/process/MeasureList.hpp>

/// How this library defines what the processors of a class share, and registers the class: with the row of its tool
/// tip.
namespace orlix::imaproc::glbmsr
{

inline Origin getOrigin(unsigned toolTip, const char* sourceFile)
{
    return {core::MessageMap<eProcessorMessage>::library, sourceFile,
            [toolTip] { return core::formatMessage(static_cast<eProcessorMessage>(toolTip)); }};
}

template <class Self>
ProcessorClass define(unsigned toolTip, const char* sourceFile = __builtin_FILE())
{
    return {typeid(Self), getOrigin(toolTip, sourceFile), Self::creators()};
}

/// A level whose children are of one of these classes.
template <class Self, class... Children>
LevelClass defineLevel(unsigned toolTip, const Merge& merge = inPlace, const char* sourceFile = __builtin_FILE())
{
    const GpuVariant* gpuVariant = nullptr;
    if constexpr (requires { Self::gpuVariant; }) {
        gpuVariant = &Self::gpuVariant;
    }
    return {typeid(Self), getOrigin(toolTip, sourceFile), Self::creators(), {childOf<Self, Children>()...}, merge,
            gpuVariant};
}

template <class Self>
AlgorithmClass defineAlgorithm(unsigned toolTip, const char* sourceFile = __builtin_FILE())
{
    return {typeid(Self), getOrigin(toolTip, sourceFile), Self::creators(), &Self::functionRegistration};
}

} // namespace orlix::imaproc::glbmsr

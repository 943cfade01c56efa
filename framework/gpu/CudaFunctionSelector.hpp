#pragma once

#include <framework/core/Message.hpp>
#include <framework/core/ProcessingResult.hpp>
#include <framework/core/SourceLocation.hpp>
#include <framework/image/PixelType.hpp>
#include <framework/process/ProcessorClass.hpp>

#include <vector>

namespace orlix::imaproc
{

class BaseGpuProcessingAlgorithm;

using CudaFunction = core::ProcessingResult (BaseGpuProcessingAlgorithm::*)();

/// A kernel of a GPU class: the pixel types that it takes, and itself.
struct CudaFunctionIdentifier
{
    image::DataTypeIdentifierColl dataTypes;
    CudaFunction function;
};

/// The kernels of a GPU class.
class CudaFunctionSelector
{
public:
    void registerFunction(const CudaFunctionIdentifier& function) { functions_.push_back(function); }
    const std::vector<CudaFunctionIdentifier>& getFunctions() const { return functions_; }
    /// The kernel for these types; null if there is none.
    const CudaFunctionIdentifier* select(const image::DataTypeIdentifierColl& dataTypes) const
    {
        for (const CudaFunctionIdentifier& function : functions_) {
            if (function.dataTypes == dataTypes) {
                return &function;
            }
        }
        return nullptr;
    }

private:
    std::vector<CudaFunctionIdentifier> functions_;
};

/// A GPU level 3 class has its kernels.
class CudaAlgorithmClass final : public ProcessorClass
{
public:
    /// `functionRegistration` enters the kernels.
    CudaAlgorithmClass(const std::type_info& type, Origin origin, const ProcessorCreators& creators,
                       void (*functionRegistration)(CudaFunctionSelector&))
        : ProcessorClass{type, std::move(origin), creators}
    {
        core::guarded(ORLIX_HERE, [&] { functionRegistration(selector_); });
    }

    const CudaFunctionSelector& getFunctionSelector() const { return selector_; }

private:
    CudaFunctionSelector selector_;
};

} // namespace orlix::imaproc

#include "SimilarityMsrKernel.inl"

namespace orlix::imaproc::glbmsr
{

extern const SimilarityKernels similarityKernels_generic = everySimilarityKernel<Domain::eIS_Generic>;

} // namespace orlix::imaproc::glbmsr

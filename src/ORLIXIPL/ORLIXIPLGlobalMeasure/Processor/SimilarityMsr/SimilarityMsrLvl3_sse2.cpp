#include "SimilarityMsrKernel.inl"

namespace orlix::imaproc::glbmsr
{

extern const SimilarityKernels similarityKernels_sse2 = everySimilarityKernel<Domain::eIS_SSE2>;

} // namespace orlix::imaproc::glbmsr

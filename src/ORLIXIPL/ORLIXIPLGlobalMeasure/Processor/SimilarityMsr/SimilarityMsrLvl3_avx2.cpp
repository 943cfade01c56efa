#include "SimilarityMsrKernel.inl"

namespace orlix::imaproc::glbmsr
{

extern const SimilarityKernels similarityKernels_avx2 = everySimilarityKernel<Domain::eIS_AVX2>;

} // namespace orlix::imaproc::glbmsr

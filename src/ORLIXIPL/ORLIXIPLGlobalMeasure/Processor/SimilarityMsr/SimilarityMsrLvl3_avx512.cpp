#include "SimilarityMsrKernel.inl"

namespace orlix::imaproc::glbmsr
{

extern const SimilarityKernels similarityKernels_avx512 = everySimilarityKernel<Domain::eIS_AVX512>;

} // namespace orlix::imaproc::glbmsr

#include "PixelWriter.inl"

namespace orlix::imaproc::glbmsr
{

extern const PixelWriters pixelWriters_avx512 = everyPixelWriter<Domain::eIS_AVX512>;

} // namespace orlix::imaproc::glbmsr

#include "PixelWriter.inl"

namespace orlix::imaproc::glbmsr
{

extern const PixelWriters pixelWriters_avx2 = everyPixelWriter<Domain::eIS_AVX2>;

} // namespace orlix::imaproc::glbmsr

#include "PixelWriter.inl"

namespace orlix::imaproc::glbmsr
{

extern const PixelWriters pixelWriters_sse2 = everyPixelWriter<Domain::eIS_SSE2>;

} // namespace orlix::imaproc::glbmsr

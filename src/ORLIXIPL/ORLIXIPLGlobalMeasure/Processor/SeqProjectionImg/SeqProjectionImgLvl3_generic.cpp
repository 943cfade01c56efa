#include "PixelWriter.inl"

namespace orlix::imaproc::glbmsr
{

extern const PixelWriters pixelWriters_generic = everyPixelWriter<Domain::eIS_Generic>;

} // namespace orlix::imaproc::glbmsr

#include <files/RowReader.hpp>

namespace orlix::files
{

image::SourceLayout RowReader::getLayout() const
{
    return {.block = {1, 1, 1, facts_.geometry.c, 1}, .isSequential = true};
}

void RowReader::fetch(const Box& box, const PixelTarget& target)
{
    const std::lock_guard lock{mutex_};
    const image::ImageGeometry& size = facts_.geometry;
    const std::size_t pixelSize = getPixelSize(facts_.type);
    const auto step = static_cast<std::int64_t>(size.c * pixelSize);
    row_.resize(size.x * size.c * pixelSize);
    if (next_ > box.begin.y) {
        restart();
        next_ = 0;
    }
    constexpr std::size_t ended = ~std::size_t{0};
    for (std::size_t next = next_; next < box.begin.y + box.size.y; next_ = ++next) {
        next_ = ended; // a decoder that fails begins anew
        decodeRow(row_.data());
        if (next >= box.begin.y) {
            copyPixels(row_.data() + (box.begin.x * size.c + box.begin.c) * pixelSize, target.row(next - box.begin.y),
                       pixelSize,
                       {Stretch{box.size.x, step, static_cast<std::int64_t>(pixelSize)},
                        Stretch{box.size.c, static_cast<std::int64_t>(pixelSize), target.strides.c}});
        }
    }
    if (next_ == size.y) {
        finish();
        next_ = ended;
    }
}

} // namespace orlix::files

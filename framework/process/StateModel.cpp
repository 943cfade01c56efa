#include <framework/process/StateModel.hpp>

namespace orlix::imaproc
{

using image::eImageBufferType;

namespace
{

constexpr std::size_t pieceBytes = std::size_t{1} << 19;

[[noreturn]] void fail(const std::string& text)
{
    throw MeasureException{text, ORLIX_HERE};
}

} // namespace

PieceCut::PieceCut(const StateMeasure& measure, Per per, std::span<const ImageView> images, const ImageView& mask,
                   const Position& offset, const std::optional<Extent>& core)
    : per_{per}, images_{images.begin(), images.end()}, mask_{mask}, offset_{offset}
{
    const std::string verb = measure.verb;
    if (images.empty()) {
        fail(verb + ": there is no image");
    }
    std::size_t pixelBytes = 0;
    for (const ImageView& image : images) {
        if (!image) {
            fail(verb + ": there is no image");
        }
        if (image->isGpuImage()) {
            fail(verb + ": the image lies on a GPU, where this measure does not run: copy it to memory");
        }
        if (!(image->getGeometry() == images[0]->getGeometry())) {
            fail(verb + ": all images have one size, but one has " + toString(images[0]->getGeometry()) + ", another " +
                 toString(image->getGeometry()));
        }
        const bool isBinary = image->getType() == eImageBufferType::eIBT_Binary;
        types_.push_back(isBinary ? eImageBufferType::eIBT_UInt8 : image->getType());
        pixelBytes += image->getPixelSize();
    }
    const image::ImageGeometry& size = images[0]->getGeometry();
    if (mask) {
        if (mask->isGpuImage() || !image::maskTypes.contains(mask->getType())) {
            fail(verb + ": a mask has pixels of one byte in memory: binary, uint8 or int8");
        }
        if (!(mask->getGeometry() == size)) {
            fail(verb + ": the mask has " + toString(mask->getGeometry()) + ", but the image " + toString(size));
        }
    }
    constexpr std::uint64_t mostAcross = std::uint64_t{1} << 40; // sums of products with positions have room for them
    constexpr std::uint64_t mostPlanes = std::uint64_t{1} << 32;
    const auto fits = [](std::uint64_t at, std::uint64_t side, std::uint64_t most) {
        return at <= most && side <= most - at;
    };
    if (!fits(offset.x, size.x, mostAcross) || !fits(offset.y, size.y, mostAcross) ||
        !fits(offset.z, size.z, mostPlanes) || !fits(offset.c, size.c, mostPlanes) ||
        !fits(offset.t, size.t, mostPlanes)) {
        fail(verb + ": positions are below 2^40 in x and y, and below 2^32 in z, c and t");
    }
    core_ = {{}, {size.x, size.y, size.z, size.c, size.t}};
    if (core) {
        const auto place = [&](std::uint64_t Position::*side) {
            const std::uint64_t begin = core->begin.*side;
            const std::uint64_t end = core->end.*side;
            if (begin >= end || begin < offset.*side || end > offset.*side + core_.end.*side) {
                fail(verb + ": the core of a piece lies in the piece, in positions of the whole image; its end is one "
                            "behind the last in all five axes");
            }
            core_.begin.*side = begin - offset.*side;
            core_.end.*side = end - offset.*side;
        };
        for (const auto side : {&Position::x, &Position::y, &Position::z, &Position::c, &Position::t}) {
            place(side);
        }
    }
    if (size.empty()) {
        return;
    }
    // Planes go together where they are small, and one result covers them.
    const Position& begin = core_.begin;
    const Position& end = core_.end;
    const std::size_t rowBytes = (end.x - begin.x) * pixelBytes;
    const std::size_t rows = std::min(end.y - begin.y, std::max<std::size_t>(1, pieceBytes / rowBytes));
    const bool isOfPlanes = rows == end.y - begin.y && per != Per::Plan;
    const std::size_t planes =
        isOfPlanes ? std::min(end.z - begin.z, std::max<std::size_t>(1, pieceBytes / (rowBytes * rows))) : 1;
    for (std::size_t t = begin.t; t < end.t; ++t) {
        for (std::size_t c = begin.c; c < end.c; ++c) {
            for (std::size_t z = begin.z; z < end.z; z += planes) {
                for (std::size_t y = begin.y; y < end.y; y += rows) {
                    starts_.push_back({y, z, c, t, std::min(rows, end.y - y), std::min(planes, end.z - z)});
                }
            }
        }
    }
}

Piece PieceCut::operator[](std::size_t i) const
{
    const Start& start = starts_[i];
    Piece piece;
    piece.types = types_;
    piece.whole = images_;
    piece.at = {core_.begin.x, start.y, start.z, start.c, start.t};
    piece.offset = offset_;
    const auto parse = [&](const ImageView& image) {
        const image::ImageStrides& strides = image->getStrides();
        const std::byte* const row = image->getRow(start.y, start.z, start.c, start.t);
        return image::StripParser{image::PixelBox{row + core_.begin.x * image->getPixelSize(),
                                                  core_.end.x - core_.begin.x, start.rows, start.planes, strides.y,
                                                  strides.z, image->getPixelSize()}};
    };
    for (const ImageView& image : images_) {
        piece.images.push_back(parse(image));
    }
    piece.runSize = piece.nbPixels();
    for (const image::StripParser& parser : piece.images) {
        piece.runSize = std::min(piece.runSize, parser.longestRun());
    }
    if (mask_) {
        piece.mask = parse(mask_);
        piece.runSize = std::min(piece.runSize, piece.mask->longestRun());
    }
    return piece;
}

Extent PieceCut::getExtent() const
{
    if (starts_.empty()) {
        return {};
    }
    const auto move = [&](const Position& at) {
        return Position{offset_.x + at.x, offset_.y + at.y, offset_.z + at.z, offset_.c + at.c, offset_.t + at.t};
    };
    return {move(core_.begin), move(core_.end)};
}

image::PlanIndex PieceCut::partOf(std::size_t i) const
{
    const auto index = [](std::uint64_t a, std::size_t b) { return static_cast<unsigned>(a + b); };
    const Start& start = starts_[i];
    switch (per_) {
    case Per::Plan:
        return {index(offset_.z, start.z), index(offset_.c, start.c), index(offset_.t, start.t)};
    case Per::Volume:
        return {0, index(offset_.c, start.c), index(offset_.t, start.t)};
    default:
        return {};
    }
}

} // namespace orlix::imaproc

#include <framework/process/StateModel.hpp>

#include <cmath>

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
                   const Position& offset, const std::optional<Extent>& core, std::uint64_t margin)
    : per_{per}, images_{images.begin(), images.end()}, mask_{mask}, offset_{offset}, margin_{margin}
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
    rowBytes_ = (core_.end.x - core_.begin.x) * pixelBytes;
    ends_ = size.empty();
    if (!ends_) {
        chooseOrder();
    }
}

std::pair<std::uint64_t, std::uint64_t> PieceCut::Axis::getBlock(std::uint64_t position) const
{
    const std::uint64_t before = (position + phase) % block;
    const std::uint64_t first = std::max(begin, position - std::min(position, before));
    return {first, std::min(end, position + block - before) - first};
}

void PieceCut::Axis::enterBlock(std::uint64_t first)
{
    from = first;
    to = first + getBlock(first).second;
    at = first;
}

void PieceCut::chooseOrder()
{
    // What is decoded together is read together: of some rows all planes, channels and times of a block. Who looks at
    // the rows around would need other blocks for that, and goes over whole planes.
    image::ImageGeometry block{1, 1, 1, 1, 1};
    Position phase;
    std::size_t blockRows = 1;
    const auto enter = [&](const ImageView& image) {
        const image::SourceLayout layout = image ? image->getLayout() : image::SourceLayout{};
        const std::size_t depth = layout.block.z * layout.block.c * layout.block.t;
        if (depth > block.z * block.c * block.t) {
            block = layout.block;
            phase = layout.phase;
        }
        blockRows = std::max(blockRows, layout.block.y);
    };
    std::for_each(images_.begin(), images_.end(), enter);
    enter(mask_);
    const bool isDeep = block.z * block.c * block.t > 1;
    const Position& begin = core_.begin;
    const Position& end = core_.end;
    constexpr std::size_t rowsPerMargin = 8; // and more, so that few are read twice
    const std::size_t pieceRows = std::max<std::size_t>({1, pieceBytes / rowBytes_, rowsPerMargin * margin_});
    const bool hasRows = isDeep && margin_ == 0;
    const std::uint64_t planes = hasRows || block.c * block.t == 1 ? block.z : 1;
    axes_ = {Axis{begin.y, end.y, hasRows ? blockRows * std::max<std::size_t>(1, pieceRows / blockRows) : end.y,
                  hasRows ? phase.y : 0},
             Axis{begin.z, end.z, isDeep ? planes : end.z, isDeep ? phase.z : 0},
             Axis{begin.c, end.c, isDeep ? block.c : end.c, isDeep ? phase.c : 0},
             Axis{begin.t, end.t, isDeep ? block.t : end.t, isDeep ? phase.t : 0}};
    for (Axis& axis : axes_) {
        axis.enterBlock(axis.begin);
    }
    auto& [y, z, c, t] = axes_;
    y.step = std::min(end.y - begin.y, pieceRows);
    // Planes go together where they are small, and one result covers them.
    if (y.step == end.y - begin.y && y.to == y.end && per_ != Per::Plan) {
        z.step = std::max<std::size_t>(1, pieceBytes / (rowBytes_ * y.step));
    }
}

void PieceCut::advance()
{
    for (Axis& axis : axes_) { // in the block
        axis.at += axis.step;
        if (axis.at < axis.to) {
            return;
        }
        axis.at = axis.from;
    }
    for (Axis& axis : axes_) {
        if (axis.to < axis.end) {
            axis.enterBlock(axis.to);
            return;
        }
        axis.enterBlock(axis.begin);
    }
    ends_ = true;
}

bool PieceCut::take(std::vector<image::Box>& places)
{
    places.clear();
    const std::lock_guard lock{mutex_};
    const auto& [y, z, c, t] = axes_;
    for (std::size_t bytes = 0; bytes < pieceBytes && !ends_; advance()) {
        places.push_back(
            {{core_.begin.x, y.at, z.at, c.at, t.at}, {core_.end.x - core_.begin.x, y.count(), z.count(), 1, 1}});
        bytes += rowBytes_ * y.count() * z.count();
    }
    return !places.empty();
}

std::size_t PieceCut::countWorkers() const
{
    if (ends_) {
        return 0;
    }
    const Position& begin = core_.begin;
    const Position& end = core_.end;
    const double bytes = static_cast<double>(rowBytes_) * static_cast<double>(end.y - begin.y) *
                         static_cast<double>((end.z - begin.z) * (end.c - begin.c) * (end.t - begin.t));
    const double worth = std::ceil(bytes / static_cast<double>(pieceBytes));
    return static_cast<std::size_t>(std::min<double>(worth, core::settings::getNbThreads()));
}

double PieceCut::getShare(const image::Box& place) const
{
    const auto count = [](std::uint64_t x, std::uint64_t y, std::uint64_t z, std::uint64_t c, std::uint64_t t) {
        return static_cast<double>(x * y) * static_cast<double>(z * c * t);
    };
    const Position& begin = core_.begin;
    const Position& end = core_.end;
    return count(place.size.x, place.size.y, place.size.z, 1, 1) /
           count(end.x - begin.x, end.y - begin.y, end.z - begin.z, end.c - begin.c, end.t - begin.t);
}

Piece PieceCut::makePiece(const image::Box& place) const
{
    Piece piece;
    piece.types = types_;
    piece.whole = images_;
    piece.at = place.begin;
    piece.offset = offset_;
    // Of each image what the piece and its margin are.
    image::Box wide = place;
    if (margin_ != 0) {
        const image::ImageGeometry& size = images_[0]->getGeometry();
        wide.begin.x = 0;
        wide.begin.y -= std::min(place.begin.y, margin_);
        wide.size.x = size.x;
        wide.size.y = std::min<std::uint64_t>(size.y, place.begin.y + place.size.y + margin_) - wide.begin.y;
        piece.firstAround = wide.begin.y;
    }
    std::size_t load = 0;
    std::size_t planeBytes = 0;
    const auto weigh = [&](const ImageView& image) {
        if (image && image->hasSource()) {
            const image::ImageGeometry& size = image->getGeometry();
            load += wide.size.nbPixels() * image->getPixelSize();
            planeBytes = std::max(planeBytes, size.x * size.y * image->getPixelSize());
        }
    };
    std::for_each(images_.begin(), images_.end(), weigh);
    weigh(mask_);
    if (load != 0) {
        piece.room = std::make_unique<image::LoadRoom>(load, planeBytes);
    }
    const auto [y, z] = std::pair{axes_[0].getBlock(place.begin.y), axes_[1].getBlock(place.begin.z)};
    const auto [c, t] = std::pair{axes_[2].getBlock(place.begin.c), axes_[3].getBlock(place.begin.t)};
    const image::Box sweep{{0, y.first, z.first, c.first, t.first},
                           {images_[0]->getGeometry().x, y.second, z.second, c.second, t.second}};
    const auto parse = [&](const ImageView& image, const image::LoadedBox& loaded, const image::Box& of) {
        const image::PixelTarget all{const_cast<std::byte*>(loaded.first), loaded.strides};
        const std::byte* const first =
            all.row(place.begin.y - of.begin.y) + (place.begin.x - of.begin.x) * image->getPixelSize();
        return image::StripParser{image::PixelBox{first, place.size.x, place.size.y, place.size.z, loaded.strides.y,
                                                  loaded.strides.z, image->getPixelSize(), loaded.owner}};
    };
    for (const ImageView& image : images_) {
        const image::LoadedBox loaded = image->load(wide, sweep);
        piece.images.push_back(parse(image, loaded, wide));
        if (margin_ != 0) {
            piece.around.push_back(
                image::BaseImage::wrap(loaded.first, image->getType(), wide.size, loaded.strides, loaded.owner));
        }
    }
    piece.runSize = piece.nbPixels();
    for (const image::StripParser& parser : piece.images) {
        piece.runSize = std::min(piece.runSize, parser.longestRun());
    }
    if (mask_) {
        piece.mask = parse(mask_, mask_->load(place, sweep), place);
        piece.runSize = std::min(piece.runSize, piece.mask->longestRun());
    }
    return piece;
}

Extent PieceCut::getExtent() const
{
    if (images_[0]->getGeometry().empty()) {
        return {};
    }
    const auto move = [&](const Position& at) {
        return Position{offset_.x + at.x, offset_.y + at.y, offset_.z + at.z, offset_.c + at.c, offset_.t + at.t};
    };
    return {move(core_.begin), move(core_.end)};
}

image::PlanIndex PieceCut::partOf(const image::Box& place) const
{
    const auto index = [](std::uint64_t a, std::uint64_t b) { return static_cast<unsigned>(a + b); };
    const Position& start = place.begin;
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

#include "Array.hpp"

#include <files/ArrayReader.hpp>
#include <files/ImageFile.hpp>

#include <nanobind/ndarray.h>
#include <nanobind/stl/string.h>
#include <nanobind/stl/vector.h>

#include <algorithm>
#include <bit>
#include <cctype>
#include <cstring>

namespace orlix::python
{

using files::StoredType;
using image::BaseImage;
using image::Box;
using image::eImageBufferType;
using image::ImageGeometry;
using image::PixelTarget;

namespace
{

constexpr std::string_view allAxes = "TCZYX"; // slowest first
/// What NumPy and the buffer protocol say of bytes in another order than this machine's.
constexpr char foreignOrder = std::endian::native == std::endian::little ? '>' : '<';

std::string describe(nb::handle object)
{
    const nb::object dtype = nb::getattr(object, "dtype", nb::none());
    return dtype.is_none() ? nb::cast<std::string>(nb::str(object.type())) : nb::cast<std::string>(nb::str(dtype));
}

[[noreturn]] void refuseType(const std::string& type)
{
    throw nb::type_error(("pixels of dtype " + type +
                          " are not measured, but those of bool, uint8, int8, uint16, int16, "
                          "uint32, int32 and float32")
                             .c_str());
}

/// The dtype that pixels which are not measured as they are may be turned into.
const char* suggest(StoredType type)
{
    return type == StoredType::UInt64 ? "numpy.uint32" : type == StoredType::Int64 ? "numpy.int32" : "numpy.float32";
}

std::string checkAxes(std::string axes, std::size_t nbDimensions)
{
    std::transform(axes.begin(), axes.end(), axes.begin(), [](unsigned char c) { return std::toupper(c); });
    if (axes.empty()) {
        constexpr std::size_t least = 2;
        if (nbDimensions < least || nbDimensions > allAxes.size()) {
            throw nb::value_error(("an array of " + std::to_string(nbDimensions) +
                                   " dimensions has no axes by itself: say which ones with axes, as axes=\"ZYX\"")
                                      .c_str());
        }
        return std::string{allAxes.substr(allAxes.size() - nbDimensions)};
    }
    for (std::size_t i = 0; i < axes.size(); ++i) {
        if (allAxes.find(axes[i]) == std::string_view::npos || axes.find(axes[i], i + 1) != std::string::npos) {
            throw nb::value_error(("axes is \"" + axes + "\": it has letters of TCZYX, each of them once").c_str());
        }
    }
    if (axes.size() != nbDimensions) {
        throw nb::value_error(("axes is \"" + axes + "\", but the array has " + std::to_string(nbDimensions) +
                               " dimensions: one letter for each is needed")
                                  .c_str());
    }
    if (axes.find('X') == std::string::npos) {
        throw nb::value_error(("axes is \"" + axes + "\": there is no X").c_str());
    }
    return axes;
}

/// The type that NumPy and the buffer protocol call so, as "<u2" or "d".
StoredType findType(std::string_view format, std::size_t size, bool& isSwapped, const std::string& name)
{
    isSwapped = !format.empty() && (format[0] == foreignOrder || (format[0] == '!' && foreignOrder == '>')) && size > 1;
    if (!format.empty() && std::string_view{"<>=@!|"}.find(format[0]) != std::string_view::npos) {
        format.remove_prefix(1);
    }
    constexpr std::string_view unsignedLetters = "BHILQN";
    constexpr std::string_view signedLetters = "bhilqn";
    const char letter = format.size() == 1 ? format[0] : '\0';
    const auto is = [letter](std::string_view letters) {
        return letter != '\0' && letters.find(letter) != letters.npos;
    };
    if (letter == '?') {
        return StoredType::Binary;
    }
    const auto type = is(unsignedLetters) ? files::findStoredType(files::NumberKind::Unsigned, size)
                      : is(signedLetters) ? files::findStoredType(files::NumberKind::Signed, size)
                      : is("efd")         ? files::findStoredType(files::NumberKind::Float, size)
                                          : std::nullopt;
    if (!type) {
        refuseType(name);
    }
    return *type;
}

std::vector<std::ptrdiff_t> makeGaplessStrides(const std::vector<std::size_t>& shape, std::size_t size)
{
    std::vector<std::ptrdiff_t> strides(shape.size());
    auto step = static_cast<std::ptrdiff_t>(size);
    for (std::size_t i = shape.size(); i-- > 0;) {
        strides[i] = step;
        step *= static_cast<std::ptrdiff_t>(shape[i]);
    }
    return strides;
}

/// The pixels of an object with the buffer protocol; none where it does not give them.
std::optional<Memory> lookAtBuffer(nb::handle object)
{
    if (PyObject_CheckBuffer(object.ptr()) == 0) {
        return {};
    }
    const auto release = [](Py_buffer* view) {
        if (view->obj != nullptr) {
            const nb::gil_scoped_acquire gil;
            PyBuffer_Release(view);
        }
        delete view;
    };
    const std::shared_ptr<Py_buffer> view{new Py_buffer{}, release};
    if (PyObject_GetBuffer(object.ptr(), view.get(), PyBUF_RECORDS_RO) != 0) {
        PyErr_Clear();
        refuseType(describe(object));
    }
    Memory memory;
    memory.data = static_cast<const std::byte*>(view->buf);
    const auto size = static_cast<std::size_t>(view->itemsize);
    memory.type = findType(view->format == nullptr ? "B" : view->format, size, memory.isSwapped, describe(object));
    memory.shape.assign(view->shape, view->shape + view->ndim);
    if (view->strides != nullptr) {
        memory.strides.assign(view->strides, view->strides + view->ndim);
    } else {
        memory.strides = makeGaplessStrides(memory.shape, size);
    }
    memory.owner = view;
    return memory;
}

/// The pixels of an object with __cuda_array_interface__ (version 3).
Memory lookAtCudaArray(nb::handle object)
{
    const nb::dict facts = nb::cast<nb::dict>(object.attr("__cuda_array_interface__"));
    Memory memory;
    memory.isOnGpu = true;
    const auto type = nb::cast<std::string>(facts["typestr"]);
    for (const nb::handle side : nb::cast<nb::tuple>(facts["shape"])) {
        memory.shape.push_back(nb::cast<std::size_t>(side));
    }
    const auto found = type.empty() ? std::nullopt : files::findNumpyType(type.substr(1));
    if (!found) {
        refuseType(type);
    }
    memory.type = *found;
    memory.isSwapped = type[0] == foreignOrder && getPixelSize(*found) > 1;
    const nb::object strides = facts.contains("strides") ? nb::object(facts["strides"]) : nb::none();
    memory.strides = makeGaplessStrides(memory.shape, getPixelSize(memory.type));
    for (std::size_t i = 0; i < memory.shape.size() && !strides.is_none(); ++i) {
        memory.strides[i] = nb::cast<std::ptrdiff_t>(strides[i]);
    }
    const nb::object address = nb::cast<nb::tuple>(facts["data"])[0];
    memory.data = static_cast<const std::byte*>(PyLong_AsVoidPtr(address.ptr()));
    memory.owner = std::make_shared<nb::object>(nb::borrow(object));
    return memory;
}

/// The pixels of an object with DLPack.
Memory lookAtDlpack(nb::handle object)
{
    nb::ndarray<nb::ro> array;
    if (!nb::try_cast(object, array)) {
        refuseType(describe(object));
    }
    const auto type = array.dtype();
    const auto kind = static_cast<nb::dlpack::dtype_code>(type.code);
    const std::size_t size = type.bits / 8;
    Memory memory;
    const auto found = type.lanes != 1                         ? std::nullopt
                       : kind == nb::dlpack::dtype_code::Bool  ? std::optional{StoredType::Binary}
                       : kind == nb::dlpack::dtype_code::UInt  ? findStoredType(files::NumberKind::Unsigned, size)
                       : kind == nb::dlpack::dtype_code::Int   ? findStoredType(files::NumberKind::Signed, size)
                       : kind == nb::dlpack::dtype_code::Float ? findStoredType(files::NumberKind::Float, size)
                                                               : std::nullopt;
    if (!found) {
        refuseType(describe(object));
    }
    memory.type = *found;
    memory.isOnGpu = array.device_type() == nb::device::cuda::value;
    memory.data = static_cast<const std::byte*>(array.data());
    for (std::size_t i = 0; i < array.ndim(); ++i) {
        memory.shape.push_back(array.shape(i));
        memory.strides.push_back(array.stride(i) * static_cast<std::ptrdiff_t>(size));
    }
    memory.owner = std::make_shared<nb::ndarray<nb::ro>>(std::move(array));
    return memory;
}

/// The strides of the axes of an image in memory, along which the image may repeat itself.
struct Steps
{
    std::ptrdiff_t x = 0;
    image::ImageStrides others{};

    Steps(const Memory& memory, const std::string& axes)
    {
        for (std::size_t i = 0; i < axes.size(); ++i) {
            of(axes[i]) = memory.shape[i] > 1 ? memory.strides[i] : 0;
        }
    }

    std::ptrdiff_t& of(char axis)
    {
        return axis == 'X' ? x : axis == 'Y' ? others.y : axis == 'Z' ? others.z : axis == 'C' ? others.c : others.t;
    }
};

/// Copies the pixels of a box in memory row by row, and converts them. Returns how many changed.
std::size_t copyBox(const Memory& memory, const Steps& steps, StoredType type, const Box& box,
                    const PixelTarget& target)
{
    const std::size_t size = getPixelSize(memory.type);
    const std::size_t wide = box.size.x * size;
    const bool converts = memory.type != type;
    std::vector<std::byte> gathered(converts ? wide : 0);
    std::size_t changed = 0;
    files::forEachPlan(box, target, [&](const image::Position& at, const PixelTarget& to) {
        const image::ImageStrides& step = steps.others;
        const std::byte* const plan = memory.data + static_cast<std::ptrdiff_t>(at.z) * step.z +
                                      static_cast<std::ptrdiff_t>(at.c) * step.c +
                                      static_cast<std::ptrdiff_t>(at.t) * step.t;
        for (std::size_t y = 0; y < box.size.y; ++y) {
            const std::byte* const from = plan + static_cast<std::ptrdiff_t>(box.begin.y + y) * step.y +
                                          static_cast<std::ptrdiff_t>(box.begin.x) * steps.x;
            std::byte* const row = converts ? gathered.data() : to.row(y);
            files::copyPixels(from, row, size,
                              {files::Stretch{}, {}, {}, {}, {box.size.x, steps.x, static_cast<std::int64_t>(size)}});
            if (memory.isSwapped) {
                files::swapBytes(row, size, box.size.x);
            }
            if (converts) {
                changed += convertPixels(row, memory.type, to.row(y), type, box.size.x);
            }
        }
    });
    return changed;
}

/// Fails the measure where a conversion changed a pixel.
class ConvertingSource : public image::PixelSource
{
public:
    ConvertingSource(StoredType type, std::shared_ptr<std::atomic<bool>> hasChanged)
        : type_{type}, hasChanged_{std::move(hasChanged)}
    {}

protected:
    StoredType getType() const { return type_; }
    void check(std::size_t changed) const
    {
        if (changed != 0 && type_ != StoredType::Binary) {
            *hasChanged_ = true;
            throw std::runtime_error{"a pixel would change"};
        }
    }

private:
    StoredType type_;
    std::shared_ptr<std::atomic<bool>> hasChanged_;
};

/// Pixels in memory that have to be copied.
class MemorySource final : public ConvertingSource
{
public:
    MemorySource(Memory memory, const Steps& steps, StoredType type, std::shared_ptr<std::atomic<bool>> hasChanged)
        : ConvertingSource{type, std::move(hasChanged)}, memory_{std::move(memory)}, steps_{steps}
    {}

    void fetch(const Box& box, const PixelTarget& target) override
    {
        check(copyBox(memory_, steps_, getType(), box, target));
    }
    image::SourceLayout getLayout() const override
    {
        image::SourceLayout layout;
        layout.readsAhead = true; // there is nothing to wait for
        return layout;
    }

private:
    Memory memory_;
    Steps steps_;
};

/// Pixels of something that is sliced into arrays.
class SlicedSource final : public ConvertingSource
{
public:
    /// Its pixels are stored as one type, and shown as another.
    SlicedSource(nb::object object, std::string axes, StoredType stored, StoredType type,
                 std::shared_ptr<std::atomic<bool>> hasChanged)
        : ConvertingSource{type, std::move(hasChanged)}, object_{std::move(object)}, axes_{std::move(axes)}, stored_{
                                                                                                                 stored}
    {
        const nb::object chunks = nb::getattr(object_, "chunks", nb::none());
        if (nb::isinstance<nb::tuple>(chunks) && nb::len(chunks) == axes_.size()) {
            for (std::size_t i = 0; i < axes_.size(); ++i) {
                std::size_t chunk = 0;
                if (nb::try_cast(chunks[i], chunk) && chunk > 0) {
                    sideOf(layout_.block, axes_[i]) = chunk;
                }
            }
        }
    }
    ~SlicedSource() override
    {
        const nb::gil_scoped_acquire gil;
        object_.reset();
    }

    void fetch(const Box& box, const PixelTarget& target) override
    {
        const nb::gil_scoped_acquire gil;
        try {
            const std::array<std::uint64_t, 5> begin{box.begin.t, box.begin.c, box.begin.z, box.begin.y, box.begin.x};
            nb::list places;
            for (const char axis : axes_) {
                const auto first = static_cast<std::size_t>(begin[allAxes.find(axis)]);
                ImageGeometry size = box.size;
                places.append(nb::slice(nb::int_(first), nb::int_(first + sideOf(size, axis)), nb::int_(1)));
            }
            const nb::object part = nb::module_::import_("numpy").attr("asarray")(object_[nb::tuple(places)]);
            const Memory memory = lookAtBuffer(part).value();
            if (memory.shape.size() != axes_.size() || makeGeometry(memory.shape, axes_) != box.size ||
                memory.type != stored_) {
                throw std::runtime_error{"what was sliced is not of the shape and dtype that were asked for"};
            }
            check(copyBox(memory, Steps{memory, axes_}, getType(), {{}, box.size}, target));
        } catch (const nb::python_error& error) {
            throw std::runtime_error{error.what()}; // on a thread that may not keep it
        }
    }
    image::SourceLayout getLayout() const override { return layout_; }

private:
    static std::size_t& sideOf(ImageGeometry& size, char axis)
    {
        return axis == 'X' ? size.x : axis == 'Y' ? size.y : axis == 'Z' ? size.z : axis == 'C' ? size.c : size.t;
    }

    nb::object object_;
    std::string axes_;
    StoredType stored_;
    image::SourceLayout layout_;
};

/// The type of an image for such pixels.
eImageBufferType chooseType(StoredType stored, Use use)
{
    if (use == Use::Mask) {
        const bool isByte = stored == StoredType::UInt8 || stored == StoredType::Int8;
        return isByte ? *findImageType(stored) : eImageBufferType::eIBT_Binary;
    }
    if (const auto type = findImageType(stored)) {
        return *type;
    }
    if (stored == StoredType::Float64 && use == Use::Values) {
        return eImageBufferType::eIBT_Float32;
    }
    const std::string name = getName(stored);
    throw nb::type_error(
        ("pixels of dtype " + name + " are not measured: convert them, as image.astype(" + suggest(stored) + ")")
            .c_str());
}

bool isAligned(const Memory& memory, const Steps& steps)
{
    const auto size = static_cast<std::ptrdiff_t>(getPixelSize(memory.type));
    const image::ImageStrides& s = steps.others;
    return reinterpret_cast<std::uintptr_t>(memory.data) % static_cast<std::uintptr_t>(size) == 0 && s.y % size == 0 &&
           s.z % size == 0 && s.c % size == 0 && s.t % size == 0;
}

std::string printShape(const ImageGeometry& size)
{
    return toString(size);
}

} // namespace

ImageGeometry makeGeometry(const std::vector<std::size_t>& shape, const std::string& axes)
{
    const auto side = [&](char axis) {
        const std::size_t at = axes.find(axis);
        return at == std::string::npos ? 1 : shape[at];
    };
    return {side('X'), side('Y'), side('Z'), side('C'), side('T')};
}

Array::Array(nb::handle object, const std::string& axes, Use use) : axes_{axes}
{
    open(object, use, nullptr);
}

Array::Array(nb::handle object, const std::string& axes, const Array& image) : axes_{axes}
{
    const std::size_t nbDimensions = nb::hasattr(object, "ndim") ? nb::cast<std::size_t>(object.attr("ndim")) : 0;
    if (axes_.empty() && nbDimensions == image.getAxes().size()) {
        axes_ = image.getAxes();
    }
    open(object, Use::Mask, &image.getImage()->getGeometry());
}

void Array::open(nb::handle object, Use use, const ImageGeometry* whole)
{
    const auto grow = [&](const ImageGeometry& own) {
        if (whole == nullptr) {
            return own;
        }
        const auto fits = [](std::size_t side, std::size_t of) { return side == of || side == 1; };
        if (own.x != whole->x || own.y != whole->y || !fits(own.z, whole->z) || !fits(own.c, whole->c) ||
            !fits(own.t, whole->t)) {
            throw nb::value_error(("the mask has " + printShape(own) + ", but the image has " + printShape(*whole) +
                                   ": the mask has the image's shape, or fewer axes")
                                      .c_str());
        }
        return *whole;
    };
    std::optional<Memory> memory;
    if (const FileImage* file = nullptr; nb::try_cast(object, file) && file != nullptr) {
        axes_ = file->getAxes();
        image_ = file->getImage();
        if (whole != nullptr) {
            Memory all; // a mask is small enough, and read many times
            image_ = image_->loadAll();
            all.data = image_->getRow(0);
            all.type = files::toStored(image_->getType());
            const ImageGeometry& own = image_->getGeometry();
            const image::ImageStrides& s = image_->getStrides();
            axes_ = allAxes;
            all.shape = {own.t, own.c, own.z, own.y, own.x};
            all.strides = {s.t, s.c, s.z, s.y, static_cast<std::ptrdiff_t>(image_->getPixelSize())};
            all.owner = std::make_shared<Ptr<const BaseImage>>(image_);
            memory = std::move(all);
        } else {
            return;
        }
    }
    if (!memory) {
        memory = lookAtBuffer(object);
    }
    if (!memory && nb::hasattr(object, "__cuda_array_interface__")) {
        memory = lookAtCudaArray(object);
    } else if (!memory && nb::hasattr(object, "__dlpack__")) {
        memory = lookAtDlpack(object);
    } else if (!memory && nb::hasattr(object, "shape") && nb::hasattr(object, "dtype") &&
               nb::hasattr(object, "__getitem__")) {
        std::vector<std::size_t> shape;
        for (const nb::handle side : nb::tuple(object.attr("shape"))) {
            shape.push_back(nb::cast<std::size_t>(side));
        }
        axes_ = checkAxes(axes_, shape.size());
        const nb::object dtype = nb::module_::import_("numpy").attr("dtype")(object.attr("dtype"));
        const auto found = files::findNumpyType(nb::cast<std::string>(dtype.attr("str")).substr(1));
        if (!found) {
            refuseType(describe(object));
        }
        type_ = *found;
        const eImageBufferType type = chooseType(type_, use);
        if (whole != nullptr && makeGeometry(shape, axes_) != *whole) {
            return open(nb::module_::import_("numpy").attr("asarray")(object), use, whole);
        }
        image_ = BaseImage::fromSource(Ptr<image::PixelSource>{new SlicedSource{nb::borrow(object), axes_, type_,
                                                                                files::toStored(type), hasChanged_}},
                                       type, makeGeometry(shape, axes_));
        return;
    } else if (!memory) {
        return open(nb::module_::import_("numpy").attr("asarray")(object), use, whole);
    }
    axes_ = checkAxes(axes_, memory->shape.size());
    type_ = memory->type;
    const eImageBufferType type = chooseType(memory->type, use);
    const ImageGeometry size = grow(makeGeometry(memory->shape, axes_));
    const Steps steps{*memory, axes_};
    const bool touches = size.x <= 1 || steps.x == static_cast<std::ptrdiff_t>(getPixelSize(memory->type));
    const bool isAsIs = touches && !memory->isSwapped && files::toStored(type) == memory->type;
    if (memory->isOnGpu) {
        if (!isAsIs || whole != nullptr) {
            throw nb::type_error(
                "an array on a GPU is measured where its x axis is contiguous and it is no mask: copy it to the "
                "memory of the machine");
        }
        image_ = BaseImage::wrapGpu(const_cast<std::byte*>(memory->data), type, size, steps.others,
                                    Ptr<const void>{memory->data, [kept = memory->owner](const void*) mutable {
                                                        const nb::gil_scoped_acquire gil;
                                                        kept.reset();
                                                    }});
    } else if (isAsIs && isAligned(*memory, steps)) {
        image_ = BaseImage::wrap(memory->data, type, size, steps.others, memory->owner);
    } else {
        image_ = BaseImage::fromSource(
            Ptr<image::PixelSource>{new MemorySource{std::move(*memory), steps, files::toStored(type), hasChanged_}},
            type, size);
    }
}

void Array::checkPixels() const
{
    if (*hasChanged_) {
        throw nb::type_error(
            (std::string{"there are "} + getName(type_) +
             " pixels that are no float32 numbers: round them yourself, as image.astype(numpy.float32)")
                .c_str());
    }
}

FileImage::FileImage(const std::string& path, const std::string& axes, const std::string& pages,
                     std::optional<std::size_t> series, bool scaled)
{
    files::OpenOptions options;
    options.axes = axes;
    options.pages = pages;
    options.series = series;
    options.scaled = scaled;
    const Ptr<files::ImageReader> reader{files::openImage(path, options).release()};
    const files::ImageFacts& facts = reader->getFacts();
    image_ = BaseImage::fromSource(reader, findImageType(facts.type).value(), facts.geometry);
    const ImageGeometry& size = facts.geometry;
    axes_ = std::string(size.t > 1 ? "T" : "") + (size.c > 1 ? "C" : "") + (size.z > 1 ? "Z" : "") + "YX";
    facts_["path"] = facts.path;
    facts_["format"] = facts.format;
    facts_["dtype"] = facts.type == StoredType::Binary ? "bool" : getName(facts.type);
    facts_["axes_rule"] = facts.axesRule;
    nb::dict pixelSize;
    for (std::size_t i = 0; i < facts.pixelSize.size(); ++i) {
        if (facts.pixelSize[i] != 0) {
            pixelSize[nb::str(&"x\0y\0z\0"[2 * i])] = facts.pixelSize[i];
        }
    }
    facts_["pixel_size"] = pixelSize;
    facts_["unit"] = facts.unit;
    facts_["compression"] = facts.compression;
    nb::list all;
    for (const std::string& each : facts.series) {
        all.append(each);
    }
    facts_["series"] = all;
    const ImageGeometry& block = reader->getLayout().block;
    facts_["block"] = nb::make_tuple(block.t, block.c, block.z, block.y, block.x);
}

nb::tuple FileImage::getShape() const
{
    const ImageGeometry& size = image_->getGeometry();
    nb::list shape;
    for (const char axis : axes_) {
        shape.append(axis == 'X'   ? size.x
                     : axis == 'Y' ? size.y
                     : axis == 'Z' ? size.z
                     : axis == 'C' ? size.c
                                   : size.t);
    }
    return nb::tuple(shape);
}

nb::dict FileImage::getFacts() const
{
    return facts_;
}

nb::object FileImage::read(const std::vector<std::size_t>& begin, const std::vector<std::size_t>& end) const
{
    Box box;
    box.size = {1, 1, 1, 1, 1};
    std::vector<std::size_t> shape;
    for (std::size_t i = 0; i < axes_.size(); ++i) {
        const std::size_t count = end[i] - begin[i];
        shape.push_back(count);
        switch (axes_[i]) {
        case 'X':
            box.begin.x = begin[i], box.size.x = count;
            break;
        case 'Y':
            box.begin.y = begin[i], box.size.y = count;
            break;
        case 'Z':
            box.begin.z = begin[i], box.size.z = count;
            break;
        case 'C':
            box.begin.c = begin[i], box.size.c = count;
            break;
        default:
            box.begin.t = begin[i], box.size.t = count;
            break;
        }
    }
    nb::object array = nb::module_::import_("numpy").attr("empty")(nb::cast(shape), facts_["dtype"]);
    if (!box.size.empty()) {
        const auto memory = lookAtBuffer(array).value();
        auto* const pixels = const_cast<std::byte*>(memory.data);
        const nb::gil_scoped_release released;
        image_->read(box, {pixels, image::ImageStrides::contiguous(box.size, image_->getPixelSize())});
    }
    return array;
}

} // namespace orlix::python

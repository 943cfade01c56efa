#pragma once

#include <files/StoredType.hpp>

#include <framework/image/BaseImage.hpp>

#include <nanobind/nanobind.h>

#include <array>
#include <atomic>
#include <memory>
#include <string>
#include <vector>

namespace orlix::python
{

namespace nb = nanobind;

/// What the pixels of an array are wanted for.
enum class Use
{
    Pixels, ///< measured as they are
    Values, ///< the same, but float64 goes through float32 where that changes none
    Mask    ///< any that is not 0 is set
};

/// Where the pixels of an array lie.
struct Memory
{
    const std::byte* data = nullptr;
    files::StoredType type = files::StoredType::UInt8;
    bool isSwapped = false; ///< the bytes of a pixel lie the other way round than in this machine
    bool isOnGpu = false;
    std::vector<std::size_t> shape{};
    std::vector<std::ptrdiff_t> strides{}; ///< in bytes
    std::shared_ptr<void> owner{};
};

/// An object of Python as an image. Pixels that touch along x, in this machine's byte order, are looked at where they
/// lie; others are copied or converted in the parts that a measure asks for.
class Array
{
public:
    /// `axes` names the dimensions, slowest first, as "TCZYX"; empty: by their number. Anything with the buffer
    /// protocol, DLPack or __cuda_array_interface__, a file that orlix.open() opened, or what has a shape, a dtype and
    /// can be sliced. Throws nb::type_error and nb::value_error.
    Array(nb::handle object, const std::string& axes, Use use);
    /// A mask, which may lack axes of the image or have one of them once: it repeats itself there.
    Array(nb::handle object, const std::string& axes, const Array& image);

    const Ptr<const image::BaseImage>& getImage() const { return image_; }
    /// Of x, y, z, c and t, those that the object has, slowest first.
    const std::string& getAxes() const { return axes_; }
    /// Throws nb::type_error where a pixel was not what its conversion can hold, which ended the measure.
    void checkPixels() const;

private:
    void open(nb::handle object, Use use, const image::ImageGeometry* whole);

    std::string axes_;
    std::shared_ptr<std::atomic<bool>> hasChanged_ = std::make_shared<std::atomic<bool>>(false);
    files::StoredType type_ = files::StoredType::UInt8;
    Ptr<const image::BaseImage> image_;
};

/// The sizes of the axes x, y, z, c, t, from a shape and the letters of its dimensions.
image::ImageGeometry makeGeometry(const std::vector<std::size_t>& shape, const std::string& axes);

/// An image that lies in a file, or in several. Its pixels are read when they are needed.
class FileImage
{
public:
    FileImage(const std::string& path, const std::string& axes, const std::string& pages,
              std::optional<std::size_t> series, bool scaled);

    const Ptr<const image::BaseImage>& getImage() const { return image_; }
    const std::string& getAxes() const { return axes_; }
    nb::tuple getShape() const;
    /// What the file says of the image.
    nb::dict getFacts() const;
    /// The pixels from `begin` to before `end`, which are given for every axis, as an array.
    nb::object read(const std::vector<std::size_t>& begin, const std::vector<std::size_t>& end) const;

private:
    std::string axes_;
    Ptr<const image::BaseImage> image_;
    nb::dict facts_;
};

} // namespace orlix::python

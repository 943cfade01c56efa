#include <framework/image/PixelType.hpp>

#include <framework/core/NumericLimits.hpp>

namespace orlix::image
{

namespace
{

constexpr std::array<const char*, nbImageBufferTypes> names{"uint8",  "int8",  "uint16",  "int16",
                                                            "uint32", "int32", "float32", "binary"};

} // namespace

const char* getName(eImageBufferType type)
{
    return names[static_cast<std::size_t>(type)];
}

ValueRange getValueRange(eImageBufferType type)
{
    ValueRange range{0, 1}; // binary
    forEachPixelType([&]<class T>(std::type_identity<T>) {
        if (type == imageBufferTypeOf<T>) {
            range = {core::NumericLimits<T>::s_min, core::NumericLimits<T>::s_max};
        }
    });
    return range;
}

std::optional<eImageBufferType> findImageBufferType(std::string_view name)
{
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (name == names[i]) {
            return static_cast<eImageBufferType>(i);
        }
    }
    return std::nullopt;
}

} // namespace orlix::image

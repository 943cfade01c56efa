#pragma once

#include <files/ImageReader.hpp>

#include <mutex>
#include <vector>

namespace orlix::files
{

/// A picture that is decoded row by row from the top: one plane, whose samples lie side by side.
class RowReader : public ImageReader
{
public:
    void fetch(const Box& box, const PixelTarget& target) final;
    image::SourceLayout getLayout() const final;

protected:
    /// Goes back to the first row.
    virtual void restart() = 0;
    /// Decodes the next row.
    virtual void decodeRow(std::byte* samples) = 0;
    /// Called behind the last row: what stands there may tell of damage.
    virtual void finish() {}

private:
    std::mutex mutex_;
    std::size_t next_ = ~std::size_t{0}; // row
    std::vector<std::byte> row_;
};

} // namespace orlix::files

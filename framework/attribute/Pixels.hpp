#pragma once

#include <framework/attribute/Attribute.hpp>
#include <framework/attribute/PlanIndexedColl.hpp>
#include <framework/image/Coords.hpp>

#include <vector>

namespace orlix::imaproc::attr
{

ORLIX_API core::ProcessingResult failUnevenList(const char* key, std::size_t numbers, std::size_t axes);

/// A list of positions. Self has `static constexpr const char* typeName`.
template <class Self, class CoordsType>
class CoordsList : public data::DynamicObject<Self, data::BaseDataItem>
{
public:
    using Coords = CoordsType;

    std::vector<Coords> Coordinates;

    void copy(const data::BaseDynamicObject& other) final
    {
        core::guarded(ORLIX_HERE, [&] { Coordinates = dynamic_cast<const CoordsList&>(other).Coordinates; });
    }
    /// As one list of numbers.
    void visitFields(data::FieldVisitor& field) final
    {
        std::vector<double> numbers = toNumbers();
        field({.name = key, .help = "positions, in raster order", .unit = "pixels", .columns = axes}, numbers);
    }
    core::ProcessingResult read(data::InputArchive& archive) final
    {
        std::vector<double> numbers;
        core::ProcessingResult result = archive.read(key, numbers);
        if (result && numbers.size() % axes != 0) {
            return failUnevenList(key, numbers.size(), axes);
        }
        Coordinates.clear();
        for (std::size_t i = 0; i < numbers.size(); i += axes) {
            if constexpr (is3d) {
                Coordinates.emplace_back(numbers[i], numbers[i + 1], numbers[i + 2]);
            } else {
                Coordinates.emplace_back(numbers[i], numbers[i + 1]);
            }
        }
        return result;
    }

private:
    static constexpr const char* key = "Coordinates";
    static constexpr bool is3d = std::is_same_v<Coords, image::Coords3d>;
    static constexpr std::size_t axes = is3d ? 3 : 2;

    std::vector<double> toNumbers() const
    {
        std::vector<double> numbers;
        numbers.reserve(Coordinates.size() * axes);
        for (const Coords& at : Coordinates) {
            if constexpr (is3d) {
                numbers.insert(numbers.end(), {at.x, at.y, at.z});
            } else {
                numbers.insert(numbers.end(), {at.x, at.y});
            }
        }
        return numbers;
    }
};

/// Pixels of a plan.
class ORLIX_API Pixels2d final : public CoordsList<Pixels2d, image::Coords2d>
{
public:
    static constexpr const char* typeName = "orlix::imaproc::attr::Pixels2d";
};

class ORLIX_API PlanIndexedPixels2d final : public PlanIndexedColl<PlanIndexedPixels2d, Pixels2d>
{
public:
    static constexpr const char* typeName = "orlix::imaproc::attr::PlanIndexedPixels2d";
};

/// Pixels of a volume.
class ORLIX_API Voxels3d final : public CoordsList<Voxels3d, image::Coords3d>
{
public:
    static constexpr const char* typeName = "orlix::imaproc::attr::Voxels3d";
};

class ORLIX_API PlanIndexedVoxels3d final : public PlanIndexedColl<PlanIndexedVoxels3d, Voxels3d>
{
public:
    static constexpr const char* typeName = "orlix::imaproc::attr::PlanIndexedVoxels3d";
};

/// The most positions that one list may have.
class ORLIX_API InNbFeatures final : public ValueInput<InNbFeatures, unsigned>
{
public:
    static constexpr const char* name = "InNbFeatures";
    static constexpr data::FieldInfo info{
        .name = name, .help = "at most so many coordinates per plan or volume", .option = "limit"};
};

class ORLIX_API InPixels2d final : public ObjectInput<InPixels2d, Pixels2d>
{
public:
    static constexpr const char* name = "InPixels2d";
};

class ORLIX_API InVoxels3d final : public ObjectInput<InVoxels3d, Voxels3d>
{
public:
    static constexpr const char* name = "InVoxels3d";
};

class ORLIX_API OutPixels2d final : public ObjectOutput<OutPixels2d, Pixels2d>
{
public:
    static constexpr const char* name = "OutPixels2d";
};

class ORLIX_API OutPIPixels2d final : public PlanIndexedOutput<OutPIPixels2d, PlanIndexedPixels2d>
{
public:
    static constexpr const char* name = "OutPIPixels2d";
};

class ORLIX_API OutVoxels3d final : public ObjectOutput<OutVoxels3d, Voxels3d>
{
public:
    static constexpr const char* name = "OutVoxels3d";
};

class ORLIX_API OutPIVoxels3d final : public PlanIndexedOutput<OutPIVoxels3d, PlanIndexedVoxels3d>
{
public:
    static constexpr const char* name = "OutPIVoxels3d";
};

} // namespace orlix::imaproc::attr

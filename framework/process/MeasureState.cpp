#include <framework/process/MeasureState.hpp>

#include <framework/process/StateBytes.hpp>

#include <algorithm>

namespace orlix::imaproc
{

std::span<const char* const> namesOf(Per)
{
    static constexpr const char* names[] = {"image", "plan", "volume"};
    return names;
}

void Extent::extend(const Extent& other)
{
    if (empty() || other.empty()) {
        *this = empty() ? other : *this;
        return;
    }
    const auto axis = [&](std::uint64_t Position::*side) {
        begin.*side = std::min(begin.*side, other.begin.*side);
        end.*side = std::max(end.*side, other.end.*side);
    };
    axis(&Position::x);
    axis(&Position::y);
    axis(&Position::z);
    axis(&Position::c);
    axis(&Position::t);
}

std::size_t ResultPlace::nbAxes() const
{
    if (per == Per::Image && (image.end.c - image.begin.c > 1 || image.end.t - image.begin.t > 1)) {
        return 5;
    }
    return per == Per::Volume || (per == Per::Image && image.end.z - image.begin.z > 1) ? 3 : 2;
}

std::vector<std::uint64_t> ResultPlace::list(const Position& position) const
{
    std::vector<std::uint64_t> axes{position.x, position.y, position.z, position.c, position.t};
    axes.resize(nbAxes());
    return axes;
}

BaseMeasureState::~BaseMeasureState() = default;

namespace
{

constexpr std::string_view magic = "ORLIX state\n";

} // namespace

std::string wrapState(const std::string& verb, const std::string& content)
{
    data::ByteWriter writer;
    writer(verb);
    writer(stateVersion);
    const std::string checked = writer.take() + content;
    data::ByteWriter check;
    check(data::checksum(checked));
    return std::string{magic} + checked + check.take();
}

std::string_view unwrapState(std::string_view bytes, std::string& verb)
{
    const auto fail = [](const std::string& text) -> MeasureException { return {text, ORLIX_HERE}; };
    if (!bytes.starts_with(magic)) {
        throw fail("these bytes are no state of a measure");
    }
    constexpr std::size_t checkSize = 4;
    bytes.remove_prefix(magic.size());
    const std::string_view checked = bytes.substr(0, bytes.size() - std::min(bytes.size(), checkSize));
    data::ByteReader reader{checked};
    std::uint32_t version = 0;
    std::uint32_t sum = 0;
    try {
        data::ByteReader{bytes.substr(checked.size())}(sum);
        reader(verb);
        reader(version);
    } catch (const data::ByteException&) {
        throw fail("the state is damaged: it ends too early");
    }
    if (sum != data::checksum(checked)) {
        throw fail("the state is damaged: its checksum is wrong");
    }
    if (version != stateVersion) {
        throw fail("the state was written in version " + std::to_string(version) + ", which is not the " +
                   std::to_string(stateVersion) + " that is read here");
    }
    return checked.substr(checked.size() - reader.nbLeft());
}

std::string getVerbOfState(std::string_view bytes)
{
    std::string verb;
    unwrapState(bytes, verb);
    return verb;
}

} // namespace orlix::imaproc

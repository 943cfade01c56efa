#pragma once

#include <framework/data/ByteStream.hpp>
#include <framework/process/MeasureState.hpp>

namespace orlix::imaproc
{

inline constexpr std::uint32_t stateVersion = 1;

/// The bytes of a state, with what says so before its content, and a checksum behind it.
ORLIX_API std::string wrapState(const std::string& verb, const std::string& content);
/// Its content. Throws MeasureException where the bytes are none or are damaged.
ORLIX_API std::string_view unwrapState(std::string_view bytes, std::string& verb);

/// Shows the fields of a record to a stream, which writes or reads them.
template <class Stream>
class FieldStream final : public data::FieldVisitor
{
public:
    explicit FieldStream(Stream& stream) : stream_{stream} {}
    void operator()(const data::FieldInfo&, bool& value) override { stream_(value); }
    void operator()(const data::FieldInfo& info, unsigned& value) override
    {
        stream_(value);
        if constexpr (Stream::isReader) {
            if (!info.enumerators.empty() && value >= info.enumerators.size()) {
                Stream::fail(std::string{info.name} + " has no value " + std::to_string(value));
            }
        }
    }
    void operator()(const data::FieldInfo&, std::uint64_t& value) override { stream_(value); }
    void operator()(const data::FieldInfo&, double& value) override
    {
        stream_(value);
        value += 0.0; // of both zeros one
    }
    void operator()(const data::FieldInfo&, std::vector<double>& values) override { stream_(values); }
    void operator()(const data::FieldInfo&, std::vector<std::uint64_t>& values) override { stream_(values); }
    void operator()(const data::FieldInfo&, std::optional<double>& value) override
    {
        bool isThere = value.has_value();
        double number = value.value_or(0);
        stream_(isThere);
        stream_(number);
        value = isThere ? std::optional{number} : std::nullopt;
    }
    using data::FieldVisitor::operator();

private:
    Stream& stream_;
};

} // namespace orlix::imaproc

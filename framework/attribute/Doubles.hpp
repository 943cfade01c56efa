#pragma once

#include <framework/attribute/Attribute.hpp>

#include <vector>

namespace orlix::imaproc::attr
{

/// A list of numbers.
class ORLIX_API Doubles final : public data::DataItem<Doubles>
{
public:
    static constexpr const char* typeName = "orlix::imaproc::attr::Doubles";

    std::vector<double> Values;

    static constexpr auto fields() { return std::tuple{data::Field{"Values", &Doubles::Values}}; }
};

} // namespace orlix::imaproc::attr

#pragma once

#include <framework/attribute/Doubles.hpp>

namespace orlix::imaproc::attr
{

/// The surface z = a x^2 + b y^2 + c x y + d x + e y + f over columns x and rows y, both counted from 0.
class ORLIX_API ParaboloidParams3d final : public data::DataItem<ParaboloidParams3d>
{
public:
    static constexpr const char* typeName = "orlix::imaproc::attr::ParaboloidParams3d";

    double a = 0;
    double b = 0;
    double c = 0;
    double d = 0;
    double e = 0;
    double f = 0;

    void visitFields(data::FieldVisitor& field) override
    {
        field({"a", "factor of x^2", "grey levels"}, a);
        field({"b", "factor of y^2", "grey levels"}, b);
        field({"c", "factor of x y", "grey levels"}, c);
        field({"d", "factor of x", "grey levels"}, d);
        field({"e", "factor of y", "grey levels"}, e);
        field({"f", "constant", "grey levels"}, f);
    }
};

class ORLIX_API PlanIndexedParaboloidParams3d final
    : public PlanIndexedColl<PlanIndexedParaboloidParams3d, ParaboloidParams3d>
{
public:
    static constexpr const char* typeName = "orlix::imaproc::attr::PlanIndexedParaboloidParams3d";
};

class ORLIX_API OutParaboloidParams3d final : public ObjectOutput<OutParaboloidParams3d, ParaboloidParams3d>
{
public:
    static constexpr const char* name = "OutParaboloidParams3d";
};

class ORLIX_API OutPIParaboloidParams3d final
    : public PlanIndexedOutput<OutPIParaboloidParams3d, PlanIndexedParaboloidParams3d>
{
public:
    static constexpr const char* name = "OutPIParaboloidParams3d";
};

/// Sums over pixels z at (x, y), in this order: x^2 z, y^2 z, x y z, x z, y z, z; under a mask also those over its
/// pixels of x^4, x^2 y^2, x^3 y, x^3, x^2 y, x^2, y^4, x y^3, x y^2, y^3, y^2, x y, x, y, and their number.
class ORLIX_API OutMatrixSums final : public ObjectOutput<OutMatrixSums, Doubles>
{
public:
    static constexpr const char* name = "OutMatrixSums";
};

} // namespace orlix::imaproc::attr

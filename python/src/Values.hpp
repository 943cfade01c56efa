#pragma once

#include <framework/process/MeasureRun.hpp>

#include <nanobind/nanobind.h>

#include <vector>

namespace orlix::python
{

namespace nb = nanobind;

/// The numbers as a NumPy array of this shape, which keeps them.
template <class T>
nb::object makeArray(std::vector<T> numbers, std::vector<std::size_t> shape);

/// A value of a field: a number, a text; a list as an array, as a tuple where its elements have names, as a dict where
/// they are pairs of names and numbers.
nb::object toPython(data::Value value, const data::FieldInfo& info);

/// What the results of a measure are: a value for each field, None where no result has it. Of a single result the
/// values themselves; of several, arrays of one number a result (lists where their lengths differ).
nb::list listValues(const std::vector<data::FieldInfo>& fields, std::vector<imaproc::ResultRow> rows, bool isSingle);

/// The columns of a table, by the names of its fields; the coordinates of a list are columns of their own, as
/// "Centroid.x".
nb::dict listColumns(imaproc::ResultRows rows);

/// A parameter as its measure takes it. Throws nb::type_error and nb::value_error.
data::Value fromPython(nb::handle value, const imaproc::attr::Parameter& parameter);

} // namespace orlix::python

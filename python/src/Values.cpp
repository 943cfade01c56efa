#include "Values.hpp"

#include <nanobind/ndarray.h>
#include <nanobind/stl/string.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace orlix::python
{

using data::FieldInfo;
using data::Value;
using imaproc::NamedFields;
using imaproc::ResultRow;

template <class T>
nb::object makeArray(std::vector<T> numbers, std::vector<std::size_t> shape)
{
    auto kept = std::make_unique<std::vector<T>>(std::move(numbers));
    T* const first = kept->data();
    const nb::capsule owner{kept.release(), [](void* p) noexcept { delete static_cast<std::vector<T>*>(p); }};
    return nb::cast(nb::ndarray<nb::numpy, T>{first, shape.size(), shape.data(), owner});
}

template nb::object makeArray(std::vector<double>, std::vector<std::size_t>);
template nb::object makeArray(std::vector<std::uint8_t>, std::vector<std::size_t>);
template nb::object makeArray(std::vector<std::int64_t>, std::vector<std::size_t>);
template nb::object makeArray(std::vector<std::uint64_t>, std::vector<std::size_t>);

namespace
{

template <class T>
constexpr bool isList = false;
template <class T>
constexpr bool isList<std::vector<T>> = true;

bool hasNamedElements(const FieldInfo& info)
{
    return info.columns == 1 && !info.columnNames.empty();
}

/// Whether each element names a number: percent, value.
bool hasNamedPairs(const FieldInfo& info)
{
    return info.columns == 2 && !info.columnNames.empty();
}

/// A list of numbers becomes an array with a row for every element.
template <class T>
nb::object toArray(std::vector<T> numbers, std::size_t columns)
{
    const std::size_t rows = numbers.size() / columns;
    auto shape = columns == 1 ? std::vector{rows} : std::vector{rows, columns};
    return makeArray(std::move(numbers), std::move(shape));
}

/// The field of this name in a row; null where it is not there.
data::Field* find(NamedFields& fields, std::string_view name)
{
    const auto found =
        std::find_if(fields.begin(), fields.end(), [name](const auto& each) { return each.first == name; });
    return found == fields.end() || !found->second.isThere ? nullptr : &found->second;
}

/// One number of each row; NaN where it has none.
template <class T>
nb::object gatherNumbers(std::vector<data::Field*>& fields)
{
    std::vector<T> numbers;
    numbers.reserve(fields.size());
    for (const data::Field* const field : fields) {
        numbers.push_back(field != nullptr ? std::get<T>(field->value) : T{});
    }
    return makeArray(std::move(numbers), {fields.size()});
}

/// A list of each row: an array with a row for each, or where their lengths differ, a list of arrays.
template <class T>
nb::object gatherLists(std::vector<data::Field*>& fields, const FieldInfo& info)
{
    const auto sizeOf = [](const data::Field* field) { return std::get<std::vector<T>>(field->value).size(); };
    const std::size_t size = sizeOf(fields[0]);
    if (!std::all_of(fields.begin(), fields.end(), [&](const data::Field* each) { return sizeOf(each) == size; }) ||
        (info.columns > 1 && !hasNamedPairs(info))) {
        nb::list arrays;
        for (data::Field* const field : fields) {
            arrays.append(toArray(std::move(std::get<std::vector<T>>(field->value)), info.columns));
        }
        return arrays;
    }
    if (hasNamedPairs(info)) {
        nb::dict named;
        for (std::size_t i = 0; i < size; i += 2) {
            std::vector<T> numbers(fields.size());
            std::transform(fields.begin(), fields.end(), numbers.begin(),
                           [i](const data::Field* field) { return std::get<std::vector<T>>(field->value)[i + 1]; });
            named[nb::cast(std::get<std::vector<T>>(fields[0]->value)[i])] =
                makeArray(std::move(numbers), {fields.size()});
        }
        return named;
    }
    std::vector<T> numbers;
    numbers.reserve(size * fields.size());
    for (const data::Field* const field : fields) {
        const auto& list = std::get<std::vector<T>>(field->value);
        numbers.insert(numbers.end(), list.begin(), list.end());
    }
    return makeArray(std::move(numbers), {fields.size(), size});
}

/// A column of results, all of which are there.
nb::object gather(std::vector<data::Field*> fields, const FieldInfo& info)
{
    const auto visit = [&]<class T>(const T&) -> nb::object {
        if constexpr (isList<T>) {
            return gatherLists<typename T::value_type>(fields, info);
        } else if constexpr (std::is_same_v<T, double> || std::is_same_v<T, std::uint64_t> ||
                             std::is_same_v<T, std::int64_t>) {
            return gatherNumbers<T>(fields);
        } else {
            nb::list values;
            for (const data::Field* const field : fields) {
                values.append(nb::cast(std::get<T>(field->value)));
            }
            return values;
        }
    };
    return std::visit(visit, fields[0]->value);
}

} // namespace

nb::object toPython(Value value, const FieldInfo& info)
{
    const auto convert = [&]<class T>(T& each) -> nb::object {
        if constexpr (!isList<T>) {
            return nb::cast(each);
        } else if (hasNamedElements(info)) {
            nb::list elements;
            for (const auto number : each) {
                elements.append(nb::cast(number));
            }
            return nb::tuple(elements);
        } else if (hasNamedPairs(info)) {
            nb::dict named;
            for (std::size_t i = 0; i + 1 < each.size(); i += 2) {
                named[nb::cast(each[i])] = nb::cast(each[i + 1]);
            }
            return named;
        } else {
            return toArray(std::move(each), info.columns);
        }
    };
    return std::visit(convert, value);
}

nb::list listValues(const std::vector<FieldInfo>& fields, std::vector<ResultRow> rows, bool isSingle)
{
    nb::list values;
    for (const FieldInfo& info : fields) {
        std::vector<data::Field*> found;
        data::Field* any = nullptr;
        for (ResultRow& row : rows) {
            found.push_back(find(row.fields, info.name));
            any = any != nullptr ? any : found.back();
        }
        if (any == nullptr) {
            values.append(nb::none());
        } else if (isSingle) {
            values.append(toPython(std::move(any->value), any->info));
        } else {
            const bool isNumber = std::holds_alternative<double>(any->value);
            data::Field none{*any};
            none.value = isNumber ? Value{std::numeric_limits<double>::quiet_NaN()} : none.value;
            std::replace(found.begin(), found.end(), static_cast<data::Field*>(nullptr), &none);
            values.append(gather(std::move(found), any->info));
        }
    }
    return values;
}

nb::dict listColumns(imaproc::ResultRows rows)
{
    nb::dict columns;
    if (!rows.rows.empty() && rows.rows[0].place.per != imaproc::Per::Image) {
        const auto add = [&](const char* name, std::uint64_t imaproc::ResultPlace::*axis) {
            std::vector<std::int64_t> numbers;
            for (const ResultRow& row : rows.rows) {
                numbers.push_back(static_cast<std::int64_t>(row.place.*axis));
            }
            const std::size_t size = numbers.size();
            columns[name] = makeArray(std::move(numbers), {size});
        };
        if (rows.rows[0].place.per == imaproc::Per::Plan) {
            add("z", &imaproc::ResultPlace::z);
        }
        add("c", &imaproc::ResultPlace::c);
        add("t", &imaproc::ResultPlace::t);
    }
    for (const auto& named : rows.columns) {
        const std::string& name = named.first;
        const data::Field& column = named.second;
        const auto gatherColumn = [&]<class T>(const T&) {
            const auto add = [&](const std::string& title, auto pick) {
                using Number = std::conditional_t<std::is_same_v<decltype(pick(T{})), std::uint64_t>, std::int64_t,
                                                  decltype(pick(T{}))>;
                if constexpr (std::is_same_v<Number, double> || std::is_same_v<Number, std::int64_t>) {
                    std::vector<Number> numbers;
                    numbers.reserve(rows.rows.size());
                    for (ResultRow& row : rows.rows) {
                        const data::Field* const field = find(row.fields, name);
                        numbers.push_back(static_cast<Number>(pick(std::get<T>(field->value))));
                    }
                    const std::size_t size = numbers.size();
                    columns[nb::str(title.c_str())] = makeArray(std::move(numbers), {size});
                } else if constexpr (std::is_same_v<Number, bool>) {
                    std::vector<std::uint8_t> bytes;
                    for (ResultRow& row : rows.rows) {
                        bytes.push_back(std::get<bool>(find(row.fields, name)->value) ? 1 : 0);
                    }
                    const std::size_t size = bytes.size();
                    columns[nb::str(title.c_str())] = makeArray(std::move(bytes), {size}).attr("view")("bool");
                }
            };
            if constexpr (isList<T>) {
                for (std::size_t i = 0; i < column.info.columnNames.size(); ++i) {
                    add(name + "." + column.info.columnNames[i],
                        [i](const T& list) { return i < list.size() ? list[i] : typename T::value_type{}; });
                }
            } else {
                add(name, [](const T& value) { return value; });
            }
        };
        std::visit(gatherColumn, column.value);
    }
    return columns;
}

Value fromPython(nb::handle value, const imaproc::attr::Parameter& parameter)
{
    const FieldInfo& info = parameter.info;
    // What an error says is made where there is one.
    const auto getName = [&] {
        std::string name = info.option;
        std::replace(name.begin(), name.end(), '-', '_');
        return name;
    };
    const auto notThis = [&] { return ", not " + nb::cast<std::string>(nb::repr(value)); };
    const auto isOf = [&]<class T>(std::type_identity<T>) {
        return parameter.defaultValue && std::holds_alternative<T>(*parameter.defaultValue);
    };
    const auto limits = [&] {
        std::string text;
        const auto print = [](double x) {
            std::string number = std::to_string(x);
            number.erase(number.find_last_not_of('0') + 1);
            return number.ends_with('.') ? number.substr(0, number.size() - 1) : number;
        };
        if (std::isfinite(info.lowest)) {
            text += " from " + print(info.lowest);
        }
        if (std::isfinite(info.highest)) {
            text += " to " + print(info.highest);
        }
        return text;
    };
    const auto toNumber = [&](nb::handle each) {
        double number = 0;
        if (!nb::try_cast(each, number) || nb::isinstance<nb::bool_>(each)) {
            throw nb::type_error((getName() + " is a number" + limits() + notThis()).c_str());
        }
        if (std::isnan(number) || number < info.lowest || number > info.highest) {
            throw nb::value_error((getName() + " is a number" + limits() + notThis()).c_str());
        }
        return number;
    };
    if (isOf(std::type_identity<bool>{})) {
        if (!nb::isinstance<nb::bool_>(value)) {
            throw nb::type_error((getName() + " is True or False" + notThis()).c_str());
        }
        return nb::cast<bool>(value);
    }
    if (nb::isinstance<nb::str>(value)) {
        auto text = nb::cast<std::string>(value);
        std::string names;
        for (const char* const each : info.enumerators) {
            if (text == each) {
                return text;
            }
            names.append(names.empty() ? "" : ", ").append(each);
        }
        throw nb::value_error(
            (getName() + (names.empty() ? " is a number" : " is one of " + names) + notThis()).c_str());
    }
    if (isOf(std::type_identity<std::vector<double>>{})) {
        std::vector<double> numbers;
        if (!nb::hasattr(value, "__iter__")) {
            return std::vector{toNumber(value)};
        }
        for (const nb::handle each : nb::iter(value)) {
            numbers.push_back(toNumber(each));
        }
        return numbers;
    }
    const double number = toNumber(value);
    if (!info.enumerators.empty() && std::string_view{info.option} != "bandwidth") {
        throw nb::type_error((getName() + " is a name" + notThis()).c_str());
    }
    if (parameter.isWhole && (number != std::floor(number) || number < 0)) {
        throw nb::value_error((getName() + " is a whole number from 0 on" + notThis()).c_str());
    }
    return number;
}

} // namespace orlix::python

// What calls of a model set by the names of items, as the table of items has them.
#pragma once

#include "KARMPItemValues.h"
#include "KARMPModelExport.h"
#include "KARMPModelRef.h"
#include "KARMathPoint.h"
#include "KARMathPoint2D.h"
#include "KARMathTransformation.h"
#include "KARMathTransformation2D.h"

#include <initializer_list>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace karmp::model {

/// What an item is to hold: a number, a word or another text in UTF-8, numbers in a row, an entity
/// or several, or a value of the table of items. Texts and lists are copied, which may throw
/// std::bad_alloc before the call is made that they are for.
class KARMP_MODEL_API ItemValue
{
    using Entity = QOBSharedHandle<KARMPEntity>;

public:
    ItemValue(bool flag) : m_value(flag) {}
    ItemValue(int number) : m_value(number) {}
    ItemValue(double number) : m_value(number) {}
    ItemValue(const char* text) : ItemValue(std::string_view(text)) {}
    ItemValue(const std::string& text) : ItemValue(std::string_view(text)) {}
    ItemValue(std::string_view text);
    ItemValue(std::initializer_list<double> numbers) : m_value(NumberArray(numbers)) {}
    ItemValue(const KARMathPoint& point);
    ItemValue(const KARMathPoint2D& point);
    ItemValue(const KARMathVector& vector);
    ItemValue(const KARMathVector2D& vector);
    ItemValue(const KARMathTransformation& transformation);
    ItemValue(const KARMathTransformation2D& transformation);
    template <class T>
    ItemValue(const Ref<T>& entity) : m_value(Entity(entity.Handle()))
    {}
    template <class T>
    ItemValue(const RefList<T>& entities)
        : m_value(std::vector<Entity>(entities.begin(), entities.end()))
    {}
    ItemValue(std::initializer_list<Ref<KARMPEntity>> entities)
        : ItemValue(RefList<KARMPEntity>(entities))
    {}
    ItemValue(Value value) : m_value(std::move(value)) {}

    /// The same as a value of the table.
    const Value& Get() const { return m_value; }

private:
    Value m_value;
};

/// An item by its path, or by its name where one item alone has it, and what it is to hold.
///
/// An item takes an int for a double, and one entity for a list of it. A reference to a value of a
/// quantity takes a number as a new constant, which is called "Spring.rest length" for the item
/// "RestLength" of "Spring"; the word "coefficient" is left out of it.
struct Setting
{
    std::string_view item;
    ItemValue value;
};
using Settings = std::initializer_list<Setting>;

} // namespace karmp::model

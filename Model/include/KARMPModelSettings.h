// What calls of a model set by the names of items, as the table of items has them.
#pragma once

#include "KARMPItemValues.h"
#include "KARMPModelExport.h"
#include "KARMPModelRef.h"
#include "KARMathPoint.h"
#include "KARMathPoint2D.h"
#include "KARMathTransformation.h"
#include "KARMathTransformation2D.h"

#include <cstddef>
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
    /// Nothing: it unsets what can be unset, such as a reference.
    ItemValue(std::nullptr_t) {}
    /// A yes or no.
    ItemValue(bool flag) : m_value(flag) {}
    /// A whole number; an item that holds a real one takes it too.
    ItemValue(int number) : m_value(number) {}
    /// A number, in the unit of the item.
    ItemValue(double number) : m_value(number) {}
    /// A word or another text in UTF-8; empty for null.
    ItemValue(const char* text) : ItemValue(std::string_view(text != nullptr ? text : "")) {}
    /// A word or another text in UTF-8.
    ItemValue(const std::string& text) : ItemValue(std::string_view(text)) {}
    /// A word or another text in UTF-8.
    ItemValue(std::string_view text);
    /// Numbers in a row, as many as the item has.
    ItemValue(std::initializer_list<double> numbers) : m_value(NumberArray(numbers)) {}
    /// Three coordinates.
    ItemValue(const KARMathPoint& point);
    /// Two coordinates.
    ItemValue(const KARMathPoint2D& point);
    /// Three components.
    ItemValue(const KARMathVector& vector);
    /// Two components.
    ItemValue(const KARMathVector2D& vector);
    /// A place in space.
    ItemValue(const KARMathTransformation& transformation);
    /// A place in the plane.
    ItemValue(const KARMathTransformation2D& transformation);
    /// An entity that is referred to.
    template <class T>
    ItemValue(const Ref<T>& entity) : m_value(Entity(entity.Handle()))
    {}
    /// Entities that are referred to, in order.
    template <class T>
    ItemValue(const RefList<T>& entities)
        : m_value(std::vector<Entity>(entities.begin(), entities.end()))
    {}
    /// Entities that are referred to, in order.
    ItemValue(std::initializer_list<Ref<KARMPEntity>> entities)
        : ItemValue(RefList<KARMPEntity>(entities))
    {}
    /// A value of the table of items.
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

#pragma once

#include "KARMPEntityTable.h"
#include "KARMPExport.h"
#include "KARStatus.h"
#include "QOBSharedHandle.h"

#include <string>
#include <string_view>
#include <vector>

class KARMPDeserializer;
class KARMPSerializer;
class KARMPValue;
class KARMathPoint;
class KARMathVector;
class KARWBEquation;
class KARWBFactory;

/// Writing and reading that all entities share: points, vectors, references to values, class names
/// of elements, and equations as text.
class KARMP_API KARMPSerializationServices
{
public:
    using Names = std::vector<std::wstring>;
    using ValueHandle = QOBSharedHandle<KARMPValue>;

    /// Adds an element with the coordinates as "Px", "Py", "Pz". A null serializer and an element
    /// that cannot be added are a failed check and a failure; a coordinate that cannot be is a
    /// failed check.
    [[nodiscard]] static KARStatus Serialize(KARMPSerializer* serializer, const KARMathPoint& point,
                                             std::wstring_view name);
    /// The same with "Vx", "Vy", "Vz".
    [[nodiscard]] static KARStatus Serialize(KARMPSerializer* serializer,
                                             const KARMathVector& vector, std::wstring_view name);
    /// Reads what Serialize writes. A null deserializer and a missing element are a failed check
    /// and a failure; a missing coordinate is a failed check and keeps its value.
    [[nodiscard]] static KARStatus Deserialize(const KARMPDeserializer* deserializer,
                                               std::wstring_view name,
                                               const KARMPEntityTable& entities,
                                               KARMathPoint& point);
    [[nodiscard]] static KARStatus Deserialize(const KARMPDeserializer* deserializer,
                                               std::wstring_view name,
                                               const KARMPEntityTable& entities,
                                               KARMathVector& vector);

    /// Adds a reference to a value: its "id" and, whether names are written or not, its "name". A
    /// null argument and whatever fails are a failed check and a failure.
    [[nodiscard]] static KARStatus Serialize(KARMPSerializer* serializer, const ValueHandle& value,
                                             std::wstring_view name);
    /// Adds `count` such references in order; the first that fails ends the call. A count other
    /// than the number of names is a failed check and a failure.
    [[nodiscard]] static KARStatus Serialize(KARMPSerializer* serializer, const ValueHandle* values,
                                             int count, const Names& names);
    /// Reads a reference to a value. A missing element or an unknown identifier is a failed check
    /// and a failure with a null handle. Throws QOBEInvalidCast when the entity is no value.
    [[nodiscard]] static KARStatus Deserialize(const KARMPDeserializer* deserializer,
                                               std::wstring_view name,
                                               const KARMPEntityTable& entities,
                                               ValueHandle& value);
    /// Reads as many references as there are names, in order. The first whose element is missing or
    /// whose identifier is unknown ends the call with a failure, without a report; those before it
    /// are stored, the others stay as they are.
    [[nodiscard]] static KARStatus Deserialize(const KARMPDeserializer* deserializer,
                                               const Names& names, const KARMPEntityTable& entities,
                                               ValueHandle* values);

    /// Gives the text in the characters of the C library's current locale, terminated, to be
    /// freed with `free`. A text without storage (null data) and one with a character that the
    /// locale lacks are a failed check and a failure with null.
    static KARStatus ConvertToCString(std::wstring_view text, const char*& result);
    /// The same from a terminated text; null has no storage.
    static KARStatus ConvertToCString(const wchar_t* text, const char*& result)
    {
        return ConvertToCString(ViewOf(text), result);
    }

    /// Name of the class whose element has this name, whether there is such a class or not.
    static std::string to_type(std::wstring_view elementName);
    /// Decimal form of a number.
    static std::wstring to_wstring(int number);
    /// Wide form of a narrow text in UTF-8; null is the empty text.
    static std::wstring to_wstring(const char* text);

    /// Makes the one equation of a text in a factory, which owns it. Text without storage or with a
    /// character that the current locale lacks, text that does not parse, a null factory, and text
    /// of other than one equation are a failed check and a failure with null; in the last case the
    /// factory holds the equations of the text.
    [[nodiscard]] static KARStatus ParseWBEquation(std::wstring_view text, KARWBFactory* factory,
                                                   KARWBEquation*& equation);
    /// The same from a terminated text; null has no storage.
    [[nodiscard]] static KARStatus ParseWBEquation(const wchar_t* text, KARWBFactory* factory,
                                                   KARWBEquation*& equation)
    {
        return ParseWBEquation(ViewOf(text), factory, equation);
    }
    /// Gives the text of an equation. Null, and an equation that is not complete, are a failed
    /// check and a failure.
    [[nodiscard]] static KARStatus PrintWBEquation(const KARWBEquation* equation,
                                                   std::wstring& text);

private:
    static std::wstring_view ViewOf(const wchar_t* text)
    {
        return text != nullptr ? std::wstring_view(text) : std::wstring_view();
    }
};

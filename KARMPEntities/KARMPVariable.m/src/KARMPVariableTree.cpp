#include "KARMPConstraint.h"
#include "KARMPElementReader.h"
#include "KARMPElementWriter.h"
#include "KARMPVariable.h"

namespace {

// A number that may be there: an element with a flag and, when it is set, the number.
struct OptionalNumber
{
    std::wstring_view element;
    std::wstring_view flag;
    std::wstring_view number;
};

constexpr OptionalNumber Value{L"Value", L"HasValue", L"Value"};
constexpr OptionalNumber MaxValue{L"MaxValue", L"HasMaxValue", L"MaxValue"};
constexpr OptionalNumber MinValue{L"MinValue", L"HasMinValue", L"MinValue"};
constexpr OptionalNumber MaxRestitution{L"MaxLimitRestitution", L"HasMaxLimitRestitution",
                                        L"MaxLimitRestitutionValue"};
constexpr OptionalNumber MinRestitution{L"MinLimitRestitution", L"HasMinLimitRestitution",
                                        L"MinLimitRestitutionValue"};

void Write(karmp::ElementWriter& parent, const OptionalNumber& names, bool isSet, double number)
{
    karmp::ElementWriter element = parent.Child(names.element);
    element.Value(names.flag, isSet);
    if (isSet)
        element.Value(names.number, number);
}

// True when there is a number.
bool Read(karmp::ElementReader& parent, const OptionalNumber& names, double& number)
{
    using karmp::Absent;
    karmp::ElementReader element = parent.Child(names.element, Absent::ReportAndKeep);
    bool isSet = false;
    element.Value(names.flag, isSet, Absent::ReportAndKeep);
    return isSet && element.Value(names.number, number, Absent::ReportAndKeep);
}

// Below R2017.0 quantity and type are numbers.
template <class Enum>
bool ReadNumber(karmp::ElementReader& element, karmp::ItemName name, Enum& value)
{
    int number = 0;
    if (!element.Value(name, number, karmp::Absent::ReportAndKeep))
        return false;
    value = static_cast<Enum>(number);
    return true;
}

} // namespace

KARStatus KARMPVariable::Serialize(KARMPSerializer* serializer) const
{
    karmp::ElementWriter element(serializer, L"Variable");
    if (!element || !element.Base(Super::Serialize(element.Node())))
        return KARFailure;
    if (karmp::AtLeast(element.Version(), karmp::R2017_0)) {
        Write(element, Value, m_hasValue, m_value);
        Write(element, MaxValue, m_hasMaxValue, m_maxValue);
        Write(element, MinValue, m_hasMinValue, m_minValue);
        Write(element, MaxRestitution, m_hasRestitutionOnMaxLimit, m_restitutionOnMaxLimit);
        Write(element, MinRestitution, m_hasRestitutionOnMinLimit, m_restitutionOnMinLimit);
        element.Word(L"PhysicalQuantity", m_physicalQuantity);
        element.Word(L"Type", m_type);
    } else {
        element.Attribute(L"value", m_value);
        element.Attribute(L"minvalue", m_minValue);
        element.Attribute(L"maxvalue", m_maxValue);
        element.Value(L"PhysicalQuantity", static_cast<int>(m_physicalQuantity));
        if (karmp::AtLeast(element.Version(), karmp::R2016_0))
            element.Value(L"Type", static_cast<int>(m_type));
    }
    element.References<KARMPConstraint>(
        L"Constraints", L"Constraint", GetLinkedConstraintCount(),
        [this](int i, auto& constraint) { return GetLinkedConstraint(i, constraint); });
    // What could not be added is reported; the element itself is there.
    return KARSuccess;
}

KARStatus KARMPVariable::Deserialize(const KARMPDeserializer* deserializer,
                                     const KARMPEntityTable& entities)
{
    using karmp::Absent;
    karmp::ElementReader element(deserializer, L"Variable");
    if (!element || !element.Base(Super::Deserialize(element.Node(), entities)))
        return KARFailure;
    if (karmp::AtLeast(element.Version(), karmp::R2017_0)) {
        double number = 0.0;
        if (Read(element, Value, number))
            element.Set(SetValue(number));
        if (Read(element, MinValue, number))
            element.Set(SetMinValue(number));
        if (Read(element, MaxValue, number))
            element.Set(SetMaxValue(number));
        // The loader is not told of restitutions.
        if (Read(element, MinRestitution, m_restitutionOnMinLimit))
            m_hasRestitutionOnMinLimit = true;
        if (Read(element, MaxRestitution, m_restitutionOnMaxLimit))
            m_hasRestitutionOnMaxLimit = true;
        element.Word(L"PhysicalQuantity", m_physicalQuantity, Absent::ReportAndKeep);
        element.Word(L"Type", m_type, Absent::ReportAndKeep);
    } else {
        // The attributes come without the flags: every variable of that form has all three.
        element.Attribute(L"value", m_value, Absent::Keep);
        element.Attribute(L"minvalue", m_minValue, Absent::Keep);
        element.Attribute(L"maxvalue", m_maxValue, Absent::Keep);
        ReadNumber(element, L"PhysicalQuantity", m_physicalQuantity);
        if (karmp::AtLeast(element.Version(), karmp::R2016_0))
            ReadNumber(element, L"Type", m_type);
    }
    element.References<KARMPConstraint>(L"Constraints", L"Constraint", entities,
                                        [this](const auto& c) { return LinkToConstraint(c); });
    return KARSuccess;
}

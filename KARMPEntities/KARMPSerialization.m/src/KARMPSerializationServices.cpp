#include "KARMPSerializationServices.h"

#include "KARCDSIntArray.h"
#include "KARCDSString.h"
#include "KARMPElementReader.h"
#include "KARMPElementWriter.h"
#include "KARMPNarrowText.h"
#include "KARMPValue.h"
#include "KARUnicodeString.h"
#include "KARWBEquationPrinter.h"
#include "KARWBFactory.h"
#include "KARWBModel.h"
#include "KARWBParser.h"
#include "KARWBParserMessenger.h"

#include <cstdlib>
#include <cstring>

namespace {

template <class Triple>
KARStatus Write(KARMPSerializer* serializer, std::wstring_view name, const karmp::Names<3>& names,
                const Triple& triple)
{
    karmp::ElementWriter element(serializer, name);
    if (!element)
        return KARFailure;
    element.Values(names, triple);
    return KARSuccess;
}

template <class Triple>
KARStatus Read(const KARMPDeserializer* deserializer, std::wstring_view name,
               const karmp::Names<3>& names, Triple& triple)
{
    using karmp::Absent;
    karmp::ElementReader element =
        karmp::ElementReader(deserializer).Child(name, Absent::ReportAndKeep);
    if (!element)
        return KARFailure;
    element.Values(names, triple, Absent::ReportAndKeep);
    return KARSuccess;
}

// The classes whose elements have other names, since the name of an element begins with a letter.
constexpr struct
{
    std::string_view element;
    std::string_view type;
} RenamedTypes[] = {{"ZeroDoF", "0DoF"}, {"SixDoF", "6DoF"}, {"Rep3D", "3DRep"}};

} // namespace

KARStatus KARMPSerializationServices::Serialize(KARMPSerializer* serializer,
                                                const KARMathPoint& point, std::wstring_view name)
{
    return Write(serializer, name, karmp::PointNames, point);
}

KARStatus KARMPSerializationServices::Serialize(KARMPSerializer* serializer,
                                                const KARMathVector& vector, std::wstring_view name)
{
    return Write(serializer, name, karmp::VectorNames, vector);
}

KARStatus KARMPSerializationServices::Deserialize(const KARMPDeserializer* deserializer,
                                                  std::wstring_view name, const KARMPEntityTable&,
                                                  KARMathPoint& point)
{
    return Read(deserializer, name, karmp::PointNames, point);
}

KARStatus KARMPSerializationServices::Deserialize(const KARMPDeserializer* deserializer,
                                                  std::wstring_view name, const KARMPEntityTable&,
                                                  KARMathVector& vector)
{
    return Read(deserializer, name, karmp::VectorNames, vector);
}

KARStatus KARMPSerializationServices::Serialize(KARMPSerializer* serializer,
                                                const ValueHandle& value, std::wstring_view name)
{
    if (!KARMPVerify(serializer != nullptr && value))
        return KARFailure;
    const KARStatus status = Serialize(serializer, &value, 1, Names{std::wstring(name)});
    KARMPVerify(!KARFailed(status));
    return status;
}

KARStatus KARMPSerializationServices::Serialize(KARMPSerializer* serializer,
                                                const ValueHandle* values, int count,
                                                const Names& names)
{
    if (!KARMPVerify(serializer != nullptr && count == static_cast<std::int64_t>(names.size())))
        return KARFailure;
    if (!KARMPVerify(values != nullptr || count == 0))
        return KARFailure;
    karmp::ElementWriter element(serializer);
    for (std::size_t i = 0; i < names.size(); ++i) {
        karmp::ElementWriter reference = element.Child(names[i]);
        if (!reference)
            return KARFailure;
        const ValueHandle value(values[i], QOBSharedBase::WriteLock);
        if (!KARMPVerify(static_cast<bool>(value)))
            return KARFailure;
        // The name is written whatever KARMPSerializer::SerializeName says, unlike in the
        // references of the families.
        if (!reference.ReferenceAttributes(value.get(), true))
            return KARFailure;
    }
    return KARSuccess;
}

KARStatus KARMPSerializationServices::Deserialize(const KARMPDeserializer* deserializer,
                                                  std::wstring_view name,
                                                  const KARMPEntityTable& entities,
                                                  ValueHandle& value)
{
    value = nullptr;
    if (!KARMPVerify(deserializer != nullptr))
        return KARFailure;
    ValueHandle found;
    const KARStatus status = Deserialize(deserializer, Names{std::wstring(name)}, entities, &found);
    if (!KARMPVerify(!KARFailed(status) && found))
        return KARFailure;
    value = found;
    return KARSuccess;
}

KARStatus KARMPSerializationServices::Deserialize(const KARMPDeserializer* deserializer,
                                                  const Names& names,
                                                  const KARMPEntityTable& entities,
                                                  ValueHandle* values)
{
    karmp::ElementReader element(deserializer);
    if (!element || !KARMPVerify(values != nullptr || names.empty()))
        return KARFailure;
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (!element.Has(names[i]))
            return KARFailure;
        const karmp::ElementReader reference =
            element.Child(names[i], karmp::Absent::ReportAndKeep);
        if (!reference)
            return KARFailure;
        const auto value = reference.Target<KARMPValue>(entities);
        if (!value)
            return KARFailure;
        values[i] = value;
    }
    return KARSuccess;
}

KARStatus KARMPSerializationServices::ConvertToCString(std::wstring_view text, const char*& result)
{
    result = nullptr;
    std::string narrow;
    if (!KARMPVerify(text.data() != nullptr) || !KARMPVerify(karmp::NarrowText(text, narrow)))
        return KARFailure;
    auto* copy = static_cast<char*>(std::malloc(narrow.size() + 1));
    if (!KARMPVerify(copy != nullptr))
        return KAROutOfMemory;
    std::memcpy(copy, narrow.c_str(), narrow.size() + 1);
    result = copy;
    return KARSuccess;
}

std::string KARMPSerializationServices::to_type(std::wstring_view elementName)
{
    KARUnicodeString name;
    name.BuildFromWChar(elementName);
    std::string_view type = name.Text();
    for (const auto& renamed : RenamedTypes) {
        if (type == renamed.element) {
            type = renamed.type;
            break;
        }
    }
    return std::string("KARMP").append(type);
}

std::wstring KARMPSerializationServices::to_wstring(int number)
{
    return std::to_wstring(number);
}

std::wstring KARMPSerializationServices::to_wstring(const char* text)
{
    return KARUnicodeString(text).ConvertToWString();
}

KARStatus KARMPSerializationServices::ParseWBEquation(std::wstring_view text, KARWBFactory* factory,
                                                      KARWBEquation*& equation)
{
    equation = nullptr;
    KARWBModel model;
    KARCDSIntArray ids;
    KARWBParserMessenger messenger;
    std::string narrow;
    if (!KARMPVerify(text.data() != nullptr) || !KARMPVerify(karmp::NarrowText(text, narrow)))
        return KARFailure;
    if (!KARMPVerify(KARWBParser::Parse(std::string_view(narrow), model, ids, messenger, nullptr) ==
                     KARSuccess))
        return KARFailure;
    if (!KARMPVerify(factory != nullptr))
        return KARFailure;
    if (!KARMPVerify(!KARFailed(model.FillFactory(factory, ids, 0, nullptr, nullptr))))
        return KARFailure;
    // The factory keeps the equations of the text, also when they are not exactly one.
    if (!KARMPVerify(ids.Size() == 1))
        return KARFailure;
    equation = factory->GetEquationById(ids[0]);
    return KARMPVerify(equation != nullptr) ? KARSuccess : KARFailure;
}

KARStatus KARMPSerializationServices::PrintWBEquation(const KARWBEquation* equation,
                                                      std::wstring& text)
{
    KARCDSString printed;
    if (!KARMPVerify(equation != nullptr) ||
        !KARMPVerify(!KARFailed(KARWBEquationPrinter::Print(equation, printed))))
        return KARFailure;
    text = KARUnicodeString(std::string_view(printed)).ConvertToWString();
    return KARSuccess;
}

#include "KARMPConstraintParameter.h"

#include "KARMPElementReader.h"
#include "KARMPElementWriter.h"

#include <algorithm>

namespace {

constexpr karmp::Names<2> TypeNames{L"Type1", L"Type2"};
constexpr karmp::Names<3> TagNames{L"Tag1", L"Tag2", L"Tag3"};

template <class Integer, std::size_t N>
void WriteIntegers(karmp::ElementWriter section, const karmp::Names<N>& names,
                   const std::array<Integer, N>& values)
{
    for (std::size_t i = 0; i < N; ++i)
        section.Value(names[i], static_cast<int>(values[i]));
}

// The tree has signed integers only; a tag above their range comes back by the reverse conversion.
template <class Integer, std::size_t N>
void ReadIntegers(karmp::ElementReader section, const karmp::Names<N>& names,
                  std::array<Integer, N>& values)
{
    if (!section)
        return;
    std::array<int, N> read{};
    for (std::size_t i = 0; i < N; ++i)
        section.Value(names[i], read[i], karmp::Absent::ReportAndZero);
    std::transform(read.begin(), read.end(), values.begin(),
                   [](int value) { return static_cast<Integer>(value); });
}

} // namespace

KARMPConstraintParameter::KARMPConstraintParameter() = default;
KARMPConstraintParameter::KARMPConstraintParameter(const KARMPConstraintParameter&) = default;
KARMPConstraintParameter::~KARMPConstraintParameter() = default;
KARMPConstraintParameter& KARMPConstraintParameter::operator=(const KARMPConstraintParameter&) =
    default;

KARStatus KARMPConstraintParameter::Serialize(KARMPSerializer* serializer) const
{
    karmp::ElementWriter element(serializer, L"ConstraintParameter");
    if (!element)
        return KARFailure;
    WriteIntegers(element.Child(L"Types"), TypeNames, m_types);
    WriteIntegers(element.Child(L"Tags"), TagNames, m_tags);
    element.Child(L"Params").Values(karmp::CentreNames, m_params);
    return KARSuccess;
}

KARStatus KARMPConstraintParameter::Deserialize(const KARMPDeserializer* deserializer)
{
    m_initialized = true;
    using karmp::Absent;
    karmp::ElementReader element(deserializer);
    if (!element)
        return KARFailure;
    ReadIntegers(element.Child(L"Types", Absent::ReportAndKeep), TypeNames, m_types);
    ReadIntegers(element.Child(L"Tags", Absent::ReportAndKeep), TagNames, m_tags);
    if (karmp::ElementReader section = element.Child(L"Params", Absent::ReportAndKeep))
        section.Values(karmp::CentreNames, m_params, Absent::ReportAndZero);
    return KARSuccess;
}

void KARMPConstraintParameter::SetTypes(const int* types)
{
    std::copy_n(types, m_types.size(), m_types.begin());
}

void KARMPConstraintParameter::GetTypes(int* types) const
{
    std::copy(m_types.begin(), m_types.end(), types);
}

void KARMPConstraintParameter::SetTags(const unsigned int* tags)
{
    std::copy_n(tags, m_tags.size(), m_tags.begin());
}

void KARMPConstraintParameter::GetTags(unsigned int* tags) const
{
    std::copy(m_tags.begin(), m_tags.end(), tags);
}

void KARMPConstraintParameter::SetParams(const double* params)
{
    std::copy_n(params, m_params.size(), m_params.begin());
}

void KARMPConstraintParameter::GetParams(double* params) const
{
    std::copy(m_params.begin(), m_params.end(), params);
}

#include "KARMPConstraintParameter.h"

#include "KARMPContentWalk.h"
#include "KARMPFrames.h"

#include <algorithm>

template <>
struct karmp::ContentOf<KARMPConstraintParameter>
{
    using C = KARMPConstraintParameter;
    // The tree has signed integers only; a tag above their range comes back by the reverse
    // conversion.
    static constexpr auto List = Base(
        "Numbers that a solver keeps with a constraint.", LenientFrame,
        Group(L"Types", "The types, which the solver gives their meaning.",
              Integer<At<&C::m_types, 0>>(L"Type1", "The first type.").ZeroIfMissing(),
              Integer<At<&C::m_types, 1>>(L"Type2", "The second type.").ZeroIfMissing()),
        Group(L"Tags", "The tags, which the solver gives their meaning.",
              Integer<At<&C::m_tags, 0>>(L"Tag1", "The first tag.").ZeroIfMissing(),
              Integer<At<&C::m_tags, 1>>(L"Tag2", "The second tag.").ZeroIfMissing(),
              Integer<At<&C::m_tags, 2>>(L"Tag3", "The third tag.").ZeroIfMissing()),
        Group(L"Params", "The values, which the solver gives their meaning.",
              Numbers<&C::m_params>(L"Values", CentreNames, "The three values.").ZeroIfMissing()));
};

const karmp::Content& KARMPConstraintParameter::RecordContent()
{
    return karmp::RecordContent<karmp::ContentOf<KARMPConstraintParameter>>();
}

KARMPConstraintParameter::KARMPConstraintParameter() = default;
KARMPConstraintParameter::KARMPConstraintParameter(const KARMPConstraintParameter&) = default;
KARMPConstraintParameter::~KARMPConstraintParameter() = default;
KARMPConstraintParameter& KARMPConstraintParameter::operator=(const KARMPConstraintParameter&) =
    default;

KARStatus KARMPConstraintParameter::Serialize(KARMPSerializer* serializer) const
{
    const karmp::ElementWriter element(serializer, L"ConstraintParameter");
    return element ? karmp::WriteContent(RecordContent(), this, element.Node(), nullptr)
                   : KARFailure;
}

KARStatus KARMPConstraintParameter::Deserialize(const KARMPDeserializer* deserializer)
{
    m_initialized = true;
    return karmp::ReadContent(RecordContent(), this, deserializer, KARMPEntityTable(), nullptr);
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

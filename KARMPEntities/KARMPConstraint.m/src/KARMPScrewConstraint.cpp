#include "KARMPScrewConstraint.h"

#include "KARMPKinematicElement.h"
#include "KARTextConversion.h"

#include <tuple>

using namespace std::literals;

KARMP_DEFINE_ENTITY(KARMPScrewConstraint, "4D509574-BCB0-4EAD-BC6B-0572FA1A7EA5");

namespace {

constexpr std::array FrictionItems{karmp::StaticFriction,
                                   karmp::DynamicFriction,
                                   karmp::StaticSpeedLimit,
                                   karmp::DynamicSpeedLimit,
                                   karmp::FrictionItem{L"ReferenceDiameter", 5},
                                   karmp::FrictionItem{L"ReferenceLength", 4}};
constexpr std::wstring_view MotionStateName = L"MotionState";
constexpr karmp::Names<3> MotionNames{L"ScrewTangent", L"RotationOffset", L"TranslationOffset"};

} // namespace

KARMPScrewConstraint::KARMPScrewConstraint() = default;

KARMPScrewConstraint::KARMPScrewConstraint(const KARMPScrewConstraint& source, CopyMode mode)
    : Super(source, mode),
      m_friction(source.m_friction),
      m_motionState(source.m_motionState),
      m_motion(source.m_motion)
{}

KARMPScrewConstraint::~KARMPScrewConstraint() = default;

std::wstring_view KARMPScrewConstraint::getClassSerializeID_() const
{
    return L"ScrewConstraint"sv;
}

KARStatus KARMPScrewConstraint::SetFrictionParameters(
    double staticFriction, double staticSpeedLimit, double dynamicFriction,
    double dynamicSpeedLimit, double referenceLength, double referenceDiameter)
{
    m_friction = {staticFriction,    staticSpeedLimit, dynamicFriction,
                  dynamicSpeedLimit, referenceLength,  referenceDiameter};
    return KARSuccess;
}

KARStatus KARMPScrewConstraint::GetFrictionParameters(
    double& staticFriction, double& staticSpeedLimit, double& dynamicFriction,
    double& dynamicSpeedLimit, double& referenceLength, double& referenceDiameter) const
{
    std::tie(staticFriction, staticSpeedLimit, dynamicFriction, dynamicSpeedLimit, referenceLength,
             referenceDiameter) = std::tuple_cat(m_friction);
    return KARSuccess;
}

KARStatus KARMPScrewConstraint::SetTangent(double tangent)
{
    m_motion[0] = tangent;
    return KARSuccess;
}

KARStatus KARMPScrewConstraint::GetTangent(double& tangent) const
{
    tangent = m_motion[0];
    return KARSuccess;
}

KARStatus KARMPScrewConstraint::SetRotationOffset(double offset)
{
    m_motion[1] = offset;
    return KARSuccess;
}

KARStatus KARMPScrewConstraint::GetRotationOffset(double& offset) const
{
    offset = m_motion[1];
    return KARSuccess;
}

KARStatus KARMPScrewConstraint::SetTranslationOffset(double offset)
{
    m_motion[2] = offset;
    return KARSuccess;
}

KARStatus KARMPScrewConstraint::GetTranslationOffset(double& offset) const
{
    offset = m_motion[2];
    return KARSuccess;
}

KARStatus KARMPScrewConstraint::SetMotionState(const KARString& state)
{
    m_motionState = state;
    return KARSuccess;
}

KARStatus KARMPScrewConstraint::Serialize(KARMPSerializer* serializer) const
{
    karmp::ElementWriter element(serializer, getClassSerializeID_());
    // Unlike with its kin, an element that could not be added is reported and yet no failure.
    if (!element)
        return serializer == nullptr ? KARUnexpected : KARSuccess;
    if (!element.Base(Super::Serialize(element.Node())))
        return KARUnexpected;
    karmp::WriteFriction(element, *this, FrictionItems, m_friction.data());
    element.Value(MotionStateName, kar::ToWide(m_motionState.Text()));
    element.Values(MotionNames, m_motion);
    return karmp::KinematicStatus(element.Status());
}

KARStatus KARMPScrewConstraint::Deserialize(const KARMPDeserializer* deserializer,
                                            const KARMPEntityTable& entities)
{
    using karmp::Absent;
    karmp::ElementReader element(deserializer, getClassSerializeID_());
    if (!element || !element.Base(Super::Deserialize(element.Node(), entities)))
        return KARUnexpected;
    karmp::ReadFriction(element, *this, FrictionItems, m_friction.data());
    std::wstring_view state;
    if (element.Value(MotionStateName, state, Absent::ReportAndFail))
        m_motionState = KARString(kar::ToUtf8(state));
    element.Values(MotionNames, m_motion, Absent::ReportAndFail);
    return karmp::KinematicStatus(element.Status());
}

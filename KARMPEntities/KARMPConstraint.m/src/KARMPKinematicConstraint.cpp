#include "KARMPKinematicConstraint.h"

#include "KARIMPKinematicConstraintLoader.h"
#include "KARMPElementReader.h"
#include "KARMPElementWriter.h"
#include "KARMPLoaderAccess.h"
#include "KARTextConversion.h"

KARMP_DEFINE_ABSTRACT_ENTITY(KARMPKinematicConstraint, "1119F983-7340-46E1-9762-4CED9CC509EA");

namespace {

constexpr karmp::Names<2> AxisNames{L"SelectedAxis0", L"SelectedAxis1"};
constexpr std::wstring_view FrictionModelName = L"FrictionModel";

} // namespace

KARMPKinematicConstraint::KARMPKinematicConstraint() = default;

KARMPKinematicConstraint::KARMPKinematicConstraint(const KARMPKinematicConstraint& source,
                                                   CopyMode mode)
    : Super(source, mode),
      m_axes(source.m_axes),
      m_frictionModel(source.m_frictionModel),
      m_frictionEnabled(source.m_frictionEnabled)
{}

KARMPKinematicConstraint::~KARMPKinematicConstraint() = default;

KARStatus KARMPKinematicConstraint::GetLoader(KARIMPKinematicConstraintLoader*& loader) const
{
    return karmp::FetchLoader(*this, loader);
}

KARStatus KARMPKinematicConstraint::SetSelectedAxis(int index, KARMPSelectedAxis::Enum axis)
{
    const auto place = static_cast<std::size_t>(index);
    if (!KARMPVerify(place < m_axes.size()))
        return KARFailure;
    m_axes[place] = axis;
    return KARSuccess;
}

KARStatus KARMPKinematicConstraint::GetSelectedAxis(int index, KARMPSelectedAxis::Enum& axis) const
{
    const auto place = static_cast<std::size_t>(index);
    if (!KARMPVerify(place < m_axes.size()))
        return KARFailure;
    axis = m_axes[place];
    return KARSuccess;
}

KARStatus KARMPKinematicConstraint::SetFrictionModel(const KARString& model)
{
    m_frictionModel = model;
    return KARSuccess;
}

KARStatus KARMPKinematicConstraint::Serialize(KARMPSerializer* serializer) const
{
    karmp::ElementWriter element(serializer);
    if (!element || !element.Base(Super::Serialize(element.Node())))
        return KARFailure;
    for (std::size_t i = 0; i < m_axes.size(); ++i)
        element.Word(AxisNames[i], m_axes[i]);
    // The model is not part of the result.
    const KARStatus status = element.Status();
    if (m_frictionEnabled)
        element.Value(FrictionModelName, kar::ToWide(m_frictionModel.Text()));
    return status;
}

KARStatus KARMPKinematicConstraint::Deserialize(const KARMPDeserializer* deserializer,
                                                const KARMPEntityTable& entities)
{
    using karmp::Absent;
    karmp::ElementReader element(deserializer);
    if (!element || !element.Base(Super::Deserialize(element.Node(), entities)))
        return KARFailure;
    for (std::size_t i = 0; i < m_axes.size(); ++i)
        element.Word(AxisNames[i], m_axes[i], Absent::ReportAndFail);
    std::wstring_view model;
    if (element.Value(FrictionModelName, model, Absent::Keep))
        m_frictionModel = KARString(kar::ToUtf8(model));
    return element.Status();
}

#include "KARMPForceElement.h"

#include "KARIMPForceElementLoader.h"
#include "KARMPContentWalk.h"
#include "KARMPFrames.h"
#include "KARMPJoint.h"
#include "KARMPLoaderAccess.h"

KARMP_DEFINE_ENTITY(KARMPForceElement, "897F934F-DF62-447F-B43C-4F77602751B9");

template <>
struct karmp::ContentOf<KARMPForceElement>
{
    using C = KARMPForceElement;
    static constexpr auto List = Element(
        L"ForceElement", "A force whose law only the solver knows.", LenientFrame,
        Attribute(Text<&C::m_class>(L"class", "The solver's name of the class of the force.")),
        Attribute(Text<&C::m_stream>(L"stream", "What the solver keeps of the force.")),
        Reference<&C::GetJoint, &C::SetJoint>(L"Joint", "The joint in which it acts.")
            .Removing<&C::RemoveJoint>());
};
KARMP_DEFINE_CONTENT(KARMPForceElement);

KARMPForceElement::KARMPForceElement() = default;
KARMPForceElement::KARMPForceElement(const KARMPForceElement& source, CopyMode mode)
    : Super(source, mode), m_class(source.m_class), m_stream(source.m_stream)
{}
KARMPForceElement::~KARMPForceElement() = default;

void KARMPForceElement::ClearContainers()
{
    Super::ClearContainers();
    m_joint.Clear();
}

KARStatus KARMPForceElement::GetLoader(KARIMPForceElementLoader*& loader) const
{
    return karmp::FetchLoader(*this, loader);
}

KARStatus KARMPForceElement::SetClass(const std::wstring& name)
{
    m_class = name;
    return KARSuccess;
}

KARStatus KARMPForceElement::GetClass(std::wstring& name) const
{
    name = m_class;
    return KARSuccess;
}

KARStatus KARMPForceElement::SetStream(const std::wstring& stream)
{
    m_stream = stream;
    return KARSuccess;
}

KARStatus KARMPForceElement::GetStream(std::wstring& stream) const
{
    stream = m_stream;
    return KARSuccess;
}

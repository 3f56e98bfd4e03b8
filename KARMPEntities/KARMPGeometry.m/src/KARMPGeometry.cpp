#include "KARMPGeometry.h"

#include "KARIMPGeometryLoader.h"
#include "KARMPBody.h"
#include "KARMPConstraint.h"
#include "KARMPContentWalk.h"
#include "KARMPFrames.h"
#include "KARMPGeometry2D.h"
#include "KARMPGeometryLinks.h"
#include "KARMPLoaderAccess.h"

KARMP_DEFINE_ABSTRACT_ENTITY(KARMPGeometry, "75F51E72-CC9C-44c3-AE3B-5F1AF2E51326");

template <>
struct karmp::ContentOf<KARMPGeometry>
{
    using C = KARMPGeometry;
    // A planar geometry has a list of its own.
    static KARStatus RemoveConstraint(C& geometry,
                                      const QOBSharedHandle<KARMPConstraint>& constraint)
    {
        auto* const planar = dynamic_cast<KARMPGeometry2D*>(&geometry);
        return planar != nullptr ? planar->RemoveConstraint(constraint)
                                 : geometry.RemoveConstraint(constraint);
    }
    static constexpr auto List = Base(
        "A geometry on which constraints are put.", LenientFrame,
        Reference<&C::GetBody, &C::SetBody>(
            L"Body", "The body that it moves with, in whose axes it is given.")
            .Removing<&C::RemoveBody>()
            .OtherSide(L"Geometries"),
        References<&C::GetLinkedConstraintCount, &C::GetLinkedConstraint, &C::LinkToConstraint>(
            L"Constraints", L"Constraint", "The constraints that are put on it.")
            .Removing<&RemoveConstraint>()
            .OtherSide(L"Geometries"));
};
KARMP_DEFINE_CONTENT(KARMPGeometry);

KARMPGeometry::KARMPGeometry() = default;
KARMPGeometry::KARMPGeometry(const KARMPGeometry& source, CopyMode mode) : Super(source, mode) {}
KARMPGeometry::~KARMPGeometry() = default;

void KARMPGeometry::ClearContainers()
{
    m_linkedConstraints.Clear();
}

KARStatus KARMPGeometry::RemoveParent()
{
    return karmp::UnlinkGeometry(*this, m_body, m_linkedConstraints);
}

KARStatus KARMPGeometry::GetLoader(KARIMPGeometryLoader*& loader) const
{
    return karmp::FetchLoader(*this, loader);
}

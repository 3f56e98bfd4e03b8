#pragma once

#include "KARMPCurve.h"
#include "KARMPWorld.h"
#include "QOBBasicEntity.h"

#include <unordered_set>

namespace karmp::documents {

/// The curves that are read into a world while this object lives. The limits that their readers
/// make belong to whoever reads, so the curves are told to free them, also when reading throws and
/// the world does not list what was read. The limits of other curves stay their owner's.
class ReadCurves
{
public:
    explicit ReadCurves(const KARMPWorld& world) : m_parent(world.getExtendible())
    {
        Visit([this](KARMPCurve& curve) { m_former.insert(&curve); });
    }
    ~ReadCurves()
    {
        Visit([this](KARMPCurve& curve) {
            if (m_former.count(&curve) == 0)
                curve.DeleteCurveLimitsAtEnd(true);
        });
    }
    ReadCurves(const ReadCurves&) = delete;
    ReadCurves& operator=(const ReadCurves&) = delete;

private:
    template <class Function>
    void Visit(const Function& function) const
    {
        if (!m_parent)
            return;
        m_parent->visitLogicalChildren([&function](QOBBasicEntity& child) {
            if (child.isDerivedFrom(KARMPCurve::ClassInfo()))
                function(static_cast<KARMPCurve&>(child));
        });
    }

    QOBSharedHandle<QOBBasicEntity> m_parent;
    std::unordered_set<const KARMPCurve*> m_former;
};

} // namespace karmp::documents

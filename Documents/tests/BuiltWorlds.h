// Worlds that tests of differences build by hand.
#pragma once

#include "DifferenceTesting.h"
#include "KARMPBody.h"
#include "KARMPJointKinds.h"
#include "KARMPTestFixture.h"
#include "KARMPWorld.h"
#include "KARMPWorldDifference.h"
#include "KARMPWorldFamilies.h"
#include "QOBBasicWorld.h"

#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace karmp::documents {

using Kinds = std::vector<DifferenceKind>;

/// A world to be built by hand. Entities have their names as identifiers, behind a prefix.
class Built
{
public:
    explicit Built(std::wstring prefix = {}) : m_prefix(std::move(prefix)) {}

    template <class T>
    QOBSharedHandle<T> Add(const std::wstring& name, const std::wstring& identifier)
    {
        const auto entity = T::create(name);
        entity->SetIdentifier(m_prefix + identifier);
        m_basicWorld->addLogicalChild(entity);
        Families::AnyOf([&](auto family) {
            using F = typename decltype(family)::Type;
            if constexpr (std::is_base_of_v<F, T>)
                return world->Add<F>(QOBSharedHandle<F>(entity)) == KARSuccess;
            else
                return false;
        });
        return entity;
    }
    template <class T>
    QOBSharedHandle<T> Add(const std::wstring& name)
    {
        return Add<T>(name, name);
    }
    /// A joint that two bodies know.
    QOBSharedHandle<KARMPJoint> Join(const std::wstring& name, const std::wstring& identifier,
                                     const QOBSharedHandle<KARMPBody>& parent,
                                     const QOBSharedHandle<KARMPBody>& child)
    {
        const auto joint = Add<KARMPRevolute>(name, identifier);
        joint->LinkToBody(parent, KARMPBodyOrientation::Out);
        joint->LinkToBody(child, KARMPBodyOrientation::In);
        parent->LinkToJoint(joint);
        child->LinkToJoint(joint);
        return joint;
    }
    QOBSharedHandle<KARMPBody> Ground() const
    {
        QOBSharedHandle<KARMPBody> ground;
        world->GetGlobalBody(ground);
        return ground;
    }

private:
    std::wstring m_prefix;
    QOBSharedHandle<QOBBasicWorld> m_basicWorld = QOBBasicWorld::create(L"basic");

public:
    QOBSharedHandle<KARMPWorld> world = KARMPWorld::create(m_basicWorld);
};

class WorldDifference : public KARMPTestFixture
{
protected:
    std::vector<Difference> Compare(const DifferenceOptions& options = {}) const
    {
        return FindDifferences(*first.world, *second.world, options);
    }
    Kinds KindsOf(const std::vector<Difference>& differences) const
    {
        Kinds kinds;
        for (const Difference& difference : differences)
            kinds.push_back(difference.kind);
        return kinds;
    }
    Kinds CompareKinds(const DifferenceOptions& options = {}) const
    {
        return KindsOf(Compare(options));
    }
    template <class T>
    std::pair<QOBSharedHandle<T>, QOBSharedHandle<T>> AddBoth(const std::wstring& name)
    {
        return {first.Add<T>(name), second.Add<T>(name)};
    }

    Built first;
    Built second;
};

inline KARMathTransformation At(double x)
{
    KARMathTransformation position;
    position.SetVector({x, 0.0, 0.0});
    return position;
}

} // namespace karmp::documents

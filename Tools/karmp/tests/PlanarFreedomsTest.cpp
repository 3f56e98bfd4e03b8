// What a planar joint removes, by its constraints.
#include "PlanarFreedoms.h"
#include "KARMPBody2D.h"
#include "KARMPCircle2D.h"
#include "KARMPCoincidence.h"
#include "KARMPCurve2D.h"
#include "KARMPDistance.h"
#include "KARMPLine2D.h"
#include "KARMPNormal.h"
#include "KARMPParallelism.h"
#include "KARMPPlainConstraints.h"
#include "KARMPPoint2D.h"
#include "KARMPTangency.h"
#include "KARMPUserDefined2D.h"
#include "KARMPVariable.h"

#include <gtest/gtest.h>

namespace karmp::tool {

namespace {

class PlanarFreedomsOfAJoint : public ::testing::Test
{
protected:
    PlanarFreedomsOfAJoint()
    {
        m_joint->LinkToBody(m_first, KARMPBodyOrientation::Out);
        m_joint->LinkToBody(m_second, KARMPBodyOrientation::In);
    }
    template <class Constraint>
    QOBSharedHandle<Constraint> Add()
    {
        const auto constraint = Constraint::create(L"constraint");
        m_joint->AddConstraint(constraint);
        return constraint;
    }
    template <class First, class Second>
    void AddCoincidence()
    {
        const auto coincidence = Add<KARMPCoincidence>();
        coincidence->LinkToGeometry(First::create(L"first"));
        coincidence->LinkToGeometry(Second::create(L"second"));
    }
    std::optional<int> Removed() const { return FreedomsRemovedBy(*m_joint); }
    // The same for one coincidence alone.
    template <class First, class Second>
    std::optional<int> RemovedBy()
    {
        QOBSharedHandle<KARMPConstraint> constraint;
        while (m_joint->GetConstraint(0, constraint) == KARSuccess)
            m_joint->RemoveConstraint(constraint);
        AddCoincidence<First, Second>();
        return Removed();
    }

    QOBSharedHandle<KARMPUserDefined2D> m_joint = KARMPUserDefined2D::create(L"joint");
    QOBSharedHandle<KARMPBody2D> m_first = KARMPBody2D::create(L"first");
    QOBSharedHandle<KARMPBody2D> m_second = KARMPBody2D::create(L"second");
};

TEST_F(PlanarFreedomsOfAJoint, AreTakenByWhatCoincides)
{
    EXPECT_EQ((RemovedBy<KARMPPoint2D, KARMPPoint2D>()), 2);
    EXPECT_EQ((RemovedBy<KARMPLine2D, KARMPLine2D>()), 2);
    EXPECT_EQ((RemovedBy<KARMPCircle2D, KARMPCircle2D>()), 2);
    EXPECT_EQ((RemovedBy<KARMPPoint2D, KARMPLine2D>()), 1);
    EXPECT_EQ((RemovedBy<KARMPCircle2D, KARMPPoint2D>()), 1);
    EXPECT_EQ((RemovedBy<KARMPPoint2D, KARMPCurve2D>()), 1);
    EXPECT_FALSE((RemovedBy<KARMPLine2D, KARMPCircle2D>()));
    EXPECT_FALSE((RemovedBy<KARMPCurve2D, KARMPCurve2D>()));
}

TEST_F(PlanarFreedomsOfAJoint, AreTakenByAllConstraintsTogether)
{
    Add<KARMPTangency>();
    EXPECT_EQ(Removed(), 1);
    Add<KARMPParallelism>();
    EXPECT_EQ(Removed(), 2);
    AddCoincidence<KARMPPoint2D, KARMPLine2D>();
    EXPECT_EQ(Removed(), 3);
}

TEST_F(PlanarFreedomsOfAJoint, AreAllTakenOrAllLeftByTheMarkers)
{
    Add<KARMP6DoF>();
    EXPECT_EQ(Removed(), 0);
    Add<KARMP0DoF>();
    EXPECT_EQ(Removed(), 3);
}

TEST_F(PlanarFreedomsOfAJoint, AreItsVariablesWhereAConstraintDoesNotTell)
{
    Add<KARMPDistance>();
    const auto normal = Add<KARMPNormal>();
    EXPECT_FALSE(Removed());
    normal->LinkToVariable(KARMPVariable::create(L"first"));
    EXPECT_EQ(Removed(), 2);
    normal->LinkToVariable(KARMPVariable::create(L"second"));
    EXPECT_EQ(Removed(), 1);
}

TEST_F(PlanarFreedomsOfAJoint, AreUnknownWithoutConstraintsOrASecondBody)
{
    EXPECT_FALSE(Removed());
    Add<KARMPDistance>();
    EXPECT_EQ(Removed(), 1);
    m_joint->RemoveBody(m_second);
    EXPECT_FALSE(Removed());
}

} // namespace

} // namespace karmp::tool

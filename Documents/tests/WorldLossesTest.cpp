// What FindLosses foretells is what a save and a load lose, of every class and version.
#include "DifferenceTesting.h"
#include "FilledWorld.h"
#include "KARMPBody.h"
#include "KARMPCollisionInterLayer.h"
#include "KARMPCollisionLayer.h"
#include "KARMPDocuments.h"
#include "KARMPRevoluteConstraint.h"
#include "KARMPTestFixture.h"
#include "KARMPWorldLosses.h"
#include "QOBBasicWorld.h"

#include <set>
#include <string>
#include <tuple>

namespace karmp::documents {

namespace {

std::wstring IdentifierOf(const Handle& entity)
{
    std::wstring identifier;
    if (entity)
        entity->GetIdentifier(identifier);
    return identifier;
}

class Losses : public KARMPTestFixture
{
protected:
    /// Entity, item and target of what is lost; the item of an entity that is removed is empty.
    using Loss = std::tuple<std::wstring, std::wstring, std::wstring>;

    static std::set<Loss> Of(const std::vector<Difference>& differences)
    {
        std::set<Loss> losses;
        // Reading makes directions unit vectors, which those of the entities are not. Floating
        // means nothing to a body without a father.
        static const std::set<std::wstring> others{L"floating",
                                                   L"Coordinates/Axis",
                                                   L"Coordinates/Normal",
                                                   L"Coordinates/MajorDirection",
                                                   L"Coordinates/Direction",
                                                   L"DragLine/Coordinates"};
        for (const Difference& difference : differences)
            if (difference.before && others.count(difference.item) == 0)
                losses.emplace(IdentifierOf(difference.before), difference.item,
                               IdentifierOf(difference.target));
        return losses;
    }

    static std::string TextOf(const std::set<Loss>& losses)
    {
        std::string text;
        for (const auto& [entity, item, target] : losses)
            text += kar::ToUtf8(entity + L' ' + item + L' ' + target) + '\n';
        return text;
    }

    static QOBSharedHandle<KARMPWorld> Reloaded(const QOBSharedHandle<KARMPWorld>& world,
                                                std::wstring_view version)
    {
        SaveOptions options;
        options.version = version;
        options.doubles = Doubles::Exact;
        options.allowLosses = true;
        std::string text;
        EXPECT_FALSE(SaveText(world, text, options).HasErrors());
        return LoadText(std::move(text)).world;
    }

    void SetUp() override { m_world->Add<KARMPBody>(m_body); }

    QOBSharedHandle<KARMPWorld> m_world = KARMPWorld::create(QOBBasicWorld::create(L"World"));
    QOBSharedHandle<KARMPBody> m_body = KARMPBody::create(L"Crank");
};

TEST_F(Losses, AreWhatASaveAndALoadLose)
{
    for (const std::string& className : MadeClasses()) {
        for (const std::wstring_view version : KnownVersions()) {
            SCOPED_TRACE(className + ' ' + kar::ToUtf8(version));
            const FilledWorld filled(className);
            const auto foretold = Of(FindLosses(*filled.world, version));
            const auto lost = Of(FindDifferences(*filled.world, *Reloaded(filled.world, version)));
            EXPECT_EQ(TextOf(foretold), TextOf(lost));
        }
    }
}

TEST_F(Losses, AreNoneOfWhatAnExampleHolds)
{
    for (const auto& example : Examples()) {
        SCOPED_TRACE(example);
        const LoadResult loaded = LoadFile(example);
        for (const Difference& loss : FindLosses(*loaded.world)) {
            // Outputs, and values that belong to them, are left out unless the environment asks.
            if (loss.kind == DifferenceKind::Removed &&
                !ItemsOf(loss.before->getClassInfo()).front().IsWrittenFor(*loss.before))
                continue;
            // The layers of the collision scene, which the world that was read does not list.
            EXPECT_EQ(loss.kind, DifferenceKind::LinkLost);
            EXPECT_EQ(loss.target->getClassName(), "KARMPCollisionLayer");
        }
    }
}

TEST_F(Losses, TellWhatAnEntityHasAndWhatReadingLeavesItAt)
{
    m_body->SetOutOfWorld(true);
    const auto losses = FindLosses(*m_world, L"R2016.0");
    ASSERT_EQ(losses.size(), 1U);
    EXPECT_EQ(losses[0].kind, DifferenceKind::Changed);
    EXPECT_EQ(losses[0].before, Handle(m_body));
    EXPECT_EQ(losses[0].after, Handle(m_body));
    EXPECT_EQ(losses[0].item, L"OutOfWorld");
    EXPECT_EQ(losses[0].oldValue, Value(true));
    EXPECT_EQ(losses[0].newValue, Value(false));
    EXPECT_TRUE(FindLosses(*m_world, L"R2016.1").empty());
}

TEST_F(Losses, HaveFrictionThatIsNotEnabled)
{
    const auto constraint = KARMPRevoluteConstraint::create(L"Pin");
    m_world->Add<KARMPConstraint>(constraint);
    EXPECT_TRUE(FindLosses(*m_world).empty());
    constraint->SetFrictionModel("Coulomb");
    ASSERT_EQ(FindLosses(*m_world).size(), 1U);
    EXPECT_EQ(FindLosses(*m_world)[0].item, L"FrictionModel");
}

TEST_F(Losses, HaveALayerThatNoRelationIsAbout)
{
    const auto layer = KARMPCollisionLayer::create(L"Wheels");
    m_world->Add<KARMPInteraction>(layer);
    ASSERT_EQ(FindLosses(*m_world, CurrentVersion, true).size(), 1U);
    EXPECT_EQ(FindLosses(*m_world, CurrentVersion, true)[0].kind, DifferenceKind::Removed);
    const auto relation = KARMPCollisionInterLayer::create(L"Contact");
    relation->AddCollidable(layer);
    m_world->Add<KARMPInteraction>(relation);
    EXPECT_TRUE(FindLosses(*m_world, CurrentVersion, true).empty());
}

TEST_F(Losses, HaveSettingsThatDocumentsLack)
{
    m_world->SetLengthUnit(KARMPUnit::Meter);
    m_world->SetGroundBody(m_body);
    const auto losses = FindLosses(*m_world);
    ASSERT_EQ(losses.size(), 2U);
    EXPECT_EQ(losses[0].item, L"LengthUnit");
    EXPECT_EQ(losses[1].item, L"GroundBody");
    EXPECT_EQ(losses[1].kind, DifferenceKind::Setting);
}

} // namespace

} // namespace karmp::documents

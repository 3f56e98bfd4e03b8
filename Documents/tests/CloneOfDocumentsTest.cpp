// What the clones of worlds differ in from their sources.
#include "DifferenceTesting.h"
#include "EnvironmentVariable.h"
#include "KARMPDocuments.h"
#include "KARMPSchemaClasses.h"
#include "KARMPTestFixture.h"
#include "KARMPWorldFamilies.h"
#include "QOBBasicWorld.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <span>
#include <string_view>

namespace karmp::documents {

namespace {

using World = QOBSharedHandle<KARMPWorld>;

QOBSharedList<KARMPEntity> AllOf(const KARMPWorld& world)
{
    QOBSharedList<KARMPEntity> all;
    ForEachRegistryElement([&](const auto& element) {
        using T = typename std::remove_cvref_t<decltype(element)>::Type;
        for (int index = 0; index < world.Count<T>(); ++index) {
            QOBSharedHandle<T> entity;
            world.Get<T>(index, entity);
            all.push_back(entity);
        }
    });
    return all;
}

/// Places the duplicates of a clone under its basic world, so that those that hold one
/// another are freed with it.
void PlaceAll(const KARMPWorld& clone)
{
    const QOBSharedHandle<QOBBasicEntity> above(clone.getExtendible());
    for (const auto& entity : AllOf(clone))
        above->addLogicalChild(entity);
}

constexpr const char* OwnGlobals = "the globals of a clone are duplicates that no registry lists";
constexpr const char* NewGlobals =
    "the registries of a new world begin with its globals, before the duplicates";
constexpr const char* AsNew = "a copied constraint is as new, without a name";
constexpr const char* NoLinks = "copies have no links";
constexpr const char* ScalarsOnly = "of a geometry with several fields a copy takes the scalars";
constexpr const char* NotCalled = "a filter restores no such links";
constexpr const char* Unfollowed = "links of this family are not restored by a filter";
constexpr const char* NoContacts = "a copied collision sensor has no contacts";
constexpr const char* NothingToMap = "a copy has no variables to map";
constexpr const char* PassedOver = "a filter passes over connectors and values";

/// A difference that a clone may have. An empty family or item stands for any.
struct Prescribed
{
    DifferenceKind kind;
    std::string_view family;
    std::wstring_view item;
    const char* reason;
};

// Both kinds of clones.
constexpr Prescribed OfEach[] = {
    {DifferenceKind::Setting, "", L"GlobalBody", OwnGlobals},
    {DifferenceKind::Setting, "", L"GlobalAxisSystem", OwnGlobals},
    {DifferenceKind::Setting, "", L"GlobalTime", OwnGlobals},
    {DifferenceKind::Added, "KARMPBody", L"", NewGlobals},
    {DifferenceKind::Added, "KARMPAxisSystem", L"", NewGlobals},
    {DifferenceKind::Added, "KARMPVariable", L"", NewGlobals},
    {DifferenceKind::Changed, "KARMPBody", L"OutOfWorld", "a copied body lies in the world"},
    {DifferenceKind::Changed, "KARMPInteraction", L"RuleType",
     "a copied interaction has the rule type of a new one"},
    {DifferenceKind::Changed, "KARMPCirline", L"Coordinates/Center", ScalarsOnly},
    {DifferenceKind::Changed, "KARMPCirline", L"Coordinates/MajorDirection", ScalarsOnly},
    {DifferenceKind::Changed, "KARMPCirline", L"Coordinates/Normal", ScalarsOnly},
    {DifferenceKind::Changed, "KARMPCylicone", L"Coordinates/Origin", ScalarsOnly},
    {DifferenceKind::Changed, "KARMPCylicone", L"Coordinates/Axis", ScalarsOnly},
    {DifferenceKind::Changed, "KARMPEllipse", L"Coordinates/Center", ScalarsOnly},
    {DifferenceKind::Changed, "KARMPEllipse", L"Coordinates/MajorDirection", ScalarsOnly},
    {DifferenceKind::Changed, "KARMPEllipse", L"Coordinates/Normal", ScalarsOnly},
    {DifferenceKind::Changed, "KARMPHyperbola", L"Coordinates/Center", ScalarsOnly},
    {DifferenceKind::Changed, "KARMPHyperbola", L"Coordinates/MajorDirection", ScalarsOnly},
    {DifferenceKind::Changed, "KARMPHyperbola", L"Coordinates/Normal", ScalarsOnly},
    {DifferenceKind::Changed, "KARMPParabola", L"Coordinates/Center", ScalarsOnly},
    {DifferenceKind::Changed, "KARMPParabola", L"Coordinates/MajorDirection", ScalarsOnly},
    {DifferenceKind::Changed, "KARMPParabola", L"Coordinates/Normal", ScalarsOnly},
    {DifferenceKind::Changed, "KARMPSphere", L"Coordinates/Center", ScalarsOnly},
    {DifferenceKind::Changed, "KARMPTorus", L"Coordinates/Center", ScalarsOnly},
    {DifferenceKind::Changed, "KARMPTorus", L"Coordinates/Normal", ScalarsOnly},
    {DifferenceKind::Changed, "KARMPCollisionSensor",
     L"ContactGeometryDataContainer/ContactGeometryData", NoContacts},
    {DifferenceKind::Changed, "KARMPCollisionSensor", L"ContactForceDataContainer/ContactForceData",
     NoContacts},
    {DifferenceKind::Changed, "KARMPCollisionSensor",
     L"ContactForceDataContainer/ContactForceData[2]", NoContacts},
};
constexpr Prescribed OfClones[] = {
    {DifferenceKind::LinkLost, "", L"", NoLinks},
    {DifferenceKind::Removed, "KARMPConstraint", L"", AsNew},
    {DifferenceKind::Added, "KARMPConstraint", L"", AsNew},
    {DifferenceKind::Changed, "KARMPExpression", L"VariableMapping/Var0", NothingToMap},
    {DifferenceKind::Changed, "KARMPExpression", L"VariableMapping/Var1", NothingToMap},
    {DifferenceKind::Changed, "KARMPSketchFunction", L"CurveSegments",
     "a copied sketch function has its axis only"},
};
constexpr Prescribed OfFilters[] = {
    {DifferenceKind::Renamed, "KARMPConstraint", L"name", AsNew},
    {DifferenceKind::Removed, "KARMPConnector", L"", PassedOver},
    {DifferenceKind::Removed, "KARMPValue", L"", PassedOver},
    {DifferenceKind::LinkLost, "KARMPActuator", L"", Unfollowed},
    {DifferenceKind::LinkLost, "KARMPSensor", L"", Unfollowed},
    {DifferenceKind::LinkLost, "KARMPInteraction", L"", Unfollowed},
    {DifferenceKind::LinkLost, "KARMPAttribute", L"", Unfollowed},
    {DifferenceKind::LinkLost, "KARMPSupport", L"", Unfollowed},
    {DifferenceKind::LinkLost, "KARMPAnalysisCase", L"", Unfollowed},
    {DifferenceKind::LinkLost, "", L"Parameters", NotCalled},
    {DifferenceKind::LinkLost, "", L"States", NotCalled},
    {DifferenceKind::LinkLost, "", L"AggregatedElements", NotCalled},
    {DifferenceKind::LinkLost, "KARMPBody", L"Connectors", NotCalled},
    {DifferenceKind::LinkLost, "KARMPBody", L"ChildrenBodies", NotCalled},
    {DifferenceKind::LinkLost, "KARMPBody", L"ImpactedChildrenBodies", NotCalled},
    {DifferenceKind::Changed, "KARMPConstraint", L"isActive", AsNew},
    {DifferenceKind::Changed, "KARMPConstraint", L"entityID", AsNew},
    {DifferenceKind::Changed, "KARMPConstraint", L"ConstraintParameters", AsNew},
    {DifferenceKind::Removed, "KARMPEquation", L"", AsNew},
    {DifferenceKind::Added, "KARMPEquation", L"", AsNew},
    {DifferenceKind::Changed, "KARMPNormal", L"Alignment", "the class is copied as it is made"},
    {DifferenceKind::Changed, "KARMPLinearEquation", L"ConstantTerm",
     "a copied linear equation has no terms"},
    {DifferenceKind::Changed, "KARMPLinearEquation", L"LinearTermDataContainer/LinearTerm",
     "a copied linear equation has no terms"},
    {DifferenceKind::Changed, "KARMPLinearEquation", L"LinearTermDataContainer/LinearTerm[2]",
     "a copied linear equation has no terms"},
};

bool IsDerived(const KARMPEntity& entity, std::string_view className)
{
    const std::vector<std::string> lineage = LineageOf(entity);
    return std::find(lineage.begin(), lineage.end(), className) != lineage.end();
}

/// Lines of the tables that no clone has needed yet.
using Unused = std::set<const Prescribed*>;

bool IsIn(std::span<const Prescribed> table, const Difference& difference, Unused& unused)
{
    const Handle& entity = difference.before ? difference.before : difference.after;
    const auto found = std::find_if(table.begin(), table.end(), [&](const Prescribed& line) {
        return line.kind == difference.kind &&
               (line.item.empty() || line.item == difference.item) &&
               (line.family.empty() || IsDerived(*entity, line.family));
    });
    if (found != table.end())
        unused.erase(&*found);
    return found != table.end();
}

class CloneOfDocuments : public KARMPTestFixture
{
    EnvironmentVariable m_dumpOutputs{"MOT_DUMP_OUTPUTS", "1"};

protected:
    /// Expects that the clones of all examples, and of all classes, differ from them in nothing but
    /// what the tables tell, and that each line of them is needed.
    template <class Clone>
    void ExpectPrescribed(std::span<const Prescribed> table, Clone clone)
    {
        Unused unused;
        for (const auto lines : {table, std::span<const Prescribed>(OfEach)})
            for (const Prescribed& line : lines)
                unused.insert(&line);
        std::vector<std::filesystem::path> documents = Examples();
        documents.emplace_back(KARMP_EVERY_CLASS);
        for (const auto& example : documents) {
            const World world = LoadFile(example).world;
            std::vector<Difference> differences = FindDifferences(*world, *clone(*world));
            std::erase_if(differences, [&](const Difference& one) {
                return IsIn(table, one, unused) || IsIn(OfEach, one, unused);
            });
            EXPECT_EQ(TextOf(differences), "") << example;
        }
        for (const Prescribed* const line : unused)
            ADD_FAILURE() << DifferenceText(line->kind) << ' ' << line->family << ' '
                          << kar::ToUtf8(line->item);
    }
};

TEST_F(CloneOfDocuments, DiffersFromItsSourceInWhatIsPrescribed)
{
    ExpectPrescribed(
        OfClones,
        [](const KARMPWorld& world) {
            const World clone = world.Clone();
            PlaceAll(*clone);
            return clone;
        });
}

TEST_F(CloneOfDocuments, ByAFilterOfAllDiffersFromItsSourceInWhatIsPrescribed)
{
    ExpectPrescribed(OfFilters, [](const KARMPWorld& world) {
        const World clone = world.CloneWithFilter(AllOf(world));
        PlaceAll(*clone);
        return clone;
    });
    // A linear equation without terms cannot write them: one of the gear pair, one of all classes.
    ExpectReports(2);
}

} // namespace

} // namespace karmp::documents

// What the copies of every class keep, item by item of its content list. A class that is added is
// tested without a line here, unless it is prescribed to lose or to keep more than others.
#include "EnvironmentVariable.h"
#include "FilledEntities.h"
#include "KARMPGenericFactory.h"
#include "KARMPItems.h"
#include "KARMPTestFixture.h"
#include "KARTextConversion.h"
#include "QOBClassInfo.h"
#include "TestSerializer.h"

#include <algorithm>
#include <span>

using karmp::ItemInfo;
using karmp::ItemKind;
using karmp::Value;

namespace {

constexpr const char* AsNew = "a copied constraint is as new, but for its class's own fields";
constexpr const char* ScalarsOnly = "of a geometry with several fields a copy takes the scalars";
constexpr const char* RuleAsNew = "a copied interaction has the rule type of a new one";
constexpr const char* OwnCurves = "a copied curve shares the curves of its segments";
constexpr const char* InSlots = "the freedoms are values of the sensor, in slots of its own";

/// An item of a class, and of those derived from it, whose copy is not as the general rule says.
struct Exception
{
    std::string_view className;
    std::string_view path;
    const char* reason;
};

// Items of which a copy has another value than its source and than a new entity.
constexpr Exception Changed[] = {
    {"KARMPLinearEquation", "ConstantTerm", "a copy knows that there is one, not its value"},
};

// Links and lists that a copy has like its source.
constexpr Exception Shared[] = {
    {"KARMPDofSensor", "Translations", InSlots},  {"KARMPDofSensor", "Rotations", InSlots},
    {"KARMPDofSensor", "Screws", InSlots},        {"KARMPDofSensor2D", "Translations2D", InSlots},
    {"KARMPDofSensor2D", "Rotations2D", InSlots}, {"KARMPCurve", "CurveSegments", OwnCurves},
};

// Lost otherwise are the identifier, of which a copy makes its own, and all links and lists.
constexpr Exception Lost[] = {
    {"KARMPConstraint", "name", AsNew},
    {"KARMPConstraint", "isActive", AsNew},
    {"KARMPConstraint", "entityID", AsNew},
    {"KARMPNormal", "Alignment", "the class is copied as it is made"},
    {"KARMPInteraction", "RuleType", RuleAsNew},
    {"KARMPCollisionLayer", "RuleType", RuleAsNew}, // no interaction by its record
    {"KARMPBody", "OutOfWorld", "a copied body lies in the world"},
    {"KARMPExpression", "VariableMapping/Var", "a copy has no variables to map"},
    {"KARMPCirline", "Coordinates/Center", ScalarsOnly},
    {"KARMPCirline", "Coordinates/MajorDirection", ScalarsOnly},
    {"KARMPCirline", "Coordinates/Normal", ScalarsOnly},
    {"KARMPCone", "Coordinates/Origin", ScalarsOnly},
    {"KARMPCone", "Coordinates/Axis", ScalarsOnly},
    {"KARMPCylicone", "Coordinates/Origin", ScalarsOnly},
    {"KARMPCylicone", "Coordinates/Axis", ScalarsOnly},
    {"KARMPCylinder", "Coordinates/Origin", ScalarsOnly},
    {"KARMPCylinder", "Coordinates/Axis", ScalarsOnly},
    {"KARMPEllipse", "Coordinates/Center", ScalarsOnly},
    {"KARMPEllipse", "Coordinates/MajorDirection", ScalarsOnly},
    {"KARMPEllipse", "Coordinates/Normal", ScalarsOnly},
    {"KARMPHyperbola", "Coordinates/Center", ScalarsOnly},
    {"KARMPHyperbola", "Coordinates/MajorDirection", ScalarsOnly},
    {"KARMPHyperbola", "Coordinates/Normal", ScalarsOnly},
    {"KARMPParabola", "Coordinates/Center", ScalarsOnly},
    {"KARMPParabola", "Coordinates/MajorDirection", ScalarsOnly},
    {"KARMPParabola", "Coordinates/Normal", ScalarsOnly},
    {"KARMPSphere", "Coordinates/Center", ScalarsOnly},
    {"KARMPTorus", "Coordinates/Center", ScalarsOnly},
    {"KARMPTorus", "Coordinates/Normal", ScalarsOnly},
};

/// Items that no entity of these tests has another value of than a new one.
constexpr Exception Unset[] = {
    {"", "Outputs", "written and read when the environment asks for it, decided once a process"},
};

bool IsDerived(const KARMPEntity& entity, std::string_view className)
{
    for (const QOBClassInfo* info = &entity.getClassInfo(); info != nullptr;
         info = info->getParent())
        if (info->getName() == className)
            return true;
    return className.empty();
}

bool IsListed(std::span<const Exception> table, const KARMPEntity& entity, const ItemInfo& item)
{
    const std::string path = kar::ToUtf8(item.path);
    return std::any_of(table.begin(), table.end(), [&](const Exception& line) {
        return line.path == path && IsDerived(entity, line.className);
    });
}

// The value of an item; of one that has none, as records have, what is written of it.
Value ValueOf(const ItemInfo& item, const KARMPEntity& entity)
{
    const Value value = item.Get(entity);
    if (!std::holds_alternative<std::monostate>(value))
        return value;
    TestSerializer root;
    entity.Serialize(&root);
    // What is written of a record stands in the element of the list; a link has one of its own.
    const std::wstring_view path(item.path);
    const bool isLink = item.kind == ItemKind::Reference;
    const TestSerializer* const written =
        root.GetElementCount() > 0
            ? root.Child(0).Find(isLink ? path : path.substr(0, path.find(L'/')))
            : nullptr;
    return written != nullptr ? Value(kar::ToWide(written->Dump())) : Value();
}

bool IsLinkOrList(const ItemInfo& item)
{
    return item.kind == ItemKind::Reference || item.kind == ItemKind::References ||
           item.kind == ItemKind::Records;
}

bool IsLost(const ItemInfo& item, const KARMPEntity& entity)
{
    return (IsLinkOrList(item) && !IsListed(Shared, entity, item)) || IsListed(Lost, entity, item);
}

class ClassCopies : public KARMPTestFixture
{
    EnvironmentVariable m_dumpOutputs{"MOT_DUMP_OUTPUTS", "1"};

protected:
    // Getters of what is not there report.
    Value Quietly(const ItemInfo& item, const KARMPEntity& entity)
    {
        const Value value = ValueOf(item, entity);
        TakeReports();
        return value;
    }
    void ExpectCopied(const std::string& name, Filling filling);
};

void ClassCopies::ExpectCopied(const std::string& name, Filling filling)
{
    FilledEntities entities;
    const auto source = entities.Make(name, filling);
    const auto fresh = entities.New(name);
    const auto copy = KARMPEntity::clone(source, QOBDynamicObject::CopyShallow);
    ASSERT_TRUE(copy);
    for (const ItemInfo& item : karmp::ItemsOf(source->getClassInfo())) {
        SCOPED_TRACE(kar::ToUtf8(item.path));
        const Value before = Quietly(item, *source);
        const Value after = Quietly(item, *copy);
        const Value asNew = Quietly(item, *fresh);
        if (item.path == L"id")
            EXPECT_NE(after, before);
        else if (IsLost(item, *source))
            EXPECT_EQ(after, asNew);
        else if (IsListed(Changed, *source, item) && before != asNew)
            EXPECT_TRUE(after != before && after != asNew);
        else
            EXPECT_EQ(after, before);
    }
}

TEST_F(ClassCopies, KeepTheItemsThatAreNotPrescribedToBeLost)
{
    for (const std::string& name : MadeClasses()) {
        for (const Filling filling : {Filling::Full, Filling::Other}) {
            SCOPED_TRACE(name);
            ExpectCopied(name, filling);
        }
    }
}

// A value that is that of a new entity tells nothing of whether a copy keeps it.
TEST_F(ClassCopies, AreMadeOfEntitiesWithAValueOfEveryItem)
{
    for (const std::string& name : MadeClasses()) {
        FilledEntities entities;
        FilledEntities others;
        const auto full = entities.Make(name, Filling::Full);
        const auto other = others.Make(name, Filling::Other);
        const auto fresh = entities.New(name);
        for (const ItemInfo& item : karmp::ItemsOf(full->getClassInfo())) {
            SCOPED_TRACE(name + " " + kar::ToUtf8(item.path));
            const Value asNew = Quietly(item, *fresh);
            const bool isSet = Quietly(item, *full) != asNew || Quietly(item, *other) != asNew;
            EXPECT_NE(isSet, IsListed(Unset, *full, item));
        }
    }
}

TEST_F(ClassCopies, HaveTheItemsThatTheTablesName)
{
    std::vector<Exception> lines(std::begin(Lost), std::end(Lost));
    lines.insert(lines.end(), std::begin(Changed), std::end(Changed));
    lines.insert(lines.end(), std::begin(Shared), std::end(Shared));
    lines.insert(lines.end(), std::begin(Unset), std::end(Unset));
    FilledEntities entities;
    for (const std::string& name : MadeClasses()) {
        const auto entity = entities.New(name);
        for (const ItemInfo& item : karmp::ItemsOf(entity->getClassInfo()))
            std::erase_if(lines, [&](const Exception& line) {
                return IsListed({&line, 1}, *entity, item);
            });
    }
    for (const Exception& line : lines)
        ADD_FAILURE() << line.className << " " << line.path;
}

} // namespace

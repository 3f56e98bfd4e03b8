// Every item of every class by the table alone: read, set, set to another value, saved, loaded and
// equal.
#include "DifferenceTesting.h"
#include "EnvironmentVariable.h"
#include "FilledWorld.h"
#include "KARMPAxialSpring.h"
#include "KARMPDocuments.h"
#include "KARMPExpression.h"
#include "KARMPItems.h"
#include "KARMPListedEntities.h"
#include "KARMPTestFixture.h"
#include "KARTextConversion.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <set>

namespace karmp::documents {

namespace {

using Handles = std::vector<Handle>;
using ItemOfClass = std::pair<std::string, std::wstring>;

/// What of an item the table does not do.
enum class Lacks {
    Get,      ///< Its value is not had.
    Set,      ///< It is not set; the row says why.
    Change,   ///< No other value can be set here.
    GiveBack, ///< A document does not give it back.
    Remove    ///< A target stays once it is linked.
};

struct Exception
{
    Lacks lacks;
    const char* reason;
};

/// The items that lack something, of a class or of all classes, or all items of a class.
const std::multimap<ItemOfClass, Exception> Exceptions{
    {{"", L"id"}, {Lacks::Set, "an identifier never changes once it is given"}},
    {{"", L"OctetSequence/UTF8String"}, {Lacks::Set, "it shows bytes, which it does not hold"}},
    {{"", L"numberOfDof"}, {Lacks::Set, "it counts the freedoms in the lists"}},
    {{"", L"CurveSegments"}, {Lacks::Set, "whoever adds a curve keeps its limits"}},
    {{"KARMPExpression", L"VariableMapping/Var"}, {Lacks::Get, "the mapping is had as a whole"}},
    {{"KARMPExpression", L"VariableMapping/Var"}, {Lacks::Set, "the mapping is set as a whole"}},
    {{"", L"Equation"}, {Lacks::Change, "it is the first equation among the constraints"}},
    {{"KARMPMotor", L"TargetType"}, {Lacks::Change, "the values decide what the motor aims at"}},
    {{"KARMPDofSensor", L"Rotations"}, {Lacks::Change, "all slots for axes are taken"}},
    {{"KARMPDofSensor", L"Screws"}, {Lacks::Change, "all slots for axes are taken"}},
    {{"KARMPCone", L""}, {Lacks::GiveBack, "its reader asks for the element of another class"}},
    {{"KARMPCylinder", L"Coordinates/Axis"}, {Lacks::GiveBack, "its reader asks for other names"}},
    {{"KARMPCylinder", L"Coordinates/Origin"},
     {Lacks::GiveBack, "its reader asks for other names"}},
    {{"KARMPCollisionLayer", L""}, {Lacks::GiveBack, "no list of a world takes layers"}},
    {{"KARMPDiagnostic", L""}, {Lacks::GiveBack, "it stands in no document"}},
};

/// Whether an item is told to lack something; noted as seen.
class ExceptionList
{
public:
    bool Tells(const std::string& className, const std::wstring& path, Lacks lacks)
    {
        for (const ItemOfClass& item :
             {ItemOfClass{"", path}, ItemOfClass{className, path}, ItemOfClass{className, L""}}) {
            const auto [begin, end] = Exceptions.equal_range(item);
            for (auto found = begin; found != end; ++found) {
                if (found->second.lacks == lacks) {
                    m_seen.insert({found->first, lacks});
                    return true;
                }
            }
        }
        return false;
    }
    /// The exceptions of a sort that were not needed.
    std::string NotSeen(const std::set<Lacks>& sorts) const
    {
        std::string text;
        for (const auto& [item, exception] : Exceptions)
            if (sorts.count(exception.lacks) != 0 && m_seen.count({item, exception.lacks}) == 0)
                text += item.first + ' ' + kar::ToUtf8(item.second) + '\n';
        return text;
    }

private:
    std::set<std::pair<ItemOfClass, Lacks>> m_seen;
};

class ItemTable : public KARMPTestFixture
{
protected:
    ExceptionList exceptions;

private:
    EnvironmentVariable m_dumpOutputs{"MOT_DUMP_OUTPUTS", "1"};
    EnvironmentVariable m_dumpOctets{"DUMP_OCTET_AS_UTF8", "1"};
};

std::wstring IdentifierOf(const Handle& entity)
{
    std::wstring identifier;
    if (entity)
        GetIdentifierOf(*entity, identifier);
    return identifier;
}

/// A value with the identifiers of entities in their place, so that values of two worlds compare.
Value Named(const Value& value)
{
    if (const auto* const target = std::get_if<Handle>(&value))
        return IdentifierOf(*target);
    if (const auto* const targets = std::get_if<Handles>(&value)) {
        RecordValues names;
        for (const Handle& target : *targets)
            names.push_back(IdentifierOf(target));
        return std::vector<RecordValues>{names};
    }
    if (const auto* const records = std::get_if<std::vector<RecordValues>>(&value)) {
        std::vector<RecordValues> named;
        for (const RecordValues& record : *records) {
            RecordValues& fields = named.emplace_back();
            for (const Value& field : record)
                fields.push_back(Named(field));
        }
        return named;
    }
    return value;
}

/// True for equal values; doubles may differ by the rounding of a direction that is normalised.
bool AreNearlyEqual(const Value& left, const Value& right)
{
    const auto areNear = [](double a, double b) { return std::abs(a - b) <= 1e-14; };
    if (const auto* const first = std::get_if<NumberArray>(&left)) {
        const auto* const second = std::get_if<NumberArray>(&right);
        return second != nullptr && first->Shape() == second->Shape() &&
               std::equal(first->begin(), first->end(), second->begin(), second->end(), areNear);
    }
    const auto* const first = std::get_if<std::vector<RecordValues>>(&left);
    const auto* const second = std::get_if<std::vector<RecordValues>>(&right);
    if (first == nullptr || second == nullptr)
        return left == right;
    return std::equal(first->begin(), first->end(), second->begin(), second->end(),
                      [](const RecordValues& a, const RecordValues& b) {
                          return std::equal(a.begin(), a.end(), b.begin(), b.end(), AreNearlyEqual);
                      });
}

/// Whatever documents hold in a world's entity of that identifier; null without one.
const KARMPEntity* EntityIn(const KARMPWorld& world, const std::wstring& identifier)
{
    const ListedEntities entities(world);
    std::wstring found;
    for (std::size_t number = 0; number < entities.Count(); ++number) {
        GetIdentifierOf(entities.At(number), found);
        if (found == identifier)
            return &entities.At(number);
    }
    return nullptr;
}

/// Takes the first entry of a list away, adds one to a list without any, and a record to the
/// others.
KARStatus ChangeList(const ItemInfo& item, const FilledWorld& filled)
{
    KARMPEntity& entity = *filled.entity;
    const Value held = item.Get(entity);
    if (const auto* const targets = std::get_if<Handles>(&held))
        return targets->empty() ? item.AddTarget(entity, filled.Other(item.target, {}))
                                : item.RemoveTarget(entity, targets->front());
    auto records = std::get<std::vector<RecordValues>>(held);
    if (records.empty())
        return KARFailure;
    records.push_back(records.front());
    return item.Set(entity, records);
}

bool IsList(const ItemInfo& item)
{
    return item.kind == ItemKind::References || item.kind == ItemKind::Records;
}

TEST_F(ItemTable, HasEveryItemOfEveryClassToReadAndToSet)
{
    for (const std::string& className : MadeClasses()) {
        EXPECT_FALSE(ItemsOf(className).empty()) << className;
        const FilledWorld full(className);
        const FilledWorld other(className, Filling::Other);
        for (const ItemInfo& item : ItemsOf(className)) {
            SCOPED_TRACE(className + ' ' + kar::ToUtf8(item.path));
            EXPECT_EQ(item.CanGet(), !exceptions.Tells(className, item.path, Lacks::Get));
            EXPECT_EQ(item.readOnly.empty(), !exceptions.Tells(className, item.path, Lacks::Set))
                << item.readOnly;
            if (item.CanGet())
                EXPECT_FALSE(item.Get(*full.entity).IsNone() && item.Get(*other.entity).IsNone());
        }
    }
    EXPECT_EQ(exceptions.NotSeen({Lacks::Get, Lacks::Set}), "");
}

bool IsSentence(std::string_view text)
{
    return text.size() > 1 && text.front() >= 'A' && text.front() <= 'Z' && text.back() == '.';
}

TEST_F(ItemTable, TellsInASentenceWhatEveryItemIs)
{
    for (const std::string& className : MadeClasses()) {
        for (const ItemInfo& item : ItemsOf(className)) {
            EXPECT_TRUE(IsSentence(item.says)) << className << ' ' << kar::ToUtf8(item.path);
            for (const ItemInfo& field : item.fields)
                EXPECT_TRUE(IsSentence(field.says))
                    << className << ' ' << kar::ToUtf8(item.path) << ' ' << kar::ToUtf8(field.path);
            if (!item.readOnly.empty()) {
                EXPECT_TRUE(IsSentence(item.readOnly))
                    << className << ' ' << kar::ToUtf8(item.path);
            }
        }
    }
}

/// Numbers that measure no quantity, or one that another item decides on.
const std::map<std::wstring_view, std::string> WithoutQuantity{
    {L"Axis", "a unit vector"},
    {L"Direction", "a direction"},
    {L"First", "a direction"},
    {L"Second", "a direction"},
    {L"Third", "a direction"},
    {L"MajorDirection", "a unit vector"},
    {L"Normal", "a unit vector"},
    {L"Coordinates", "a point and a direction"},
    {L"Coordinates2D", "a point and a direction"},
    {L"curvature", "no quantity of the enumeration is the reciprocal of a length"},
    {L"ScrewTangent", "a ratio"},
    {L"DynamicFriction", "a ratio"},
    {L"StaticFriction", "a ratio"},
    {L"FrictionCoef", "a ratio"},
    {L"Restitution", "a ratio"},
    {L"MinLimitRestitution", "a ratio"},
    {L"MaxLimitRestitution", "a ratio"},
    {L"PoissonCoef1", "a ratio"},
    {L"PoissonCoef2", "a ratio"},
    {L"Damping", "the solver decides on the law of the contact"},
    {L"ConstantTerm", "that of the equation's variables"},
    {L"Value", "that of the item PhysicalQuantity"},
    {L"MinValue", "that of the item PhysicalQuantity"},
    {L"MaxValue", "that of the item PhysicalQuantity"},
    {L"Position", "that of the freedom"},
    {L"Velocity", "that of the freedom"},
    {L"Acceleration", "that of the freedom"},
    {L"Force", "a force or a torque, by the motor's variable"},
};

TEST_F(ItemTable, TellsTheQuantityOfEveryNumber)
{
    std::set<std::wstring_view> seen;
    for (const std::string& className : MadeClasses()) {
        for (const ItemInfo& item : ItemsOf(className)) {
            const bool isNumber =
                item.kind == ItemKind::Number || item.kind == ItemKind::OptionalNumber ||
                item.kind == ItemKind::Numbers || item.kind == ItemKind::Transformation;
            if (!isNumber || item.quantity != KARMPPhysicalQuantity::NoPhysicalQuantity)
                continue;
            EXPECT_EQ(WithoutQuantity.count(item.name), 1U)
                << className << ' ' << kar::ToUtf8(item.path);
            seen.insert(item.name);
        }
    }
    for (const auto& [name, reason] : WithoutQuantity)
        EXPECT_EQ(seen.count(name), 1U) << kar::ToUtf8(name);
}

TEST_F(ItemTable, TakesBackWhatItGave)
{
    for (const std::string& className : MadeClasses()) {
        const FilledWorld filled(className);
        for (const ItemInfo& item : ItemsOf(className)) {
            if (!item.CanGet() || !item.readOnly.empty())
                continue;
            SCOPED_TRACE(className + ' ' + kar::ToUtf8(item.path));
            const Value value = item.Get(*filled.entity);
            // What is not there, as the outputs of these tests, is not set.
            if (value.IsNone())
                continue;
            EXPECT_TRUE(item.Takes(value));
            std::string why;
            EXPECT_FALSE(KARFailed(item.Set(*filled.entity, value, why))) << why;
            EXPECT_TRUE(AreNearlyEqual(item.Get(*filled.entity), value));
        }
    }
}

TEST_F(ItemTable, UnsetsEveryOptionalNumberByNone)
{
    int unset = 0;
    for (const std::string& className : MadeClasses()) {
        const FilledWorld filled(className);
        for (const ItemInfo& item : ItemsOf(className)) {
            if (item.kind != ItemKind::OptionalNumber)
                continue;
            SCOPED_TRACE(className + ' ' + kar::ToUtf8(item.path));
            EXPECT_EQ(item.Set(*filled.entity, 0.5), KARSuccess);
            EXPECT_EQ(item.Get(*filled.entity), Value(0.5));
            EXPECT_TRUE(item.Takes(Value()));
            EXPECT_EQ(item.Set(*filled.entity, Value()), KARSuccess);
            EXPECT_TRUE(item.Get(*filled.entity).IsNone());
            EXPECT_FALSE(item.CanRemoveTarget());
            ++unset;
        }
    }
    EXPECT_EQ(unset, 6);
}

TEST_F(ItemTable, ChangesEveryItemSavesLoadsAndFindsItEqual)
{
    int changed = 0;
    for (const std::string& className : MadeClasses()) {
        const FilledWorld other(className, Filling::Other);
        for (const ItemInfo& item : ItemsOf(className)) {
            if (!item.CanGet() || !item.readOnly.empty())
                continue;
            SCOPED_TRACE(className + ' ' + kar::ToUtf8(item.path));
            const FilledWorld filled(className);
            KARMPEntity& entity = *filled.entity;
            const Value before = item.Get(entity);
            const KARStatus status = IsList(item)
                                         ? ChangeList(item, filled)
                                         : item.Set(entity, OtherValue(item, filled, other));
            const Value after = item.Get(entity);
            const bool isChanged = !KARFailed(status) && after != before;
            EXPECT_EQ(isChanged, !exceptions.Tells(className, item.path, Lacks::Change));
            if (!isChanged)
                continue;
            ++changed;
            std::string text;
            SaveOptions options;
            options.doubles = Doubles::Exact;
            options.check = false;
            ASSERT_FALSE(SaveText(filled.world, text, options).HasErrors());
            const LoadResult loaded = LoadText(text);
            ASSERT_TRUE(loaded.world);
            const KARMPEntity* const found = EntityIn(*loaded.world, IdentifierOf(filled.entity));
            const bool isBack =
                found != nullptr && AreNearlyEqual(Named(item.Get(*found)), Named(after));
            EXPECT_EQ(isBack, !exceptions.Tells(className, item.path, Lacks::GiveBack));
            TakeReports();
        }
    }
    EXPECT_GT(changed, 900);
    EXPECT_EQ(exceptions.NotSeen({Lacks::Change, Lacks::GiveBack}), "");
}

TEST_F(ItemTable, DropsAndTakesEveryTargetOfEveryLink)
{
    int dropped = 0;
    for (const std::string& className : MadeClasses()) {
        for (const ItemInfo* const item :
             LinkItemsOf(FilledWorld(className).entity->getClassInfo())) {
            SCOPED_TRACE(className + ' ' + kar::ToUtf8(item->path));
            const FilledWorld filled(className);
            KARMPEntity& entity = *filled.entity;
            const Value value = item->Get(entity);
            const auto* const list = std::get_if<Handles>(&value);
            if (value.IsNone() || (list != nullptr && list->empty()))
                continue;
            const Handle target = list != nullptr ? list->back() : std::get<Handle>(value);
            EXPECT_EQ(item->CanRemoveTarget(),
                      !exceptions.Tells(className, item->path, Lacks::Remove));
            if (!item->CanRemoveTarget())
                continue;
            ++dropped;
            const auto words = item->EntryWords(entity);
            EXPECT_EQ(item->RemoveTarget(entity, target), KARSuccess);
            const Value left = item->Get(entity);
            EXPECT_NE(left, value);
            EXPECT_FALSE(KARFailed(item->RemoveTarget(entity, target)));
            EXPECT_EQ(item->Get(entity), left);
            const auto word = words.empty() ? std::wstring_view() : words.back();
            EXPECT_EQ(item->AddTarget(entity, target, word) == KARSuccess,
                      !exceptions.Tells(className, item->path, Lacks::Change));
            EXPECT_EQ(item->Get(entity), value);
            EXPECT_EQ(item->EntryWords(entity), words);
        }
    }
    EXPECT_GT(dropped, 400);
    EXPECT_EQ(exceptions.NotSeen({Lacks::Remove}), "");
}

const ItemInfo& Row(const KARMPEntity& entity, std::wstring_view name)
{
    return *FindItem(entity.getClassInfo(), name);
}

TEST_F(ItemTable, MovesTheVariablesBehindOneThatGoesUp)
{
    const auto expression = KARMPExpression::create(L"E");
    const ItemInfo& variables = Row(*expression, L"Variables");
    Handles linked;
    for (const wchar_t* const name : {L"a", L"b", L"c"})
        linked.emplace_back(KARMPVariable::create(name));
    EXPECT_EQ(variables.Set(*expression, linked), KARSuccess);
    EXPECT_EQ(expression->SetVariableMapping({{0, 2}, {1, 1}, {2, 0}}), KARSuccess);
    EXPECT_EQ(variables.RemoveTarget(*expression, linked[1]), KARSuccess);
    EXPECT_EQ(variables.Get(*expression), Value(Handles{linked[0], linked[2]}));
    std::map<int, int> mapping;
    EXPECT_EQ(expression->GetVariableMapping(mapping), KARSuccess);
    EXPECT_EQ(mapping, (std::map<int, int>{{0, 1}, {1, 0}}));
}

TEST_F(ItemTable, LeavesAChildThatGoesWithoutAFather)
{
    const auto father = KARMPBody::create(L"F");
    const auto child = KARMPBody::create(L"C");
    const ItemInfo& children = Row(*father, L"ChildrenBodies");
    EXPECT_EQ(children.AddTarget(*father, child), KARSuccess);
    EXPECT_EQ(children.AddTarget(*father, child), KARSuccess); // a second entry
    TakeReports();
    QOBSharedHandle<KARMPBody> found;
    EXPECT_EQ(children.RemoveTarget(*father, child), KARSuccess);
    child->GetFatherBody(found);
    EXPECT_EQ(found, father);
    EXPECT_EQ(children.RemoveTarget(*father, child), KARSuccess);
    child->GetFatherBody(found);
    EXPECT_FALSE(found);
    EXPECT_EQ(children.RemoveTarget(*father, child), KARUnchanged);
}

TEST_F(ItemTable, DropsTheBodyOfTheEndThatTheRowIsAbout)
{
    const auto spring = KARMPAxialSpring::create(L"S");
    const auto body = KARMPBody::create(L"B");
    const ItemInfo& first = Row(*spring, L"FirstBody");
    const ItemInfo& second = Row(*spring, L"SecondBody");
    EXPECT_EQ(first.AddTarget(*spring, body), KARSuccess);
    EXPECT_EQ(second.AddTarget(*spring, body), KARSuccess);
    EXPECT_EQ(second.RemoveTarget(*spring, body), KARSuccess);
    EXPECT_EQ(first.Get(*spring), Value(Handle(body)));
    EXPECT_EQ(second.Get(*spring), Value());
    TakeReports();
}

TEST_F(ItemTable, LacksLittle)
{
    EXPECT_LE(Exceptions.size(), 20U);
}

} // namespace

} // namespace karmp::documents

// What holds of every class, driven by the factory: a class that is added is tested. Values are
// changed in the tree that a default entity writes, so that each written item is read back,
// whatever class it belongs to.
#include "ClassIdentities.h"
#include "EnvironmentVariable.h"
#include "FilledEntities.h"
#include "KAR3DMeshRep.h"
#include "KARBody.h"
#include "KARCrvLimits.h"
#include "KARLineCurve.h"
#include "KARMP3DRep.h"
#include "KARMPConstant.h"
#include "KARMPConstraintParameter.h"
#include "KARMPCoupling.h"
#include "KARMPCurve.h"
#include "KARMPEntityTable.h"
#include "KARMPEnumerationTexts.h"
#include "KARMPEquation.h"
#include "KARMPGeometry2D.h"
#include "KARMPItems.h"
#include "KARMPJoint2D.h"
#include "KARMPKinematicConstraint.h"
#include "KARMPLinearEquation.h"
#include "KARMPTestFixture.h"
#include "KARMPValue.h"
#include "KARMPVariable.h"
#include "KARMPWorld.h"
#include "KARMPWorldFamilies.h"
#include "KARProcessServices.h"
#include "QOBBasicWorld.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"

#include <algorithm>
#include <map>
#include <random>
#include <set>

namespace {

const ClassIdentity* IdentityOf(const std::string& name)
{
    const auto* found =
        std::find_if(std::begin(ClassIdentities), std::end(ClassIdentities),
                     [&name](const ClassIdentity& identity) { return identity.name == name; });
    return found != std::end(ClassIdentities) ? found : nullptr;
}

QOBSharedHandle<KARMPEntity> Create(const std::string& name)
{
    QOBSharedHandle<KARMPEntity> entity;
    KARMPFactory::Create(name, entity);
    FreeReadLimits(*entity);
    return entity;
}

/// A value that entities refer to, with one text as identifier and name.
QOBSharedHandle<KARMPEntity> ReferredValue(const wchar_t* text)
{
    const auto value = KARMPConstant::create(text);
    value->SetIdentifier(text);
    return value;
}
constexpr const wchar_t* WrittenValue = L"the value that is written";
constexpr const wchar_t* ReadValue = L"the value that is read";

/// Gives a default entity the items that it writes only when they are set, and the values that it
/// misses.
void Prepare(const QOBSharedHandle<KARMPEntity>& entity)
{
    entity->SetID("application");
    for (const karmp::ItemInfo& row : karmp::ItemsOf(entity->getClassName()))
        if (row.kind == karmp::ItemKind::Reference && row.target == KARMPValue::ClassName())
            EXPECT_EQ(row.Set(*entity, ReferredValue(WrittenValue)), KARSuccess);
    if (entity.isDerivedFrom(KARMPValue::ClassInfo()))
        QOBSharedHandle<KARMPValue>(entity)->SetPhysicalQuantity(KARMPPhysicalQuantity::Length);
    // Planar and universal constraints write a friction model without parameters, by which no
    // reader enables friction: a model of theirs is lost on the second write.
    const std::string name = entity->getClassName();
    if (entity.isDerivedFrom(KARMPKinematicConstraint::ClassInfo()) &&
        name != "KARMPPlanarConstraint" && name != "KARMPUniversalConstraint")
        QOBSharedHandle<KARMPKinematicConstraint>(entity)->EnableFriction();
    if (entity.isDerivedFrom(KARMPVariable::ClassInfo())) {
        const QOBSharedHandle<KARMPVariable> variable(entity);
        variable->SetValue(1.0);
        variable->SetMinValue(1.0);
        variable->SetMaxValue(1.0);
        variable->SetRestitutionOnMinLimit(1.0);
        variable->SetRestitutionOnMaxLimit(1.0);
    }
    if (entity.isDerivedFrom(KARMPAttribute::ClassInfo())) {
        const QOBSharedHandle<KARMPAttribute> attribute(entity);
        attribute->SetType("double");
        attribute->SetPath({"arm", "angle"});
    }
    if (entity.isDerivedFrom(KARMPLinearEquation::ClassInfo())) {
        const QOBSharedHandle<KARMPLinearEquation> equation(entity);
        equation->AddLinearTerm(1.0);
        equation->AddLinearTerm(1.0);
        equation->SetConstantTerm(1.0);
    }
    if (entity.isDerivedFrom(KARMPCurve::ClassInfo())) {
        KARLineCurve* line = KARLineCurve::Create(KARMathLine({1, 2, 0}, {0, 2, 0}), -1.0, 4.0);
        QOBSharedHandle<KARMPCurve>(entity)->AddCurve(line, KARMPCurveOrientation::Positive,
                                                      new KARCrvLimits);
        line->Release();
    }
    if (entity.isDerivedFrom(KARMP3DRep::ClassInfo()))
        QOBSharedHandle<KARMP3DRep>(entity)->Set3DRep(KAR3DMeshRep::CreateRep({}, {}));
    if (entity.isDerivedFrom(KARMPShapeBody::ClassInfo())) {
        KARBody* const body = KARBody::Create();
        QOBSharedHandle<KARMPShapeBody>(entity)->SetBody(body);
        body->Release();
    }
    if (entity.isDerivedFrom(KARMPConstraint::ClassInfo())) {
        auto* parameter = new KARMPConstraintParameter;
        parameter->SetInitialized(true);
        QOBSharedHandle<KARMPConstraint>(entity)->AddConstraintParameter(parameter);
    }
}

using Values = std::vector<KARMPSerializationVariable>;

/// Copies a written tree with other values of the same kinds.
class Changer
{
public:
    explicit Changer(unsigned seed) : m_random(seed) {}

    void Copy(const TestSerializer& from, TestDeserializer& to)
    {
        to.SetVersion(from.Version());
        for (int i = 0; i < static_cast<int>(from.GetAttributeCount()); ++i) {
            const auto& attribute = Change(from.GetAttribute(i));
            Put(attribute, [&](const auto& value) { to.AddAttributeValue(attribute.name, value); });
        }
        Put(Change(from.GetVariable()), [&to](const auto& value) { to.SetValue(value); });
        for (std::size_t i = 0; i < from.GetElementCount(); ++i)
            Copy(from.Child(i), to.Add(from.Child(i).GetId()));
    }
    /// The values of the copy, in the order of valuesOf.
    const Values& Changed() const { return m_changed; }

private:
    const KARMPSerializationVariable& Change(KARMPSerializationVariable item)
    {
        using Type = KARMPSerializationVariable::Type;
        if (item.type == Type::Double)
            item.value.doubleValue = Number();
        // A flag that is a number knows 1 alone.
        else if (item.type == Type::Int && item.name == L"EnableDampingTransition")
            item.value.intValue = 1;
        // The index of a term decides nothing, the length of a stream is its own, numbers of
        // freedoms repeat what their lists say, and an old quantity is a code within its table.
        else if (item.type == Type::Int && item.name != L"LinearTermIndex" &&
                 item.name != L"length" && item.name != L"numberOfDof" && item.name != L"number")
            item.value.intValue = 1 + Integer() % 2;
        // A flag that says that a value follows must stay as it is.
        else if (item.type == Type::Bool && (item.name == L"OutOfWorld" || item.name == L"Status"))
            item.value.boolValue = true;
        else if (item.type == Type::String)
            item.value.stringValue = Word(item);
        m_changed.push_back(item);
        return m_changed.back();
    }
    template <class Set>
    static void Put(const KARMPSerializationVariable& item, const Set& set)
    {
        using Type = KARMPSerializationVariable::Type;
        if (item.type == Type::Double)
            set(item.value.doubleValue);
        else if (item.type == Type::Int)
            set(item.value.intValue);
        else if (item.type == Type::Bool)
            set(item.value.boolValue);
        else if (item.type == Type::String)
            set(item.value.stringValue);
    }
    double Number()
    {
        // On the grid of documents, and apart from all defaults.
        return static_cast<double>(m_random() % 2'000'000 + 2'000'000) / 1'048'576.0;
    }
    int Integer() { return static_cast<int>(m_random() % 1000) + 2; }

    template <class Enum>
    static std::vector<std::wstring> Rows()
    {
        std::vector<std::wstring> rows;
        for (const auto row : karmp::EnumTexts<Enum>::Rows)
            rows.emplace_back(row);
        return rows;
    }
    /// Some word that the item may hold; texts without a table may hold any.
    std::wstring Word(const KARMPSerializationVariable& item)
    {
        static const std::map<std::wstring, std::vector<std::wstring>> words{
            {L"isActive", {L"no"}},
            {L"is_fixed", {L"yes"}},
            {L"is_fixed2D", {L"yes"}},
            {L"RuleType", Rows<KARMPCollisionRuleType::Enum>()},
            {L"Alignment", Rows<KARMPAlignment::Enum>()},
            {L"CircleTorusOrientation", Rows<KARMPCircleTorusOrientation::Enum>()},
            {L"HalfSpace", Rows<KARMPHalfSpace::Enum>()},
            {L"HingeMode", Rows<KARMPHingeMode::Enum>()},
            {L"SelectedPlane", Rows<KARMPSelectedPlane::Enum>()},
            {L"SurfaceOrientation", Rows<KARMPSurfaceOrientation::Enum>()},
            {L"Behavior", Rows<KARMPSpringBehavior::Enum>()},
            {L"SelectedAxis0", Rows<KARMPSelectedAxis::Enum>()},
            {L"SelectedAxis1", Rows<KARMPSelectedAxis::Enum>()},
            {L"PhysicalQuantity", Rows<KARMPPhysicalQuantity::Enum>()},
            {L"Type", Rows<KARMPVariableType::Enum>()},
            {L"TargetType", Rows<KARMPMotorTargetType::Enum>()},
            {L"Value", {L"TRUE"}},
            {L"curveOrientation", Rows<KARMPCurveOrientation::Enum>()}};
        if (item.value.stringValue == WrittenValue)
            return ReadValue;
        // Any other text is no curve, scene graph or body.
        if (item.name == L"CurveStream" ||
            (item.name == L"stream" && !item.value.stringValue.empty()))
            return item.value.stringValue;
        const auto found = words.find(item.name);
        if (found == words.end())
            return item.name + L" \u00e9" + std::to_wstring(Integer());
        // Row 0 is what a failed search gives, so another row says more.
        const auto& rows = found->second;
        return rows.size() == 1 ? rows[0] : rows[1 + m_random() % (rows.size() - 1)];
    }

    std::mt19937 m_random;
    Values m_changed;
};

/// The values of a written tree: each node's attributes, its own value, then its children's.
void ValuesOf(const TestSerializer& node, Values& values)
{
    for (int i = 0; i < static_cast<int>(node.GetAttributeCount()); ++i)
        values.push_back(node.GetAttribute(i));
    values.push_back(node.GetVariable());
    for (std::size_t i = 0; i < node.GetElementCount(); ++i)
        ValuesOf(node.Child(i), values);
}

/// Classes whose own output does not read back equal, and why.
const std::map<std::string, std::string> NotReadBack{
    {"KARMPCone", "it reads the element of another class"},
    {"KARMPCylinder", "it reads origin and axis under other names than it writes"},
    {"KARMPGenericEntity", "it reads its category from the node that it is given, not from within"},
    {"KARMPSurface", "its reader fails after it has read all; tests of its own read it back"},
};

class AllClasses : public KARMPTestFixture
{
    EnvironmentVariable m_dumpOutputs{"MOT_DUMP_OUTPUTS", "1"};
};

// The walks below go over what the factory has: a class that got lost would not be missed there.
TEST_F(AllClasses, OfTheIdentityTableAreMade)
{
    const std::vector<std::string> made = MadeClasses();
    for (const ClassIdentity& identity : ClassIdentities)
        EXPECT_EQ(std::count(made.begin(), made.end(), identity.name), identity.inFactory ? 1 : 0)
            << identity.name;
}

TEST_F(AllClasses, HaveTheirPlaceInTheIdentityTable)
{
    for (const std::string& name : MadeClasses()) {
        SCOPED_TRACE(name);
        const ClassIdentity* identity = IdentityOf(name);
        ASSERT_NE(identity, nullptr);
        EXPECT_TRUE(identity->inFactory);
        const auto entity = Create(name);
        ASSERT_TRUE(entity);
        EXPECT_EQ(entity->getClassName(), name);
        EXPECT_EQ(entity->getClassID().getText(), identity->guid);
        ASSERT_NE(entity->getClassInfo().getParent(), nullptr);
        EXPECT_EQ(entity->getClassInfo().getParent()->getName(), identity->parent);
        EXPECT_TRUE(entity->isInstanceOf(entity->getClassInfo()));
        EXPECT_TRUE(entity->isDerivedFrom(KARMPEntity::ClassInfo()));
        EXPECT_EQ(entity->getEntityName(), L"");
        EXPECT_EQ(entity->getReferenceCount(), 1U);
    }
}

// Most of these are abstract, so that no factory makes them. Bases within families follow.
TEST_F(AllClasses, ThatHeadAFamilyHaveTheirPlaceInTheIdentityTable)
{
    const auto expectPlace = [](auto family) {
        using T = typename decltype(family)::Type;
        SCOPED_TRACE(T::ClassName());
        const ClassIdentity* identity = IdentityOf(T::ClassName());
        ASSERT_NE(identity, nullptr);
        EXPECT_EQ(T::ClassID().getText(), identity->guid);
        EXPECT_EQ(T::ClassInfo().getParent()->getName(), identity->parent);
        EXPECT_EQ(T::ClassInfo().getSize(), sizeof(T));
        EXPECT_EQ(T::ClassInfo().getCreateFunction(), nullptr);
    };
    karmp::Families::ForEach(expectPlace);
    karmp::FamilyList<KARMPKinematicConstraint, KARMPCoupling, KARMPJoint2D,
                      KARMPGeometry2D>::ForEach(expectPlace);
}

TEST_F(AllClasses, AreClonedWithNothingButTheirOwnValues)
{
    for (const std::string& name : MadeClasses()) {
        SCOPED_TRACE(name);
        auto entity = Create(name);
        entity->setEntityName(L"original");
        auto copy = KARMPEntity::clone(entity, QOBDynamicObject::CopyDefault);
        ASSERT_TRUE(copy);
        EXPECT_EQ(copy->getClassName(), name);
        // A copied constraint is as new, its base's fields included.
        const bool isConstraint = copy.isDerivedFrom(KARMPConstraint::ClassInfo());
        EXPECT_EQ(copy->getEntityName(), isConstraint ? L"" : L"original");
        EXPECT_EQ(copy->getReferenceCount(), 1U);
        KARMPEntity::destroy(entity);
        EXPECT_FALSE(entity);
        KARMPEntity::destroy(copy);
    }
}

TEST_F(AllClasses, AreOrphanedOnceAndKeepNothing)
{
    for (const std::string& name : MadeClasses()) {
        SCOPED_TRACE(name);
        auto entity = Create(name);
        const auto other = entity;
        KARMPEntity::destroy(entity);
        EXPECT_TRUE(other->isOrphaned());
        other->orphanObject();
        EXPECT_EQ(other->getReferenceCount(), 1U);
    }
}

TEST_F(AllClasses, WriteTheElementOfTheirName)
{
    for (const std::string& name : MadeClasses()) {
        SCOPED_TRACE(name);
        const auto entity = Create(name);
        Prepare(entity);
        TestSerializer root;
        EXPECT_FALSE(KARFailed(entity->Serialize(&root)));
        const std::wstring_view element = IdentityOf(name)->element;
        ASSERT_EQ(root.GetElementCount(), element.empty() ? 0U : 1U);
        if (!element.empty())
            EXPECT_EQ(root.Child(0).GetId(), element);
    }
}

/// Expects that reading the changed values of a tree changed every value that is written then.
void ExpectEveryValueRead(const TestSerializer& before, const Values& changed,
                          const TestSerializer& after)
{
    using Type = KARMPSerializationVariable::Type;
    Values old;
    ValuesOf(before, old);
    Values read;
    ValuesOf(after, read);
    ASSERT_EQ(read.size(), changed.size());
    for (std::size_t i = 0; i < read.size(); ++i) {
        SCOPED_TRACE(std::string(read[i].name.begin(), read[i].name.end()));
        ASSERT_EQ(read[i].name, changed[i].name);
        ASSERT_EQ(read[i].type, changed[i].type);
        const KARMPSerializationVariant& value = read[i].value;
        // Directions are made unit vectors and numbers go onto the grid.
        if (read[i].type == Type::Double)
            EXPECT_NE(value.doubleValue, old[i].value.doubleValue);
        else if (read[i].type == Type::Int)
            EXPECT_EQ(value.intValue, changed[i].value.intValue);
        else if (read[i].type == Type::Bool)
            EXPECT_EQ(value.boolValue, changed[i].value.boolValue);
        else if (read[i].type == Type::String)
            EXPECT_EQ(value.stringValue, changed[i].value.stringValue);
    }
}

/// The dump of what an entity writes at a version; empty when it fails.
std::string Written(const KARMPEntity& entity, std::wstring_view version)
{
    TestSerializer root(version);
    if (KARFailed(entity.Serialize(&root)))
        return {};
    return root.Dump();
}

TEST_F(AllClasses, ReadBackEveryValueThatTheyWriteAtEachVersion)
{
    for (const std::string& name : MadeClasses()) {
        if (NotReadBack.contains(name))
            continue;
        for (const std::wstring_view version : AllVersions) {
            SCOPED_TRACE(name + " at " + std::string(version.begin(), version.end()));
            const auto original = Create(name);
            Prepare(original);
            TestSerializer root(version);
            ASSERT_FALSE(KARFailed(original->Serialize(&root)));
            KARMPEntityTable entities;
            entities.Set(ReadValue, ReferredValue(ReadValue));
            TestDeserializer changed;
            Changer changer(20180101);
            changer.Copy(root, changed);

            const auto first = Create(name);
            EXPECT_FALSE(KARFailed(first->Deserialize(&changed, entities)));
            const std::string firstText = Written(*first, version);

            // What was read is written and read once more: then it must be the same.
            TestSerializer again(version);
            ASSERT_FALSE(KARFailed(first->Serialize(&again)));
            ExpectEveryValueRead(root, changer.Changed(), again);
            for (const bool asText : {false, true}) {
                const auto tree =
                    TestDeserializer::From(again, {.asText = asText, .versionOnEveryNode = true});
                const auto second = Create(name);
                EXPECT_FALSE(KARFailed(second->Deserialize(tree.get(), entities)));
                EXPECT_EQ(Written(*second, version), firstText);
            }
            ExpectReports(0);
        }
    }
}

} // namespace

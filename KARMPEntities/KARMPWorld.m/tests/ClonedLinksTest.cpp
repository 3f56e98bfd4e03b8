// What a filtered clone links, item by item of each class's content list: a link that a class gets
// is carried over by both ways of restoring links, or stands here with the reason why not.
#include "CloneTesting.h"
#include "FilledEntities.h"
#include "KARMPItems.h"
#include "KARMPTestFixture.h"
#include "KARTextConversion.h"
#include "QOBClassInfo.h"

#include <algorithm>
#include <map>
#include <set>

using karmp::ItemInfo;
using karmp::Value;

namespace {

constexpr const char* OfTheEntity = "attributes and elements are not among the restored links";
constexpr const char* NotByName = "connectors and values are not carried over";
constexpr const char* NotTold = "the family's links are others";

/// A link of a class, and of those derived from it, that a clone does not have.
struct LeftLink
{
    std::string_view className;
    std::string_view path;
    const char* reason;
};
constexpr LeftLink Left[] = {
    {"KARMPEntity", "Parameters", OfTheEntity},         {"KARMPEntity", "States", OfTheEntity},
    {"KARMPEntity", "AggregatedElements", OfTheEntity}, {"KARMPBody", "Connectors", NotByName},
    {"KARMPBody", "ImpactedChildrenBodies", NotTold},   {"KARMPBody", "ChildrenBodies", NotTold},
};

/// Families whose links are restored; of others none are.
using LinkingFamilies = karmp::FamilyList<KARMPJoint, KARMPBody, KARMPConstraint, KARMPVariable,
                                          KARMPGeometry, KARMPShape>;
/// The first of these that a class is derived from decides where its duplicates are filed.
using FiledFamilies =
    LinkingFamilies::And<KARMPMaterial, KARMPInteraction, KARMPActuator, KARMPSensor,
                         KARMPAttribute, KARMPSupport, KARMPDebugEntity, KARMPInitialCondition,
                         KARMPAnalysisCase, KARMPAnalysisStep, KARMPGenericEntity>;

const LeftLink* LeftLinkOf(const QOBClassInfo& info, const ItemInfo& item)
{
    const std::string path = kar::ToUtf8(item.path);
    for (const QOBClassInfo* base = &info; base != nullptr; base = base->getParent())
        for (const LeftLink& link : Left)
            if (link.className == base->getName() && link.path == path)
                return &link;
    return nullptr;
}

using Entities = std::vector<QOBSharedHandle<KARMPEntity>>;

/// The entities that a link item refers to.
Entities TargetsOf(const ItemInfo& item, const KARMPEntity& entity)
{
    const Value value = item.Get(entity);
    if (const auto* const one = std::get_if<QOBSharedHandle<KARMPEntity>>(&value))
        return *one ? Entities{*one} : Entities{};
    const auto* const several = std::get_if<Entities>(&value);
    return several != nullptr ? *several : Entities{};
}

/// A world with the duplicates of some entities.
class FilteredClone
{
public:
    explicit FilteredClone(const Entities& sources)
        : m_clone(m_world->CloneWithFilter({sources.begin(), sources.end()}))
    {
        std::map<const void*, int> next; // by family
        for (const QOBSharedHandle<KARMPEntity>& source : sources)
            FiledFamilies::AnyOf([&](auto family) {
                using T = typename decltype(family)::Type;
                if (!source->isDerivedFrom(T::ClassInfo()))
                    return false;
                const auto [index, isFirst] =
                    next.try_emplace(&T::ClassInfo(), m_world->Count<T>());
                QOBSharedHandle<T> duplicate;
                EXPECT_EQ(m_clone->Get(index->second++, duplicate), KARSuccess);
                m_duplicates.emplace(source.get(), duplicate);
                return true;
            });
        // Duplicates hold one another, and are freed with what they stand under.
        const QOBSharedHandle<QOBBasicEntity> above(m_clone->getExtendible());
        for (const auto& [source, duplicate] : m_duplicates)
            above->addLogicalChild(duplicate);
    }

    /// The duplicate of an entity; null without one.
    QOBSharedHandle<KARMPEntity> Of(const KARMPEntity* source) const
    {
        const auto found = m_duplicates.find(source);
        return found != m_duplicates.end() ? found->second : QOBSharedHandle<KARMPEntity>();
    }
    Entities Of(const Entities& sources) const
    {
        Entities duplicates;
        for (const QOBSharedHandle<KARMPEntity>& source : sources)
            if (const auto duplicate = Of(source.get()))
                duplicates.push_back(duplicate);
        return duplicates;
    }

private:
    QOBSharedHandle<QOBBasicWorld> m_basicWorld = QOBBasicWorld::create(L"Source");
    QOBSharedHandle<KARMPWorld> m_world = KARMPWorld::create(m_basicWorld);
    QOBSharedHandle<KARMPWorld> m_clone;
    std::map<const KARMPEntity*, QOBSharedHandle<KARMPEntity>> m_duplicates;
};

class ClonedLinks : public KARMPTestFixture
{
protected:
    void Expect(const std::string& name, Filling filling, bool areAsked);

    /// The links that were carried over, each with its class.
    std::set<std::string> m_carried;
};

// With `areAsked` one entity of the list must be asked itself, so that all links are made by the
// operations of the entities.
void ClonedLinks::Expect(const std::string& name, Filling filling, bool areAsked)
{
    FilledEntities entities;
    const auto source = entities.Make(name, filling);
    Entities sources{source};
    karmp::ForEachTarget(*source, [&](const ItemInfo&, const auto& target) {
        if (std::find(sources.begin(), sources.end(), target) == sources.end())
            sources.push_back(target);
    });
    if (areAsked)
        sources.push_back(OwnKindOf<KARMPMaterial>::create(L"own"));
    const FilteredClone clone(sources);
    const auto duplicate = clone.Of(source.get());
    ASSERT_TRUE(duplicate);
    for (const ItemInfo* const item : karmp::LinkItemsOf(source->getClassInfo())) {
        const std::string link = name + "." + kar::ToUtf8(item->path);
        const Entities expected = clone.Of(TargetsOf(*item, *source));
        const Entities found = TargetsOf(*item, *duplicate);
        if (const LeftLink* const left = LeftLinkOf(source->getClassInfo(), *item)) {
            EXPECT_TRUE(expected.empty() || found != expected) << link << ": " << left->reason;
        } else if (!expected.empty()) {
            EXPECT_EQ(found, expected) << link << (areAsked ? ", asked" : ", as a plain class");
            m_carried.insert(link);
        }
    }
    TakeReports(); // of links that only one side of can be filled
}

TEST_F(ClonedLinks, OfEveryClassAreThoseThatItsContentListHas)
{
    std::size_t classes = 0;
    for (const std::string& name : MadeClasses()) {
        const auto entity = FilledEntities().New(name);
        if (!LinkingFamilies::AnyOf([&](auto family) {
                return entity->isDerivedFrom(decltype(family)::Type::ClassInfo());
            }))
            continue;
        ++classes;
        for (const Filling filling : {Filling::Full, Filling::Other})
            for (const bool areAsked : {false, true})
                Expect(name, filling, areAsked);
    }
    EXPECT_GT(classes, 60U);
    for (const char* const link :
         {"KARMPRevolute.Bodies", "KARMPRevolute.Constraints", "KARMPBody.Geometries",
          "KARMPBody.Joints", "KARMPBody.Shapes", "KARMPCoincidence.Geometries",
          "KARMPCoincidence.Joint", "KARMPVariable.Constraints", "KARMPPoint.Body",
          "KARMPPoint.Constraints"})
        EXPECT_EQ(m_carried.count(link), 1U) << link;
}

} // namespace

// What comes along with the bodies of an extract, family by family, and which links are cut.
#include "CloneTesting.h"
#include "ExtractionTesting.h"
#include "KARMPCollisionLayer.h"
#include "KARMPDisplacementSensor.h"
#include "KARMPEntities.h"
#include "KARMPItems.h"
#include "KARMPJointDOFSensor.h"
#include "KARMPSketch.h"
#include "KARMPTestFixture.h"

#include <set>
#include <utility>

namespace karmp::documents {

namespace {

template <class Family>
std::vector<std::string> SortedNames(const KARMPWorld& world)
{
    std::vector<std::string> names;
    for (int index = 0; index < world.Count<Family>(); ++index) {
        QOBSharedHandle<Family> entity;
        world.Get<Family>(index, entity);
        names.push_back(kar::ToUtf8(entity->getEntityName()));
    }
    std::sort(names.begin(), names.end());
    return names;
}

using Names = std::vector<std::string>;

template <class Visit>
void ForEachEntityIn(const KARMPWorld& world, Visit visit)
{
    Families::ForEach([&](auto family) {
        using T = typename decltype(family)::Type;
        for (int index = 0; index < world.Count<T>(); ++index) {
            QOBSharedHandle<T> entity;
            world.Get<T>(index, entity);
            visit(*entity);
        }
    });
}

/// The two ends of links, each link once whichever end holds it.
using Ends = std::set<std::pair<std::wstring, std::wstring>>;

void Insert(Ends& ends, const KARMPEntity& one, const KARMPEntity& other)
{
    ends.insert(std::minmax(IdentifierOf(one), IdentifierOf(other)));
}

/// The links of a world that lead into the extract of a body or out of it.
Ends LinksAcross(const KARMPWorld& world, const KARMPWorld& extract, const KARMPBody& body)
{
    std::set<std::wstring> inside;
    ForEachEntityIn(extract,
                    [&](const KARMPEntity& entity) { inside.insert(IdentifierOf(entity)); });
    // The globals of the extract stand for those that do not come along.
    inside.erase(L"GlobalTime");
    if (IdentifierOf(body) != L"GlobalBody") {
        inside.erase(L"GlobalBody");
        inside.erase(L"GlobalAxisSystem");
    }
    Ends ends;
    ForEachEntityIn(world, [&](const KARMPEntity& entity) {
        ForEachTarget(entity, [&](const ItemInfo&, const QOBSharedHandle<KARMPEntity>& target) {
            if (inside.count(IdentifierOf(entity)) != inside.count(IdentifierOf(*target)))
                Insert(ends, entity, *target);
        });
    });
    return ends;
}

class ExtractionOfFamilies : public KARMPTestFixture
{
protected:
    /// The slider-crank with a sensor of its rod's motion and one of its crank pin.
    static World WithSensors()
    {
        const World world = SliderCrank();
        const Bodies bodies = Named(*world, {L"Crank", L"Rod"});
        const auto motion = Add<KARMPSensor>(*world, KARMPDisplacementSensor::create(L"Motion"));
        motion->SetBody(bodies[1]);
        bodies[1]->SetDisplacementSensor(motion);
        const auto pin = Add<KARMPSensor>(*world, KARMPJointDOFSensor::create(L"Pin"));
        for (int index = 0; index < world->Count<KARMPJoint>(); ++index) {
            QOBSharedHandle<KARMPJoint> joint;
            world->Get<KARMPJoint>(index, joint);
            if (joint->getEntityName() == L"Crank pin")
                pin->SetJoint(joint);
        }
        return world;
    }
    template <class Family, class T>
    static QOBSharedHandle<T> Add(KARMPWorld& world, const QOBSharedHandle<T>& entity)
    {
        const QOBSharedHandle<QOBBasicEntity> above(world.getExtendible());
        above->addLogicalChild(entity);
        world.Add<Family>(entity);
        return entity;
    }
};

TEST_F(ExtractionOfFamilies, OfEachBodyAloneTellsEachLinkThatItCutsAndPassesTheCheck)
{
    for (const char* const example :
         {"quarter-car", "motor-drive", "seven-body", "gear-pair", "four-bar", "slider-crank",
          "robot-arm", "collision", "instrumented-crank", "time-history", "curve-cam"}) {
        const World world = Example(example);
        for (const auto& body : AllBodies(*world)) {
            SCOPED_TRACE(example + (' ' + kar::ToUtf8(body->getEntityName())));
            const Extraction extract = ExtractWorld(*world, {body}, {0, AllFamilies()});
            ASSERT_TRUE(extract.world);
            EXPECT_TRUE(extract.lostItems.empty());
            EXPECT_TRUE(CheckOf(extract.world).items.empty());
            Ends told;
            for (const CutLink& link : extract.cutLinks)
                Insert(told, *link.holder, *link.target);
            EXPECT_EQ(told.size(), extract.cutLinks.size());
            EXPECT_EQ(told, LinksAcross(*world, *extract.world, *body));
        }
    }
}

TEST_F(ExtractionOfFamilies, TakesNoFurtherFamilyThatIsNotAskedFor)
{
    for (const char* const example : {"quarter-car", "motor-drive"}) {
        const World world = Example(example);
        const World extract = ExtractWorld(*world, AllBodies(*world)).world;
        EXPECT_EQ(extract->Count<KARMPConnector>(), 0);
        EXPECT_EQ(extract->Count<KARMPActuator>(), 0);
        EXPECT_EQ(extract->Count<KARMPValue>(), 0) << "nothing uses them";
        EXPECT_EQ(extract->Count<KARMPJoint>(), world->Count<KARMPJoint>());
        EXPECT_EQ(extract->Count<KARMPConstraint>(), world->Count<KARMPConstraint>());
        EXPECT_TRUE(CheckOf(extract).items.empty());
    }
}

/// The slider-crank whose bodies list neither joints nor geometries.
World WithoutListsOfBodies()
{
    const World world = SliderCrank();
    for (const auto& body : AllBodies(*world)) {
        for (int index = 0; index < world->Count<KARMPJoint>(); ++index) {
            QOBSharedHandle<KARMPJoint> joint;
            world->Get<KARMPJoint>(index, joint);
            body->RemoveJoint(joint);
        }
        for (int index = 0; index < world->Count<KARMPGeometry>(); ++index) {
            QOBSharedHandle<KARMPGeometry> geometry;
            world->Get<KARMPGeometry>(index, geometry);
            body->RemoveGeometry(geometry);
        }
        EXPECT_EQ(body->GetGeometryCount(), 0);
    }
    return world;
}

TEST_F(ExtractionOfFamilies, TakesWhatABodyDoesNotReferBackToAlong)
{
    const World world = WithoutListsOfBodies();
    const Bodies both = Named(*world, {L"Crank", L"Rod"});
    Add<KARMPShape>(*world, KARMP3DRep::create(L"Look"))->LinkToBody(both[0]);
    const Extraction extract = ExtractWorld(*world, both);
    EXPECT_EQ(SortedNames<KARMPShape>(*extract.world), (Names{"Look"}));
    EXPECT_EQ(SortedNames<KARMPJoint>(*extract.world), (Names{"Crank pin"}));
    EXPECT_EQ(SortedNames<KARMPGeometry>(*extract.world),
              (Names{"Crank.Crank pin", "Crank.Main bearing", "GlobalAxisSystem", "Rod.Crank pin",
                     "Rod.Slider pin"}));
    const Names cut = TextsOf(extract.cutLinks);
    EXPECT_EQ(std::count(cut.begin(), cut.end(), "Main bearing Bodies Crank"), 1);
    EXPECT_EQ(std::count(cut.begin(), cut.end(), "Slider pin Bodies Rod"), 1);
    const World reached = ExtractWorld(*world, {both[0]}, {1, {}}).world;
    EXPECT_EQ(NamesOf(AllBodies(*reached)), (Names{"Crank", "GlobalBody", "Rod"}));
}

TEST_F(ExtractionOfFamilies, PutsThePlaneOfAPlanarBodyOnItsOwnGlobalBody)
{
    const World world = Example("seven-body-planar");
    QOBSharedHandle<KARMPBody> ground;
    world->GetGlobalBody(ground);
    const auto mark = Add<KARMPGeometry>(*world, KARMPPoint::create(L"Mark"));
    mark->SetBody(ground);
    ground->AddGeometry(mark);
    const Extraction extract = ExtractWorld(*world, Named(*world, {L"K1"}));
    EXPECT_TRUE(CheckOf(extract.world).items.empty());
    for (const std::string& text : TextsOf(extract.cutLinks))
        EXPECT_EQ(text.find("Sketch"), std::string::npos) << text;
    EXPECT_EQ(NamesOf(AllBodies(*extract.world)), (Names{"GlobalBody", "K1"}));
    QOBSharedHandle<KARMPBody> global;
    extract.world->GetGlobalBody(global);
    EXPECT_EQ(global->GetGeometryCount(), 2) << "the global axis system and the sketch";
}

TEST_F(ExtractionOfFamilies, TakesTheBodyThatCarriesThePlaneOfAPlanarBodyAlong)
{
    const World world = Example("seven-body-planar");
    const auto carrier = Add<KARMPBody>(*world, KARMPBody::create(L"Carrier"));
    QOBSharedHandle<KARMPBody> global;
    world->GetGlobalBody(global);
    for (int index = 0; index < world->Count<KARMPGeometry>(); ++index) {
        QOBSharedHandle<KARMPGeometry> geometry;
        world->Get<KARMPGeometry>(index, geometry);
        if (!geometry->isDerivedFrom(KARMPSketch::ClassInfo()))
            continue;
        global->RemoveGeometry(geometry);
        geometry->SetBody(carrier);
        carrier->AddGeometry(geometry);
    }
    const World extract = ExtractWorld(*world, Named(*world, {L"K1"})).world;
    EXPECT_EQ(NamesOf(AllBodies(*extract)), (Names{"Carrier", "GlobalBody", "K1"}));
    EXPECT_EQ(CheckOf(extract).Find(Code::SketchWithoutBody), nullptr);
}

TEST_F(ExtractionOfFamilies, LeavesFathersAndChildrenBehindAndTellsOfThem)
{
    const World world = SliderCrank();
    const Bodies bodies = Named(*world, {L"Crank", L"Rod"});
    bodies[0]->AddBody(bodies[1]);
    bodies[0]->AddImpactedChildBody(bodies[1]);
    const auto weight = Add<KARMPBody>(*world, KARMPBody::create(L"Weight"));
    bodies[0]->AddImpactedChildBody(weight);
    weight->AddImpactedChildBody(bodies[0]);
    QOBSharedHandle<KARMPBody> global;
    world->GetGlobalBody(global);
    bodies[1]->AddImpactedChildBody(global);
    for (const auto& body : bodies) {
        const Extraction extract = ExtractWorld(*world, {body});
        EXPECT_EQ(extract.world->GetBodyCount(), 2) << "with the global body";
        const Names cut = TextsOf(extract.cutLinks);
        EXPECT_EQ(std::count(cut.begin(), cut.end(), "Crank ChildrenBodies Rod"), 1);
        EXPECT_EQ(std::count(cut.begin(), cut.end(), "Crank ImpactedChildrenBodies Rod"), 1);
        EXPECT_EQ(std::count(cut.begin(), cut.end(), "Rod ImpactedChildrenBodies GlobalBody"),
                  body == bodies[1] ? 1 : 0);
    }
}

TEST_F(ExtractionOfFamilies, TakesConnectorsBetweenItsBodiesWithTheirValues)
{
    const World world = Example("quarter-car");
    const World extract =
        ExtractWorld(*world, Named(*world, {L"Body", L"Upper arm"}), {0, {L"Connectors"}}).world;
    EXPECT_EQ(SortedNames<KARMPConnector>(*extract), (Names{"Torsion bar"}));
    EXPECT_EQ(SortedNames<KARMPValue>(*extract),
              (Names{"Torsion bar.damping", "Torsion bar.rest angle", "Torsion bar.stiffness"}));
    // What held the two bodies did not come along.
    const Diagnostics found = CheckOf(extract);
    EXPECT_EQ(found.items.size(), 1U);
    EXPECT_NE(found.Find(Code::FloatingChain), nullptr);
}

/// Links a spring between two bodies.
QOBSharedHandle<KARMPConnector> Spring(const Bodies& bodies,
                                       const QOBSharedHandle<KARMPAxialSpring>& spring)
{
    spring->SetFirstBody(bodies.at(0));
    spring->SetSecondBody(bodies.at(1));
    for (const auto& body : bodies)
        body->LinkToConnector(spring);
    return spring;
}

TEST_F(ExtractionOfFamilies, FilesConnectorsUnderTheirKeys)
{
    const World world = SliderCrank();
    const Bodies bodies = Named(*world, {L"Crank", L"Rod"});
    const auto spring = Add<KARMPConnector>(*world, KARMPAxialSpring::create(L"Spring"));
    Spring(bodies, spring);
    world->Remove<KARMPConnector>(QOBSharedHandle<KARMPConnector>(spring));
    KARBaseUnknown_var key1 = WorldTestKey::Make();
    KARBaseUnknown_var key2 = WorldTestKey::Make();
    world->Add<KARMPConnector>(key1, key2, QOBSharedHandle<KARMPConnector>(spring));
    const World extract = ExtractWorld(*world, bodies, {0, {L"Connectors"}}).world;
    QOBSharedHandle<KARMPConnector> found;
    extract->Get<KARMPConnector>(0, found);
    KARBaseUnknown_var first;
    KARBaseUnknown_var second;
    EXPECT_EQ(extract->GetKeys<KARMPConnector>(found, first, second), KARSuccess);
    EXPECT_EQ(first, key1);
    EXPECT_EQ(second, key2);
}

TEST_F(ExtractionOfFamilies, TakesActuatorsWhoseVariablesComeAlong)
{
    const World world = Example("motor-drive");
    const Bodies bodies = Named(*world, {L"Turntable", L"Arm"});
    const World extract = ExtractWorld(*world, bodies, {0, {L"Actuators"}}).world;
    // The driver is attached to motors that do not come along.
    EXPECT_EQ(SortedNames<KARMPActuator>(*extract), (Names{"Lift motor"}));
    EXPECT_EQ(SortedNames<KARMPValue>(*extract),
              (Names{"Lift motor.maximum", "Lift motor.position"}));
    const World all = ExtractWorld(*world, AllBodies(*world), {0, {L"Actuators"}}).world;
    EXPECT_EQ(SortedNames<KARMPActuator>(*all), SortedNames<KARMPActuator>(*world));
    EXPECT_EQ(SortedNames<KARMPValue>(*all), SortedNames<KARMPValue>(*world));
}

TEST_F(ExtractionOfFamilies, TakesSensorsWhoseBodiesAndJointsComeAlong)
{
    const World world = WithSensors();
    const Bodies both = Named(*world, {L"Crank", L"Rod"});
    const Bodies rod = Named(*world, {L"Rod"});
    const auto sensors = [&](const Bodies& bodies, std::vector<std::wstring> families) {
        return SortedNames<KARMPSensor>(
            *ExtractWorld(*world, bodies, {0, std::move(families)}).world);
    };
    EXPECT_EQ(sensors(both, {L"Sensors"}), (Names{"Motion", "Pin"}));
    EXPECT_EQ(sensors(both, {L"Actuators"}), Names());
    EXPECT_EQ(sensors(rod, {L"Sensors"}), (Names{"Motion"}));
    EXPECT_EQ(sensors(Named(*world, {L"Crank"}), {L"Sensors"}), Names());
}

TEST_F(ExtractionOfFamilies, TellsTheLinksOfSensorsThatStayBehind)
{
    const World world = WithSensors();
    const auto tells = [&](const std::vector<std::wstring>& families) {
        const Extraction extract = ExtractWorld(*world, Named(*world, {L"Rod"}), {0, families});
        const std::vector<std::string> told = TextsOf(extract.cutLinks);
        return std::count(told.begin(), told.end(), "Rod DisplacementSensor Motion");
    };
    EXPECT_EQ(tells({}), 1);
    EXPECT_EQ(tells({L"Sensors"}), 0);
}

TEST_F(ExtractionOfFamilies, TakesInteractionsWhoseEntitiesComeAlong)
{
    const World world = SliderCrank();
    const Bodies bodies = Named(*world, {L"Crank", L"Rod"});
    const auto layer = Add<KARMPInteraction>(*world, KARMPCollisionLayer::create(L"Layer"));
    for (const auto& body : bodies)
        layer->AddCollidable(body);
    const World extract = ExtractWorld(*world, bodies, {0, {L"Interactions"}}).world;
    ASSERT_EQ(SortedNames<KARMPInteraction>(*extract), (Names{"Layer"}));
    QOBSharedHandle<KARMPInteraction> found;
    extract->Get<KARMPInteraction>(0, found);
    EXPECT_EQ(found->GetCollidableCount(), 2);
    EXPECT_TRUE(SortedNames<KARMPInteraction>(*ExtractWorld(*world, bodies).world).empty());
    const World one = ExtractWorld(*world, {bodies[0]}, {0, {L"Interactions"}}).world;
    EXPECT_TRUE(SortedNames<KARMPInteraction>(*one).empty());
}

TEST_F(ExtractionOfFamilies, TakesWhatMeansSomethingByItselfWhenItIsAskedFor)
{
    const World world = SliderCrank();
    Add<KARMPAnalysisCase>(*world, OwnKindOf<KARMPAnalysisCase>::create(L"Case"));
    Add<KARMPGenericEntity>(*world, OwnKindOf<KARMPGenericEntity>::create(L"Generic"));
    Add<KARMPDebugEntity>(*world, OwnKindOf<KARMPDebugEntity>::create(L"Debug"));
    Add<KARMPInitialCondition>(*world, OwnKindOf<KARMPInitialCondition>::create(L"Initial"));
    Add<KARMPAnalysisStep>(*world, OwnKindOf<KARMPAnalysisStep>::create(L"Step"));
    Add<KARMPMaterial>(*world, OwnKindOf<KARMPMaterial>::create(L"Steel"));
    const Bodies crank = Named(*world, {L"Crank"});
    const World none = ExtractWorld(*world, crank).world;
    const World all = ExtractWorld(*world, crank, {0, AllFamilies()}).world;
    const World cases = ExtractWorld(*world, crank, {0, {L"AnalysisCases"}}).world;
    const auto counts = [](const KARMPWorld& extract) {
        return std::vector<int>{
            extract.Count<KARMPAnalysisCase>(), extract.Count<KARMPGenericEntity>(),
            extract.Count<KARMPDebugEntity>(),  extract.Count<KARMPInitialCondition>(),
            extract.Count<KARMPAnalysisStep>(), extract.Count<KARMPMaterial>()};
    };
    EXPECT_EQ(counts(*none), (std::vector<int>{0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(counts(*all), (std::vector<int>{1, 1, 1, 1, 1, 1}));
    EXPECT_EQ(counts(*cases), (std::vector<int>{1, 0, 0, 0, 0, 0}));
}

TEST_F(ExtractionOfFamilies, TakesStepsAndSupportsWithWhatHasThem)
{
    const World world = SliderCrank();
    const Bodies bodies = Named(*world, {L"Crank", L"Rod"});
    const auto analysis =
        Add<KARMPAnalysisCase>(*world, OwnKindOf<KARMPAnalysisCase>::create(L"Case"));
    analysis->AddAnalysisStep(
        Add<KARMPAnalysisStep>(*world, OwnKindOf<KARMPAnalysisStep>::create(L"Step")));
    const auto parameter = Add<KARMPAttribute>(*world, KARMPParameter::create(L"Length"));
    const auto support = Add<KARMPSupport>(*world, KARMPSupport::create(L"Support"));
    support->SetTarget(bodies[1]);
    parameter->AddSupport(support);
    bodies[0]->AddParameter(parameter);
    // Nothing has this one.
    Add<KARMPSupport>(*world, KARMPSupport::create(L"Loose"))->SetTarget(bodies[0]);
    const Extraction extract =
        ExtractWorld(*world, {bodies[0]}, {0, {L"AnalysisCases", L"Attributes"}});
    EXPECT_EQ(SortedNames<KARMPAnalysisStep>(*extract.world), (Names{"Step"}));
    EXPECT_EQ(SortedNames<KARMPAttribute>(*extract.world), (Names{"Length"}));
    EXPECT_EQ(SortedNames<KARMPSupport>(*extract.world), (Names{"Support"}));
    const Names cut = TextsOf(extract.cutLinks);
    EXPECT_EQ(std::count(cut.begin(), cut.end(), "Support Target Rod"), 1);
    const World all = ExtractWorld(*world, {bodies[0]}, {0, AllFamilies()}).world;
    EXPECT_EQ(SortedNames<KARMPSupport>(*all), (Names{"Support"}));
    const World without = ExtractWorld(*world, {bodies[0]}).world;
    EXPECT_EQ(without->Count<KARMPAnalysisStep>() + without->Count<KARMPSupport>(), 0);
}

TEST_F(ExtractionOfFamilies, TellsALinkToWhatTheWorldDoesNotList)
{
    const World world = SliderCrank();
    const Bodies bodies = Named(*world, {L"Crank", L"Rod"});
    const auto spring = Add<KARMPConnector>(*world, KARMPAxialSpring::create(L"Spring"));
    Spring(bodies, spring);
    const auto stiffness = KARMPConstant::create(L"Stiffness");
    spring->SetStiffness(stiffness);
    const auto cut = [&] {
        const Extraction extract = ExtractWorld(*world, bodies, {0, {L"Connectors"}});
        const Names told = TextsOf(extract.cutLinks);
        return std::count(told.begin(), told.end(), "Spring Stiffness Stiffness");
    };
    EXPECT_EQ(cut(), 1);
    world->Add<KARMPValue>(stiffness);
    EXPECT_EQ(cut(), 0);
}

TEST_F(ExtractionOfFamilies, TellsWhatRefersToNoEntity)
{
    const World world = SliderCrank();
    // A value is no target.
    const auto spring = Add<KARMPConnector>(*world, KARMPAxialSpring::create(L"Spring"));
    spring->SetStiffness(Add<KARMPValue>(*world, KARMPConstant::create(L"Stiffness")));
    Add<KARMPAttribute>(*world, KARMPParameter::create(L"Part"));
    Add<KARMPAnalysisCase>(*world, OwnKindOf<KARMPAnalysisCase>::create(L"Case"));
    const auto unrelated = [&](const std::vector<std::wstring>& families) {
        Names names;
        for (const auto& entity : ExtractWorld(*world, {}, {0, families}).unrelated)
            names.push_back(kar::ToUtf8(entity->getEntityName()));
        return names;
    };
    EXPECT_EQ(unrelated(AllFamilies()), (Names{"Spring"}));
    EXPECT_EQ(unrelated({L"Sensors"}), Names());
    spring->SetFirstBody(Named(*world, {L"Crank"})[0]);
    EXPECT_EQ(unrelated(AllFamilies()), Names());
}

TEST_F(ExtractionOfFamilies, TakesAConstraintAboutVariablesWithAllOfThem)
{
    const World world = Example("motor-drive");
    const auto coupling = Add<KARMPConstraint>(*world, KARMPLinearEquation::create(L"Coupling"));
    for (int index = 0; index < world->Count<KARMPVariable>(); ++index) {
        QOBSharedHandle<KARMPVariable> variable;
        world->Get<KARMPVariable>(index, variable);
        if (variable->getEntityName() == L"GlobalTime")
            continue;
        coupling->LinkToVariable(variable);
        coupling->AddLinearTerm(1.0);
        variable->LinkToConstraint(coupling);
    }
    const auto takes = [&](const Bodies& bodies) {
        const Names names = SortedNames<KARMPConstraint>(*ExtractWorld(*world, bodies).world);
        return std::count(names.begin(), names.end(), "Coupling");
    };
    EXPECT_EQ(takes(AllBodies(*world)), 1);
    EXPECT_EQ(takes(Named(*world, {L"Turntable", L"Arm"})), 0);
}

TEST_F(ExtractionOfFamilies, ReachesOverConnectorsThatComeAlong)
{
    const World world = SliderCrank();
    const Bodies bodies{Named(*world, {L"Crank"})[0],
                        Add<KARMPBody>(*world, KARMPBody::create(L"Weight"))};
    Spring(bodies, Add<KARMPConnector>(*world, KARMPAxialSpring::create(L"Spring")));
    const auto layer = Add<KARMPInteraction>(*world, KARMPCollisionLayer::create(L"Layer"));
    for (const auto& body : bodies)
        layer->AddCollidable(body);
    const auto reached = [&](std::vector<std::wstring> families) {
        return NamesOf(AllBodies(*ExtractWorld(*world, {bodies[1]}, {1, families}).world));
    };
    EXPECT_EQ(reached({L"Connectors"}), (Names{"Crank", "GlobalBody", "Weight"}));
    EXPECT_EQ(reached({L"Interactions"}), (Names{"GlobalBody", "Weight"}));
}

TEST_F(ExtractionOfFamilies, ReachesOverConstraints)
{
    const World world = SliderCrank();
    const auto weight = Add<KARMPBody>(*world, KARMPBody::create(L"Weight"));
    const auto constraint = Add<KARMPConstraint>(*world, KARMPCoincidence::create(L"Contact"));
    for (const auto& body : {weight, Named(*world, {L"Crank"})[0]}) {
        const auto point = Add<KARMPGeometry>(*world, KARMPPoint::create(L"Point"));
        point->SetBody(body);
        body->AddGeometry(point);
        constraint->LinkToGeometry(point);
        point->LinkToConstraint(constraint);
    }
    const World extract = ExtractWorld(*world, {weight}, {1, {}}).world;
    EXPECT_EQ(NamesOf(AllBodies(*extract)), (Names{"Crank", "GlobalBody", "Weight"}));
    EXPECT_EQ(extract->Count<KARMPConstraint>(), 1);
}

TEST_F(ExtractionOfFamilies, TakesWhatRefersToWhatRefersToABody)
{
    const World world = SliderCrank();
    const Bodies bodies = Named(*world, {L"Crank", L"Slider"});
    const auto constraint = Add<KARMPConstraint>(*world, KARMPCoincidence::create(L"Contact"));
    for (const auto& body : bodies) {
        const auto point = Add<KARMPGeometry>(*world, KARMPPoint::create(L"Point"));
        point->SetBody(body);
        constraint->LinkToGeometry(point);
    }
    EXPECT_EQ(ExtractWorld(*world, bodies).world->Count<KARMPConstraint>(), 1);
    EXPECT_EQ(ExtractWorld(*world, {bodies[0]}).world->Count<KARMPConstraint>(), 0);
}

/// Has no duplicate.
template <class T>
class Single : public T
{
public:
    static QOBSharedHandle<T> Make() { return QOBSharedHandle<T>(new Single); }
    QOBSharedObject* _duplicateObject(QOBDynamicObject::CopyMode) const override { return nullptr; }
};

TEST_F(ExtractionOfFamilies, GivesNoWorldWhereAnEntityHasNoDuplicate)
{
    const World world = SliderCrank();
    const Bodies bodies = Named(*world, {L"Crank", L"Rod"});
    const auto point = Add<KARMPGeometry>(*world, Single<KARMPPoint>::Make());
    point->SetBody(bodies[0]);
    bodies[0]->AddGeometry(point);
    EXPECT_FALSE(ExtractWorld(*world, bodies).world);
    ExpectReports(1);
    EXPECT_TRUE(ExtractWorld(*world, {bodies[1]}).world);
    Spring(bodies, Add<KARMPConnector>(*world, Single<KARMPAxialSpring>::Make()));
    bodies[0]->RemoveGeometry(point);
    world->Remove<KARMPGeometry>(QOBSharedHandle<KARMPGeometry>(point));
    EXPECT_TRUE(ExtractWorld(*world, bodies).world);
    EXPECT_FALSE(ExtractWorld(*world, bodies, {0, {L"Connectors"}}).world);
}

} // namespace

} // namespace karmp::documents

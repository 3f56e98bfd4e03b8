// The operations that a world carries out on all entities of a registry.
#include "AllocationCounter.h"
#include "ConcreteEntity.h"
#include "KARMPPlainConstraints.h"
#include "RecordingBodyLoader.h"
#include "RecordingConstraintLoader.h"
#include "RecordingVariableLoader.h"
#include "WorldTesting.h"

#include <memory>

namespace {

using Calls = std::vector<std::string>;
using Variable = ConcreteEntity<KARMPVariable>;
using Body = ConcreteEntity<KARMPBody>;
using Constraint = ConcreteEntity<KARMPConcentricity>;

/// A sensor that notes what it is told.
class NotingSensor : public ConcreteEntity<KARMPSensor>
{
public:
    explicit NotingSensor(std::vector<std::string>& calls) : m_calls(calls) {}
    KARStatus Reset() override { return Note("Reset"); }
    KARStatus Update() override { return Note("Update"); }

private:
    KARStatus Note(const char* call)
    {
        m_calls.emplace_back(call);
        return KARFailure;
    }

    std::vector<std::string>& m_calls;
};

/// A variable that gives its loader with the status 1.
class HesitantVariable : public Variable
{
public:
    using Variable::GetLoader;
    KARStatus GetLoader(KARIMPVariableLoader*& loader) const override
    {
        Variable::GetLoader(loader);
        return KARUnchanged;
    }
};

/// A sensor that decides itself whether it is active.
class SelfActiveSensor : public NotingSensor
{
public:
    SelfActiveSensor(std::vector<std::string>& calls, bool active)
        : NotingSensor(calls), m_active(active)
    {}
    bool IsActive() const override { return m_active; }

private:
    bool m_active;
};

/// A loader that changes the world when it is told to do something.
template <class Interface>
class ChangingLoader : public Interface
{
public:
    template <class Record>
    ChangingLoader(Record& record, std::function<void()> change)
        : Interface(record), m_change(std::move(change))
    {}

protected:
    std::function<void()> m_change;
};
class ChangingBodyLoader : public ChangingLoader<RecordingBodyLoader>
{
public:
    using ChangingLoader::ChangingLoader;
    KARStatus HoldBody() override
    {
        m_change();
        return RecordingBodyLoader::HoldBody();
    }
};
class ChangingConstraintLoader : public ChangingLoader<RecordingConstraintLoader<>>
{
public:
    using ChangingLoader::ChangingLoader;
    bool IsSatisfied() override
    {
        m_change();
        return RecordingConstraintLoader<>::IsSatisfied();
    }
    bool IsSatisfied(double& residual) override
    {
        m_change();
        return RecordingConstraintLoader<>::IsSatisfied(residual);
    }
};

// The records stand before the world's entities, which delete their loaders after the test.
struct Records
{
    LoaderRecord variables;
    BodyLoaderRecord bodies;
    ConstraintLoaderRecord constraints;
    std::vector<std::string> sensors;
};

class WorldOperations : private Records, public WorldFixture
{
protected:
    ~WorldOperations() override { KARMPWorld::destroy(world); }

    template <class T>
    auto AddAs(const QOBSharedHandle<T>& entity)
    {
        basicWorld->addLogicalChild(entity);
        return entity;
    }
    QOBSharedHandle<Variable> AddVariable(KARMPVariableType::Enum type, bool hasValue)
    {
        const auto variable = AddAs(Variable::create(L"variable"));
        variable->SetType(type);
        if (hasValue)
            variable->SetValue(1.5);
        variable->SetLoader(new RecordingVariableLoader(variables));
        world->Add<KARMPVariable>(variable);
        return variable;
    }
    QOBSharedHandle<Body> AddBody(KARIMPEntityLoader* loader)
    {
        const auto body = AddAs(Body::create(L"body"));
        body->SetLoader(loader);
        world->Add<KARMPBody>(body);
        return body;
    }
    QOBSharedHandle<Body> AddBody() { return AddBody(new RecordingBodyLoader(bodies)); }
    QOBSharedHandle<Constraint> AddConstraint(KARIMPEntityLoader* loader)
    {
        const auto constraint = AddAs(Constraint::create(L"constraint"));
        constraint->SetLoader(loader);
        world->Add<KARMPConstraint>(constraint);
        return constraint;
    }
    /// A constraint that holds, or not, and is missed by a residual.
    QOBSharedHandle<Constraint> AddConstraint(bool satisfied, double residual)
    {
        m_answers.push_back(std::make_unique<ConstraintLoaderRecord>());
        ConstraintLoaderRecord& record = *m_answers.back();
        record.satisfied = satisfied;
        record.value = residual;
        return AddConstraint(new RecordingConstraintLoader<>(record));
    }
    QOBSharedHandle<NotingSensor> AddSensor()
    {
        const auto sensor =
            AddAs(QOBSharedHandle<NotingSensor>(new NotingSensor(Records::sensors)));
        world->Add<KARMPSensor>(sensor);
        return sensor;
    }
    const ConstraintLoaderRecord& Answers(std::size_t index) const { return *m_answers[index]; }

    using Records::bodies;
    using Records::constraints;
    using Records::sensors;
    using Records::variables;

private:
    std::vector<std::unique_ptr<ConstraintLoaderRecord>> m_answers;
};

TEST_F(WorldOperations, OfEmptyRegistriesFindNothingToObjectTo)
{
    world->EmptyWorld();
    EXPECT_EQ(world->FixAllControlledVariables(), KARSuccess);
    EXPECT_EQ(world->UnfixAllControlledVariables(), KARSuccess);
    EXPECT_EQ(world->FixAllFreeBodies(), KARSuccess);
    EXPECT_EQ(world->UnfixAllFreeBodies(), KARSuccess);
    EXPECT_EQ(world->ResetSensors(), KARSuccess);
    EXPECT_EQ(world->UpdateSensors(), KARSuccess);
    EXPECT_EQ(world->UpdateConstraintParameters(), KARSuccess);
    EXPECT_TRUE(world->IsSatisfied());
    EXPECT_TRUE(world->IsWeighted());
    double worst = 7.0;
    EXPECT_TRUE(world->IsSatisfied(worst));
    EXPECT_EQ(worst, 0.0);
}

TEST_F(WorldOperations, PassOverTheGlobalsOfANewWorld)
{
    GlobalBody(*world)->SetLoader(new RecordingBodyLoader(bodies));
    GlobalTime(*world)->SetLoader(new RecordingVariableLoader(variables));
    EXPECT_EQ(world->FixAllControlledVariables(), KARSuccess);
    EXPECT_EQ(world->FixAllFreeBodies(), KARSuccess);
    EXPECT_EQ(world->UnfixAllFreeBodies(), KARSuccess);
    EXPECT_TRUE(world->IsWeighted()) << "the global body has neither shape nor mass";
    EXPECT_EQ(variables.calls, Calls{});
    EXPECT_EQ(bodies.calls, Calls{});
}

TEST_F(WorldOperations, FixAndUnfixControlledVariablesThatHaveAValue)
{
    AddVariable(KARMPVariableType::Controlled, true);
    variables.calls.clear();
    EXPECT_EQ(world->FixAllControlledVariables(), KARSuccess);
    EXPECT_EQ(variables.calls, Calls{"Fix"});
    EXPECT_EQ(world->UnfixAllControlledVariables(), KARSuccess);
    EXPECT_EQ(variables.calls, (Calls{"Fix", "Unfix"}));
}

TEST_F(WorldOperations, PassOverVariablesOfOtherTypesWithoutValueOrLoader)
{
    AddVariable(KARMPVariableType::Free, true);
    AddVariable(KARMPVariableType::Constant, true);
    AddVariable(KARMPVariableType::Controlled, false);
    const auto bare = AddVariable(KARMPVariableType::Controlled, true);
    // A loader that is taken away is not freed.
    KARIMPVariableLoader* attached = nullptr;
    bare->GetLoader(attached);
    const std::unique_ptr<KARIMPVariableLoader> taken(attached);
    bare->SetLoader(nullptr);
    variables.calls.clear();
    EXPECT_EQ(world->FixAllControlledVariables(), KARSuccess);
    EXPECT_EQ(world->UnfixAllControlledVariables(), KARSuccess);
    EXPECT_EQ(variables.calls, Calls{});
}

TEST_F(WorldOperations, GoOnPastAVariableWhoseLoaderFailsOrCannotBeFetched)
{
    AddVariable(KARMPVariableType::Controlled, true)->failsToFetch = true;
    AddVariable(KARMPVariableType::Controlled, true);
    AddVariable(KARMPVariableType::Controlled, true);
    variables.calls.clear();
    variables.answer = KARFailure;
    EXPECT_EQ(world->FixAllControlledVariables(), KARSuccess);
    ExpectReports(1); // by the variable's GetLoader; the world adds none
    EXPECT_EQ(variables.calls, (Calls{"Fix", "Fix"}));
    EXPECT_EQ(world->UnfixAllControlledVariables(), KARSuccess);
    ExpectReports(1);
    EXPECT_EQ(variables.calls, (Calls{"Fix", "Fix", "Unfix", "Unfix"}));
}

TEST_F(WorldOperations, PassOverAVariableWhoseLoaderComesWithAnotherStatusThanZero)
{
    const auto hesitant = AddAs(QOBSharedHandle<HesitantVariable>(new HesitantVariable));
    hesitant->SetType(KARMPVariableType::Controlled);
    hesitant->SetValue(1.5);
    hesitant->SetLoader(new RecordingVariableLoader(variables));
    world->Add<KARMPVariable>(hesitant);
    EXPECT_EQ(world->FixAllControlledVariables(), KARSuccess);
    EXPECT_EQ(world->UnfixAllControlledVariables(), KARSuccess);
    EXPECT_EQ(variables.calls, Calls{});
}

TEST_F(WorldOperations, HoldAndReleaseBodiesThatAreNotFixedWithoutFixingThem)
{
    const auto free = AddBody();
    const auto fixed = AddBody(nullptr);
    fixed->Fix();
    fixed->SetLoader(new RecordingBodyLoader(bodies));
    AddBody(nullptr);
    EXPECT_EQ(world->FixAllFreeBodies(), KARSuccess);
    EXPECT_EQ(bodies.calls, Calls{"HoldBody"});
    EXPECT_FALSE(free->IsFixed());
    EXPECT_EQ(world->UnfixAllFreeBodies(), KARSuccess);
    EXPECT_EQ(bodies.calls, (Calls{"HoldBody", "ReleaseBody"}));
    EXPECT_TRUE(fixed->IsFixed());
}

TEST_F(WorldOperations, ReportABodyWhoseLoaderCannotBeFetchedAndGoOn)
{
    AddBody()->failsToFetch = true;
    AddBody();
    bodies.answer = KARFailure;
    EXPECT_EQ(world->FixAllFreeBodies(), KARSuccess);
    ExpectReports(2); // by the body's GetLoader and by the world
    EXPECT_EQ(world->UnfixAllFreeBodies(), KARSuccess);
    ExpectReports(2);
    EXPECT_EQ(bodies.calls, (Calls{"HoldBody", "ReleaseBody"}));
}

TEST_F(WorldOperations, VisitWhatIsListedWhenTheWalkBegins)
{
    AddBody(new ChangingBodyLoader(bodies, [this] { AddBody(); }));
    EXPECT_EQ(world->FixAllFreeBodies(), KARSuccess);
    EXPECT_EQ(bodies.calls, Calls{"HoldBody"});
    EXPECT_EQ(world->GetBodyCount(), 3);
}

TEST_F(WorldOperations, ReportAnEntityThatLeavesTheWorldDuringTheWalk)
{
    QOBSharedHandle<Body> last;
    AddBody(new ChangingBodyLoader(bodies, [&] { world->Remove<KARMPBody>(last); }));
    AddBody();
    last = AddBody();
    EXPECT_EQ(world->FixAllFreeBodies(), KARSuccess);
    ExpectReports(1);
    EXPECT_EQ(bodies.calls, (Calls{"HoldBody", "HoldBody"}));
}

TEST_F(WorldOperations, AskConstraintsUpToTheFirstThatDoesNotHold)
{
    AddConstraint(true, 0.0);
    EXPECT_TRUE(world->IsSatisfied());
    AddConstraint(false, 1.0);
    AddConstraint(true, 0.0);
    EXPECT_FALSE(world->IsSatisfied());
    EXPECT_EQ(Answers(0).calls, (Calls{"IsSatisfied", "IsSatisfied"}));
    EXPECT_EQ(Answers(1).calls, Calls{"IsSatisfied"});
    EXPECT_EQ(Answers(2).calls, Calls{});
}

TEST_F(WorldOperations, CountInactiveConstraintsInTheLargestResidualAlone)
{
    AddConstraint(false, 0.75)->Deactivate();
    EXPECT_TRUE(world->IsSatisfied());
    double worst = 0.0;
    EXPECT_TRUE(world->IsSatisfied(worst));
    EXPECT_EQ(worst, 0.75);
}

TEST_F(WorldOperations, GiveTheLargestResidualWhetherConstraintsHoldOrNot)
{
    AddConstraint(true, 0.5);
    AddConstraint(false, 2.0);
    AddConstraint(true, 3.0);
    AddConstraint(false, -4.0);
    AddConstraint(false, 1.0);
    double worst = 9.0;
    EXPECT_TRUE(world->IsSatisfied(worst));
    EXPECT_EQ(worst, 3.0);
}

TEST_F(WorldOperations, StartTheLargestResidualAtZero)
{
    AddConstraint(false, -4.0);
    double worst = 9.0;
    EXPECT_TRUE(world->IsSatisfied(worst));
    EXPECT_EQ(worst, 0.0);
}

TEST_F(WorldOperations, TakeAConstraintWithoutLoaderAsOneThatDoesNotHold)
{
    AddConstraint(nullptr);
    EXPECT_FALSE(world->IsSatisfied());
    double worst = 9.0;
    EXPECT_TRUE(world->IsSatisfied(worst));
    EXPECT_EQ(worst, 0.0);
}

TEST_F(WorldOperations, TakeAConstraintWhoseLoaderCannotBeFetchedAsOneThatDoesNotHold)
{
    AddConstraint(true, 0.5)->failsToFetch = true;
    AddConstraint(true, 0.25);
    EXPECT_FALSE(world->IsSatisfied());
    ExpectReports(2); // by the constraint's GetLoader and by its IsSatisfied
    double worst = 9.0;
    EXPECT_TRUE(world->IsSatisfied(worst));
    ExpectReports(2);
    EXPECT_EQ(worst, 0.25);
}

TEST_F(WorldOperations, PassOverAConstraintThatLeavesInSilenceUnlessResidualsAreAskedFor)
{
    for (const bool asksResidual : {false, true}) {
        world->EmptyRegistry<KARMPConstraint>();
        QOBSharedHandle<Constraint> last;
        AddConstraint(new ChangingConstraintLoader(constraints,
                                                   [&] { world->Remove<KARMPConstraint>(last); }));
        last = AddConstraint(false, 0.75);
        double worst = 0.0;
        EXPECT_TRUE(asksResidual ? world->IsSatisfied(worst) : world->IsSatisfied());
        ExpectReports(asksResidual ? 1 : 0);
        EXPECT_EQ(worst, asksResidual ? 0.5 : 0.0);
    }
}

TEST_F(WorldOperations, CallAWorldWeightedUnlessABodyWithAShapeHasNoMass)
{
    const auto shape = ConcreteEntity<KARMPShape>::create(L"shape");
    const auto weightless = AddBody(nullptr);
    EXPECT_TRUE(world->IsWeighted()) << "the body has no shape";
    weightless->LinkToShape(shape);
    EXPECT_FALSE(world->IsWeighted());
    weightless->SetMass(-2.0);
    EXPECT_TRUE(world->IsWeighted());
    weightless->SetMass(-0.0);
    EXPECT_FALSE(world->IsWeighted());
    const auto heavy = AddBody(nullptr);
    heavy->LinkToShape(shape);
    heavy->SetMass(1.0);
    EXPECT_FALSE(world->IsWeighted());
    weightless->RemoveShape(shape);
    EXPECT_TRUE(world->IsWeighted());
}

TEST_F(WorldOperations, ResetAndUpdateActiveSensorsWhateverTheyAnswer)
{
    AddSensor();
    AddSensor()->Deactivate();
    AddSensor();
    EXPECT_EQ(world->ResetSensors(), KARSuccess);
    EXPECT_EQ(sensors, (Calls{"Reset", "Reset"}));
    EXPECT_EQ(world->UpdateSensors(), KARSuccess);
    EXPECT_EQ(sensors, (Calls{"Reset", "Reset", "Update", "Update"}));
}

TEST_F(WorldOperations, AskASensorOfASubclassWhetherItIsActive)
{
    Calls asleep;
    for (const bool active : {false, true}) {
        const auto sensor = AddAs(QOBSharedHandle<SelfActiveSensor>(
            new SelfActiveSensor(active ? sensors : asleep, active)));
        if (active)
            sensor->Deactivate();
        world->Add<KARMPSensor>(sensor);
    }
    EXPECT_EQ(world->ResetSensors(), KARSuccess);
    EXPECT_EQ(world->UpdateSensors(), KARSuccess);
    EXPECT_EQ(asleep, Calls{});
    EXPECT_EQ(sensors, (Calls{"Reset", "Update"}));
}

TEST_F(WorldOperations, HaveTheParametersOfAllConstraintsUpdated)
{
    AddConstraint(new RecordingConstraintLoader<>(constraints));
    AddConstraint(new RecordingConstraintLoader<>(constraints))->Deactivate();
    AddConstraint(nullptr);
    constraints.calls.clear();
    constraints.answer = KARFailure;
    EXPECT_EQ(world->UpdateConstraintParameters(), KARSuccess);
    EXPECT_EQ(constraints.calls, (Calls{"UpdateParameters", "UpdateParameters"}));
}

TEST_F(WorldOperations, ReportAConstraintWhoseLoaderCannotBeFetchedAndGoOn)
{
    AddConstraint(new RecordingConstraintLoader<>(constraints))->failsToFetch = true;
    AddConstraint(new RecordingConstraintLoader<>(constraints));
    EXPECT_EQ(world->UpdateConstraintParameters(), KARSuccess);
    ExpectReports(2); // by the constraint's GetLoader and by the world
    EXPECT_EQ(constraints.calls, Calls{"UpdateParameters"});
}

/// A loader that counts calls.
class CountingLoader : public KARIMPVariableLoader
{
public:
    explicit CountingLoader(int& calls) : m_calls(calls) {}
    KARStatus SetValue(double) override { return KARSuccess; }
    KARStatus SetMinValue(double) override { return KARSuccess; }
    KARStatus SetMaxValue(double) override { return KARSuccess; }
    KARStatus Fix() override { return Count(); }
    KARStatus Unfix() override { return Count(); }
    KARStatus OnActivate() override { return KARSuccess; }
    KARStatus OnDeactivate() override { return KARSuccess; }

private:
    KARStatus Count()
    {
        ++m_calls;
        return KARSuccess;
    }
    int& m_calls;
};

TEST_F(WorldOperations, ReachAHundredThousandEntitiesOnceEachWithoutAllocations)
{
    constexpr int Many = 100000;
    int calls = 0;
    for (int i = 0; i < Many; ++i) {
        const auto variable = KARMPVariable::create(L"");
        variable->SetType(KARMPVariableType::Controlled);
        variable->SetValue(i);
        variable->SetLoader(new CountingLoader(calls));
        world->Add<KARMPVariable>(variable);
        world->Add<KARMPSensor>(QOBSharedHandle<NotingSensor>(new NotingSensor(sensors)));
    }
    const auto walk = [&] {
        EXPECT_EQ(world->FixAllControlledVariables(), KARSuccess);
        EXPECT_EQ(world->UnfixAllControlledVariables(), KARSuccess);
    };
    walk();
    EXPECT_EQ(calls, 2 * Many);
    world->UpdateSensors();
    EXPECT_EQ(sensors.size(), static_cast<std::size_t>(Many));
    // Of these every second one leaves, so that the registry has holes.
    for (int i = Many; i > 0; i -= 2) {
        QOBSharedHandle<KARMPVariable> variable;
        world->Get(i, variable);
        world->Remove(variable);
    }
    walk();
    EXPECT_EQ(calls, 3 * Many);
    const AllocationCounter allocations;
    walk();
    if (AllocationCounter::Counts)
        EXPECT_EQ(allocations.Count(), 0U);
}

} // namespace

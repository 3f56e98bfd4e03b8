// What calls do when an inner one fails: each in turn, with each status.
#include "AllocationCounter.h"
#include "EditTesting.h"
#include "FactoryFaults.h"

#include <array>
#include <functional>
#include <set>
#include <thread>

using namespace karmp::model;

namespace {

/// A call of a model that fails nowhere by itself.
struct Call
{
    const char* name;
    std::function<bool(Model&)> make;
};

const std::vector<Call>& Calls()
{
    static const std::vector<Call> calls{
        {"Body",
         [](Model& model) {
             return static_cast<bool>(
                 model.Body("New", {.mass = 1.0, .at = KARMathPoint(1.0, 2.0, 3.0)}));
         }},
        {"PlanarBody",
         [](Model& model) {
             return static_cast<bool>(
                 model.PlanarBody("New", {.at = KARMathPoint2D(1.0, 2.0), .isFixed = true}));
         }},
        {"Frame",
         [](Model& model) {
             return static_cast<bool>(model.Frame("New", model.Find<KARMPBody>("A"), {}));
         }},
        {"Joint",
         [](Model& model) {
             return static_cast<bool>(model.Joint<KARMPRevolute>(
                 "New", model.Find<KARMPBody>("A"), model.Find<KARMPBody>("B"), {0.0, 0.0, 0.0}));
         }},
        {"Variable",
         [](Model& model) {
             return static_cast<bool>(model.Variable("New", model.Find<KARMPJoint>("J"), 1.0));
         }},
        {"Couple",
         [](Model& model) {
             return static_cast<bool>(
                 model.Couple<KARMPGear>("New", {{model.Find<KARMPVariable>("p"), 2.0},
                                                 {model.Find<KARMPVariable>("q"), 1.0}}));
         }},
        {"Expression",
         [](Model& model) {
             return static_cast<bool>(model.Expression("New", KARMPPhysicalQuantity::Angle, "2 * p",
                                                       {model.Find<KARMPVariable>("p")}));
         }},
        {"Motor",
         [](Model& model) {
             return static_cast<bool>(model.Motor("New", model.Find<KARMPVariable>("p"),
                                                  {.velocity = 2.0, .maximum = 5.0}));
         }},
        {"Connect",
         [](Model& model) {
             return static_cast<bool>(model.Connect<KARMPBushing>(
                 "New", model.Find<KARMPGeometry>("A.J"), model.Find<KARMPGeometry>("B.J")));
         }},
        {"Connect at points",
         [](Model& model) {
             return static_cast<bool>(
                 model.Connect<KARMPBushing>("New", model.Find<KARMPBody>("A"), {0.0, 0.0, 0.0},
                                             model.Find<KARMPBody>("B"), {0.0, 0.0, 0.0}));
         }},
        {"Connect at a frame",
         [](Model& model) {
             return static_cast<bool>(model.Connect<KARMPBushing>(
                 "New", model.Find<KARMPBody>("A"), model.Find<KARMPBody>("B"), KARMathAxis()));
         }},
        {"Attach",
         [](Model& model) {
             return static_cast<bool>(
                 model.Attach<KARMPSphere>("New", model.Find<KARMPBody>("A"), {{"radius", 0.5}}));
         }},
        {"Shape",
         [](Model& model) {
             const std::array solids{Solid{{0.0, 0.0, 0.0}, {1.0, 2.0, 3.0}},
                                     Drum({0.0, 0.0, 0.0}, 1, 0.5, 2.0)};
             return static_cast<bool>(model.Shape("New", model.Find<KARMPBody>("A"), solids));
         }},
        {"Spring",
         [](Model& model) {
             return static_cast<bool>(model.Spring("New", model.Find<KARMPBody>("A"), {},
                                                   model.Find<KARMPBody>("B"), {0.0, 0.0, 1.0},
                                                   {.stiffness = 100.0}));
         }},
        {"Limb",
         [](Model& model) {
             return static_cast<bool>(
                 model.Limb<KARMPRevolute>("New", "New joint", model.Find<KARMPBody>("A"), {})
                     .joint);
         }},
        // What they are told is made before.
        {"AddAttributes",
         [](Model& model) {
             static const std::vector<Attribute> attributes{
                 {"group", {{"x", KARMPPhysicalQuantity::Length, 1.0}}}};
             return model.AddAttributesOf(KARMPOutput::ClassInfo(), model.Find<KARMPBody>("A"),
                                          attributes, Where::current());
         }},
        {"InitialCondition",
         [](Model& model) {
             static const std::initializer_list<Attribute> attributes{
                 {"group", {{"x", KARMPPhysicalQuantity::Length, 1.0}}}};
             return static_cast<bool>(model.InitialCondition("New", attributes));
         }},
        {"AnalysisCase",
         [](Model& model) {
             static const AnalysisOptions options{
                 .steps = {{"Step", {{"duration", KARMPPhysicalQuantity::Time, 1.0}}}},
                 .outputs = {{"on", KARMPPhysicalQuantity::Time, true}}};
             return static_cast<bool>(model.AnalysisCase("New", options));
         }},
        // What is set allocates nothing by itself.
        {"Add with items",
         [](Model& model) {
             return static_cast<bool>(model.Add<KARMPBushing>(
                 "New", {{"FirstBody", model.Find<KARMPBody>("A")}, {"StiffnessTx", 100.0}}));
         }},
    };
    return calls;
}

/// Calls that change what is there.
const std::vector<Call>& Changes()
{
    static const std::vector<Call> changes{
        {"Add", [](Model& model) { return static_cast<bool>(model.Add("KARMPMotor", "New")); }},
        {"Point",
         [](Model& model) {
             return static_cast<bool>(
                 model.Point("New", model.Find<KARMPBody>("A"), {1.0, 2.0, 3.0}));
         }},
        {"Sensor",
         [](Model& model) {
             return static_cast<bool>(model.Sensor<KARMPMotorForceSensor>(
                 "New", {{"Motor", model.Find<KARMPMotor>("M")}}, [](KARMPMotorForceSensor&) {}));
         }},
        {"Curve",
         [](Model& model) {
             static const CurvePiece piece = Arc({}, 1.0, 0.0, 1.0);
             return static_cast<bool>(model.Curve("New", model.Find<KARMPBody>("A"), {piece}));
         }},
        {"Link",
         [](Model& model) {
             return model.Link(model.Find<KARMPMotor>("M"), model.Find<KARMPVariable>("p"));
         }},
        {"Unlink",
         [](Model& model) {
             return model.Unlink(model.Find<KARMPJoint>("K"), model.Find<KARMPBody>("A"));
         }},
        {"Delete a body",
         [](Model& model) { return static_cast<bool>(model.Delete(model.Find<KARMPBody>("A"))); }},
        {"Delete a body with its joints",
         [](Model& model) {
             return static_cast<bool>(
                 model.Delete(model.Find<KARMPBody>("A"), {.withShort = true}));
         }},
        {"Delete a frame",
         [](Model& model) {
             return static_cast<bool>(model.Delete(model.Find<KARMPEntity>("A.F")));
         }},
        {"Delete a variable that is not ASCII",
         [](Model& model) {
             QOBSharedHandle<KARMPVariable> variable;
             model.Find<KARMPMotor>("N")->GetVariable(variable);
             return static_cast<bool>(model.Delete(Ref<KARMPVariable>(variable)));
         }},
        {"Rename",
         [](Model& model) {
             return model.Rename(model.Find<KARMPBody>("A"), "a name with a block of its own");
         }},
        {"Set a number",
         [](Model& model) { return model.Set(model.Find<KARMPBody>("A"), "Mass", 3.0); }},
        {"Set several",
         [](Model& model) {
             return model.Set(model.Find<KARMPVariable>("p"),
                              {{"MinValue", -1.0},
                               {"Type", karmp::Value(karmp::EnumWord{L"Constant"})},
                               {"Constraints", model.Find<KARMPConstraint>("L.constraint")}});
         }},
        {"Set a bound",
         [](Model& model) { return model.Set(model.Find<KARMPVariable>("p"), "MinValue", -1.0); }},
        {"Set a reference",
         [](Model& model) {
             return model.Set(model.Find<KARMPEntity>("A.F"), "Body",
                              QOBSharedHandle<KARMPEntity>(model.Find<KARMPBody>("B").Handle()));
         }},
        {"Set references to none",
         [](Model& model) {
             return model.Set(model.Find<KARMPEntity>("p"), "Constraints", karmp::Value());
         }},
    };
    return changes;
}

Model Prepared()
{
    Model model("M");
    const auto a = model.Body("A");
    const auto b = model.Body("B");
    model.Joint<KARMPRevolute>("J", a, b, {0.0, 0.0, 0.0});
    model.Variable("p", model.Joint<KARMPRevolute>("K", model.Ground(), a, {0.0, 0.0, 0.0}));
    model.Variable("q", model.Joint<KARMPRevolute>("L", model.Ground(), b, {0.0, 0.0, 0.0}));
    model.Link(model.Add<KARMPMotor>("N"), model.Add<KARMPVariable>("F\u00fchrung des Kolbens"));
    model.Add<KARMPMotor>("M");
    KARMPContactForceData contact;
    contact.firstBody = a.Handle();
    contact.secondBody = b.Handle();
    model.Add<KARMPCollisionSensor>("S")->AddContactForceData(contact);
    model.Link(model.Add<KARMPCollisionRule>("R"), a);
    model.Frame("F", a, {});
    return model;
}

/// A model with its document, to look whether a call changed it.
struct Looked
{
    Model model = Prepared();
    std::string before = TextOf(model);
    std::size_t count = model.All<KARMPEntity>().size();

    /// A failed call left one problem and nothing else, and succeeds when it is made again.
    void ExpectUnchangedBy(const Call& call, const std::string& name,
                           const std::set<KARStatus>& statuses)
    {
        ASSERT_EQ(model.Problems().size(), 1U) << name;
        EXPECT_TRUE(statuses.contains(model.Problems()[0].status))
            << name << ": " << model.Problems()[0].text;
        EXPECT_EQ(std::string(model.Problems()[0].where.file), __FILE__) << name;
        model.ClearProblems();
        EXPECT_EQ(model.All<KARMPEntity>().size(), count) << name;
        EXPECT_TRUE(TextOf(model) == before) << name;
        EXPECT_EQ(BrokenLinks(model), "") << name;
        // What was undone leaves no trace in the index.
        EXPECT_TRUE(call.make(model)) << name;
        EXPECT_TRUE(model.Problems().empty()) << name;
    }
    void ExpectDone(const std::string& name) const
    {
        EXPECT_TRUE(model.Problems().empty()) << name;
        EXPECT_EQ(BrokenLinks(model), "") << name;
    }
};

class FaultsTest : public KARMPTestFixture
{
public:
    /// Lets the inner calls fail in turn until the call succeeds, and looks at the model each time;
    /// gives how many failed.
    int FailInTurn(const Call& call, Fault fault, KARStatus status)
    {
        FactoryFaults faults;
        for (int failing = 1; failing < 100; ++failing) {
            Looked looked;
            faults.Arm(fault, failing, status);
            const bool succeeded = call.make(looked.model);
            faults.Disarm();
            const std::string name = std::string(call.name) + ", inner call " +
                                     std::to_string(failing) + ", status " + std::to_string(status);
            TakeReports();
            if (succeeded) {
                looked.ExpectDone(name);
                return failing - 1;
            }
            looked.ExpectUnchangedBy(call, name,
                                     {fault == Fault::Status  ? status
                                      : fault == Fault::Throw ? KAROutOfMemory
                                                              : KARFailure});
            TakeReports();
        }
        ADD_FAILURE() << call.name << " never succeeds";
        return 0;
    }

    /// Lets each allocation fail, and with it all that follow. The undo needs memory where a list
    /// was emptied, and says so then.
    void ExhaustMemory(const Call& call)
    {
        for (std::size_t failing = 1;; ++failing) {
            Looked looked;
            bool succeeded = false;
            bool failed = false;
            {
                AllocationCounter allocations;
                allocations.FailAllocationsFrom(failing);
                succeeded = call.make(looked.model);
                failed = allocations.Count() >= failing;
            }
            TakeReports();
            const std::string name = std::string(call.name) + ", from " + std::to_string(failing);
            if (!failed) {
                EXPECT_TRUE(succeeded) << name;
                break;
            }
            ASSERT_FALSE(succeeded) << name;
            ASSERT_FALSE(looked.model.Problems().empty()) << name;
            if (looked.model.Problems().size() > 1) {
                EXPECT_EQ(looked.model.Problems().back().text, "the undo failed") << name;
                ++notUndone;
                continue;
            }
            looked.ExpectUnchangedBy(call, name, {KAROutOfMemory, KARFailure});
        }
    }
    int notUndone = 0;

    /// The same with each allocation of a call. In a thread of its own, which keeps nothing that
    /// was found once, its classes are cold.
    void FailAllocations(const Call& call, bool isCold)
    {
        // What is found once and kept is found before.
        Looked first;
        EXPECT_TRUE(call.make(first.model)) << call.name;
        for (std::size_t failing = 1;; ++failing) {
            Looked looked;
            bool succeeded = false;
            bool failed = false;
            const auto make = [&] {
                AllocationCounter allocations;
                allocations.FailAllocation(failing);
                succeeded = call.make(looked.model);
                failed = allocations.Count() >= failing;
            };
            if (isCold)
                std::thread(make).join();
            else
                make();
            const std::string name = std::string(call.name) + (isCold ? ", cold" : "") +
                                     ", allocation " + std::to_string(failing);
            TakeReports();
            if (succeeded)
                looked.ExpectDone(name);
            else // An identifier gives a failure of its own.
                looked.ExpectUnchangedBy(call, name, {KAROutOfMemory, KARFailure});
            if (!failed)
                break;
        }
    }
};

TEST_F(FaultsTest, ModelIsUnchangedWhenTheFactoryMakesNothing)
{
    const std::vector<int> made{1, 3, 1, 4, 1, 2, 1, 3, 1, 1, 3, 1, 1, 3, 5, 1, 1, 1, 2};
    ASSERT_EQ(made.size(), Calls().size());
    for (std::size_t i = 0; i < Calls().size(); ++i)
        EXPECT_EQ(FailInTurn(Calls()[i], Fault::Nothing, KARFailure), made[i]) << Calls()[i].name;
}

TEST_F(FaultsTest, ModelIsUnchangedWhenTheFactoryThrows)
{
    for (const Call& call : Calls())
        EXPECT_GE(FailInTurn(call, Fault::Throw, KAROutOfMemory), 1) << call.name;
}

TEST_F(FaultsTest, ModelIsUnchangedWhenAnOperationOfAnEntityFails)
{
    for (const KARStatus status : {KARFailure, KARUnexpected, KARNotImplemented, KAROutOfMemory})
        for (const Call& call : Calls())
            EXPECT_GE(FailInTurn(call, Fault::Status, status), 1) << call.name;
}

TEST_F(FaultsTest, ModelIsUnchangedWhenAnOperationOfAChangeFails)
{
    std::set<std::string> failing;
    for (const KARStatus status : {KARFailure, KARUnexpected, KARNotImplemented, KAROutOfMemory})
        for (const Call& call : Changes())
            if (FailInTurn(call, Fault::Status, status) > 0)
                failing.insert(call.name);
    EXPECT_EQ(failing, (std::set<std::string>{"Delete a body", "Set a bound", "Set a reference",
                                              "Set several"}));
}

TEST_F(FaultsTest, ModelIsUnchangedWhenAnAllocationFails)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "Allocations are not counted in this build";
    for (const auto& calls : {Calls(), Changes()})
        for (const Call& call : calls)
            FailAllocations(call, false);
}

TEST_F(FaultsTest, ModelIsUnchangedWhenMemoryIsExhausted)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "Allocations are not counted in this build";
    for (const auto& calls : {Calls(), Changes()})
        for (const Call& call : calls)
            ExhaustMemory(call);
    EXPECT_EQ(notUndone, 0);
}

TEST_F(FaultsTest, CallThatIsRefusedThrowsNothingWhenAnAllocationFails)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "Allocations are not counted in this build";
    const RefList<KARMPBody> none(9);
    const std::vector<Call> refused{
        {"a taken identifier", [](Model& model) { return bool(model.Body("A")); }},
        {"an empty identifier", [](Model& model) { return bool(model.Body("")); }},
        {"an unknown class", [](Model& model) { return bool(model.Add("KARMPBodx", "New")); }},
        {"a joint of one body",
         [](Model& model) {
             const auto a = model.Find<KARMPBody>("A");
             return bool(model.Joint<KARMPRevolute>("New", a, a, KARMathPoint()));
         }},
        {"a list of false references", [&none](Model& model) { return bool(model.Delete(none)); }},
    };
    for (const Call& call : refused) {
        bool failed = true;
        for (std::size_t failing = 1; failed; ++failing) {
            Looked looked;
            const std::string name = std::string(call.name) + ", " + std::to_string(failing);
            {
                AllocationCounter allocations;
                allocations.FailAllocation(failing);
                EXPECT_NO_THROW(EXPECT_FALSE(call.make(looked.model)) << name) << name;
                failed = allocations.Count() >= failing;
            }
            EXPECT_EQ(looked.model.Problems().size(), 1U) << name;
            looked.model.ClearProblems();
            EXPECT_TRUE(TextOf(looked.model) == looked.before) << name;
        }
    }
}

TEST_F(FaultsTest, ModelIsUnchangedWhenAnAllocationForAColdClassFails)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "Allocations are not counted in this build";
    for (const auto& calls : {Calls(), Changes()})
        for (const Call& call : calls)
            FailAllocations(call, true);
}

} // namespace

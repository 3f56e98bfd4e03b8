// What calls do when an inner one fails: each in turn, with each status.
#include "EditTesting.h"
#include "FactoryFaults.h"

#include <functional>

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
    };
    return calls;
}

Model Prepared()
{
    Model model("M");
    const auto a = model.Body("A");
    const auto b = model.Body("B");
    model.Joint<KARMPRevolute>("J", a, b, {0.0, 0.0, 0.0});
    model.Variable("p", model.Joint<KARMPRevolute>("K", model.Ground(), a, {0.0, 0.0, 0.0}));
    model.Variable("q", model.Joint<KARMPRevolute>("L", model.Ground(), b, {0.0, 0.0, 0.0}));
    return model;
}

class FaultsTest : public KARMPTestFixture
{
public:
    /// Lets the inner calls fail in turn until the call succeeds, and looks at the model each time;
    /// gives how many failed.
    int FailInTurn(const Call& call, Fault fault, KARStatus status)
    {
        FactoryFaults faults;
        for (int failing = 1; failing < 100; ++failing) {
            Model model = Prepared();
            const std::string before = TextOf(model);
            const auto count = model.All<KARMPEntity>().size();
            faults.Arm(fault, failing, status);
            const bool succeeded = call.make(model);
            faults.Disarm();
            const std::string name = std::string(call.name) + ", inner call " +
                                     std::to_string(failing) + ", status " + std::to_string(status);
            TakeReports();
            if (succeeded) {
                EXPECT_TRUE(model.Problems().empty()) << name;
                EXPECT_EQ(BrokenLinks(model), "") << name;
                return failing - 1;
            }
            EXPECT_EQ(model.Problems().size(), 1U) << name;
            if (!model.Problems().empty()) {
                EXPECT_EQ(model.Problems()[0].status, fault == Fault::Status  ? status
                                                      : fault == Fault::Throw ? KAROutOfMemory
                                                                              : KARFailure)
                    << name << ": " << model.Problems()[0].text;
                EXPECT_EQ(std::string(model.Problems()[0].where.file), __FILE__) << name;
            }
            model.ClearProblems();
            EXPECT_EQ(model.All<KARMPEntity>().size(), count) << name;
            EXPECT_TRUE(TextOf(model) == before) << name;
            EXPECT_EQ(BrokenLinks(model), "") << name;
            // What was undone leaves no trace in the index.
            EXPECT_TRUE(call.make(model)) << name;
            TakeReports();
        }
        ADD_FAILURE() << call.name << " never succeeds";
        return 0;
    }
};

TEST_F(FaultsTest, ModelIsUnchangedWhenTheFactoryMakesNothing)
{
    const std::vector<int> made{1, 3, 1, 4, 1, 2};
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

} // namespace

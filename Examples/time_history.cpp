// A slider-crank runs for two seconds in a hundred time steps. The application tells what to run by
// an analysis case: an initial condition and two analysis steps with their parameters. A loader on
// the variable of the crank's angle stands for the solver: it knows the motion in closed form,
// moves the bodies and raises a diagnostic where crank and rod stand in line. After each time step
// the results arrive in bulk, and the application writes them as a table of comma-separated values.
#include "CrankMotion.h"

#include <cstdlib>
#include <fstream>
#include <sstream>

using namespace karmp::model;

namespace {

constexpr double StartAngle = -1.25; // rad
constexpr int TimeSteps = 50;        // of each analysis step

using Quantity = KARMPPhysicalQuantity;

/// A step of a second, in which the crank's velocity grows evenly.
AnalysisStepOptions Second(const char* name, double acceleration)
{
    return {name,
            {{"duration", Quantity::Time, 1.0},
             {"acceleration", Quantity::AngularAcceleration, acceleration}}};
}

/// The mechanism with the set-up of its analysis, and where the drive has brought the crank.
struct TimeHistory
{
    Model model{"Time history", {.gravity = {0.0, -9.81, 0.0}}};
    SliderCrank parts = AddSliderCrank(model, StartAngle);
    Ref<KARMPInitialCondition> initial = model.InitialCondition(
        "Start at rest",
        {{"crank",
          parts.angle,
          {{"angle", Quantity::Angle, StartAngle}, {"velocity", Quantity::AngularVelocity}}}});
    Ref<KARMPAnalysisCase> analysis = model.AnalysisCase(
        "Run", {.steps = {Second("Run-up", 2.0), Second("Steady run", 0.0)},
                .outputs = {{"time", Quantity::Time},
                            {"analysis step", Quantity::Time, ""},
                            {"crank",
                             parts.crank,
                             {{"angle", Quantity::Angle},
                              {"velocity", Quantity::AngularVelocity},
                              {"past dead centre", Quantity::Angle, false}}},
                            {"slider",
                             parts.slider,
                             {{"position", Quantity::Length}, {"velocity", Quantity::Velocity}}}}});
    QOBSharedHandle<KARMPDiagnostic> deadCenter = KARMPDiagnostic::create(L"Dead centre");
    double time = 0.0, angle = 0.0, velocity = 0.0; // s, rad, rad/s

    TimeHistory()
    {
        deadCenter->SetDiagnosticID(KARMPDiagnosticID::SingularConfiguration);
        deadCenter->SetMessageString("these bodies stand in line");
        // The solver's side of the crank's angle. The variable owns it.
        parts.angle->SetLoader(
            new ValueLoader([this, isAbove = StartAngle > 0.0](double value) mutable {
                const CrankState state = MotionAt(value, velocity);
                const bool isPassed = std::exchange(isAbove, std::sin(value) > 0.0) != isAbove;
                for (const auto& [body, motion] : {std::pair(parts.crank, state.crank),
                                                   {parts.rod, state.rod},
                                                   {parts.slider, state.slider}}) {
                    Move(body, {motion.position, motion.velocity, motion.angularVelocity});
                    if (isPassed)
                        deadCenter->AddEntity(body);
                }
            }));
    }

    /// Sets the mechanism where its initial condition says, and runs all steps of the case. The
    /// result stream of a step gets a line for each time step.
    void Run()
    {
        angle = *NumberAt<KARMPParameter>(initial, "crank.angle");
        velocity = *NumberAt<KARMPParameter>(initial, "crank.velocity");
        for (const auto& step : StepsOf(analysis)) {
            const double duration = *NumberAt<KARMPParameter>(step, "duration");
            const double acceleration = *NumberAt<KARMPParameter>(step, "acceleration");
            const double startTime = time, startAngle = angle, startVelocity = velocity;
            const auto lines = std::make_shared<KARString>();
            for (int at = 1; at <= TimeSteps; ++at) {
                const double passed = duration * at / TimeSteps;
                time = startTime + passed;
                angle = startAngle + (startVelocity + acceleration * passed / 2.0) * passed;
                velocity = startVelocity + acceleration * passed;
                parts.angle->SetValue(angle);
                const Motion slider = MotionOf(parts.slider);
                UpdateOutputs(analysis,
                              {{"time", time},
                               {"analysis step", kar::ToUtf8(step->getEntityName()).c_str()},
                               {"crank.angle", angle},
                               {"crank.velocity", velocity},
                               {"crank.past dead centre", std::sin(angle) > 0.0},
                               {"slider.position", slider.Origin().GetX()},
                               {"slider.velocity", slider.velocity.GetX()}});
                *lines += Line();
            }
            step->UpdateResultStream(lines);
        }
    }
    /// The outputs of the case as a line, read by their paths.
    KARString Line() const
    {
        std::ostringstream line;
        KARUnicodeString text;
        unsigned char isPast = 0;
        analysis->GetOutputValue({"analysis step"}, 0, text);
        analysis->GetOutputValue({"crank", "past dead centre"}, 0, isPast);
        line << text.Text() << ',' << (isPast != 0 ? "yes" : "no");
        for (const char* const path :
             {"time", "crank.angle", "crank.velocity", "slider.position", "slider.velocity"})
            line << ',' << *NumberAt<KARMPOutput>(analysis, path);
        return KARString((line.str() + '\n').c_str());
    }
};

/// Writes what the steps of a case gave.
bool WriteTable(const Ref<KARMPAnalysisCase>& analysis, const char* file)
{
    std::ofstream table(file);
    table << "analysis step,past dead centre,time [s],crank angle [rad],crank velocity [rad/s],"
             "slider position [m],slider velocity [m/s]\n";
    for (const auto& step : StepsOf(analysis))
        table << step->GetResultStream()->Text();
    return static_cast<bool>(table.flush());
}

} // namespace

int main()
{
    ::setenv("MOT_DUMP_OUTPUTS", "1", 1); // documents of this program hold its outputs
    TimeHistory history;
    history.Run();
    KARUnicodeString message;
    history.deadCenter->GetMessageString(message);
    std::cout << "At the dead centre " << message.Text() << ": "
              << history.deadCenter->GetEntityCount() << '\n';
    if (history.deadCenter->GetEntityCount() != 3 ||
        !WriteTable(history.analysis, "time-history.csv"))
        return 1;
    return RoundTrip(history.model, "time-history.xml", [&](const Model& again) {
        // The outputs, as the document keeps them on a grid of 1e-12, are what the drive ends with.
        const auto analysis = again.Find<KARMPAnalysisCase>("Run");
        const double position = *NumberAt<KARMPOutput>(analysis, "slider.position");
        const double error = position - MotionAt(history.angle, 0.0).slider.Origin().GetX();
        std::cout << "At the end the slider stands at " << position << " m\n";
        return *NumberAt<KARMPOutput>(analysis, "time") == 2.0 && std::abs(error) < 1e-12;
    });
}

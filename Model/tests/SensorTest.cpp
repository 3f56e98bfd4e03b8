// Sensors with loaders that are functions, and loaders to derive from.
#include "EditTesting.h"

using namespace karmp::model;

namespace {

class SensorTest : public KARMPTestFixture
{
protected:
    Model m_model{"M"};
    Ref<KARMPBody> m_body = m_model.Body("A", {.at = KARMathPoint(1.0, 0.0, 0.0)});
    Ref<KARMPJoint> m_joint =
        m_model.Joint<KARMPRevolute>("J", m_model.Ground(), m_body, KARMathPoint(1.0, 0.0, 0.0));

    template <class S>
    void ExpectFilled(const char* name)
    {
        int updates = 0;
        const auto sensor = m_model.Sensor<S>(name, {}, [&updates](S& to) {
            ++updates;
            to.Deactivate();
        });
        ASSERT_TRUE(sensor) << name;
        EXPECT_EQ(sensor->Update(), KARSuccess) << name;
        EXPECT_EQ(updates, 1) << name;
        EXPECT_FALSE(sensor->IsActive()) << name;
    }
};

TEST_F(SensorTest, SensorOfEachClassIsFilledByItsFunction)
{
    ExpectFilled<KARMPCollisionSensor>("Collision");
    ExpectFilled<KARMPConnectorSpatialForceSensor>("Connector");
    ExpectFilled<KARMPDisplacementSensor>("Displacement");
    ExpectFilled<KARMPDisplacementSensor2D>("Displacement2D");
    ExpectFilled<KARMPJointDOFSensor>("Freedom");
    ExpectFilled<KARMPJointSpatialForceSensor>("Joint");
    ExpectFilled<KARMPMotorForceSensor>("Motor");
    ExpectFilled<KARMPProximitySensor>("Proximity");
}

TEST_F(SensorTest, SensorHasTheItemsThatAreSet)
{
    double position = 0.5;
    const auto sensor = m_model.Sensor<KARMPJointDOFSensor>(
        "S", {{"Joint", m_joint}, {"DOFindex", 5}},
        [&position](KARMPJointDOFSensor& to) { to.SetPosition(position); });
    ASSERT_TRUE(sensor);
    EXPECT_EQ(*NumberOf(sensor, "DOFindex"), 5.0);
    sensor->Update();
    EXPECT_EQ(*NumberOf(sensor, "Position"), 0.5);
    position = 0.75;
    sensor->Update();
    EXPECT_EQ(*NumberOf(sensor, "Position"), 0.75);
    EXPECT_EQ(BrokenLinks(m_model), "");
}

TEST_F(SensorTest, SensorThatCannotBeMadeLeavesNothing)
{
    const auto fill = [](KARMPJointDOFSensor&) {};
    EXPECT_FALSE(m_model.Sensor<KARMPJointDOFSensor>("S", {{"Jont", m_joint}}, fill));
    EXPECT_FALSE(m_model.Sensor<KARMPJointDOFSensor>("A", {}, fill));
    EXPECT_EQ(m_model.Problems().size(), 2U);
    EXPECT_TRUE(m_model.All<KARMPSensor>().empty());
}

TEST_F(SensorTest, ForceInAJointIsToldInTheFramesOfItsBodies)
{
    const auto sensor = m_model.Sensor<KARMPJointSpatialForceSensor>(
        "S", {{"Joint", m_joint}}, [](KARMPJointSpatialForceSensor& to) {
            to.SetSpatialForce({0.0, 2.0, 0.0}, {});
        });
    sensor->Update();
    m_body->SetPosition(KARMathTransformation::Rotation({{}, {0.0, 0.0, 1.0}}, 1.5707963267948966),
                        0);
    KARMathVector force;
    KARMathVector torque;
    EXPECT_EQ(sensor->GetSpatialForce(force, torque, KARMPAxisMode::FirstBody), KARSuccess);
    EXPECT_NEAR(force.GetY(), 2.0, 1e-15);
    EXPECT_EQ(sensor->GetSpatialForce(force, torque, KARMPAxisMode::SecondBody), KARSuccess);
    EXPECT_NEAR(force.GetX(), 2.0, 1e-15);
    KARIMPJointSpatialForceSensorLoader* loader = nullptr;
    sensor->GetLoader(loader);
    KARMathAxis frame;
    EXPECT_EQ(loader->ReadJointFrame(frame), KARSuccess);
    EXPECT_EQ(frame.GetOrigin(), KARMathPoint(1.0, 0.0, 0.0));
    m_model.Delete(m_joint);
    EXPECT_EQ(loader->ReadJointFrame(frame), KARFailure);
    EXPECT_EQ(TakeReports(), 1U);
}

TEST_F(SensorTest, ForceInAConnectorIsToldInTheFramesOfItsBodies)
{
    const auto bushing = m_model.Connect<KARMPBushing>("B", m_model.Ground(), m_body,
                                                       *FrameAlong({}, {1.0, 0.0, 0.0}));
    const auto sensor = m_model.Sensor<KARMPConnectorSpatialForceSensor>(
        "S", {{"Connector", bushing}}, [](KARMPConnectorSpatialForceSensor& to) {
            to.SetSpatialForce({3.0, 0.0, 0.0}, {});
        });
    sensor->Update();
    KARMathVector force;
    KARMathVector torque;
    EXPECT_EQ(sensor->GetSpatialForce(force, torque, KARMPAxisMode::SecondBody), KARSuccess);
    EXPECT_EQ(force, KARMathVector(0.0, 0.0, 3.0));
    EXPECT_EQ(sensor->GetSpatialForce(force, torque, KARMPAxisMode::World), KARSuccess);
    EXPECT_EQ(force, KARMathVector(3.0, 0.0, 0.0));
    KARIMPConnectorSpatialForceSensorLoader* loader = nullptr;
    sensor->GetLoader(loader);
    KARMathAxis frame;
    EXPECT_EQ(loader->ReadConnectorFrame(frame), KARSuccess);
    EXPECT_EQ(frame.GetThirdDirection(), KARMathVector(1.0, 0.0, 0.0));
}

TEST_F(SensorTest, VariableTellsItsLoaderEachNewValue)
{
    const auto angle = m_model.Variable("angle", m_joint);
    std::vector<double> heard;
    angle->SetLoader(new ValueLoader([&heard](double value) { heard.push_back(value); }));
    angle->SetValue(0.5);
    angle->SetMinValue(0.0);
    angle->Fix();
    angle->Unfix();
    angle->SetValue(0.75);
    EXPECT_EQ(heard, (std::vector{0.5, 0.75}));
}

TEST_F(SensorTest, BodyWithALoaderThatDoesNothingMoves)
{
    m_body->SetLoader(new BodyLoader);
    const Motion motion = Motion().At({2.0, 0.0, 0.0});
    EXPECT_EQ(Move(m_body, motion), KARSuccess);
    EXPECT_EQ(PositionOf(m_body), motion.position);
    EXPECT_EQ(m_body->Deactivate(), KARSuccess);
}

} // namespace

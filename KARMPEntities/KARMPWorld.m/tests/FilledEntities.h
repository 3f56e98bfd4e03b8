// Entities of every class with all that a document can hold of them, and the entities that they are
// linked to.
#pragma once

#include "KARCrvLimits.h"
#include "KARGeometricFactory.h"
#include "KARMPAnalysisStep.h"
#include "KARMPBody2D.h"
#include "KARMPCollisionLayer.h"
#include "KARMPCollisionRule.h"
#include "KARMPConnector.h"
#include "KARMPConstant.h"
#include "KARMPContactForceData.h"
#include "KARMPDisplacementSensor.h"
#include "KARMPDisplacementSensor2D.h"
#include "KARMPDofSensor.h"
#include "KARMPEntityTable.h"
#include "KARMPEquation.h"
#include "KARMPJoint.h"
#include "KARMPMotor.h"
#include "KARMPOutput.h"
#include "KARMPParameter.h"
#include "KARMPPoint2D.h"
#include "KARMPShapeBody.h"
#include "KARMPSketch.h"
#include "KARMPState.h"
#include "KARMPSupport.h"
#include "KARMPUserDefined2D.h"
#include "KARMPWorld.h"
#include "KARMPWorldFamilies.h"
#include "QOBBasicWorld.h"

#include <array>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// What of an entity is set.
enum class Filling {
    Nothing, ///< Its identifier alone.
    Full,    ///< Every value, none of them the default, every optional item and every link.
    Other,   ///< The same with other values, and what Full excludes.
    Values   ///< The values of Other, without the identifier and without links and lists.
};

/// All version tags, in ascending order.
extern const std::array<std::wstring_view, 7> AllVersions;

/// The names of the classes that the factory makes, without those of the tests.
std::vector<std::string> MadeClasses();

/// Makes a curve free the limits that it will read, which its reader leaves to the caller.
void FreeReadLimits(KARMPEntity& entity);

/// A world with two entities of each kind that others are linked to. Identifiers and names are
/// fixed. Reading links the entities of the table to what is read, so each reading takes an object
/// of its own.
class FilledEntities
{
public:
    FilledEntities();
    ~FilledEntities();
    FilledEntities(const FilledEntities&) = delete;
    FilledEntities& operator=(const FilledEntities&) = delete;

    /// An entity of a class, with an identifier unless told above.
    QOBSharedHandle<KARMPEntity> Make(const std::string& className, Filling filling,
                                      const std::wstring& identifier = L"filled");
    /// An entity of a class that stands in the world and is otherwise as new.
    QOBSharedHandle<KARMPEntity> New(const std::string& className);
    /// Gives the entities that are linked values as well; they keep their names and links.
    void FillLinked();
    /// The entities that are linked, by their identifiers.
    const KARMPEntityTable& Table() const { return m_table; }
    /// The same identifiers, each with one and the same entity.
    void FillTable(KARMPEntityTable& table, const QOBSharedHandle<KARMPEntity>& entity) const;

private:
    template <class T>
    using Two = std::array<QOBSharedHandle<T>, 2>;
    struct ReleaseFactory
    {
        void operator()(KARGeometricFactory* factory) const { factory->Release(); }
    };

    template <class T, class Maker>
    void AddTwo(Two<T>& entities, const wchar_t* prefix, const Maker& make);

    void Fill(KARMPEntity& entity, Filling filling);
    void FillBase(KARMPEntity& entity);
    void FillActuator(KARMPActuator& actuator);
    template <class T>
    void FillDrive(T& actuator);
    void FillAttribute(KARMPAttribute& attribute);
    void FillBody(KARMPBody& body);
    void FillPlanarBody(KARMPBody2D& body);
    void FillGeometry(KARMPGeometry& geometry);
    void FillPlanarGeometry(KARMPGeometry2D& geometry);
    void FillJoint(KARMPJoint& joint);
    template <class Joint, class Body>
    void LinkJoint(Joint& joint, const Two<Body>& bodies);
    void FillConnector(KARMPConnector& connector);
    void FillConstraint(KARMPConstraint& constraint);
    void LinkConstraint(KARMPConstraint& constraint);
    void FillShape(KARMPShape& shape);
    void FillSensor(KARMPSensor& sensor);
    void FillContactSensor(KARMPSensor& sensor);
    KARMPContactForceData Contact(std::size_t first) const;
    void FillInteraction(KARMPInteraction& interaction);
    void FillValue(KARMPValue& value);
    void FillVariable(KARMPVariable& variable);
    bool FillSetUp(KARMPEntity& entity);
    void FillOwnContent(KARMPEntity& entity);
    template <class T>
    void FillShapeOf(T& geometry);
    template <class T>
    void FillLookOf(T& shape);
    template <class T>
    void AddCurvesTo(T& chain, void* lineLimits, void* arcLimits);
    template <class T>
    void FillOptions(T& constraint);
    template <class T>
    void FillFriction(T& constraint);
    template <class T>
    void FillTerms(T& equation);
    template <class T>
    void FillValueOf(T& value);
    template <class T>
    void FillForceOf(T& connector);
    template <class T>
    void FillMeasurementOf(T& sensor);
    void FillFreedoms(KARMPDofSensor& sensor);

    /// The first of two values, or the second one where others are asked for.
    template <class T>
    T Choose(T first, T second) const
    {
        return m_filling == Filling::Full ? first : second;
    }
    /// A number that has the other sign where others are asked for.
    double Number(double number) const { return Choose(number, -number); }
    KARMathPoint Point() const { return {Number(1.5), Number(-2.25), Number(3.125)}; }
    /// Three directions at right angles without a component that is 0.
    KARMathVector First() const { return KARMathVector(2.0, 3.0, 6.0) * Number(1.0 / 7.0); }
    KARMathVector Second() const { return KARMathVector(3.0, -6.0, 2.0) * Number(1.0 / 7.0); }
    KARMathVector Third() const { return KARMathVector(6.0, 2.0, -3.0) * Number(1.0 / 7.0); }
    KARMathTransformation Position() const;
    KARMathPoint2D PlanarPoint() const { return {Number(1.5), Number(-2.25)}; }
    bool HasLinks() const { return m_filling != Filling::Values; }

    Filling m_filling = Filling::Nothing;
    std::unique_ptr<KARGeometricFactory, ReleaseFactory> m_curves{KARGeometricFactory::Create()};
    std::array<KARCrvLimits, 2> m_limits;
    QOBSharedHandle<QOBBasicWorld> m_basicWorld = QOBBasicWorld::create(L"basic");
    QOBSharedHandle<KARMPWorld> m_world = KARMPWorld::create(m_basicWorld);
    KARMPEntityTable m_table;
    Two<KARMPBody> m_bodies;
    Two<KARMPBody2D> m_planarBodies;
    Two<KARMPGeometry> m_geometries;
    Two<KARMPGeometry2D> m_planarGeometries;
    Two<KARMPSketch> m_sketches;
    Two<KARMPJoint> m_joints;
    Two<KARMPUserDefined2D> m_planarJoints;
    Two<KARMPMotor> m_motors;
    Two<KARMPConstraint> m_constraints;
    Two<KARMPEquation> m_equations;
    Two<KARMPVariable> m_variables;
    Two<KARMPDisplacementSensor> m_sensors;
    Two<KARMPDisplacementSensor2D> m_planarSensors;
    Two<KARMPShape> m_shapes;
    Two<KARMPShapeBody> m_planarShapes;
    Two<KARMPConnector> m_connectors;
    Two<KARMPConstant> m_constants;
    Two<KARMPCollisionRule> m_rules;
    Two<KARMPCollisionLayer> m_layers;
    Two<KARMPAnalysisStep> m_steps;
    Two<KARMPParameter> m_parameters;
    Two<KARMPState> m_states;
    Two<KARMPOutput> m_outputs;
    Two<KARMPSupport> m_supports;
    Two<KARMPEntity> m_elements;
};

// The model library: mechanisms are built, edited, saved and loaded by single calls that do all
// that belongs together.
//
// Texts are UTF-8. Units are those of docs/conventions.md. An entity is known by an identifier,
// which is unique in the model and never changes, and a name, which starts as the same text.
//
// Every call that changes the model does all that it says or nothing. A call that fails adds one
// problem, with the caller's line, to Problems; what creates something gives a false Ref then, and
// calls that are given a false Ref fail as well. So calls may be made one after another, and
// Problems, or the Save at the end, tells what went wrong first.
//
// The header needs no entity class; a program includes those that it names, or KARMPEntities.h.
#pragma once

#include "KARMPDocuments.h"
#include "KARMPEnumerations.h"
#include "KARMPFamilies.h"
#include "KARMPItems.h"
#include "KARMPModelAnalysis.h"
#include "KARMPModelCurves.h"
#include "KARMPModelDeletion.h"
#include "KARMPModelExport.h"
#include "KARMPModelFamilies.h"
#include "KARMPModelLoaders.h"
#include "KARMPModelOptions.h"
#include "KARMPModelReading.h"
#include "KARMPModelRef.h"
#include "KARMPModelResult.h"
#include "KARMPModelSettings.h"
#include "KARMPModelSolids.h"
#include "KARMPWorldDifference.h"
#include "KARMPWorldExtraction.h"
#include "KARMathAxis.h"

#include <cstddef>
#include <filesystem>
#include <initializer_list>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <typeinfo>
#include <utility>
#include <vector>

class KARMP3DRep;
class KARMPAnalysisCase;
class KARMPAxisSystem;
class KARMPBody2D;
class KARMPConstant;
class KARMPExpression;
class KARMPInitialCondition;
class KARMPMotor;
class KARMPPoint;
class KARMPPoint2D;
class KARMPSketch;
class KARMPWorld;

namespace karmp::model {

class Core;
struct Extraction;

/// Ends the process with a sentence: a model was used that was moved from.
[[noreturn]] KARMP_MODEL_API void StopAtMovedModel();

/// How models are saved where nothing else is said: all doubles as they are.
KARMP_MODEL_API documents::SaveOptions Exactly();

/// A mechanism: a world, and the calls that build and edit it.
///
/// The world may be changed by its own operations as well; the model notices what is added to or
/// removed from it. Use of a model that was moved from ends the process with a sentence.
class KARMP_MODEL_API Model
{
    using Entity = QOBSharedHandle<KARMPEntity>;

public:
    /// An empty model in metres. Its ground is the world's global body.
    explicit Model(std::string_view name, const ModelOptions& options = {},
                   Where where = Where::current());
    /// A model of a world that is there, whose globals are listed and identified from then on.
    explicit Model(const QOBSharedHandle<KARMPWorld>& world, Where where = Where::current());
    Model(Model&& other) noexcept;
    Model& operator=(Model&& other) noexcept;
    ~Model();

    /// The world that the model keeps, for calls that the model has not.
    const QOBSharedHandle<KARMPWorld>& World() const;
    /// What calls could not do, in order.
    const std::vector<Problem>& Problems() const;
    /// Forgets the problems.
    void ClearProblems();

    /// The settings of the world, those of a new model without one.
    ModelOptions Options() const;
    /// Changes them; false, with a problem, for gravity that is not finite and for tolerances that
    /// are no finite numbers above 0.
    bool SetOptions(const ModelOptions& options, Where where = Where::current());

    /// The body that everything stands on: the world's ground body, or its global body.
    Ref<KARMPBody> Ground() const;
    /// The world's time.
    Ref<KARMPVariable> Time() const;

    /// A new entity of a class, by its type or by its name as the factory knows it.
    template <class T>
    Ref<T> Add(std::string_view identifier, Where where = Where::current())
    {
        return Add<T>(identifier, {}, where);
    }
    /// The same with items set, as Set does.
    template <class T>
    Ref<T> Add(std::string_view identifier, Settings settings, Where where = Where::current())
    {
        return Typed<T>(AddEntity(T::ClassInfo(), &IsExactly<T>, identifier, settings, where));
    }
    Ref<KARMPEntity> Add(std::string_view className, std::string_view identifier,
                         Where where = Where::current());

    /// A body.
    Ref<KARMPBody> Body(std::string_view identifier, const BodyOptions& options = {},
                        Where where = Where::current());
    /// A body in the plane z = 0: with the first one come the sketch "Sketch", which the ground
    /// carries, and the body "Frame" that is fixed in it.
    Ref<KARMPBody2D> PlanarBody(std::string_view identifier, const PlanarBodyOptions& options = {},
                                Where where = Where::current());
    /// That frame, with its sketch.
    Ref<KARMPBody2D> PlanarGround(Where where = Where::current());

    /// An axis system or a point of a body, told in the world. The body's identifier and a dot come
    /// before the identifier.
    Ref<KARMPAxisSystem> Frame(std::string_view identifier, const Ref<KARMPBody>& body,
                               const KARMathAxis& axis, Where where = Where::current());
    Ref<KARMPPoint> Point(std::string_view identifier, const Ref<KARMPBody>& body,
                          const KARMathPoint& position, Where where = Where::current());
    Ref<KARMPPoint2D> Point(std::string_view identifier, const Ref<KARMPBody2D>& body,
                            const KARMathPoint2D& position, Where where = Where::current());

    /// A geometry of a class on a body, in space or in the body's sketch, which its items or its
    /// own operations shape, in body axes. The identifier is put together as that of a Frame.
    template <class G>
    Ref<G> Attach(std::string_view identifier, const Ref<KARMPEntity>& body,
                  Where where = Where::current())
    {
        return Attach<G>(identifier, body, {}, where);
    }
    template <class G>
    Ref<G> Attach(std::string_view identifier, const Ref<KARMPEntity>& body, Settings settings,
                  Where where = Where::current())
    {
        return Typed<G>(AttachGeometry(G::ClassInfo(), identifier, body, settings, where));
    }

    /// A curve on a body, of pieces in body axes, each from where the one before ends.
    Ref<KARMPCurve> Curve(std::string_view identifier, const Ref<KARMPBody>& body,
                          std::initializer_list<CurvePiece> pieces, Where where = Where::current());

    /// What a body looks like: a mesh for each of its solids, of which there is one at least. The
    /// identifier is put together as that of a Frame.
    Ref<KARMP3DRep> Shape(std::string_view identifier, const Ref<KARMPBody>& body,
                          std::span<const Solid> solids, Where where = Where::current());

    /// A variable of a joint, the next one in the order of its freedoms, in m or rad.
    Ref<KARMPVariable> Variable(std::string_view identifier, const Ref<KARMPJoint>& joint,
                                double value = 0.0, Where where = Where::current());
    /// A variable of a quantity.
    Ref<KARMPVariable> Variable(std::string_view identifier, KARMPPhysicalQuantity::Enum quantity,
                                double value = 0.0, Where where = Where::current());

    /// A joint of a kind between a parent and a child, at a point of the world, about or along an
    /// axis: with the axis systems, points or lines of both bodies, the constraint that realises
    /// the kind, and both halves of all links. Kinds on curves are made from two geometries.
    template <class J>
    Ref<J> Joint(std::string_view identifier, const Ref<KARMPBody>& parent,
                 const Ref<KARMPBody>& child, const KARMathPoint& at,
                 const KARMathVector& axis = {0.0, 0.0, 1.0}, Where where = Where::current())
    {
        return Typed<J>(AddJoint(J::ClassInfo(), identifier, parent, child, at, axis, where));
    }
    template <class J>
    Ref<J> Joint(std::string_view identifier, const Ref<KARMPBody>& parent,
                 const Ref<KARMPBody>& child, const KARMathAxis& frame,
                 Where where = Where::current())
    {
        return Typed<J>(AddJoint(J::ClassInfo(), identifier, parent, child, frame, where));
    }
    /// The same between a frame of the parent and one of the child, both told in the world: what is
    /// between them is where the joint stands, as docs/conventions.md has it.
    template <class J>
    Ref<J> Joint(std::string_view identifier, const Ref<KARMPBody>& parent,
                 const Ref<KARMPBody>& child, const KARMathAxis& onParent,
                 const KARMathAxis& onChild, Where where = Where::current())
    {
        return Typed<J>(
            AddJoint(J::ClassInfo(), identifier, parent, child, onParent, onChild, where));
    }
    /// A pin in the plane.
    template <class J>
    Ref<J> Joint(std::string_view identifier, const Ref<KARMPBody2D>& parent,
                 const Ref<KARMPBody2D>& child, const KARMathPoint2D& at,
                 Where where = Where::current())
    {
        return Typed<J>(AddJoint(J::ClassInfo(), identifier, parent, child, at, where));
    }
    /// A joint on a geometry of the parent and one of the child, spatial or planar both.
    template <class J>
    Ref<J> Joint(std::string_view identifier, const Ref<KARMPGeometry>& onParent,
                 const Ref<KARMPGeometry>& onChild, Where where = Where::current())
    {
        return Typed<J>(AddJoint(J::ClassInfo(), nullptr, identifier, onParent, onChild, where));
    }
    /// The same by a constraint of another class than the kind's own, a tangency for one.
    template <class J, class C>
    Ref<J> Joint(std::string_view identifier, const Ref<KARMPGeometry>& onParent,
                 const Ref<KARMPGeometry>& onChild, Where where = Where::current())
    {
        return Typed<J>(
            AddJoint(J::ClassInfo(), &C::ClassInfo(), identifier, onParent, onChild, where));
    }

    /// A body and the joint by which another one carries it, of a kind with one freedom, whose
    /// variable has the value of the place. The place in the options does not count.
    template <class J>
    model::Limb<J> Limb(std::string_view identifier, std::string_view joint,
                        const Ref<KARMPBody>& parent, const LimbPlace& place,
                        const BodyOptions& options = {}, Where where = Where::current())
    {
        model::Limb<J> limb;
        limb.joint = Typed<J>(
            AddLimb(J::ClassInfo(), identifier, joint, parent, place, options, limb.body, where));
        return limb;
    }

    /// A coupling by a linear equation: the sum of coefficient times variable, plus the constant,
    /// is 0. It links the bodies that the variables' joints move.
    template <class C>
    Ref<C> Couple(std::string_view identifier, std::span<const Term> terms, double constant = 0.0,
                  Where where = Where::current())
    {
        return Typed<C>(AddCoupling(C::ClassInfo(), identifier, terms, constant, where));
    }
    template <class C>
    Ref<C> Couple(std::string_view identifier, std::initializer_list<Term> terms,
                  double constant = 0.0, Where where = Where::current())
    {
        return Couple<C>(identifier, std::span<const Term>(terms.begin(), terms.size()), constant,
                         where);
    }

    /// As Joint and Couple, for a kind that is known at run time, by its record; null after a
    /// failure.
    Entity AddJoint(const QOBClassInfo& info, std::string_view identifier,
                    const Ref<KARMPBody>& parent, const Ref<KARMPBody>& child,
                    const KARMathPoint& at, const KARMathVector& axis, Where where);
    Entity AddJoint(const QOBClassInfo& info, std::string_view identifier,
                    const Ref<KARMPBody>& parent, const Ref<KARMPBody>& child,
                    const KARMathAxis& frame, Where where)
    {
        return AddJoint(info, identifier, parent, child, frame, frame, where);
    }
    Entity AddJoint(const QOBClassInfo& info, std::string_view identifier,
                    const Ref<KARMPBody>& parent, const Ref<KARMPBody>& child,
                    const KARMathAxis& onParent, const KARMathAxis& onChild, Where where);
    Entity AddJoint(const QOBClassInfo& info, std::string_view identifier,
                    const Ref<KARMPBody2D>& parent, const Ref<KARMPBody2D>& child,
                    const KARMathPoint2D& at, Where where);
    Entity AddJoint(const QOBClassInfo& info, std::string_view identifier,
                    const Ref<KARMPGeometry>& onParent, const Ref<KARMPGeometry>& onChild,
                    Where where)
    {
        return AddJoint(info, nullptr, identifier, onParent, onChild, where);
    }
    Entity AddCoupling(const QOBClassInfo& info, std::string_view identifier,
                       std::span<const Term> terms, double constant, Where where);

    /// A number of a quantity, which any number of entities may share.
    Ref<KARMPConstant> Constant(std::string_view identifier, KARMPPhysicalQuantity::Enum quantity,
                                double number, Where where = Where::current());
    /// A value that follows an equation, as docs/equations.md has it, in the order of its
    /// variables.
    Ref<KARMPExpression> Expression(std::string_view identifier,
                                    KARMPPhysicalQuantity::Enum quantity, std::string_view equation,
                                    std::span<const Ref<KARMPVariable>> variables,
                                    Where where = Where::current());
    Ref<KARMPExpression> Expression(std::string_view identifier,
                                    KARMPPhysicalQuantity::Enum quantity, std::string_view equation,
                                    std::initializer_list<Ref<KARMPVariable>> variables,
                                    Where where = Where::current());
    /// The number that the equation of an expression gives where variables that it names have the
    /// numbers that are given. Those of the world's equations keep them.
    Result<double> Evaluate(const Ref<KARMPExpression>& expression,
                            std::initializer_list<std::pair<std::string_view, double>> variables,
                            Where where = Where::current()) const;
    /// A motor on a variable, which is controlled from then on. Its numbers are constants of its
    /// own, "Motor.velocity" for one; other values are for its own operations.
    Ref<KARMPMotor> Motor(std::string_view identifier, const Ref<KARMPVariable>& variable,
                          const MotorOptions& options = {}, Where where = Where::current());
    /// A connector, a spring for one, between a geometry of its first body and one of its second,
    /// which are the attachments of a spring too, with items set.
    template <class C>
    Ref<C> Connect(std::string_view identifier, const Ref<KARMPGeometry>& onFirst,
                   const Ref<KARMPGeometry>& onSecond, Where where = Where::current())
    {
        return Connect<C>(identifier, onFirst, onSecond, {}, where);
    }
    template <class C>
    Ref<C> Connect(std::string_view identifier, const Ref<KARMPGeometry>& onFirst,
                   const Ref<KARMPGeometry>& onSecond, Settings settings,
                   Where where = Where::current())
    {
        return Typed<C>(
            AddConnector(C::ClassInfo(), identifier, onFirst, onSecond, settings, where));
    }

    /// The same between a new point of each body, and between a frame that both get, told in the
    /// world.
    template <class C>
    Ref<C> Connect(std::string_view identifier, const Ref<KARMPBody>& first,
                   const KARMathPoint& from, const Ref<KARMPBody>& second, const KARMathPoint& to,
                   Settings settings = {}, Where where = Where::current())
    {
        return Typed<C>(
            AddConnector(C::ClassInfo(), identifier, first, from, second, to, settings, where));
    }
    template <class C>
    Ref<C> Connect(std::string_view identifier, const Ref<KARMPBody>& first,
                   const Ref<KARMPBody>& second, const KARMathAxis& frame, Settings settings = {},
                   Where where = Where::current())
    {
        return Typed<C>(
            AddConnector(C::ClassInfo(), identifier, first, second, frame, settings, where));
    }

    /// A linear spring with a damper between two points of the world, as Connect makes it.
    Ref<KARMPLinearSpring> Spring(std::string_view identifier, const Ref<KARMPBody>& first,
                                  const KARMathPoint& from, const Ref<KARMPBody>& second,
                                  const KARMathPoint& to, const SpringOptions& options,
                                  Where where = Where::current());

    /// As Connect and Attach, for a class that is known at run time, by its record.
    Entity AddConnector(const QOBClassInfo& info, std::string_view identifier,
                        const Ref<KARMPGeometry>& onFirst, const Ref<KARMPGeometry>& onSecond,
                        Settings settings, Where where);
    Entity AddConnector(const QOBClassInfo& info, std::string_view identifier,
                        const Ref<KARMPGeometry>& onFirst, const Ref<KARMPGeometry>& onSecond,
                        Where where)
    {
        return AddConnector(info, identifier, onFirst, onSecond, {}, where);
    }
    Entity AddConnector(const QOBClassInfo& info, std::string_view identifier,
                        const Ref<KARMPBody>& first, const KARMathPoint& from,
                        const Ref<KARMPBody>& second, const KARMathPoint& to, Settings settings,
                        Where where);
    Entity AddConnector(const QOBClassInfo& info, std::string_view identifier,
                        const Ref<KARMPBody>& first, const Ref<KARMPBody>& second,
                        const KARMathAxis& frame, Settings settings, Where where);
    Entity AttachGeometry(const QOBClassInfo& info, std::string_view identifier,
                          const Ref<KARMPEntity>& body, Settings settings, Where where);
    Entity AttachGeometry(const QOBClassInfo& info, std::string_view identifier,
                          const Ref<KARMPEntity>& body, Where where)
    {
        return AttachGeometry(info, identifier, body, {}, where);
    }

    /// A sensor of a class with items set, and a loader that fills it in by a function, which gets
    /// the sensor at each of its updates. The sensor keeps the function.
    template <class S, class Fill>
    Ref<S> Sensor(std::string_view identifier, Settings settings, Fill fill,
                  Where where = Where::current())
    {
        return Typed<S>(AddSensor(S::ClassInfo(), &IsExactly<S>, identifier, settings,
                                  &NewLoader<S, Fill>, &fill, where));
    }

    /// Attributes of an entity, of a class: KARMPParameter, KARMPState or KARMPOutput.
    template <class A>
    bool AddAttributes(const Ref<KARMPEntity>& entity, std::initializer_list<Attribute> attributes,
                       Where where = Where::current())
    {
        return AddAttributesOf(A::ClassInfo(), entity,
                               std::span(attributes.begin(), attributes.size()), where);
    }
    /// The same for a class that is known at run time, by its record.
    bool AddAttributesOf(const QOBClassInfo& info, const Ref<KARMPEntity>& entity,
                         std::span<const Attribute> attributes, Where where);
    /// An initial condition with parameters.
    Ref<KARMPInitialCondition> InitialCondition(std::string_view identifier,
                                                std::initializer_list<Attribute> parameters,
                                                Where where = Where::current());
    /// An analysis with its steps, which are new ones with parameters, and its outputs.
    Ref<KARMPAnalysisCase> AnalysisCase(std::string_view identifier, const AnalysisOptions& options,
                                        Where where = Where::current());

    /// Links two entities that can refer to each other, both halves. What is linked already stays.
    /// The item, of either entity, chooses where there are several, "SecondBody" of a connector for
    /// one. A single link to another entity has to be unlinked first.
    bool Link(const Ref<KARMPEntity>& first, const Ref<KARMPEntity>& second,
              std::string_view item = {}, Where where = Where::current());
    /// Takes both halves of the links between two entities away, or of those by an item.
    bool Unlink(const Ref<KARMPEntity>& first, const Ref<KARMPEntity>& second,
                std::string_view item = {}, Where where = Where::current());

    /// The entity of a class with an identifier or else a name, false when there is none, or when
    /// several have the name. By identifier the cost does not grow with the model.
    template <class T>
    Ref<T> Find(std::string_view key) const
    {
        return Typed<T>(FindEntity(&Fits<T>, key));
    }
    /// The same as a Result, whose error tells the near names, or how many have the name.
    template <class T>
    Result<Ref<T>> Get(std::string_view key, Where where = Where::current()) const
    {
        Outcome problem;
        auto found = GetEntity(&Fits<T>, T::ClassInfo().getName(), key, where, problem);
        return found ? Result<Ref<T>>(Typed<T>(std::move(found))) : Result<Ref<T>>(problem);
    }
    /// All entities of a family, a class or its subclasses, in the order of the world.
    template <class T>
    RefList<T> All() const
    {
        constexpr int family = families::IndexOf<T>(Families());
        RefList<T> all;
        Collect(
            family, families::Contain<T>(Families()) ? nullptr : &Fits<T>,
            [](void* list, QOBSharedHandle<KARMPEntity>&& entity) {
                static_cast<RefList<T>*>(list)->push_back(Typed<T>(std::move(entity)));
            },
            [](void* list, std::size_t count) { static_cast<RefList<T>*>(list)->reserve(count); },
            &all);
        return all;
    }

    /// Takes an entity out of the model with what it owns: the geometries of a body, the
    /// constraints of a joint, the elements of an entity that is made of others. Nothing refers to
    /// what is gone, and references to it are false from then on, links included that the other end
    /// alone knows. The ground and the globals stay. Looks through the whole world.
    Deletion Delete(const Ref<KARMPEntity>& entity, const DeleteOptions& options = {},
                    Where where = Where::current());
    /// The same with several entities at once, all or none, for one look through the world.
    template <class T>
    Deletion Delete(const RefList<T>& entities, const DeleteOptions& options = {},
                    Where where = Where::current())
    {
        return DeleteAll(
            entities.size(),
            [](const void* list, std::size_t index) {
                return Ref<KARMPEntity>((*static_cast<const RefList<T>*>(list))[index]);
            },
            &entities, options, where);
    }
    /// All references of other entities to one.
    std::vector<Dependent> Dependents(const Ref<KARMPEntity>& entity) const;

    /// The items of an entity's class: what it holds, each with its name, kind and meaning.
    static std::span<const ItemInfo> Items(const Ref<KARMPEntity>& entity);
    /// The value of an item by its path, or by its name where one item alone has it.
    Result<Value> Get(const Ref<KARMPEntity>& entity, std::string_view item,
                      Where where = Where::current()) const;
    /// Stores a value of an item as ItemInfo::Set does, so that a loader hears of it. Of links both
    /// halves are made, and those of targets that the value leaves out are taken away.
    bool Set(const Ref<KARMPEntity>& entity, std::string_view item, const Value& value,
             Where where = Where::current());
    /// The same with several items in their order, all or none; records, which cannot be undone,
    /// are the last.
    bool Set(const Ref<KARMPEntity>& entity, Settings settings, Where where = Where::current());

    /// Begins a block of calls and returns what EndEditing takes to end it: the calls are kept, or
    /// all undone in reverse order. A block may hold others; those that are open end with it. To
    /// end one that is not open is a problem and does nothing. What cannot be undone is refused in
    /// a block: deletions, and of what was there before it records, and items without a value that
    /// cannot be unset. Where an allocation fails, a problem tells that the undo failed.
    std::size_t BeginEditing(Where where = Where::current());
    void EndEditing(std::size_t begin, bool isKept, Where where = Where::current());

    /// Gives an entity another name. Its identifier stays.
    bool Rename(const Ref<KARMPEntity>& entity, std::string_view name,
                Where where = Where::current());

    /// Saves the model as SaveFile does, with exact numbers by default. A model with problems is
    /// not saved: the first one is the error.
    Result<void> Save(const std::filesystem::path& path,
                      const documents::SaveOptions& options = Exactly(),
                      Where where = Where::current()) const;
    /// The same as a text.
    Result<std::string> Text(const documents::SaveOptions& options = Exactly(),
                             Where where = Where::current()) const;
    /// What the check of documents, and of saving, finds in the model.
    documents::Diagnostics Check(
        documents::CheckLevel level = documents::CheckLevel::Mechanism) const;
    /// A model of its own with the same entities, listed in the order of a world that is read.
    Result<Model> Clone(Where where = Where::current()) const;
    /// The part around some bodies as a model of its own, as ExtractWorld takes it.
    Result<Extraction> Extract(std::span<const Ref<KARMPBody>> bodies,
                               const documents::ExtractionOptions& options = {},
                               Where where = Where::current()) const;
    /// The differences from this model to another one, as FindDifferences tells them.
    std::vector<documents::Difference> Diff(const Model& other,
                                            const documents::DifferenceOptions& options = {}) const;

private:
    template <class T>
    static Ref<T> Typed(Entity&& entity)
    {
        QOBSharedHandle<T> typed;
        static_cast<QOBSharedBase&>(typed) = std::move(entity);
        return Ref<T>(std::move(typed));
    }
    template <class T>
    static bool Fits([[maybe_unused]] const KARMPEntity& entity)
    {
        if constexpr (std::is_same_v<T, KARMPEntity>)
            return true;
        else
            return dynamic_cast<const T*>(&entity) != nullptr;
    }
    // A subclass without a record of its own has that of its base, of which the entity is.
    template <class T>
    static bool IsExactly(const KARMPEntity& entity)
    {
        return typeid(entity) == typeid(T) || dynamic_cast<const T*>(&entity) != nullptr;
    }
    template <class S, class Fill>
    static std::unique_ptr<KARIMPEntityLoader> NewLoader(KARMPEntity& sensor, void* fill)
    {
        return std::make_unique<FillingLoader<S, Fill>>(static_cast<S&>(sensor),
                                                        std::move(*static_cast<Fill*>(fill)));
    }

    Entity AddSensor(const QOBClassInfo& info, bool (*fits)(const KARMPEntity&),
                     std::string_view identifier, Settings settings,
                     std::unique_ptr<KARIMPEntityLoader> (*load)(KARMPEntity&, void* fill),
                     void* fill, Where where);
    Entity AddLimb(const QOBClassInfo& info, std::string_view identifier, std::string_view joint,
                   const Ref<KARMPBody>& parent, const LimbPlace& place, const BodyOptions& options,
                   Ref<KARMPBody>& child, Where where);
    Entity AddEntity(const QOBClassInfo& info, bool (*fits)(const KARMPEntity&),
                     std::string_view identifier, Settings settings, Where where);
    Deletion DeleteAll(std::size_t count,
                       Ref<KARMPEntity> (*at)(const void* list, std::size_t index),
                       const void* list, const DeleteOptions& options, Where where);
    Entity AddJoint(const QOBClassInfo& info, const QOBClassInfo* constraint,
                    std::string_view identifier, const Ref<KARMPGeometry>& onParent,
                    const Ref<KARMPGeometry>& onChild, Where where);
    Entity FindEntity(bool (*fits)(const KARMPEntity&), std::string_view key) const;
    Entity GetEntity(bool (*fits)(const KARMPEntity&), const std::string& className,
                     std::string_view key, Where where, Outcome& problem) const;
    void Collect(int family, bool (*fits)(const KARMPEntity&),
                 void (*add)(void* list, Entity&& entity),
                 void (*reserve)(void* list, std::size_t count), void* list) const;

    /// What the model is made of, which a move takes along.
    class Owned
    {
    public:
        Owned(std::unique_ptr<Core> core) noexcept;
        Owned(Owned&& other) noexcept;
        Owned& operator=(Owned&& other) noexcept;
        ~Owned();
        Core* operator->() const { return &**this; }
        Core& operator*() const
        {
            if (m_core == nullptr)
                StopAtMovedModel();
            return *m_core;
        }

    private:
        std::unique_ptr<Core> m_core;
    };

    Owned m_core;
};

/// A part of a model.
struct Extraction
{
    Model model;
    /// The links that were cut, and the items that could not be carried over.
    std::vector<documents::CutLink> cutLinks;
    std::vector<documents::CutLink> lostItems;
};

/// Loads a model in metres from a file. A document with errors is none; its warnings are the
/// Findings.
KARMP_MODEL_API Result<Model> Load(const std::filesystem::path& path,
                                   const documents::LoadOptions& options = {},
                                   Where where = Where::current());
/// The same from a text in memory, which the findings call by `name`.
KARMP_MODEL_API Result<Model> LoadText(std::string text, const std::string& name = "<text>",
                                       const documents::LoadOptions& options = {},
                                       Where where = Where::current());

} // namespace karmp::model

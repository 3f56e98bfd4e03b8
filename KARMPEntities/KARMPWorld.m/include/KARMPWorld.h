#pragma once

#include "KARBaseUnknown_var.h"
#include "KARMPEnumerations.h"
#include "KARMPExport.h"
#include "KARMPFamilies.h"
#include "KARMPRegistry.h"
#include "KARMathPoint.h"
#include "KARMathVector.h"
#include "KARStatus.h"
#include "QOBExtension.h"

#include <array>
#include <cstdint>
#include <memory>
#include <string>

class KARMPAxisSystem;
class KARMPDeserializer;
class KARMPEntity;
class KARMPSerializer;
class KARWBFactory;
class QOBBasicEntity;
class QOBBasicWorld;

namespace karmp {

struct RegistryAccess;
class WorldCloner;
class WorldFiler;
template <class List>
class RegistrySet;
/// One registry for each family of a list, made in the order of the list and destroyed backwards.
template <class... T>
class RegistrySet<FamilyList<T...>> : public KARMPRegistry<T>...
{};

} // namespace karmp

/// Root of a mechanism model: its settings, the registries of its entities, and its global
/// entities.
///
/// A world extends a basic world, whose life it shares and under which the entities stand. It
/// solves nothing. Every operation returns 0 where nothing else is said.
class KARMP_API KARMPWorld : public QOBExtensionObject
{
public:
    using Super = QOBExtensionObject;

    /// The class's GUID.
    static const QOBUUID& ClassID();
    /// The class's record.
    static const QOBClassInfo& ClassInfo();
    /// The class's name.
    static std::string ClassName();
    /// A new world that extends the basic world. It lists its global body, global axis system and
    /// global time.
    static QOBSharedHandle<KARMPWorld> create(QOBSharedHandle<QOBBasicWorld> basicWorld);
    /// A copy, made by the copy constructor, that extends the basic world.
    static QOBSharedHandle<KARMPWorld> clone(QOBSharedHandle<KARMPWorld> source, CopyMode mode,
                                             QOBSharedHandle<QOBBasicWorld> basicWorld);
    /// Takes the world's globals apart and empties the handle.
    static void destroy(QOBSharedHandle<KARMPWorld>& world);
    /// A new world that extends nothing and carries one reference.
    static QOBSharedObject* _CreateObject();

    /// The class record of worlds, as every class of the object model gives its own.
    std::string getClassName() const override;
    const QOBClassInfo& getClassInfo() const override;
    bool isInstanceOf(const QOBClassInfo& info) const override;
    bool isDerivedFrom(const QOBClassInfo& info) const override;
    /// Takes the global axis system out of the global body; once.
    void orphanObject() override;
    QOBSharedObject* _replicateObject() const override;
    QOBSharedObject* _duplicateObject(CopyMode mode) const override;
    const QOBUUID& getClassID() const override;

    /// Origin, size and gravity: stored and given as they are, in the units of the model.
    virtual KARStatus SetOrigin(const KARMathPoint& origin);
    virtual KARStatus GetOrigin(KARMathPoint& origin) const;
    virtual KARStatus SetSize(double x, double y, double z);
    virtual KARStatus GetSize(double& x, double& y, double& z) const;
    virtual KARStatus SetGravity(const KARMathVector& gravity);
    virtual KARStatus GetGravity(KARMathVector& gravity) const;
    /// Gives the factory of the world's equations. Without one a failed check and a failure.
    virtual KARStatus GetWBFactory(KARWBFactory*& factory) const;

    /// Tolerances on lengths and on angles, stored as they are.
    double GetLinearTolerance() const { return m_linearTolerance; }
    KARStatus SetLinearTolerance(double tolerance);
    double GetAngularTolerance() const { return m_angularTolerance; }
    KARStatus SetAngularTolerance(double tolerance);
    /// Unit of the model's lengths: a label, nothing is converted.
    KARStatus GetLengthUnit(KARMPUnit::Enum& unit) const;
    KARStatus SetLengthUnit(KARMPUnit::Enum unit);

    /// The global entities and the ground body, each of which may be null. Setting one touches no
    /// registry.
    KARStatus GetGlobalBody(QOBSharedHandle<KARMPBody>& body) const;
    KARStatus SetGlobalBody(const QOBSharedHandle<KARMPBody>& body);
    KARStatus GetGlobalAxisSystem(QOBSharedHandle<KARMPAxisSystem>& axisSystem) const;
    KARStatus SetGlobalAxisSystem(const QOBSharedHandle<KARMPAxisSystem>& axisSystem);
    KARStatus GetGlobalTime(QOBSharedHandle<KARMPVariable>& time) const;
    KARStatus SetGlobalTime(const QOBSharedHandle<KARMPVariable>& time);
    KARStatus GetGroundBody(QOBSharedHandle<KARMPBody>& body) const;
    KARStatus SetGroundBody(const QOBSharedHandle<KARMPBody>& body);

    /// Counts one entity more and returns its number; the first number of a new world is 3.
    unsigned int GetEntityId() { return ++m_lastEntityId; }

    /// Borrows a solver's loader with a number for its kind; null with kind 0 clears it. Null with
    /// another kind gives 1 and changes nothing.
    KARStatus SetLoader(KARBaseUnknown* loader, int kind);
    /// Gives loader and kind; without a loader 1, and the arguments stay.
    KARStatus GetLoader(KARBaseUnknown*& loader, int& kind) const;
    /// Takes a reference on a solver's table. A table that is held already is not released. Null
    /// gives 1 and changes nothing.
    KARStatus SetTable(KARBaseUnknown* table);
    /// Gives the table with a reference for the caller; without one 1, and the argument stays.
    KARStatus GetTable(KARBaseUnknown*& table) const;

    /// The registry operations for entities of the family T; KARMPRegistry tells their results. A
    /// value is placed under the basic world as well, and when there is none that is a failed
    /// check.
    template <class T>
    KARStatus Add(const QOBSharedHandle<T>& entity)
    {
        return Registry<T>().Add(entity);
    }
    template <class T>
    KARStatus Add(KARBaseUnknown_var key1, KARBaseUnknown_var key2,
                  const QOBSharedHandle<T>& entity)
    {
        return Registry<T>().Add(key1, key2, entity);
    }
    template <class T>
    KARStatus Remove(const QOBSharedHandle<T>& entity)
    {
        return Registry<T>().Remove(entity);
    }
    template <class T>
    KARStatus Get(int index, QOBSharedHandle<T>& entity) const
    {
        return Registry<T>().Get(index, entity);
    }
    template <class T>
    KARStatus Get(KARBaseUnknown_var key1, KARBaseUnknown_var key2,
                  QOBSharedHandle<T>& entity) const
    {
        return Registry<T>().Get(key1, key2, entity);
    }
    template <class T>
    KARStatus Get(KARBaseUnknown_var key1, KARBaseUnknown_var key2,
                  QOBSharedVector<T>& entities) const
    {
        return Registry<T>().Get(key1, key2, entities);
    }
    template <class T>
    KARStatus GetKeys(const QOBSharedHandle<T>& entity, KARBaseUnknown_var& key1,
                      KARBaseUnknown_var& key2) const
    {
        return Registry<T>().GetKeys(entity, key1, key2);
    }
    template <class T>
    int Count() const
    {
        return Registry<T>().Count();
    }
    template <class T>
    KARStatus EmptyRegistry()
    {
        return Registry<T>().EmptyRegistry();
    }
    /// Gives the keys of an entity whose family is found by its class. A class that belongs to
    /// none is a failure, and so is an interaction: its keys are had by its own type only.
    KARStatus GetKeys(const QOBSharedHandle<QOBBasicEntity>& entity, KARBaseUnknown_var& key1,
                      KARBaseUnknown_var& key2) const;
    /// Number of bodies.
    int GetBodyCount() const { return Count<KARMPBody>(); }
    /// Empties all registries. The global entities stay with the world.
    KARStatus EmptyWorld();

    /// Writes the model as an element "World". A null serializer, or an element that cannot be
    /// added, is a failure; whatever fails inside is a failed check and the rest is written.
    [[nodiscard]] KARStatus Serialize(KARMPSerializer* serializer) const;
    /// Reads a model into this world, which is empty but for its globals. A null deserializer, or
    /// none of an element "World", is a failure; whatever fails inside is a failed check and the
    /// rest is read.
    [[nodiscard]] KARStatus Deserialize(const KARMPDeserializer* deserializer);

    /// Tell the loader of each controlled variable that has a value to keep it there, or to let it
    /// vary again; the variables stay as they are. A variable without a loader is passed over.
    ///
    /// These and the operations below walk over what is listed when they begin. An entity that
    /// cannot be had any more is a failed check, and the others get their turn.
    KARStatus FixAllControlledVariables();
    KARStatus UnfixAllControlledVariables();
    /// Tell the loader of each body that is not fixed to hold it, or to release it; no body becomes
    /// fixed by that. A loader that cannot be fetched is a failed check.
    KARStatus FixAllFreeBodies();
    KARStatus UnfixAllFreeBodies();
    /// True when each active constraint holds by the answer of its loader; one without a loader
    /// does not. The first that does not ends the walk. A constraint that cannot be had is passed
    /// over without a report.
    bool IsSatisfied() const;
    /// Gives the largest residual of all constraints, inactive ones included, as their loaders
    /// measure it; 0 when none is larger. Always true.
    bool IsSatisfied(double& worst) const;
    /// False when a body with a shape has no mass.
    bool IsWeighted() const;
    /// Have each active sensor forget its measurement, or measure. What a sensor answers is not
    /// passed on.
    KARStatus ResetSensors();
    KARStatus UpdateSensors();
    /// Tells the loader of each constraint, active or not, to bring the constraint's parameters up
    /// to date. A loader that cannot be fetched is a failed check.
    KARStatus UpdateConstraintParameters();

    /// A new world, under a basic world of its own, with a duplicate of every listed entity, filed
    /// under the same keys, and with the settings, but for unit, ground body, loader and table.
    ///
    /// No duplicate is linked to another one: it has what its class's copy constructor keeps. The
    /// globals are further duplicates, which no registry lists; beside those of the source's
    /// globals the registries list the three that every new world has. What fails for an entity is
    /// a failed check, and the others are duplicated. The duplicates do not stand under the basic
    /// world.
    QOBSharedHandle<KARMPWorld> Clone() const;
    /// The same with the entities of a list only, in its order, wherever they are listed. The
    /// duplicates of joints, bodies, constraints, variables, geometries and shapes are linked to
    /// one another as their sources are; a link that leads out of the list is dropped. Connectors
    /// and values are passed over, a null handle is a failed check. Of an entity that the list
    /// holds twice there are two duplicates, and the second one gets the links.
    ///
    /// Linked duplicates hold one another: a caller who wants them to go with the world places them
    /// under its basic world.
    QOBSharedHandle<KARMPWorld> CloneWithFilter(const QOBSharedList<KARMPEntity>& filter) const;

protected:
    static QOBSharedHandle<KARMPWorld> CreateObject(QOBSharedHandle<QOBBasicWorld> basicWorld);
    static QOBSharedHandle<KARMPWorld> CloneObject(QOBSharedHandle<KARMPWorld> source,
                                                   CopyMode mode,
                                                   QOBSharedHandle<QOBBasicWorld> basicWorld);
    static void DestroyObject(QOBSharedHandle<KARMPWorld> world);

    KARMPWorld();
    /// A copy lists the same entities and shares the globals and the equation factory; it has no
    /// loader, no table and no ground body.
    KARMPWorld(const KARMPWorld& source, CopyMode mode);
    ~KARMPWorld() override;

    /// Destroys the global axis system when there is also a global body.
    KARStatus RemoveGlobals();

private:
    friend struct karmp::RegistryAccess;
    friend class karmp::WorldCloner;
    friend class karmp::WorldFiler;
    using Registries = karmp::RegistrySet<karmp::Families>;

    // The globals that the world made hold one another. It remembers them, so that they do not
    // outlive it when they were replaced. Destroyed after the registries, which refer to them too.
    class OwnGlobals
    {
    public:
        OwnGlobals();
        OwnGlobals(const OwnGlobals& source);
        OwnGlobals& operator=(const OwnGlobals&) = delete;
        ~OwnGlobals();

        QOBSharedHandle<KARMPBody> body;
        QOBSharedHandle<KARMPAxisSystem> axisSystem;
    };

    // For a change, which is counted.
    template <class T>
    KARMPRegistry<T>& Registry()
    {
        ++m_changes;
        return m_registries;
    }
    template <class T>
    const KARMPRegistry<T>& Registry() const
    {
        return m_registries;
    }
    void orphanMembers();
    void CreateGlobals();
    void PlaceValue(const QOBSharedHandle<KARMPValue>& value);

    OwnGlobals m_ownGlobals;
    std::uint32_t m_lastEntityId = 2;
    std::uint32_t m_changes = 0; // of the registries, by which a list of them knows that it is old
    double m_linearTolerance = 0.001;
    double m_angularTolerance = 1e-09;
    KARMathPoint m_origin;
    std::array<double, 3> m_size{1000000.0, 1000000.0, 1000000.0};
    KARMathVector m_gravity;
    KARBaseUnknown* m_loader = nullptr; // borrowed
    int m_loaderKind = 0;
    KARBaseUnknown* m_table = nullptr; // counted
    Registries m_registries;
    QOBSharedHandle<KARMPBody> m_globalBody;
    QOBSharedHandle<KARMPAxisSystem> m_globalAxisSystem;
    QOBSharedHandle<KARMPVariable> m_globalTime;
    std::shared_ptr<KARWBFactory> m_equationFactory; // shared with copies of the world
    KARMPUnit::Enum m_lengthUnit = KARMPUnit::Millimeter;
    QOBSharedHandle<KARMPBody> m_groundBody;
};

/// Values also become logical children of the basic world, if they are none yet.
template <>
KARMP_API KARStatus KARMPWorld::Add(const QOBSharedHandle<KARMPValue>& value);
/// The same under two keys.
template <>
KARMP_API KARStatus KARMPWorld::Add(KARBaseUnknown_var key1, KARBaseUnknown_var key2,
                                    const QOBSharedHandle<KARMPValue>& value);

#pragma once

#include "KARMPAttributeList.h"
#include "KARMPEntityIdentity.h"
#include "KARMPEnumerations.h"
#include "KARMPExport.h"
#include "KARMPLink.h"
#include "KARMPLinkList.h"
#include "KARMPRareText.h"
#include "KARSharedText.h"
#include "KARStatus.h"
#include "KARString.h"
#include "QOBBasicEntity.h"

#include <memory>
#include <string>
#include <string_view>

class KARBaseUnknown;
class KARIMPEntityLoader;
class KARMPDeserializer;
class KARMPEntityTable;
class KARMPOutput;
class KARMPParameter;
class KARMPSerializer;
class KARMPState;
class KARMPWorld;
class KAROmxAny;
template <typename T>
class KAROmxArray;
template <typename K, typename V>
class KAROmxOMap;
class KARUuid;

namespace karmp {
class AttributeIndex;
}

/// Base of everything in a world: bodies, joints, constraints, sensors, values and so on.
///
/// An entity is created on the heap by its class's create or by the factory and held by handles. It
/// owns the loader that a solver attaches to it and counts a reference on the model object of the
/// modelling application.
///
/// Every operation returns 0 where nothing else is said. An Add of what is listed already
/// returns 1. A null handle or object where one is needed is a failed check and a failure. An index
/// outside a list gives a null handle and a failure, without a report.
///
/// Attributes are also found by a path: the GetID of an attribute that the entity lists, then those
/// of a child, of a child's child and so on. Of several with one text the first one counts. Texts
/// are compared byte for byte.
class KARMP_API KARMPEntity : public QOBBasicEntity
{
    KARMP_ABSTRACT_ENTITY(KARMPEntity, QOBBasicEntity)

public:
    /// Runs the teardown of the entity once: drops its lists and its parent.
    void orphanObject() override;

    /// Stores the building mode.
    virtual KARStatus SetBuildingMode(KARMPBuildingMode::Enum mode);
    /// Gives the building mode.
    virtual KARStatus GetBuildingMode(KARMPBuildingMode::Enum& mode) const;
    /// Attaches a solver's loader, which the entity owns from then on. A loader that it replaces is
    /// not deleted.
    virtual KARStatus SetLoader(KARIMPEntityLoader* loader);
    /// Gives the loader, null without one.
    virtual KARStatus GetLoader(KARIMPEntityLoader*& loader) const;
    /// Tells whether the entity stands under a basic world.
    virtual KARStatus IsInWorld(bool& inWorld) const;
    /// Finds the world of the entity: the extension of the basic world above it. Without one a
    /// failed check and a failure.
    virtual KARStatus GetWorld(QOBSharedHandle<KARMPWorld>& world) const;
    /// Makes the entity active; the loader, if any, is told of a change and gives the result.
    virtual KARStatus Activate();
    /// Makes the entity inactive; the loader, if any, is told of a change and gives the result.
    virtual KARStatus Deactivate();
    /// True while the entity is active, as a new one is.
    virtual bool IsActive() const;
    /// Links the modelling application's object with a reference on it, and releases the one that
    /// was linked. A null object changes nothing.
    virtual KARStatus SetModelObject(KARBaseUnknown* object);
    /// Gives the model object with a reference for the caller; null and a failure without one.
    virtual KARStatus GetModelObject(KARBaseUnknown*& object) const;
    /// Writes the entity's own content into an element. Failures inside are reported.
    virtual KARStatus Serialize(KARMPSerializer* serializer) const;
    /// Reads the entity's own content from an element, resolving references by the table. Failures
    /// inside are reported.
    virtual KARStatus Deserialize(const KARMPDeserializer* deserializer,
                                  const KARMPEntityTable& entities);
    /// 1: entities of one model may be used from several threads, one at a time.
    virtual int IsThreadSafe() const;

protected:
    /// Drops the links that the class keeps; called when the entity is orphaned.
    virtual void ClearContainers();
    /// Takes this entity out of all that link to it; called when the entity is orphaned.
    virtual KARStatus RemoveParent();

    KARMPEntity();
    /// A copy takes the plain values and the parent; it has no identifier, no loader and no lists.
    KARMPEntity(const KARMPEntity& source, CopyMode mode);
    ~KARMPEntity() override;

public:
    /// Appends an attribute to the list of its kind.
    KARStatus AddParameter(const QOBSharedHandle<KARMPParameter>& parameter);
    KARStatus AddState(const QOBSharedHandle<KARMPState>& state);
    KARStatus AddOutput(const QOBSharedHandle<KARMPOutput>& output);
    /// Appends an element, whose parent entity this one becomes.
    KARStatus AddAggregatedElement(const QOBSharedHandle<KARMPEntity>& element);
    /// Lengths of the lists.
    int GetParameterCount() const { return Rare().parameters.Count(); }
    int GetStateCount() const { return Rare().states.Count(); }
    int GetOutputCount() const { return Rare().outputs.Count(); }
    int GetAggregatedElementCount() const { return Rare().aggregatedElements.Count(); }
    /// Give the entry of a list at an index from 0.
    KARStatus GetParameter(int index, QOBSharedHandle<KARMPParameter>& parameter) const
    {
        return Rare().parameters.Get(index, parameter);
    }
    KARStatus GetState(int index, QOBSharedHandle<KARMPState>& state) const
    {
        return Rare().states.Get(index, state);
    }
    KARStatus GetOutput(int index, QOBSharedHandle<KARMPOutput>& output) const
    {
        return Rare().outputs.Get(index, output);
    }
    KARStatus GetAggregatedElement(int index, QOBSharedHandle<KARMPEntity>& element) const
    {
        return Rare().aggregatedElements.Get(index, element);
    }

    /// Give the attribute at a path. Without one, or with an empty path, a null handle and a
    /// failure, without a report.
    KARStatus GetParameter(const KAROmxArray<KARString>& path,
                           QOBSharedHandle<KARMPParameter>& parameter) const;
    KARStatus GetState(const KAROmxArray<KARString>& path,
                       QOBSharedHandle<KARMPState>& state) const;
    KARStatus GetOutput(const KAROmxArray<KARString>& path,
                        QOBSharedHandle<KARMPOutput>& output) const;
    /// Append the listed attributes of a kind, each followed by all of its descendants; 1 when none
    /// is listed. An attribute that is its own descendant is a failed check and a failure, which
    /// ends the walk.
    KARStatus GetAllParameters(QOBSharedVector<KARMPParameter>& parameters) const;
    KARStatus GetAllStates(QOBSharedVector<KARMPState>& states) const;
    KARStatus GetAllOutputs(QOBSharedVector<KARMPOutput>& outputs) const;
    /// Give what the value at an index holds, in the attribute at a path, as
    /// KARMPAttribute::GetValue gives it: T is unsigned char, double or KARUnicodeString. A path
    /// without an attribute is a failed check and a failure.
    template <class T>
    KARStatus GetParameterValue(const KAROmxArray<KARString>& path, int index, T& value) const;
    template <class T>
    KARStatus GetStateValue(const KAROmxArray<KARString>& path, int index, T& value) const;
    template <class T>
    KARStatus GetOutputValue(const KAROmxArray<KARString>& path, int index, T& value) const;
    /// Store values by the paths of their attributes, each path a text with "." between its
    /// elements. The attribute's type word tells what an entry must hold and which class its only
    /// value has: "double" and "int" a KARMPConstant, "string" and "enum" a KARMPString, "bool" a
    /// KARMPBoolean; an output of type "octet" takes bytes and needs no value. After each the
    /// subscribers of this entity are told that it changed. Whatever cannot be stored is a failed
    /// check, and the others are stored all the same; the status is 0. A value of another class
    /// throws QOBEInvalidCast.
    KARStatus UpdateOutputs(const KAROmxOMap<KARString, KAROmxAny>& entries);
    KARStatus UpdateStates(const KAROmxOMap<KARString, KAROmxAny>& entries);

    /// Gives the entity that aggregates this one; a null handle and a failure without one.
    KARStatus GetParentEntity(QOBSharedHandle<KARMPEntity>& parent) const
    {
        return Rare().parentEntity.Get(parent);
    }
    /// Stores the entity that aggregates this one.
    KARStatus SetParentEntity(const QOBSharedHandle<KARMPEntity>& parent);

    /// Free text of the modelling application, not the identifier.
    KARString GetID() const { return m_id.Get(); }
    /// Stores the text.
    KARStatus SetID(const KARString& id);
    /// Borrowed unique value of the modelling application.
    const KARUuid* GetUniqueId() const { return Rare().uniqueId; }
    /// Borrows the value.
    KARStatus SetUniqueId(const KARUuid* uniqueId);
    /// Gives the visual object with a reference for the caller, null without one.
    KARStatus GetMPVisuObject(KARBaseUnknown*& object) const;
    /// Borrows a visual object without counting it.
    KARStatus SetMPVisuObject(const KARBaseUnknown* object);

    /// Gives the identifier by which the entity is known in documents, made on first need and
    /// never changed after that. When its allocation fails, a failed check and KAROutOfMemory.
    KARStatus GetIdentifier(std::wstring& identifier) const;
    /// Gives the entity its identifier. One that has an identifier keeps it: a failed check and a
    /// failure.
    KARStatus SetIdentifier(const std::wstring& identifier);

    /// Tells the subscribers that the entity changed.
    KARStatus NotifyUpdate() const;

private:
    friend class karmp::AttributeIndex;
    friend class KARMPHandleSequence;

    /// What most entities of a model have none of. One pointer stands for all of it, since each
    /// line of memory that an entity has less makes every walk over a large model faster.
    struct RareMembers
    {
        KARBaseUnknown* modelObject = nullptr; // counted
        KARBaseUnknown* visuObject = nullptr;  // borrowed
        KARMPLink<KARMPEntity> parentEntity;
        KARMPAttributeList<KARMPParameter> parameters;
        KARMPAttributeList<KARMPState> states;
        KARMPAttributeList<KARMPOutput> outputs;
        KARMPLinkList<KARMPEntity> aggregatedElements;
        const KARUuid* uniqueId = nullptr; // borrowed

        // What a copy of the entity takes.
        std::unique_ptr<RareMembers> Copied() const;
    };

    // For reading; for an entity that has none of it, what is empty for all.
    const RareMembers& Rare() const { return m_rare != nullptr ? *m_rare : s_none.members; }
    RareMembers& MakeRare();

    // Prefetches the texts that die with the entity.
    void PrefetchTexts() const noexcept
    {
        getStoredName().PrefetchShared();
        m_identifier.PrefetchShared();
    }
    std::string_view IDText() const { return m_id.View(); }
    KARStatus GenerateID(std::wstring& identifier) const;
    KARStatus GenerateID2(std::wstring& identifier) const;
    KARStatus EnsureIdentifier(const kar::SharedText*& identifier) const;
    KARStatus TakeIdentifier(std::wstring_view identifier);
    /// True unless "NO_MP_NAME_FOR_SERIALIZATION" was set when the process first wrote an entity;
    /// of the names in references KARMPSerializer decides by itself.
    static bool IsNameWritten();
    void ClearContainersBase();
    void orphanMembers();

    // Never destroyed, since entities with static storage may ask for it at any time.
    union NoMembers {
        constexpr NoMembers() : members() {}
        ~NoMembers() {}
        RareMembers members;
    };
    static const NoMembers s_none;

    // The first and the last ones fill the space that the base and this class leave.
    KARMPBuildingMode::Enum m_buildingMode = {};
    KARIMPEntityLoader* m_loader = nullptr; // owned; a pointer, since replacing does not delete
    std::unique_ptr<RareMembers> m_rare;
    mutable kar::SharedText m_identifier;
    karmp::RareText m_id;
    mutable bool m_hasIdentifier = false; // which may be empty
    mutable bool m_isIndexed = false;     // an index may know the application's text
    bool m_isActive = true;
};

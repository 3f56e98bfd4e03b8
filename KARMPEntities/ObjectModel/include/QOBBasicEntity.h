#pragma once

#include "KARSharedText.h"
#include "QOBExtension.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

class QOBBasicWorld;

/// A named object that stands in a world's hierarchy.
class KAR_API QOBBasicEntity : public QOBExtendibleObject
{
    QOB_CLASS(QOBBasicEntity)

public:
    /// Which form of the name is wanted; every form is the name given to setEntityName.
    enum EntityNameMode : int { InternalName = 0, ExternalName = 1 };

    /// Separator of the parts of an external name.
    static const wchar_t ExternalNameSeparator;

    /// Gives the entity a name; names need not be unique.
    void setEntityName(const std::wstring& name);
    /// The same for a name of which the caller knows that all characters are ASCII.
    void setNarrowName(std::string_view name) { m_name.SetNarrow(name); }
    /// The name given to setEntityName, empty before; a reference that lasts until the next name.
    const std::wstring& getEntityName(EntityNameMode mode = InternalName,
                                      wchar_t separator = ExternalNameSeparator) const;
    /// The same as it is stored, for callers that need no reference to a wide text.
    const kar::SharedText& getStoredName() const noexcept { return m_name; }

    /// The world under which the entity stands, null if none. Constant time.
    QOBSharedHandle<QOBBasicWorld> getWorld() const;
    /// Makes an entity a child of this one and of no other. A null handle, this entity itself and
    /// one of its ancestors are refused. Constant time for an entity without children.
    KARStatus addLogicalChild(const QOBSharedHandle<QOBBasicEntity>& child);
    /// True when the entity stands directly under this one. Constant time.
    bool hasLogicalChild(const QOBSharedHandle<QOBBasicEntity>& child) const;
    /// Number of entities directly under this one.
    std::size_t getLogicalChildCount() const;
    /// Calls `visit` with each entity directly under this one, in the order of their placing.
    /// Placing or orphaning one of them meanwhile is an error.
    void visitLogicalChildren(const std::function<void(QOBBasicEntity&)>& visit) const;

    /// Takes the entity out of the hierarchy and lets its children go.
    void orphanObject() override;
    QOBSharedObject* _replicateObject() const override;
    QOBSharedObject* _duplicateObject(CopyMode mode) const override;

    /// The dynamic class's name as wide text.
    virtual std::wstring getEntityTypeName() const;
    /// Drops what was recorded; nothing is recorded here.
    virtual void clearHistory();
    /// Time of the simulation that the entity takes part in, in seconds; 0 here.
    virtual double getSimulationTime() const;
    /// Brings the entity back to its initial state; nothing to do here.
    virtual void resetEntity();

protected:
    QOBBasicEntity() = default;
    /// A copy takes the name; it stands under nothing and has no children.
    QOBBasicEntity(const QOBBasicEntity& source, CopyMode)
        : QOBExtendibleObject(source), m_name(source.m_name)
    {}
    ~QOBBasicEntity() override;

private:
    struct Children
    {
        std::vector<QOBSharedHandle<QOBBasicEntity>> slots; // a null slot is free
        std::size_t count = 0;
    };
    // Lists of children that left, each of which is let go first to last.
    class FormerChildren
    {
    public:
        FormerChildren() = default;
        FormerChildren(FormerChildren&&) = default;
        FormerChildren& operator=(FormerChildren&&) = delete;
        ~FormerChildren();

        std::vector<std::unique_ptr<Children>> families;
    };

    friend class QOBBasicWorld;

    void enterWorld(QOBBasicWorld* world);
    QOBBasicEntity* childFrom(std::size_t slot) const;
    void leaveParent();
    void releaseChildren();
    // Orphans all that hangs under this entity, whatever its depth.
    FormerChildren orphanLogicalChildren();
    void compactChildren();

    kar::SharedText m_name;
    QOBBasicEntity* m_parent = nullptr;
    QOBBasicWorld* m_world = nullptr;
    std::unique_ptr<Children> m_children;
    std::uint32_t m_slot = 0; // index among the parent's children; last, since it leaves space
};

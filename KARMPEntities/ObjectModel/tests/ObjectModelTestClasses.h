// Small classes that the object model's tests are made with. Each counts its living objects.
#pragma once

#include "QOBBasicWorld.h"

#include <functional>
#include <vector>

/// An object that may hold on to another one.
class Link : public QOBSharedObject
{
public:
    Link() { ++s_living; }
    ~Link() override { --s_living; }

    QOBSharedHandle<Link> next;
    static inline int s_living = 0;
};

class DerivedLink : public Link
{};

class Unrelated : public QOBSharedObject
{};

/// An entity that tells of its teardown.
class Item : public QOBBasicEntity
{
public:
    explicit Item(std::vector<const Item*>* orphaned = nullptr) : m_orphaned(orphaned)
    {
        ++s_living;
    }
    ~Item() override { --s_living; }

    void orphanObject() override
    {
        if (isOrphaned())
            return;
        if (m_orphaned != nullptr)
            m_orphaned->push_back(this);
        partner.detach();
        QOBBasicEntity::orphanObject();
    }

    QOBSharedHandle<Item> partner;
    static inline int s_living = 0;

private:
    std::vector<const Item*>* m_orphaned;
};

/// An extension, bound to a world as the model's root is.
class Plan : public QOBExtensionObject
{
public:
    Plan() { ++s_living; }
    Plan(const Plan& source) : QOBExtensionObject(source) { ++s_living; }
    ~Plan() override
    {
        if (atEnd)
            atEnd(*this);
        --s_living;
    }

    static const QOBUUID& ClassID()
    {
        static const QOBUUID id("0A2C5D3B-8E57-4C0F-9E0B-5A3B5D3E7F10");
        return id;
    }
    const QOBUUID& getClassID() const override { return ClassID(); }
    QOBSharedObject* _duplicateObject(CopyMode) const override
    {
        auto* copy = new Plan(*this);
        copy->addReference();
        return copy;
    }

    std::function<void(Plan&)> atEnd;
    static inline int s_living = 0;
};

inline QOBSharedHandle<Item> MakeItem(std::vector<const Item*>* orphaned = nullptr)
{
    return QOBSharedHandle<Item>(new Item(orphaned));
}

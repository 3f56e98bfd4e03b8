// What the tests of constraints share.
#pragma once

#include "KARMPConstraint.h"
#include "KARMPEntityTable.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"

#include <memory>
#include <string>
#include <string_view>

/// A constraint whose loader cannot be fetched.
template <class Constraint>
class Unfetchable : public Constraint
{
public:
    using Constraint::GetLoader;

    static QOBSharedHandle<Constraint> create()
    {
        return QOBSharedHandle<Constraint>(new Unfetchable);
    }
    KARStatus GetLoader(KARIMPEntityLoader*&) const override { return KARFailure; }
};

/// A constraint that gives a loader without having been given one.
template <class Constraint, class Loader>
class WithOwnLoader : public Constraint
{
public:
    using Constraint::GetLoader;

    static QOBSharedHandle<Constraint> create(Loader& loader)
    {
        return QOBSharedHandle<Constraint>(new WithOwnLoader(loader));
    }
    KARStatus GetLoader(Loader*& loader) const override
    {
        loader = &m_loader;
        return KARSuccess;
    }

private:
    explicit WithOwnLoader(Loader& loader) : m_loader(loader) {}

    Loader& m_loader;
};

/// A constraint that counts how many of its class are alive.
template <class Constraint>
class Counted : public Constraint
{
public:
    Counted() { ++Alive; }
    ~Counted() override { --Alive; }

    static inline int Alive = 0;
};

/// The element of a constraint as it is read, with what the entity base asks for.
inline TestDeserializer& AddConstraint(TestDeserializer& root, std::wstring_view name)
{
    return root.Add(name)
        .Attribute(L"id", L"C1")
        .Attribute(L"name", L"c")
        .Attribute(L"isActive", L"yes");
}

/// What a constraint writes, read into another one. Gives the status of reading.
template <class From, class To>
KARStatus CopyThroughTree(const From& from, To& to, const KARMPEntityTable& entities = {},
                          bool asText = false)
{
    TestSerializer written;
    const KARStatus status = from->Serialize(&written);
    if (KARFailed(status))
        return status;
    const auto read = TestDeserializer::From(written, {.asText = asText});
    return to->Deserialize(read.get(), entities);
}

// What the tests of content lists share: an entity, and lists that are written and read.
#pragma once

#include "KARMPConstant.h"
#include "KARMPContentWalk.h"
#include "KARMPFrames.h"
#include "KARMPTestFixture.h"
#include "TestDeserializer.h"
#include "TestEntity.h"
#include "TestSerializer.h"

#include <string>
#include <vector>

/// A record of such an entity.
struct ContentTestRecord
{
    bool IsPositive() const { return number > 0.0; }

    double number = 0.0;
    KARMathVector vector;
    QOBSharedHandle<TestEntity> target;
};

/// An entity with a member for each kind of item, which notes the calls of its setters.
class ContentTestEntity : public KARMPEntity
{
    KARMP_ENTITY(ContentTestEntity, KARMPEntity)

public:
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;

    KARStatus SetNumber(double value)
    {
        calls.emplace_back("number");
        number = value;
        return setterStatus;
    }
    void SetInteger(int value)
    {
        calls.emplace_back("integer");
        integer = value;
    }
    KARStatus GetNumber(double& value) const
    {
        value = number;
        return getterStatus;
    }
    void NoteGroup() { calls.emplace_back("group"); }
    bool IsWanted() const { return isWanted; }
    KARStatus Link(const QOBSharedHandle<TestEntity>& target)
    {
        calls.emplace_back("link");
        return KARFailed(setterStatus) ? setterStatus : link.Set(target);
    }
    KARStatus Append(const QOBSharedHandle<TestEntity>& target)
    {
        list.Append(target);
        return setterStatus;
    }
    int Count() const { return list.Count(); }
    /// Fails for the first entry when the getters fail.
    KARStatus At(int index, QOBSharedHandle<TestEntity>& target) const
    {
        return index == 0 && KARFailed(getterStatus) ? getterStatus : list.Get(index, target);
    }
    KARStatus GetLink(QOBSharedHandle<TestEntity>& target) const
    {
        target = link.Handle();
        return getterStatus;
    }
    KARStatus SetConstant(const QOBSharedHandle<KARMPConstant>& target)
    {
        return KARFailed(setterStatus) ? setterStatus : constant.Set(target);
    }
    KARStatus GetConstant(QOBSharedHandle<KARMPConstant>& target) const
    {
        target = constant.Handle();
        return getterStatus;
    }

    int CountRecords() const { return static_cast<int>(records.size()); }
    /// Fails for the first record when the getters fail.
    KARStatus GetRecord(int index, ContentTestRecord& record) const
    {
        if (index == 0 && KARFailed(getterStatus))
            return getterStatus;
        record = records[static_cast<std::size_t>(index)];
        return KARSuccess;
    }
    KARStatus AddRecord(const ContentTestRecord& record)
    {
        if (!KARFailed(setterStatus))
            records.push_back(record);
        return setterStatus;
    }
    KARStatus SetBytes(const std::vector<unsigned char>& value)
    {
        bytes = value;
        return setterStatus;
    }
    KARStatus GetBytes(std::vector<unsigned char>& value) const
    {
        value = bytes;
        return getterStatus;
    }

    double number = 0.0;
    double second = 0.0;
    int integer = 0;
    bool flag = false;
    KARUnicodeString text;
    KARMPAlignment::Enum word = {};
    KARMPAlignment::Enum code = {};
    bool isYes = false;
    KARMathPoint point;
    KARMathVector vector;
    KARMathTransformation transformation;
    KARMathTransformation2D planar;
    double bound = 0.0;
    bool hasBound = false;
    KARMPLink<TestEntity> link;
    KARMPLinkList<TestEntity> list;
    KARMPLink<KARMPConstant> constant;
    ContentTestRecord single;
    std::vector<ContentTestRecord> records;
    std::vector<unsigned char> bytes;
    bool isWanted = true;
    KARStatus getterStatus = KARSuccess;
    KARStatus setterStatus = KARSuccess;
    std::vector<std::string> calls;

protected:
    ContentTestEntity() = default;
    ContentTestEntity(const ContentTestEntity& source, CopyMode mode) : Super(source, mode) {}
};

/// A list of items whose failures count.
template <std::size_t... N>
constexpr auto Counting(const karmp::ItemList<N>&... items)
{
    return karmp::Element(L"E", "An element.", karmp::CountingFrame, items...);
}

/// The content of a list of namespace scope, to register under the name of a class.
template <const auto& List>
const karmp::Content& ContentFrom()
{
    static const karmp::Content content = [] {
        karmp::Content made = List.content;
        made.items = List.list.items;
        return made;
    }();
    return content;
}

/// Writes lists for `entity` into `root` and reads them from `tree`.
class ContentWalk : public KARMPTestFixture
{
protected:
    template <std::size_t N>
    static karmp::Content Made(const karmp::ContentList<N>& list)
    {
        karmp::Content content = list.content;
        content.items = list.list.items;
        return content;
    }
    template <std::size_t N>
    KARStatus Write(const karmp::ContentList<N>& list, karmp::WriteBase base = nullptr)
    {
        return karmp::WriteContent(Made(list), karmp::OwnerOf(*entity), &root, base);
    }
    template <std::size_t N>
    KARStatus Read(const karmp::ContentList<N>& list, karmp::ReadBase base = nullptr)
    {
        return karmp::ReadContent(Made(list), karmp::OwnerOf(*entity), &tree, entities, base);
    }
    QOBSharedHandle<TestEntity> Target(const std::wstring& id)
    {
        const auto target = TestEntity::create(L"name of " + id);
        target->SetIdentifier(id);
        entities.Set(id, target);
        return target;
    }

    QOBSharedHandle<ContentTestEntity> entity = ContentTestEntity::create(L"entity");
    TestSerializer root;
    TestDeserializer tree;
    KARMPEntityTable entities;
};

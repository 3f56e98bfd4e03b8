#pragma once

#include "KARMPEntity.h"
#include "KARMPSerializer.h"
#include "KARMPWorldDifference.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace karmp::documents {

class ClassItems;

/// The element that an entity writes, with its doubles as they are, to be looked at.
class EntityElement final : public KARMPSerializer
{
public:
    /// A root without content.
    EntityElement();

    /// Null when the entity writes no element.
    static const EntityElement* Write(const KARMPEntity& entity, EntityElement& root);

    std::wstring_view Name() const { return GetId(); }
    /// The element's value; none without one.
    Value Content() const;
    int ChildCount() const { return static_cast<int>(GetElementCount()); }
    const EntityElement& Child(int index) const
    {
        return static_cast<const EntityElement&>(*GetElement(index));
    }
    int AttributeCount() const { return static_cast<int>(GetAttributeCount()); }
    std::wstring_view AttributeName(int index) const { return GetAttributeId(index); }
    Value AttributeValue(int index) const;
    /// True for an element whose text stands for bytes, the number of which is its "length".
    bool IsStream() const;
    /// The attribute of a name; none when there is none.
    Value AttributeNamed(std::wstring_view name) const;
    /// The values in the element, for people.
    std::wstring Summary() const;

    KARStatus Render(std::wstring& text) const override;
    KARStatus Save(const char* path) const override;

protected:
    KARMPSerializer* CreateChildElement() override;
};

/// What the element of one of two corresponding entities holds in another way than that of the
/// other, apart from what the items of their class give. Of lists of different lengths the entries
/// that are the same from the first or from the last one on are passed over, so that an entry that
/// was added is one difference; the others compare by their positions.
class ElementComparison
{
public:
    /// Told of each difference with its path in the element.
    using Note = std::function<void(std::wstring&& path, Value&& before, Value&& after)>;
    /// True when two identifiers, each of one world, are those of corresponding entities.
    using AreSame = std::function<bool(const std::wstring& before, const std::wstring& after)>;

    ElementComparison(const ClassItems& items, const DifferenceOptions& options, Note note,
                      AreSame areSame)
        : m_items(items), m_options(options), m_note(std::move(note)), m_areSame(std::move(areSame))
    {}

    void Compare(const KARMPEntity& before, const KARMPEntity& after);

private:
    struct Pair
    {
        const EntityElement* before;
        const EntityElement* after;
        std::wstring path;
    };
    void CompareFrom(Pair first);
    /// True when neither element holds what the other one does not.
    bool HoldSame(const Pair& pair) const;
    void CompareAttributes(const Pair& pair);
    void CompareChildren(const Pair& pair);
    void Tell(std::wstring path, Value before, Value after);

    const ClassItems& m_items;
    const DifferenceOptions& m_options;
    Note m_note;
    AreSame m_areSame;
    std::vector<Pair> m_pairs;
};

} // namespace karmp::documents

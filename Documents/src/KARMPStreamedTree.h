#pragma once

#include "KARMPDocumentWriter.h"
#include "KARMPEntityText.h"
#include "KARMPMessages.h"
#include "KARMPNodeMemory.h"
#include "KARMPProgressSteps.h"
#include "KARMPWrittenClasses.h"
#include "KARMPXmlRenderer.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace karmp::documents {

/// Looks at each entity of a world that is written.
class EntityObserver
{
public:
    EntityObserver() = default;
    EntityObserver(const EntityObserver&) = delete;
    EntityObserver& operator=(const EntityObserver&) = delete;

    /// Called when an entity was written by the list of its content, with its links, and before one
    /// is written by code of its class, with null.
    virtual void Note(const KARMPEntity& entity, const WrittenLinks* links) = 0;

protected:
    ~EntityObserver() = default;
};

/// The tree of a document that is rendered while it is written. Complete children are rendered at
/// once, and their arena is reused for the next ones: the tree of a large world is many times the
/// size of its text. Text and messages are those of a tree that is rendered when it is complete.
class StreamedTree
{
public:
    /// Appends to `bytes`; all arguments but the version must outlive the tree. A number
    /// that is not finite is a warning among `numbers`, unless that is null.
    StreamedTree(std::wstring_view version, Doubles doubles, std::string& bytes,
                 const Limits& limits, Messages& messages, Messages* numbers = nullptr);

    /// The root for a writer. A node renders by itself as long as it holds all its children.
    KARMPSerializer& Root();
    /// Tells an observer, which must outlive the tree, of each entity.
    void Observe(EntityObserver& observer) { m_observer = &observer; }
    /// The entity that is being written; null between two of them.
    const KARMPEntity* Entity() const { return m_entity; }
    /// The steps that the entities written are.
    ProgressSteps& Progress() { return m_progress; }
    /// Renders the rest. After an error, which is reported, `bytes` is as it was.
    bool Finish();

private:
    class Node;

    NodeMemory& MemoryAt(std::size_t depth);
    void ChildrenComplete(Node& node);
    void EntityComplete();
    bool WriteEntity(const Node& list, const KARMPEntity& entity, KARStatus& status);
    void TellOfNumbers(const KARMPEntity& entity, std::size_t begin);

    std::string& m_bytes;
    std::size_t m_before;
    const Limits& m_limits;
    Messages* m_numbers;
    EntityObserver* m_observer = nullptr;
    const KARMPEntity* m_entity = nullptr;
    XmlRenderer m_renderer;
    WrittenClasses m_classes;
    EntityText m_text;
    /// The arenas of the children of an element, by its depth, once some of them were rendered.
    std::vector<std::unique_ptr<NodeMemory>> m_memories;
    /// The node below which the last entity was written as text, so that none of its children is to
    /// be rendered.
    const Node* m_hasText = nullptr;
    NodeMemory m_rootMemory;
    Node* m_root;
    ProgressSteps m_progress;
};

} // namespace karmp::documents

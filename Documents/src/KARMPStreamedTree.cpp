#include "KARMPStreamedTree.h"

#include "KARMPContentItem.h"
#include "KARMPDocumentRecords.h"
#include "KARMPListedEntities.h"

#include <new>
#include <optional>
#include <utility>

namespace karmp::documents {

class StreamedTree::Node final : public KARMPDocumentWriter
{
public:
    Node(NodeMemory& memory, StreamedTree& tree)
        : KARMPDocumentWriter(memory), m_tree(tree), m_childMemory(&memory)
    {}
    static Node* Make(NodeMemory& memory, StreamedTree& tree)
    {
        return ::new (memory.Allocate(sizeof(Node))) Node(memory, tree);
    }

    using KARMPSerializer::SetExactDoubles;
    void SetChildMemory(NodeMemory& memory) { m_childMemory = &memory; }

    KARStatus Render(std::wstring& text) const override
    {
        return IsWhole() ? KARMPDocumentWriter::Render(text) : KARFailure;
    }
    KARStatus Save(const char* path) const override
    {
        return IsWhole() ? KARMPDocumentWriter::Save(path) : KARFailure;
    }
    void ChildrenComplete() override { m_tree.ChildrenComplete(*this); }
    bool WriteEntity(const KARMPEntity& entity, KARStatus& status) override
    {
        return m_tree.WriteEntity(*this, entity, status);
    }

private:
    KARMPSerializer* CreateChildElement() override { return Make(*m_childMemory, m_tree); }
    bool IsWhole() const { return m_childMemory == Memory(); }

    StreamedTree& m_tree;
    NodeMemory* m_childMemory;
};

StreamedTree::StreamedTree(std::wstring_view version, Doubles doubles, std::string& bytes,
                           const Limits& limits, Messages& messages, Messages* numbers)
    : m_bytes(bytes),
      m_before(bytes.size()),
      m_limits(limits),
      m_numbers(numbers),
      m_renderer(bytes, limits, messages, numbers),
      m_text(m_renderer.Out(), doubles == Doubles::Exact),
      m_root(Node::Make(m_rootMemory, *this))
{
    m_root->SetVersion(version);
    m_root->SetExactDoubles(doubles == Doubles::Exact);
}

KARMPSerializer& StreamedTree::Root()
{
    return *m_root;
}

bool StreamedTree::Finish()
{
    const bool rendered = m_renderer.Finish(*m_root);
    if (!rendered)
        m_bytes.resize(m_before);
    return rendered;
}

NodeMemory& StreamedTree::MemoryAt(std::size_t depth)
{
    while (m_memories.size() <= depth)
        m_memories.push_back(std::make_unique<NodeMemory>());
    return *m_memories[depth];
}

// The node and its own content are allocated in arenas of lesser depths, so that the arena of its
// depth holds only what has been rendered.
void StreamedTree::ChildrenComplete(Node& node)
{
    if (std::exchange(m_hasText, nullptr) == &node) {
        if (m_renderer.ChildDepth() == EntityDepth)
            EntityComplete();
        return;
    }
    const std::optional<std::size_t> depth = m_renderer.RenderChildren(*m_root, node);
    if (depth) {
        NodeMemory& memory = MemoryAt(*depth);
        memory.Reuse();
        node.SetChildMemory(memory);
        if (*depth + 1 == EntityDepth)
            EntityComplete();
    }
}

void StreamedTree::EntityComplete()
{
    m_entity = nullptr;
    m_progress.Step();
}

bool StreamedTree::WriteEntity(const Node& list, const KARMPEntity& entity, KARStatus& status)
{
    const Content* const content = m_classes.ContentOf(entity, list.Version());
    if (content != nullptr && content->leftOut != nullptr && content->leftOut(&entity)) {
        status = KARSuccess;
        return true;
    }
    m_entity = &entity;
    const bool isText = content != nullptr && m_limits.nameLength >= EntityText::LongestName &&
                        m_renderer.BeginChild(*m_root, list) &&
                        m_limits.depth >= m_renderer.ChildDepth() + EntityText::LargestDepth;
    if (!isText) {
        if (m_observer != nullptr)
            m_observer->Note(entity, nullptr);
        return false;
    }
    const std::size_t begin = m_renderer.Out().Size();
    m_text.Begin(m_renderer.ChildDepth());
    status = m_text.Write(*content, entity, list.Version());
    m_renderer.EndChild(m_text.ElementName());
    m_hasText = &list;
    if (m_observer != nullptr)
        m_observer->Note(entity, KARFailed(status) ? nullptr : &m_text.Links());
    if (m_numbers != nullptr && !m_text.NotFinite().empty())
        TellOfNumbers(entity, begin);
    return true;
}

void StreamedTree::TellOfNumbers(const KARMPEntity& entity, std::size_t begin)
{
    const std::wstring_view element = m_text.ElementName();
    const std::string path = m_renderer.ChildPath(element);
    const std::string_view text = m_renderer.Out().From(begin);
    std::wstring identifier;
    GetIdentifierOf(entity, identifier);
    const std::wstring_view name =
        EntityAccess::IsNameWritten<KARMPEntity>() ? entity.getEntityName() : std::wstring_view();
    for (const std::size_t offset : m_text.NotFinite()) {
        const std::size_t end = offset - begin;
        m_renderer.TellOfNumber(text.substr(end - 3, 3) == "nan",
                                identifier.empty() ? "World" : TitleOf(element, name, identifier),
                                path + PathWithin(text, end));
    }
}

} // namespace karmp::documents

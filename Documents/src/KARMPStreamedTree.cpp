#include "KARMPStreamedTree.h"

#include "KARMPDocumentRecords.h"

#include <new>
#include <optional>

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
      m_renderer(bytes, limits, messages, numbers),
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
    const std::optional<std::size_t> depth = m_renderer.RenderChildren(*m_root, node);
    if (depth) {
        NodeMemory& memory = MemoryAt(*depth);
        memory.Reuse();
        node.SetChildMemory(memory);
        if (*depth + 1 == EntityDepth)
            m_progress.Step();
    }
}

} // namespace karmp::documents

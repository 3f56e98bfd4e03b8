#pragma once

#include <cstddef>
#include <iterator>
#include <new>
#include <utility>
#include <vector>

namespace karmp {

/// Deletes the children of a node from the node's destructor, at any depth of the tree without
/// recursion.
///
/// The first node that is destroyed in a thread runs a loop over a stack of nodes. A node deleted
/// by that loop does not delete its children itself: it puts them on the stack. So the nodes'
/// destructors run in the same order as with recursion, a node's before its children's, a child's
/// whole subtree before the next child; only the base part of a node is destroyed before its
/// children are. A tree that a node's own destructor deletes is not left to the loop: its root
/// starts a loop of its own, and the tree is freed when that delete returns.
template <class Node>
class NodeTeardown
{
public:
    /// Deletes `children` in order, on behalf of the node `parent` that is being destroyed.
    template <class Children>
    static void DeleteChildren(const Node* parent, const Children& children) noexcept
    {
        NodeTeardown* const running = s_running;
        if (running != nullptr && running->m_current == parent) {
            running->Push(children);
        } else {
            NodeTeardown loop;
            s_running = &loop;
            loop.Push(children);
            loop.Run();
            s_running = running;
        }
    }

private:
    template <class Children>
    void Push(const Children& children) noexcept
    {
        const std::size_t before = m_stack.size();
        try {
            m_stack.resize(before + std::size(children));
        } catch (const std::bad_alloc&) {
            // Without this stack the children are deleted recursively, on the call stack.
            const Node* const current = std::exchange(m_current, nullptr);
            for (Node* child : children)
                delete child;
            m_current = current;
            return;
        }
        auto entry = m_stack.end();
        for (Node* child : children)
            *--entry = child;
    }

    void Run() noexcept
    {
        while (!m_stack.empty()) {
            Node* const node = m_stack.back();
            m_stack.pop_back();
            m_current = node;
            delete node;
        }
    }

    static inline thread_local NodeTeardown* s_running = nullptr;

    std::vector<Node*> m_stack;
    const Node* m_current = nullptr;
};

} // namespace karmp

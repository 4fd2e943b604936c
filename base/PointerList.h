#pragma once

#include <new>

namespace vek
{

/// A list of pointers in nodes of their own. It owns the nodes, never what the pointers point to.
template <class T>
class PointerList
{
public:
    class Node
    {
    public:
        T * Pointer() const noexcept { return m_pointer; }
        Node * Next() const noexcept { return m_next; }
        Node * Previous() const noexcept { return m_previous; }

    private:
        friend class PointerList;

        PointerList * m_list;
        T * m_pointer;
        Node * m_next;
        Node * m_previous;
    };

    PointerList() noexcept = default;
    PointerList(PointerList const &) = delete;
    PointerList & operator=(PointerList const &) = delete;
    ~PointerList() { Clear(); }

    unsigned int Count() const noexcept { return m_count; }
    bool Empty() const noexcept { return m_count == 0; }
    Node * First() const noexcept { return m_first; }
    Node * Last() const noexcept { return m_last; }

    /// The pointer at an index from the front; null for one past the end.
    T * At(unsigned int index) const noexcept
    {
        Node const * node = m_first;
        while (node && index--)
            node = node->m_next;
        return node ? node->m_pointer : nullptr;
    }
    bool Contains(T const * pointer) const noexcept
    {
        for (Node const * node = m_first; node; node = node->m_next)
            if (node->m_pointer == pointer)
                return true;
        return false;
    }

    /// Appends; false, with the list unchanged, when there is no memory for the node.
    bool AppendTail(T * pointer) noexcept
    {
        Node * const node = new (std::nothrow) Node;
        if (!node)
            return false;
        node->m_list = this;
        node->m_pointer = pointer;
        node->m_next = nullptr;
        node->m_previous = m_last;
        (m_last ? m_last->m_next : m_first) = node;
        m_last = node;
        ++m_count;
        return true;
    }
    /// Removes every node that holds the pointer.
    void Remove(T const * pointer) noexcept
    {
        for (Node * node = m_first; node;)
        {
            Node * const next = node->m_next;
            if (node->m_pointer == pointer)
                RemoveNode(node);
            node = next;
        }
    }
    /// Removes a node; one that is null or of another list is left alone.
    void RemoveNode(Node * node) noexcept
    {
        if (!node || node->m_list != this)
            return;
        (node->m_previous ? node->m_previous->m_next : m_first) = node->m_next;
        (node->m_next ? node->m_next->m_previous : m_last) = node->m_previous;
        --m_count;
        delete node;
    }
    /// Takes the first pointer out and returns it; null when the list is empty.
    T * TakeFirst() noexcept
    {
        T * const pointer = m_first ? m_first->m_pointer : nullptr;
        RemoveNode(m_first);
        return pointer;
    }
    void Clear() noexcept
    {
        while (m_first)
            RemoveNode(m_first);
    }

private:
    unsigned int m_count = 0;
    Node * m_first = nullptr;
    Node * m_last = nullptr;
};

} // namespace vek

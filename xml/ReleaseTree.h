#pragma once

#include "VekCore.h"

#include "base/Pool.h"

#include <limits.h>

#include <atomic>

namespace vek
{

/// Gives one reference back without the object's table; true when it was the last, and the object is to be destroyed.
inline bool DropReference(VekObjectCommonData & common) noexcept
{
    // The only holder need not count down indivisibly: nobody else can be holding or taking a reference.
    if (std::atomic_ref(common.refCount).load(std::memory_order_acquire) != 1)
        return VekInterlockedDecrement(common.refCount) == 0;
    common.refCount = 0;
    return true;
}

/// Moves all entries of a list to the end of another; false, with both unchanged, when memory is exhausted.
template <class Node>
bool MoveEntries(CVekPointerArray<Node> & from, CVekPointerArray<Node> & to) noexcept
{
    if (from.GetCount() > INT_MAX - to.GetCount() || !to.Reserve(to.GetCount() + from.GetCount()))
        return false;
    for (int i = 0; i < from.GetCount(); ++i)
        to.Append(from[i]); // room was made above
    while (from.GetCount() > 0)
        from.TakeLast();
    return true;
}

/// Gives back the references that a list of tree nodes holds, frees the list's storage, and destroys every node that
/// lost its last reference, with all below it that only it held. Works through trees of any depth and width without
/// recursion and without memory: a node that waits for the end of its children is linked through a field of its own.
///
/// Tree tells how to reach a node's parts: Children(node) and Link(node), each a reference to the field.
/// End(node, batch) ends a node that has no children left and frees its blocks. Drop(node, list) gives a node's
/// reference back and is true when the node is to be destroyed here; what a node that destroys itself held may join the
/// list, in which it stood itself.
template <class Node, class Tree>
void ReleaseTree(CVekPointerArray<Node> & nodes) noexcept
{
    if (nodes.GetCount() == 0)
        return nodes.Free();
    // The list may be part of a node that ends here: nothing of it is touched after this.
    CVekPointerArray<Node> taken;
    taken.Swap(nodes);
    nodes.SetGrowthStep(taken.GetGrowthStep());
    PoolBatch batch;
    while (taken.GetCount() > 0)
    {
        Node * node = taken.TakeLast();
        if (!node || !Tree::Drop(*node, taken))
            continue;
        Tree::Link(*node) = nullptr;
        while (node)
        {
            if (Tree::Children(*node).GetCount() == 0)
            {
                Node * const above = Tree::Link(*node);
                Tree::Link(*node) = nullptr;
                Tree::End(*node, batch);
                node = above;
                continue;
            }
            CVekPointerArray<Node> & children = Tree::Children(*node);
            Node * const child = children.TakeLast();
            if (!child || !Tree::Drop(*child, children))
                continue;
            Tree::Link(*child) = node;
            node = child;
        }
    }
    taken.Free();
}

} // namespace vek

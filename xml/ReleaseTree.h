#pragma once

#include "VekCore.h"

namespace vek
{

/// Gives one reference back without the object's table; true when it was the last, and the object is to be destroyed.
inline bool DropReference(VekObjectCommonData & common) noexcept
{
    // The only holder need not count down indivisibly: nobody else can be holding or taking a reference.
    if (__atomic_load_n(&common.refCount, __ATOMIC_ACQUIRE) != 1)
        return VekInterlockedDecrement(common.refCount) == 0;
    common.refCount = 0;
    return true;
}

/// Gives back the references that a list of tree nodes holds, frees the list's storage, and destroys every node that
/// lost its last reference, with all below it that only it held. Works through trees of any depth and width without
/// recursion and without memory: a node that waits for the end of its children is linked through a field of its own.
///
/// Tree tells how to reach a node's parts: Children(node), Link(node) and Common(node), each a reference to the field.
template <class Node, class Tree>
void ReleaseTree(CVekPointerArray<Node> & nodes) noexcept
{
    if (nodes.GetCount() == 0)
        return nodes.Free();
    // The list may be part of a node that ends here: nothing of it is touched after this.
    CVekPointerArray<Node> taken;
    taken.Swap(nodes);
    nodes.SetGrowthStep(taken.GetGrowthStep());
    while (taken.GetCount() > 0)
    {
        Node * node = taken.TakeLast();
        if (!node || !DropReference(Tree::Common(*node)))
            continue;
        Tree::Link(*node) = nullptr;
        while (node)
        {
            if (Tree::Children(*node).GetCount() == 0)
            {
                Node * const above = Tree::Link(*node);
                Tree::Link(*node) = nullptr;
                delete node;
                node = above;
                continue;
            }
            Node * const child = Tree::Children(*node).TakeLast();
            if (!child || !DropReference(Tree::Common(*child)))
                continue;
            Tree::Link(*child) = node;
            node = child;
        }
    }
    taken.Free();
}

} // namespace vek

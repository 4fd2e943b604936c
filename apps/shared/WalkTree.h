#pragma once

#include <cstddef>
#include <vector>

namespace tool
{

/// Visits a node, an element or an entry of a content model, and all below it in document order: enter(node, level)
/// comes before the children, which are left out when it returns false. Works through trees of any depth.
template <class Node, class Enter>
void WalkTree(Node * root, Enter enter)
{
    struct Place
    {
        Node * node;
        int nextChild;
    };
    std::vector<Place> path;
    Node * next = root;
    while (next || !path.empty())
    {
        if (next)
        {
            bool const goesDown = enter(next, path.size());
            path.push_back({next, goesDown ? 0 : next->GetNumChildren()});
        }
        Place & top = path.back();
        next = nullptr;
        while (!next && top.nextChild < top.node->GetNumChildren())
            next = top.node->GetChild(top.nextChild++);
        if (!next)
            path.pop_back();
    }
}

} // namespace tool

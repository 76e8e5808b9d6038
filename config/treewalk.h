#pragma once

#include <cstddef>
#include <vector>

namespace libconfig {

// Visits `top` and what lies under it depth-first, in document order.
// `childAt(node, i)` gives the i-th child of a node or null past the last.
// `enter(node, depth)` comes before a node's children and answers whether
// to visit them; `leave(node, depth)` comes after them, for the nodes that
// were entered that way. The walk keeps its own stack: a file may nest as
// deep as it likes without the call stack growing with it.
template<class Node, class ChildAt, class Enter, class Leave>
void walkTree(Node* top, ChildAt childAt, Enter enter, Leave leave)
{
    struct Frame
    {
        Node* node;
        std::size_t nextChild;
    };
    if (!top || !enter(top, std::size_t(0)))
        return;
    std::vector<Frame> path{{top, 0}};
    while (!path.empty()) {
        Frame& frame = path.back();
        if (Node* child = childAt(frame.node, frame.nextChild)) {
            ++frame.nextChild;
            if (enter(child, path.size()))
                path.push_back({child, 0});
        } else {
            leave(frame.node, path.size() - 1);
            path.pop_back();
        }
    }
}

} // namespace libconfig

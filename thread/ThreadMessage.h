#pragma once

#include "VekCore.h"

namespace vek
{

/// A control message to a worker: a record of the worker's ring, or one of a thread that waits for its handling.
struct ThreadMessage
{
    ThreadMessage * GetPrev() const { return previous; }
    void SetPrev(ThreadMessage * message) { previous = message; }
    ThreadMessage * GetNext() const { return next; }
    void SetNext(ThreadMessage * message) { next = message; }

    ThreadMessage * previous;
    ThreadMessage * next;
    unsigned int type;
    void * parameter;
};

/// The types that a worker acts on; it ignores any other.
constexpr unsigned int MESSAGE_SUSPEND = 2; // the parameter is the CVekSignal to set
constexpr unsigned int MESSAGE_STOP = 3;

} // namespace vek

/// Records belong to their ring or their thread.
template <>
inline void CVekDirectLinkedList<vek::ThreadMessage *>::DeleteElement(vek::ThreadMessage *)
{
}

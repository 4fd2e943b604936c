#pragma once

#include "VekThread.h"

/// A command that calls a member function with one argument. It is not released once it has run: it stands on the stack
/// of whoever waits for it.
template <class Object, class Function, class Argument>
class MemberFunctor1 final : public CVekThreadCommand
{
public:
    MemberFunctor1(Object object, Function function, Argument argument)
        : CVekThreadCommand(false), m_object(object), m_function(function), m_argument(argument)
    {
    }
    void Execute() override
    {
        (m_object->*m_function)(m_argument);
        m_hasRun = true;
    }
    bool HasRun() const { return m_hasRun; }

private:
    Object m_object;
    Function m_function;
    Argument m_argument;
    bool m_hasRun = false;
};

#pragma once

namespace tool
{

/// Watches for Ctrl-C for a scope: instead of ending the program it sets a flag.
class Interrupt
{
public:
    Interrupt();
    ~Interrupt();
    Interrupt(Interrupt const &) = delete;
    Interrupt & operator=(Interrupt const &) = delete;

    /// True once Ctrl-C was pressed within the scope. From any thread.
    static bool Pressed();
};

} // namespace tool

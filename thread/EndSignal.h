#pragma once

#include "VekThread.h"

namespace vek
{

/// The end signal of a command that somebody waits for. The command lets go of it as it is set: a command that deletes
/// itself is gone right after that, and one that is kept must not remember it.
class EndSignal final : public CVekSignal
{
public:
    /// Becomes the command's end signal; without a handle it does not, as nobody could wait for it.
    explicit EndSignal(CVekThreadCommand & command) : m_command(command)
    {
        if (GetHandle())
            command.SetEndSignal(this);
    }
    EndSignal(EndSignal const &) = delete;
    EndSignal & operator=(EndSignal const &) = delete;
    ~EndSignal() override = default;

    bool SetSignal() override
    {
        m_command.SetEndSignal(nullptr);
        return CVekSignal::SetSignal();
    }

private:
    CVekThreadCommand & m_command;
};

} // namespace vek

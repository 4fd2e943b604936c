#include "VekThread.h"

CVekThreadCommand::CVekThreadCommand(bool autoDelete) : m_autoDelete(autoDelete), m_endSignal(nullptr) {}

CVekThreadCommand::~CVekThreadCommand() = default;

void CVekThreadCommand::Launch()
{
    Execute();
    // Whoever waits for the signal may end the command at once: nothing of it is read after that.
    bool const autoDelete = m_autoDelete;
    if (m_endSignal)
        m_endSignal->SetSignal();
    if (autoDelete)
        Release();
}

#include "VekThread.h"

#include "base/LiveObjects.h"

CVekThreadCommand::CVekThreadCommand(bool autoDelete) : m_autoDelete(autoDelete), m_endSignal(nullptr)
{
    vek::CountBirth(vek::LiveClass::ThreadCommand);
}

CVekThreadCommand::~CVekThreadCommand()
{
    vek::CountEnd(vek::LiveClass::ThreadCommand);
}

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

#include "VekCore.h"

CVekProgressBegin::CVekProgressBegin(IVekProgressController * controller, wchar_t const * name, double share,
                                     double step, int param)
    : m_controller(controller)
{
    if (m_controller)
        m_controller->BeginTask(name, share, step, param);
}

CVekProgressBegin::~CVekProgressBegin()
{
    if (m_controller)
        m_controller->EndTask();
}

#include "VekThread.h"

// Out of line, so that the table has one home.
CVekSyncObject::~CVekSyncObject() = default;

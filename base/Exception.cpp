#include "VekCore.h"

CVekException::CVekException() = default;

CVekException::CVekException(CVekException const &) = default;

CVekException & CVekException::operator=(CVekException const &) = default;

CVekException::~CVekException() = default;

void CVekException::ReportError() {}

#include "xpath/expressionlimits.h"
void CheckExpression(const XMLCh*) {}

// The depth of content models, which become automata by recursion.
#pragma once

#include <xercesc/validators/common/ContentSpecNode.hpp>

// Whether a model is deeper than the stack of this thread has room for.
bool IsTooDeep(const xercesc::ContentSpecNode* pModel);

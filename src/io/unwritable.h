// What the writer throws where it must not go on.
#pragma once

#include <tessel/export.h>
#include <tessel/status.h>

#include <xercesc/util/XercesDefs.hpp>

// The status is the one of the functions that write to a string; saves have one for all.
struct CUnwritable {
  TSXStatus m_Status;
  const XMLCh* m_pMessage;
};

inline CUnwritable NotWellFormed(const XMLCh* pMessage) { return {domErrSerialize, pMessage}; }
inline CUnwritable NotInEncoding(const XMLCh* pMessage) {
  return {domErrInvalidCharacter, pMessage};
}

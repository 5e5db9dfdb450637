#include "KEPTypes.h"

#include <cstdio>

const char* KEPResultName(HRESULT hr) {
  switch (hr) {
    case S_OK:
      return "S_OK";
    case S_FALSE:
      return "S_FALSE";
    case E_NOTIMPL:
      return "E_NOTIMPL";
    case E_NOINTERFACE:
      return "E_NOINTERFACE";
    case E_FAIL:
      return "E_FAIL";
    case E_OUTOFMEMORY:
      return "E_OUTOFMEMORY";
    case E_INVALIDARG:
      return "E_INVALIDARG";
    default:
      break;
  }
  thread_local char buffer[16];
  std::snprintf(buffer, sizeof buffer, "0x%08X", static_cast<unsigned>(hr));
  return buffer;
}

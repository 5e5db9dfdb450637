// Result codes and the small scalar types shared by every host interface.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include <cstdint>

/// Marks what a library built with hidden visibility exports to its host: entry points,
/// interface adapter factories and the classes a host may name.
#define KEP_EXPORT __attribute__((visibility("default")))

using HRESULT = std::int32_t;
using ULONG = std::uint32_t;

inline constexpr HRESULT S_OK = 0;
inline constexpr HRESULT S_FALSE = 1;
inline constexpr HRESULT E_NOTIMPL = static_cast<HRESULT>(0x80004001u);
inline constexpr HRESULT E_NOINTERFACE = static_cast<HRESULT>(0x80004002u);
inline constexpr HRESULT E_FAIL = static_cast<HRESULT>(0x80004005u);
inline constexpr HRESULT E_OUTOFMEMORY = static_cast<HRESULT>(0x8007000Eu);
inline constexpr HRESULT E_INVALIDARG = static_cast<HRESULT>(0x80070057u);

inline constexpr bool SUCCEEDED(HRESULT hr) {
  return hr >= 0;
}
inline constexpr bool FAILED(HRESULT hr) {
  return hr < 0;
}

/// Text of a result code for messages ("S_OK", "E_FAIL", or the hexadecimal value).
const char* KEPResultName(HRESULT hr);

#pragma GCC visibility pop

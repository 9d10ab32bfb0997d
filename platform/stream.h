// IStream: the byte stream a host hands to IPersistStream, with its records and codes. On
// Windows everything here comes from the system headers; elsewhere it is declared with the
// same layout and operation order, so that one stream class compiles for both.
#pragma once

#include <cstdint>

#include "platform/com.h"
#include "platform/unknown_impl.h"

#ifdef _WIN32
#include <objidl.h>
#else

using DWORD = std::uint32_t;

// Signed and unsigned 64-bit positions; on Windows unions whose QuadPart is the whole value.
struct LARGE_INTEGER {
  std::int64_t QuadPart;
};
struct ULARGE_INTEGER {
  std::uint64_t QuadPart;
};
static_assert(sizeof(LARGE_INTEGER) == 8);
static_assert(sizeof(ULARGE_INTEGER) == 8);

struct FILETIME {
  DWORD dwLowDateTime;
  DWORD dwHighDateTime;
};

// What Stat reports. `pwcsName` is task memory owned by the caller, null unless asked for.
struct STATSTG {
  wchar_t* pwcsName;
  DWORD type;
  ULARGE_INTEGER cbSize;
  FILETIME mtime;
  FILETIME ctime;
  FILETIME atime;
  DWORD grfMode;
  DWORD grfLocksSupported;
  CLSID clsid;
  DWORD grfStateBits;
  DWORD reserved;
};

// Seek origins, Stat flags and the storage type of a stream.
inline constexpr DWORD STREAM_SEEK_SET = 0;
inline constexpr DWORD STREAM_SEEK_CUR = 1;
inline constexpr DWORD STREAM_SEEK_END = 2;
inline constexpr DWORD STATFLAG_DEFAULT = 0;
inline constexpr DWORD STATFLAG_NONAME = 1;
inline constexpr DWORD STGTY_STREAM = 2;

inline constexpr HRESULT STG_E_INVALIDFUNCTION = hr::Code(0x80030001u);
inline constexpr HRESULT STG_E_FILENOTFOUND = hr::Code(0x80030002u);
inline constexpr HRESULT STG_E_ACCESSDENIED = hr::Code(0x80030005u);
inline constexpr HRESULT STG_E_INVALIDPOINTER = hr::Code(0x80030009u);
inline constexpr HRESULT STG_E_READFAULT = hr::Code(0x8003001Eu);
inline constexpr HRESULT STG_E_WRITEFAULT = hr::Code(0x8003001Du);
inline constexpr HRESULT STG_E_MEDIUMFULL = hr::Code(0x80030070u);
inline constexpr HRESULT STG_E_INVALIDPARAMETER = hr::Code(0x80030057u);

// {0C733A30-2A1C-11CE-ADE5-00AA0044773D}
inline constexpr IID IID_ISequentialStream =
    MakeGuid(0x0C733A30, 0x2A1C, 0x11CE, 0xAD, 0xE5, 0x00, 0xAA, 0x00, 0x44, 0x77, 0x3D);
// {0000000C-0000-0000-C000-000000000046}
inline constexpr IID IID_IStream =
    MakeGuid(0x0000000C, 0x0000, 0x0000, 0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46);

struct ISequentialStream : IUnknown {
  // [caller's thread] Up to `cb` bytes into `pv`; `*pcbRead` (may be null) gets the count. A
  // short count with a success code means the end was reached.
  virtual HRESULT STDMETHODCALLTYPE Read(void* pv, ULONG cb, ULONG* pcbRead) = 0;
  // [caller's thread] `cb` bytes from `pv`; `*pcbWritten` (may be null) gets the count.
  virtual HRESULT STDMETHODCALLTYPE Write(const void* pv, ULONG cb, ULONG* pcbWritten) = 0;
};

struct IStream : ISequentialStream {
  // [caller's thread] Moves the position from `dwOrigin`; the new position into
  // `plibNewPosition` when it is not null.
  virtual HRESULT STDMETHODCALLTYPE Seek(LARGE_INTEGER dlibMove, DWORD dwOrigin,
                                         ULARGE_INTEGER* plibNewPosition) = 0;
  // [caller's thread]
  virtual HRESULT STDMETHODCALLTYPE SetSize(ULARGE_INTEGER libNewSize) = 0;
  // [caller's thread]
  virtual HRESULT STDMETHODCALLTYPE CopyTo(IStream* pstm, ULARGE_INTEGER cb,
                                           ULARGE_INTEGER* pcbRead,
                                           ULARGE_INTEGER* pcbWritten) = 0;
  // [caller's thread]
  virtual HRESULT STDMETHODCALLTYPE Commit(DWORD grfCommitFlags) = 0;
  // [caller's thread]
  virtual HRESULT STDMETHODCALLTYPE Revert() = 0;
  // [caller's thread]
  virtual HRESULT STDMETHODCALLTYPE LockRegion(ULARGE_INTEGER libOffset, ULARGE_INTEGER cb,
                                               DWORD dwLockType) = 0;
  // [caller's thread]
  virtual HRESULT STDMETHODCALLTYPE UnlockRegion(ULARGE_INTEGER libOffset, ULARGE_INTEGER cb,
                                                 DWORD dwLockType) = 0;
  // [caller's thread]
  virtual HRESULT STDMETHODCALLTYPE Stat(STATSTG* pstatstg, DWORD grfStatFlag) = 0;
  // [caller's thread]
  virtual HRESULT STDMETHODCALLTYPE Clone(IStream** ppstm) = 0;
};

#endif  // _WIN32

TARN_INTERFACE_ID(ISequentialStream, IID_ISequentialStream, IUnknown);
TARN_INTERFACE_ID(IStream, IID_IStream, ISequentialStream);

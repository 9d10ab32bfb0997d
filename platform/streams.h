// Two streams of the component model's kind: one over bytes in memory and one over a file. A
// host hands such a stream to IPersistStream; the tests and the reference host make their own.
// Neither is shared between threads: each caller uses its own stream.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <vector>

#include "platform/stream.h"

// Bytes in memory that grow on writing past the end. Reads at the end give a short count and
// S_FALSE. Region locks are not supported (STG_E_INVALIDFUNCTION); a clone copies the bytes and
// the position.
class CMemoryStream final : public IStream {
 public:
  // [any thread] A stream holding a copy of `size` bytes at `bytes`, at position 0, with one
  // reference owned by the caller.
  static CMemoryStream* Create(const void* bytes = nullptr, std::size_t size = 0);

  // --- IUnknown: IUnknown, ISequentialStream and IStream ----------------------------------------
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
  ULONG STDMETHODCALLTYPE AddRef() override;
  ULONG STDMETHODCALLTYPE Release() override;

  // --- IStream (documented there) -----------------------------------------------------------------
  HRESULT STDMETHODCALLTYPE Read(void* pv, ULONG cb, ULONG* pcbRead) override;
  HRESULT STDMETHODCALLTYPE Write(const void* pv, ULONG cb, ULONG* pcbWritten) override;
  HRESULT STDMETHODCALLTYPE Seek(LARGE_INTEGER dlibMove, DWORD dwOrigin,
                                 ULARGE_INTEGER* plibNewPosition) override;
  HRESULT STDMETHODCALLTYPE SetSize(ULARGE_INTEGER libNewSize) override;
  HRESULT STDMETHODCALLTYPE CopyTo(IStream* pstm, ULARGE_INTEGER cb, ULARGE_INTEGER* pcbRead,
                                   ULARGE_INTEGER* pcbWritten) override;
  HRESULT STDMETHODCALLTYPE Commit(DWORD) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE Revert() override { return S_OK; }
  HRESULT STDMETHODCALLTYPE LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override;
  HRESULT STDMETHODCALLTYPE UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override;
  HRESULT STDMETHODCALLTYPE Stat(STATSTG* pstatstg, DWORD grfStatFlag) override;
  HRESULT STDMETHODCALLTYPE Clone(IStream** ppstm) override;

  // [owner's thread] Every byte of the stream, whatever the position.
  const std::vector<std::uint8_t>& Bytes() const noexcept { return m_bytes; }
  std::uint64_t Position() const noexcept { return m_position; }

 private:
  CMemoryStream() = default;
  ~CMemoryStream() = default;

  std::atomic<ULONG> m_refCount{1};
  std::vector<std::uint8_t> m_bytes;
  std::uint64_t m_position = 0;
};

// A file opened for reading, or created (emptied if it exists) for reading and writing. No
// clone and no region locks (STG_E_INVALIDFUNCTION).
class CFileStream final : public IStream {
 public:
  enum class Mode { Read, Create };
  // [any thread] The open file with one reference owned by the caller, or null with the reason
  // in `*result` (STG_E_FILENOTFOUND when it cannot be opened).
  static CFileStream* Open(const std::filesystem::path& path, Mode mode, HRESULT* result);

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
  ULONG STDMETHODCALLTYPE AddRef() override;
  ULONG STDMETHODCALLTYPE Release() override;

  HRESULT STDMETHODCALLTYPE Read(void* pv, ULONG cb, ULONG* pcbRead) override;
  HRESULT STDMETHODCALLTYPE Write(const void* pv, ULONG cb, ULONG* pcbWritten) override;
  HRESULT STDMETHODCALLTYPE Seek(LARGE_INTEGER dlibMove, DWORD dwOrigin,
                                 ULARGE_INTEGER* plibNewPosition) override;
  HRESULT STDMETHODCALLTYPE SetSize(ULARGE_INTEGER libNewSize) override;
  HRESULT STDMETHODCALLTYPE CopyTo(IStream* pstm, ULARGE_INTEGER cb, ULARGE_INTEGER* pcbRead,
                                   ULARGE_INTEGER* pcbWritten) override;
  HRESULT STDMETHODCALLTYPE Commit(DWORD grfCommitFlags) override;
  HRESULT STDMETHODCALLTYPE Revert() override { return S_OK; }
  HRESULT STDMETHODCALLTYPE LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override;
  HRESULT STDMETHODCALLTYPE UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override;
  HRESULT STDMETHODCALLTYPE Stat(STATSTG* pstatstg, DWORD grfStatFlag) override;
  HRESULT STDMETHODCALLTYPE Clone(IStream** ppstm) override;

 private:
  explicit CFileStream(std::filesystem::path path) : m_path(std::move(path)) {}
  ~CFileStream() = default;
  std::uint64_t Size();

  std::atomic<ULONG> m_refCount{1};
  std::filesystem::path m_path;
  std::fstream m_file;
  bool m_writable = false;
};

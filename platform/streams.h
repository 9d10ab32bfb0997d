// Two streams of the component model's kind: one over bytes in memory and one over a file. A
// host hands such a stream to IPersistStream; the tests and the reference host make their own.
// Neither is shared between threads: each caller uses its own stream.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <vector>

#include "platform/stream.h"
#include "platform/unknown_impl.h"

// What both streams share: one reference count (the creator owns the first reference), copying
// by blocks, no region locks (STG_E_INVALIDFUNCTION), nothing to revert, and a size for Stat.
class CStreamBase : public CUnknownImpl<IStream> {
 public:
  HRESULT STDMETHODCALLTYPE CopyTo(IStream* pstm, ULARGE_INTEGER cb, ULARGE_INTEGER* pcbRead,
                                   ULARGE_INTEGER* pcbWritten) override;
  HRESULT STDMETHODCALLTYPE Commit(DWORD) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE Revert() override { return S_OK; }
  HRESULT STDMETHODCALLTYPE LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override {
    return STG_E_INVALIDFUNCTION;
  }
  HRESULT STDMETHODCALLTYPE UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override {
    return STG_E_INVALIDFUNCTION;
  }
  HRESULT STDMETHODCALLTYPE Stat(STATSTG* pstatstg, DWORD grfStatFlag) override;

 protected:
  CStreamBase() { AddRef(); }
  // The stream's length in bytes.
  virtual std::uint64_t Size() = 0;
};

// Bytes in memory that grow on writing past the end. Reads at the end give a short count and
// S_FALSE. Region locks are not supported (STG_E_INVALIDFUNCTION); a clone copies the bytes and
// the position.
class CMemoryStream final : public CStreamBase {
 public:
  // [any thread] A stream holding a copy of `size` bytes at `bytes`, at position 0, with one
  // reference owned by the caller.
  static CMemoryStream* Create(const void* bytes = nullptr, std::size_t size = 0);

  // --- IStream (documented there) -----------------------------------------------------------------
  HRESULT STDMETHODCALLTYPE Read(void* pv, ULONG cb, ULONG* pcbRead) override;
  HRESULT STDMETHODCALLTYPE Write(const void* pv, ULONG cb, ULONG* pcbWritten) override;
  HRESULT STDMETHODCALLTYPE Seek(LARGE_INTEGER dlibMove, DWORD dwOrigin,
                                 ULARGE_INTEGER* plibNewPosition) override;
  HRESULT STDMETHODCALLTYPE SetSize(ULARGE_INTEGER libNewSize) override;
  HRESULT STDMETHODCALLTYPE Clone(IStream** ppstm) override;

  // [owner's thread] Every byte of the stream, whatever the position.
  const std::vector<std::uint8_t>& Bytes() const noexcept { return m_bytes; }
  std::uint64_t Position() const noexcept { return m_position; }

 private:
  CMemoryStream() = default;
  ~CMemoryStream() override = default;
  std::uint64_t Size() override { return m_bytes.size(); }

  std::vector<std::uint8_t> m_bytes;
  std::uint64_t m_position = 0;
};

// A file opened for reading, or created (emptied if it exists) for reading and writing. No
// clone and no region locks (STG_E_INVALIDFUNCTION).
class CFileStream final : public CStreamBase {
 public:
  enum class Mode { Read, Create };
  // [any thread] The open file with one reference owned by the caller, or null with the reason
  // in `*result` (STG_E_FILENOTFOUND when it cannot be opened).
  static CFileStream* Open(const std::filesystem::path& path, Mode mode, HRESULT* result);

  HRESULT STDMETHODCALLTYPE Read(void* pv, ULONG cb, ULONG* pcbRead) override;
  HRESULT STDMETHODCALLTYPE Write(const void* pv, ULONG cb, ULONG* pcbWritten) override;
  HRESULT STDMETHODCALLTYPE Seek(LARGE_INTEGER dlibMove, DWORD dwOrigin,
                                 ULARGE_INTEGER* plibNewPosition) override;
  HRESULT STDMETHODCALLTYPE SetSize(ULARGE_INTEGER libNewSize) override;
  HRESULT STDMETHODCALLTYPE Commit(DWORD grfCommitFlags) override;
  HRESULT STDMETHODCALLTYPE Clone(IStream** ppstm) override;

 private:
  explicit CFileStream(std::filesystem::path path) : m_path(std::move(path)) {}
  ~CFileStream() override = default;
  std::uint64_t Size() override;

  std::filesystem::path m_path;
  std::fstream m_file;
  bool m_writable = false;
};

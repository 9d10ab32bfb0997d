// A host's stream that breaks on request: reads fail when they would reach a chosen offset,
// writes fail once a chosen number of bytes went in. It remembers the largest read asked of it.
#pragma once

#include <cstdint>
#include <limits>
#include <vector>

#include "platform/stream.h"
#include "tests/support/fake_unknown.h"

class FakeStream final : public FakeUnknown<IStream> {
 public:
  explicit FakeStream(std::vector<std::uint8_t> bytes = {}) : m_bytes(std::move(bytes)) {}

  // Serves the bytes from the position; a read that would reach the failing offset answers
  // the failure and delivers nothing.
  HRESULT STDMETHODCALLTYPE Read(void* pv, ULONG cb, ULONG* pcbRead) override;
  // Appends; a write that would pass the write limit answers the failure and writes nothing.
  HRESULT STDMETHODCALLTYPE Write(const void* pv, ULONG cb, ULONG* pcbWritten) override;
  HRESULT STDMETHODCALLTYPE Seek(LARGE_INTEGER, DWORD, ULARGE_INTEGER*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SetSize(ULARGE_INTEGER) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE CopyTo(IStream*, ULARGE_INTEGER, ULARGE_INTEGER*,
                                   ULARGE_INTEGER*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE Commit(DWORD) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE Revert() override { return S_OK; }
  HRESULT STDMETHODCALLTYPE LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE Stat(STATSTG*, DWORD) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Clone(IStream**) override { return E_NOTIMPL; }

  void FailReadsAt(std::uint64_t offset, HRESULT failure) {
    m_readFailsAt = offset;
    m_failure = failure;
  }
  void FailWritesAfter(std::uint64_t bytes, HRESULT failure) {
    m_writeLimit = bytes;
    m_failure = failure;
  }
  const std::vector<std::uint8_t>& Bytes() const { return m_bytes; }
  ULONG LargestRead() const { return m_largestRead; }

 private:
  static constexpr std::uint64_t kNever = std::numeric_limits<std::uint64_t>::max();
  std::vector<std::uint8_t> m_bytes;
  std::uint64_t m_position = 0;
  std::uint64_t m_readFailsAt = kNever;
  std::uint64_t m_writeLimit = kNever;
  HRESULT m_failure = E_FAIL;
  ULONG m_largestRead = 0;
};

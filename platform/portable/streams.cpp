#include "platform/streams.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>
#include <system_error>

namespace {

// The position that `move` from `origin` gives, or false when it falls before the start or
// past what 64 bits can hold.
bool NewPosition(std::uint64_t current, std::uint64_t end, std::int64_t move, DWORD origin,
                 std::uint64_t& result) {
  std::uint64_t base = 0;
  if (origin == STREAM_SEEK_SET)
    base = 0;
  else if (origin == STREAM_SEEK_CUR)
    base = current;
  else if (origin == STREAM_SEEK_END)
    base = end;
  else
    return false;
  if (move < 0) {
    const std::uint64_t back = static_cast<std::uint64_t>(-(move + 1)) + 1;
    if (back > base) return false;
    result = base - back;
  } else {
    const auto forward = static_cast<std::uint64_t>(move);
    if (forward > std::numeric_limits<std::uint64_t>::max() - base) return false;
    result = base + forward;
  }
  return true;
}

// Reads from `from` and writes to `to` in blocks until `count` bytes passed or `from` ends.
HRESULT CopyBlocks(IStream& from, IStream* to, std::uint64_t count, ULARGE_INTEGER* read,
                   ULARGE_INTEGER* written) {
  if (!to) return STG_E_INVALIDPOINTER;
  std::uint8_t block[16384];
  std::uint64_t totalRead = 0;
  std::uint64_t totalWritten = 0;
  HRESULT hr = S_OK;
  while (totalRead < count) {
    const auto want = static_cast<ULONG>(std::min<std::uint64_t>(count - totalRead, sizeof block));
    ULONG got = 0;
    hr = from.Read(block, want, &got);
    if (FAILED(hr)) break;
    totalRead += got;
    ULONG put = 0;
    if (got) {
      hr = to->Write(block, got, &put);
      totalWritten += put;
      if (FAILED(hr)) break;
    }
    if (got < want) {
      hr = S_OK;
      break;
    }
  }
  if (read) read->QuadPart = totalRead;
  if (written) written->QuadPart = totalWritten;
  return hr;
}

void FillStat(STATSTG* stat, std::uint64_t size) {
  std::memset(stat, 0, sizeof *stat);
  stat->type = STGTY_STREAM;
  stat->cbSize.QuadPart = size;
}

}  // namespace

// --- what both share ---------------------------------------------------------------------------

HRESULT CStreamBase::CopyTo(IStream* pstm, ULARGE_INTEGER cb, ULARGE_INTEGER* pcbRead,
                            ULARGE_INTEGER* pcbWritten) {
  return CopyBlocks(*this, pstm, cb.QuadPart, pcbRead, pcbWritten);
}

HRESULT CStreamBase::Stat(STATSTG* pstatstg, DWORD) {
  if (!pstatstg) return STG_E_INVALIDPOINTER;
  FillStat(pstatstg, Size());
  return S_OK;
}

// --- memory ------------------------------------------------------------------------------------

CMemoryStream* CMemoryStream::Create(const void* bytes, std::size_t size) {
  auto* stream = new CMemoryStream();
  if (bytes && size) {
    const auto* first = static_cast<const std::uint8_t*>(bytes);
    stream->m_bytes.assign(first, first + size);
  }
  return stream;
}

HRESULT CMemoryStream::Read(void* pv, ULONG cb, ULONG* pcbRead) {
  if (pcbRead) *pcbRead = 0;
  if (!pv && cb) return STG_E_INVALIDPOINTER;
  const std::uint64_t left = m_position < m_bytes.size() ? m_bytes.size() - m_position : 0;
  const auto count = static_cast<ULONG>(std::min<std::uint64_t>(cb, left));
  if (count) std::memcpy(pv, m_bytes.data() + m_position, count);
  m_position += count;
  if (pcbRead) *pcbRead = count;
  return count == cb ? S_OK : S_FALSE;
}

HRESULT CMemoryStream::Write(const void* pv, ULONG cb, ULONG* pcbWritten) {
  if (pcbWritten) *pcbWritten = 0;
  if (!pv && cb) return STG_E_INVALIDPOINTER;
  if (cb == 0) return S_OK;
  const std::uint64_t end = m_position + cb;
  if (end > m_bytes.max_size()) return STG_E_MEDIUMFULL;
  if (end > m_bytes.size()) m_bytes.resize(static_cast<std::size_t>(end));
  std::memcpy(m_bytes.data() + m_position, pv, cb);
  m_position = end;
  if (pcbWritten) *pcbWritten = cb;
  return S_OK;
}

HRESULT CMemoryStream::Seek(LARGE_INTEGER dlibMove, DWORD dwOrigin,
                            ULARGE_INTEGER* plibNewPosition) {
  std::uint64_t position = 0;
  if (!NewPosition(m_position, m_bytes.size(), dlibMove.QuadPart, dwOrigin, position))
    return STG_E_INVALIDFUNCTION;
  m_position = position;
  if (plibNewPosition) plibNewPosition->QuadPart = position;
  return S_OK;
}

HRESULT CMemoryStream::SetSize(ULARGE_INTEGER libNewSize) {
  if (libNewSize.QuadPart > m_bytes.max_size()) return STG_E_MEDIUMFULL;
  m_bytes.resize(static_cast<std::size_t>(libNewSize.QuadPart));
  return S_OK;
}

HRESULT CMemoryStream::Clone(IStream** ppstm) {
  if (!ppstm) return STG_E_INVALIDPOINTER;
  CMemoryStream* copy = Create(m_bytes.data(), m_bytes.size());
  copy->m_position = m_position;
  *ppstm = copy;
  return S_OK;
}

// --- file --------------------------------------------------------------------------------------

CFileStream* CFileStream::Open(const std::filesystem::path& path, Mode mode, HRESULT* result) {
  HRESULT ignored = S_OK;
  HRESULT& hr = result ? *result : ignored;
  auto* stream = new CFileStream(path);
  const auto flags = mode == Mode::Read
                         ? std::ios::in | std::ios::binary
                         : std::ios::in | std::ios::out | std::ios::trunc | std::ios::binary;
  stream->m_file.open(path, flags);
  if (!stream->m_file.is_open()) {
    stream->Release();
    hr = STG_E_FILENOTFOUND;
    return nullptr;
  }
  stream->m_writable = mode == Mode::Create;
  hr = S_OK;
  return stream;
}

HRESULT CFileStream::Read(void* pv, ULONG cb, ULONG* pcbRead) {
  if (pcbRead) *pcbRead = 0;
  if (!pv && cb) return STG_E_INVALIDPOINTER;
  m_file.read(static_cast<char*>(pv), static_cast<std::streamsize>(cb));
  const auto count = static_cast<ULONG>(m_file.gcount());
  if (m_file.bad()) return STG_E_READFAULT;
  m_file.clear();  // the end of the file is a short count, not a broken stream
  if (pcbRead) *pcbRead = count;
  return count == cb ? S_OK : S_FALSE;
}

HRESULT CFileStream::Write(const void* pv, ULONG cb, ULONG* pcbWritten) {
  if (pcbWritten) *pcbWritten = 0;
  if (!pv && cb) return STG_E_INVALIDPOINTER;
  if (!m_writable) return STG_E_ACCESSDENIED;
  m_file.write(static_cast<const char*>(pv), static_cast<std::streamsize>(cb));
  if (!m_file) {
    m_file.clear();
    return STG_E_WRITEFAULT;
  }
  if (pcbWritten) *pcbWritten = cb;
  return S_OK;
}

std::uint64_t CFileStream::Size() {
  m_file.flush();
  std::error_code error;
  const auto size = std::filesystem::file_size(m_path, error);
  return error ? 0 : size;
}

HRESULT CFileStream::Seek(LARGE_INTEGER dlibMove, DWORD dwOrigin,
                          ULARGE_INTEGER* plibNewPosition) {
  const auto current = m_file.tellg();
  if (current < 0) return STG_E_INVALIDFUNCTION;
  std::uint64_t position = 0;
  if (!NewPosition(static_cast<std::uint64_t>(current), Size(), dlibMove.QuadPart, dwOrigin,
                   position) ||
      position > static_cast<std::uint64_t>(std::numeric_limits<std::streamoff>::max()))
    return STG_E_INVALIDFUNCTION;
  m_file.seekg(static_cast<std::streamoff>(position));
  if (!m_file) {
    m_file.clear();
    return STG_E_INVALIDFUNCTION;
  }
  if (plibNewPosition) plibNewPosition->QuadPart = position;
  return S_OK;
}

HRESULT CFileStream::SetSize(ULARGE_INTEGER libNewSize) {
  if (!m_writable) return STG_E_ACCESSDENIED;
  m_file.flush();
  std::error_code error;
  std::filesystem::resize_file(m_path, libNewSize.QuadPart, error);
  return error ? STG_E_MEDIUMFULL : S_OK;
}

HRESULT CFileStream::Commit(DWORD) {
  m_file.flush();
  return m_file ? S_OK : STG_E_WRITEFAULT;
}

HRESULT CFileStream::Clone(IStream** ppstm) {
  if (ppstm) *ppstm = nullptr;
  return STG_E_INVALIDFUNCTION;
}

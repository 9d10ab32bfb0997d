#include "frame/allocator.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <new>

namespace {

constexpr std::size_t kCacheLine = 64;

bool IsPowerOfTwo(std::int32_t n) { return n > 0 && (n & (n - 1)) == 0; }

std::int64_t AlignUp(std::int64_t n, std::int64_t align) { return (n + align - 1) / align * align; }

}  // namespace

CMemAllocator::CMemAllocator(const wchar_t* name, IUnknown* outer, bool samplesOfferSilence)
    : CUnknown(name, outer), m_samplesOfferSilence(samplesOfferSilence) {}

CMemAllocator::~CMemAllocator() = default;

ComPtr<IMemAllocator> CMemAllocator::Create(bool samplesOfferSilence) {
  return ComPtr<IMemAllocator>(
      new CMemAllocator(L"Memory allocator", nullptr, samplesOfferSilence));
}

HRESULT CMemAllocator::NonDelegatingQueryInterface(REFIID iid, void** object) {
  if (object && iid == IID_IMemAllocator)
    return GetInterface(static_cast<IMemAllocator*>(this), object);
  return CUnknown::NonDelegatingQueryInterface(iid, object);
}

HRESULT CMemAllocator::SetProperties(const ALLOCATOR_PROPERTIES* request,
                                     ALLOCATOR_PROPERTIES* actual) {
  if (!request || !actual) return E_POINTER;
  std::lock_guard lock(m_mutex);
  if (m_committed) return VFW_E_ALREADY_COMMITTED;
  if (!AllBackLocked()) return VFW_E_BUFFERS_OUTSTANDING;
  if (!IsPowerOfTwo(request->cbAlign)) return VFW_E_BADALIGN;
  if (request->cBuffers < 0 || request->cbBuffer < 0 || request->cbPrefix < 0) return E_INVALIDARG;
  // Each buffer with its prefix fills whole alignment units; the spare bytes go to the buffer.
  const std::int64_t stride =
      AlignUp(std::int64_t{request->cbPrefix} + request->cbBuffer, request->cbAlign);
  if (stride > INT32_MAX) return E_INVALIDARG;
  m_properties = *request;
  m_properties.cbBuffer = static_cast<std::int32_t>(stride) - request->cbPrefix;
  *actual = m_properties;
  return S_OK;
}

HRESULT CMemAllocator::GetProperties(ALLOCATOR_PROPERTIES* properties) {
  if (!properties) return E_POINTER;
  std::lock_guard lock(m_mutex);
  *properties = m_properties;
  return S_OK;
}

HRESULT CMemAllocator::Commit() {
  std::lock_guard lock(m_mutex);
  if (m_committed) return S_OK;
  if (m_properties.cBuffers <= 0 || m_properties.cbBuffer <= 0) return VFW_E_SIZENOTSET;
  // After a Decommit with samples still out, the pool still stands and is simply reused.
  if (m_samples.empty()) {
    const HRESULT hr = AllocateLocked();
    if (FAILED(hr)) return hr;
  }
  m_committed = true;
  return S_OK;
}

HRESULT CMemAllocator::AllocateLocked() {
  const auto prefix = static_cast<std::size_t>(m_properties.cbPrefix);
  const auto stride = prefix + static_cast<std::size_t>(m_properties.cbBuffer);
  // The block starts on a cache line whatever the alignment asked for: a copy between two
  // buffers that lie differently within their lines splits every load or store in two.
  const auto align = std::max(static_cast<std::size_t>(m_properties.cbAlign), kCacheLine);
  const auto count = static_cast<std::size_t>(m_properties.cBuffers);
  if (stride > (SIZE_MAX - align) / count) return E_OUTOFMEMORY;
  const std::size_t used = stride * count;
  std::size_t space = used + align - 1;
  m_block.reset(new (std::nothrow) std::uint8_t[space]);
  if (!m_block) return E_OUTOFMEMORY;
  void* start = m_block.get();
  auto* const base = static_cast<std::uint8_t*>(std::align(align, used, start, space));
  for (std::size_t i = 0; i < count; ++i) {
    m_samples.push_back(std::make_unique<CMediaSample>(
        static_cast<IMemAllocator*>(this), base + i * stride + prefix, m_properties.cbBuffer,
        m_samplesOfferSilence));
    m_free.push_back(m_samples.back().get());
  }
  return S_OK;
}

void CMemAllocator::FreeLocked() noexcept {
  m_free.clear();
  m_samples.clear();
  m_block.reset();
}

HRESULT CMemAllocator::Decommit() {
  std::lock_guard lock(m_mutex);
  if (!m_committed) return S_OK;
  m_committed = false;
  if (AllBackLocked()) FreeLocked();
  m_returned.notify_all();  // waiters in GetBuffer give up
  return S_OK;
}

HRESULT CMemAllocator::GetBuffer(IMediaSample** sample, REFERENCE_TIME* /*start*/,
                                 REFERENCE_TIME* /*stop*/, std::uint32_t flags) {
  if (!sample) return E_POINTER;
  *sample = nullptr;
  std::unique_lock lock(m_mutex);
  for (;;) {
    if (!m_committed) return VFW_E_NOT_COMMITTED;
    if (!m_free.empty()) break;
    if (flags & AM_GBF_NOWAIT) return VFW_E_TIMEOUT;
    m_returned.wait(lock);
  }
  CMediaSample* lent = m_free.back();
  m_free.pop_back();
  AddRef();  // each sample out keeps the allocator alive; given back in ReleaseBuffer
  lent->AddRef();
  *sample = lent;
  return S_OK;
}

HRESULT CMemAllocator::ReleaseBuffer(IMediaSample* sample) {
  if (!sample) return E_POINTER;
  {
    std::lock_guard lock(m_mutex);
    const auto ours = std::find_if(m_samples.begin(), m_samples.end(), [&](const auto& s) {
      return static_cast<IMediaSample*>(s.get()) == sample;
    });
    if (ours == m_samples.end()) return E_INVALIDARG;
    m_free.push_back(ours->get());
    if (!m_committed && AllBackLocked()) FreeLocked();
    m_returned.notify_one();
  }
  Release();  // may delete this
  return S_OK;
}

std::int32_t CMemAllocator::SampleCount() const {
  std::lock_guard lock(m_mutex);
  return static_cast<std::int32_t>(m_samples.size());
}

std::int32_t CMemAllocator::FreeCount() const {
  std::lock_guard lock(m_mutex);
  return static_cast<std::int32_t>(m_free.size());
}

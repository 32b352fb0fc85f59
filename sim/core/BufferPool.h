#pragma once

#include <cstddef>
#include <memory>

namespace sim {

/// Picture buffers that come back when their last holder lets go, since fresh memory costs more than the
/// picture in it. A buffer is never written again while anyone holds it. Thread-safe.
class BufferPool {
public:
    BufferPool();

    /// At least `size` bytes of unspecified content. Outlives the pool if need be.
    std::shared_ptr<unsigned char> take(std::size_t size);

private:
    struct Store;
    std::shared_ptr<Store> m_store;
};

} // namespace sim

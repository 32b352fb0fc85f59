#pragma once

#include <cstddef>
#include <memory>

/// Blocks for converted frames, used again as soon as nobody holds them: touching fresh memory costs more
/// than the conversion does. Thread-safe; blocks may outlive the pool.
class BufferPool {
public:
    BufferPool();

    /// A block of `size` bytes with any content.
    std::shared_ptr<unsigned char> take(std::size_t size);

private:
    struct Shelf;
    std::shared_ptr<Shelf> m_shelf;
};

#include "streams/BufferPool.h"

#include <mutex>
#include <vector>

namespace {

/// One frame is shown, one is painted, one is being made.
constexpr std::size_t mostIdle = 3;

} // namespace

struct BufferPool::Shelf {
    using Block = std::unique_ptr<unsigned char[]>;

    Block take(std::size_t wanted)
    {
        const std::lock_guard lock(mutex);
        if (wanted != size)
            idle.clear();
        size = wanted;
        if (idle.empty())
            return nullptr;
        Block block = std::move(idle.back());
        idle.pop_back();
        return block;
    }

    void putBack(Block block, std::size_t blockSize)
    {
        const std::lock_guard lock(mutex);
        if (blockSize == size && idle.size() < mostIdle)
            idle.push_back(std::move(block));
    }

    std::mutex mutex;
    std::size_t size = 0; ///< of every idle block
    std::vector<Block> idle;
};

BufferPool::BufferPool()
    : m_shelf(std::make_shared<Shelf>())
{
}

std::shared_ptr<unsigned char> BufferPool::take(std::size_t size)
{
    Shelf::Block block = m_shelf->take(size);
    if (!block)
        block.reset(new unsigned char[size]);
    return {block.release(),
        [shelf = m_shelf, size](unsigned char *bytes) { shelf->putBack(Shelf::Block(bytes), size); }};
}

#include "core/BufferPool.h"

#include <mutex>
#include <vector>

namespace sim {

struct BufferPool::Store {
    static constexpr std::size_t kept = 8;

    std::mutex mutex;
    std::size_t size = 0;
    std::vector<std::unique_ptr<unsigned char[]>> free;

    std::unique_ptr<unsigned char[]> reuse(std::size_t wanted)
    {
        const std::lock_guard lock(mutex);
        if (wanted != size) {
            size = wanted;
            free.clear();
        }
        if (free.empty())
            return nullptr;
        auto buffer = std::move(free.back());
        free.pop_back();
        return buffer;
    }

    void giveBack(std::unique_ptr<unsigned char[]> buffer, std::size_t bufferSize)
    {
        const std::lock_guard lock(mutex);
        if (bufferSize == size && free.size() < kept)
            free.push_back(std::move(buffer));
    }
};

BufferPool::BufferPool()
    : m_store(std::make_shared<Store>())
{
}

std::shared_ptr<unsigned char> BufferPool::take(std::size_t size)
{
    auto buffer = m_store->reuse(size);
    if (!buffer)
        buffer.reset(new unsigned char[size]);
    const auto giveBack = [store = std::weak_ptr<Store>(m_store), size](unsigned char *bytes) {
        std::unique_ptr<unsigned char[]> owned(bytes);
        if (const auto pool = store.lock())
            pool->giveBack(std::move(owned), size);
    };
    return {buffer.release(), giveBack};
}

} // namespace sim

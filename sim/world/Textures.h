#pragma once

#include "world/Scene.h"
#include "world/Texture.h"

#include <memory>
#include <vector>

namespace sim {

/// The painted and shaded pictures of all surfaces of a scene's room, by surface id. Made on the first use,
/// in some tenths of a second, and shared by all who render a scene of the same seed; those used last stay
/// for the next device that is plugged in. Immutable.
class Textures {
public:
    explicit Textures(const Scene &scene);

    static std::shared_ptr<const Textures> of(const Scene &scene);

    const Texture &operator[](int surface) const { return m_textures[static_cast<std::size_t>(surface)]; }

private:
    std::vector<Texture> m_textures;
};

} // namespace sim

#pragma once

#include "world/Pose.h"
#include "world/RayTable.h"
#include "world/Scene.h"

#include <vector>

namespace sim {

/// The scene as one camera meets it at one moment, in single precision and in the camera's frame, with the
/// tests that tell which things a bundle of rays can touch.
///
/// Along a ray d everything is told by the inverse of the distance t: for a plane 1/t is linear in d, and so
/// are a/t and b/t for the place (a, b) on a surface.
class DrawList {
public:
    struct Flat {
        float edgeX[4]; ///< inward normals of the planes through the camera and each edge
        float edgeY[4];
        float edgeZ[4];
        float plane[3]; ///< 1/t = plane . d
        float right[3]; ///< a/t = right . d
        float down[3]; ///< b/t = down . d
        float planeNorm;
        float nearest; ///< the greatest 1/t that any of it has
        float width;
        float height;
        int id;
    };
    struct Round {
        float ball[9]; ///< row-major; takes a ray to the space where the body is the unit ball
        float origin[3]; ///< the camera there
        float offset; ///< |origin|^2 - 1
        float axis[3]; ///< towards the centre
        float cosine; ///< of the half angle under which the bounding ball is seen
        float sine;
        float centre[3];
        float reach[9]; ///< row-major; |reach n| is how far the body extends from its centre along a unit
                        ///< vector n
        float farthest; ///< from the camera to any of its points
        float nearest;
        float worldNormal[9]; ///< row-major; takes a point of the unit ball to the world's normal, unscaled
        float color[3];
        float stripes; ///< a unit of the ball's y
        int id;
    };
    /// A thing that a bundle may touch: an index into flats, or past them into rounds.
    struct Candidate {
        int index;
        bool covers; ///< hit by every ray of the bundle
        float nearest; ///< no ray of the bundle meets it at a greater 1/t
    };
    using Candidates = std::vector<Candidate>;

    void build(const Scene &scene, const Pose &worldFromCamera, double t);

    const std::vector<Flat> &flats() const { return m_flats; }
    const std::vector<Round> &rounds() const { return m_rounds; }
    bool isFlat(int index) const { return static_cast<std::size_t>(index) < m_flats.size(); }
    const Round &round(int index) const { return m_rounds[static_cast<std::size_t>(index) - m_flats.size()]; }
    const Flat &flat(int index) const { return m_flats[static_cast<std::size_t>(index)]; }

    int size() const { return static_cast<int>(m_flats.size() + m_rounds.size()); }

    /// Adds the thing if the bundle may touch it. `cover` becomes the greatest 1/t that something covers the
    /// whole bundle at, 0 to begin with.
    void judge(int index, const RayTable::Bundle &bundle, Candidates &out, float &cover) const;
    /// Takes out what lies behind something that covers the whole bundle.
    static void dropHidden(Candidates &candidates, float cover);

private:
    void addFlat(const Surface &surface, const Pose &worldFromCamera);
    void addRound(const Ellipsoid &body, const Pose &worldFromCamera);
    static bool judge(const Flat &surface, const RayTable::Bundle &bundle, Candidate &out, float &cover);
    static bool judge(const Round &body, const RayTable::Bundle &bundle, Candidate &out);

    std::vector<Flat> m_flats;
    std::vector<Round> m_rounds;
};

} // namespace sim

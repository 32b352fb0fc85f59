#include "world/DrawList.h"

#include <algorithm>
#include <cmath>

namespace sim {
namespace {

using Eigen::Vector3d;

void store(const Vector3d &from, float *to)
{
    for (Eigen::Index i = 0; i < 3; ++i)
        to[i] = static_cast<float>(from(i));
}

void storeRows(const Eigen::Matrix3d &from, float *to)
{
    for (Eigen::Index row = 0; row < 3; ++row)
        store(from.row(row).transpose(), to + 3 * row);
}

float dot(const float *a, const float *b)
{
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

} // namespace

void DrawList::build(const Scene &scene, const Pose &worldFromCamera, double t)
{
    m_flats.clear();
    m_rounds.clear();
    for (const Surface &surface : scene.surfaces())
        addFlat(surface, worldFromCamera);
    for (const Ellipsoid &body : scene.ellipsoids(t))
        addRound(body, worldFromCamera);
}

void DrawList::addFlat(const Surface &surface, const Pose &worldFromCamera)
{
    const Vector3d offset = surface.corner - worldFromCamera.translation();
    const double toPlane = surface.normal.dot(offset);
    if (toPlane > -1e-4)
        return;
    const Eigen::Matrix3d cameraFromWorld = worldFromCamera.linear().transpose();
    Flat out;
    const Vector3d plane = cameraFromWorld * surface.normal / toPlane;
    const Vector3d right = cameraFromWorld * surface.right - surface.right.dot(offset) * plane;
    const Vector3d down = cameraFromWorld * surface.down - surface.down.dot(offset) * plane;
    store(plane, out.plane);
    store(right, out.right);
    store(down, out.down);
    out.planeNorm = static_cast<float>(plane.norm());
    out.width = static_cast<float>(surface.width);
    out.height = static_cast<float>(surface.height);
    out.id = surface.id;

    const double nearA = std::clamp(-surface.right.dot(offset), 0.0, surface.width);
    const double nearB = std::clamp(-surface.down.dot(offset), 0.0, surface.height);
    const Vector3d nearPoint = offset + nearA * surface.right + nearB * surface.down;
    out.nearest = static_cast<float>(1 / nearPoint.norm() * 1.00001);

    // a >= 0, a <= width, b >= 0, b <= height, each as a plane through the camera.
    const Vector3d edges[4] = {right, surface.width * plane - right, down, surface.height * plane - down};
    for (int k = 0; k < 4; ++k) {
        const double norm = edges[k].norm();
        const Vector3d edge = norm > 1e-12 ? (edges[k] / norm).eval() : Vector3d::Zero();
        out.edgeX[k] = static_cast<float>(edge.x());
        out.edgeY[k] = static_cast<float>(edge.y());
        out.edgeZ[k] = static_cast<float>(edge.z());
    }
    m_flats.push_back(out);
}

void DrawList::addRound(const Ellipsoid &body, const Pose &worldFromCamera)
{
    const Vector3d offset = worldFromCamera.translation() - body.centre;
    const Eigen::Matrix3d toBall = body.toBall();
    const Vector3d origin = toBall * offset;
    const double beyond = origin.squaredNorm() - 1;
    if (!(beyond > 1e-6))
        return;
    const double distance = offset.norm();
    const double radius = body.radii.maxCoeff();
    const double sine = std::min(1.0, radius / distance);
    Round out;
    storeRows(toBall * worldFromCamera.linear(), out.ball);
    store(origin, out.origin);
    out.offset = static_cast<float>(beyond);
    store(worldFromCamera.linear().transpose() * -offset / distance, out.axis);
    out.sine = static_cast<float>(sine);
    out.cosine = static_cast<float>(std::sqrt(1 - sine * sine));
    // The ball about the body may hold the camera though the body doesn't.
    out.nearest = distance > radius * 1.01 ? static_cast<float>(1 / (distance - radius)) : 1e9F;
    out.farthest = static_cast<float>(distance + radius);
    store(worldFromCamera.linear().transpose() * -offset, out.centre);
    const Eigen::Matrix3d reach = body.radii.asDiagonal() * body.axes.transpose() * worldFromCamera.linear();
    storeRows(reach, out.reach);
    storeRows(toBall.transpose(), out.worldNormal);
    store(body.color, out.color);
    out.stripes = static_cast<float>(body.stripes * body.radii.y());
    out.id = body.id;
    m_rounds.push_back(out);
}

bool DrawList::judge(const Flat &surface, const RayTable::Bundle &bundle, Candidate &out, float &cover)
{
    const float *axis = bundle.axis;
    float side[4];
    for (int k = 0; k < 4; ++k)
        side[k] = surface.edgeX[k] * axis[0] + surface.edgeY[k] * axis[1] + surface.edgeZ[k] * axis[2];
    float least = std::min(std::min(side[0], side[1]), std::min(side[2], side[3]));
    if (least < -bundle.reach)
        return false;
    float low = dot(surface.plane, axis) - surface.planeNorm * bundle.reach;
    float high = low + 2 * surface.planeNorm * bundle.reach;
    bool covers = least >= bundle.reach;
    if (bundle.whole) {
        float lows[4] = {2, 2, 2, 2};
        float highs[4] = {-2, -2, -2, -2};
        float nearer = -1e30F;
        float farther = 1e30F;
        for (int c = 0; c < 4; ++c) {
            const float x = bundle.cornerX[c];
            const float y = bundle.cornerY[c];
            const float z = bundle.cornerZ[c];
            for (int k = 0; k < 4; ++k) {
                const float value = surface.edgeX[k] * x + surface.edgeY[k] * y + surface.edgeZ[k] * z;
                lows[k] = std::min(lows[k], value);
                highs[k] = std::max(highs[k], value);
            }
            const float inverse = surface.plane[0] * x + surface.plane[1] * y + surface.plane[2] * z;
            nearer = std::max(nearer, inverse);
            farther = std::min(farther, inverse);
        }
        if (std::min(std::min(highs[0], highs[1]), std::min(highs[2], highs[3])) < -bundle.slack)
            return false;
        least = std::min(std::min(lows[0], lows[1]), std::min(lows[2], lows[3]));
        covers = covers || least >= bundle.slack;
        low = std::max(low, farther - surface.planeNorm * bundle.slack);
        high = std::min(high, nearer + surface.planeNorm * bundle.slack);
    }
    if (high <= 0)
        return false;
    out.covers = covers && bundle.whole && low > 0;
    out.nearest = std::min(surface.nearest, high);
    if (out.covers)
        cover = std::max(cover, low);
    return true;
}

bool DrawList::judge(const Round &body, const RayTable::Bundle &bundle, Candidate &out)
{
    const bool wide = bundle.cosine < 0 || body.sine >= 1;
    const float limit = body.cosine * bundle.cosine - body.sine * bundle.sine;
    if (!wide && dot(body.axis, bundle.axis) < limit)
        return false;
    if (bundle.whole) {
        for (int k = 0; k < 4; ++k) {
            const float side[3] = {bundle.sideX[k], bundle.sideY[k], bundle.sideZ[k]};
            const float inward = dot(body.centre, side) + bundle.slack * body.farthest;
            const float p = dot(body.reach, side);
            const float q = dot(body.reach + 3, side);
            const float r = dot(body.reach + 6, side);
            if (inward < 0 && inward * inward > p * p + q * q + r * r)
                return false;
        }
    }
    out.covers = false;
    out.nearest = body.nearest;
    return true;
}

void DrawList::judge(int index, const RayTable::Bundle &bundle, Candidates &out, float &cover) const
{
    Candidate candidate;
    candidate.index = index;
    if (isFlat(index) ? judge(flat(index), bundle, candidate, cover) : judge(round(index), bundle, candidate))
        out.push_back(candidate);
}

void DrawList::dropHidden(Candidates &candidates, float cover)
{
    if (candidates.size() < 2)
        return;
    candidates.erase(std::remove_if(candidates.begin(), candidates.end(),
                         [cover](const Candidate &candidate) { return candidate.nearest < cover; }),
        candidates.end());
}

} // namespace sim

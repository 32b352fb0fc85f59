#pragma once

#include "world/CameraModel.h"
#include "world/Pose.h"
#include "world/Scene.h"

#include <memory>
#include <opencv2/core.hpp>

namespace sim {

/// Pictures of the scene through one camera: holds the camera's rays and all scratch memory, so each camera
/// has its own, and one thread at a time may use it. Same scene, pose and time give the same bytes.
///
/// Outputs are made with the model's size if they haven't got it.
class Renderer {
public:
    Renderer(std::shared_ptr<const Scene> scene, std::shared_ptr<const CameraModel> model);
    ~Renderer();
    Renderer(const Renderer &) = delete;
    Renderer &operator=(const Renderer &) = delete;

    /// `z`: CV_32FC1, distance along the optical axis in metres, 0 where there is nothing or the lens has no
    /// ray. `surface`: CV_16SC1, ids as in `Scene`, -1 for none.
    void depth(const Pose &worldFromCamera, double t, cv::Mat &z, cv::Mat *surface = nullptr);
    /// CV_8UC1; `gain` scales the brightness, which saturates.
    void grey(const Pose &worldFromCamera, double t, cv::Mat &out, double gain = 1.0);
    /// CV_8UC3 in the order red, green, blue.
    void color(const Pose &worldFromCamera, double t, cv::Mat &rgb, double gain = 1.0);

private:
    struct Work;

    std::shared_ptr<const Scene> m_scene;
    std::shared_ptr<const CameraModel> m_model;
    std::unique_ptr<Work> m_work;
};

} // namespace sim

#pragma once

#include <QTemporaryDir>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <opencv2/imgcodecs.hpp>
#include <string>

/// A small recording on disk, made by the test: each picture is a plain grey that tells which it is.
class RecordingFolder {
public:
    static constexpr int width = 32;
    static constexpr int height = 20;
    static constexpr std::int64_t firstTime = 1'500'000'000'000'000'000;
    static constexpr std::int64_t period = 20'000'000;

    std::string path() const { return m_folder.path().toStdString(); }
    std::filesystem::path camera(int number) const { return root() / ("cam" + std::to_string(number)); }
    std::filesystem::path root() const { return std::filesystem::path(path()) / "mav0"; }
    std::filesystem::path picture(int number, std::int64_t time) const
    {
        return camera(number) / "data" / (std::to_string(time) + ".png");
    }

    static void write(const std::filesystem::path &file, const std::string &text)
    {
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary | std::ios::trunc) << text;
    }

    static std::int64_t time(int index) { return firstTime + index * period; }
    static int grey(int camera, int index) { return 10 + 100 * camera + index; }

    void writePicture(int number, int index) const
    {
        const std::filesystem::path file = picture(number, time(index));
        std::filesystem::create_directories(file.parent_path());
        cv::imwrite(file.string(), cv::Mat(height, width, CV_8UC1, cv::Scalar(grey(number, index))));
    }

    /// A camera with that many pictures.
    void addCamera(int number, int count) const
    {
        std::string table = "#timestamp [ns],filename\n";
        for (int i = 0; i < count; ++i) {
            writePicture(number, i);
            table += std::to_string(time(i)) + ',' + std::to_string(time(i)) + ".png\n";
        }
        write(camera(number) / "data.csv", table);
        write(camera(number) / "sensor.yaml", pinhole());
    }

    /// Readings at four times the pictures' rate; the z of the gyroscope counts them.
    void addImu(int count) const
    {
        std::string table = "#timestamp [ns],w,w,w,a,a,a\n";
        for (int i = 0; i < count; ++i)
            table += std::to_string(firstTime + i * period / 4) + ",0.1,0.2," + std::to_string(i)
                + ",0,-9.81,0.5\n";
        write(root() / "imu0" / "data.csv", table);
    }

    static std::string pinhole()
    {
        return "%YAML:1.0\nsensor_type: camera\nT_BS:\n  cols: 4\n  rows: 4\n"
               "  data: [0.0, -1.0, 0.0, 0.1, 1.0, 0.0, 0.0, 0.2, 0.0, 0.0, 1.0, 0.3, 0.0, 0.0, 0.0, 1.0]\n"
               "rate_hz: 50\nresolution: [32, 20]\ncamera_model: pinhole\nintrinsics: [25.5, 26.5, 15.5, "
               "9.5] #fu\n"
               "distortion_model: radial-tangential\ndistortion_coefficients: [-0.1, 0.02, 0.003, -0.0004]\n";
    }

private:
    QTemporaryDir m_folder;
};

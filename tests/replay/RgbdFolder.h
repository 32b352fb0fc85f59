#pragma once

#include <QTemporaryDir>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <opencv2/imgcodecs.hpp>
#include <string>

/// A small recording in the TUM RGB-D layout, made by the test: colour picture i is of one colour, depth
/// picture i of one depth, both telling which they are.
class RgbdFolder {
public:
    static constexpr int width = 32;
    static constexpr int height = 24;
    static constexpr std::int64_t firstTime = 1'305'031'102'000'000'000;
    static constexpr std::int64_t period = 40'000'000;
    static constexpr std::int64_t depthLater = 4'000'000; ///< ns after its colour picture

    std::filesystem::path path() const { return m_folder.path().toStdString(); }

    static std::int64_t time(int index) { return firstTime + index * period; }
    static int red(int index) { return 40 + 20 * index; }
    static int millimetres(int index) { return 1000 + 250 * index; }
    static std::string seconds(std::int64_t time)
    {
        const std::string digits = std::to_string(time);
        return digits.substr(0, digits.size() - 9) + '.' + digits.substr(digits.size() - 9, 6);
    }

    void write(const std::string &name, const std::string &text) const
    {
        std::ofstream(path() / name, std::ios::binary | std::ios::trunc) << text;
    }

    void addColor(int count) const
    {
        std::filesystem::create_directories(path() / "rgb");
        std::string list = "# color images\n# timestamp filename\n";
        for (int i = 0; i < count; ++i) {
            const std::string name = "rgb/" + seconds(time(i)) + ".png";
            cv::imwrite(
                (path() / name).string(), cv::Mat(height, width, CV_8UC3, cv::Scalar(90, 60, red(i))));
            list += seconds(time(i)) + ' ' + name + '\n';
        }
        write("rgb.txt", list);
    }

    /// The left half of each depth picture has no reading.
    void addDepth(int count, double scale = 5000) const
    {
        std::filesystem::create_directories(path() / "depth");
        std::string list = "# depth maps\n# timestamp filename\n";
        for (int i = 0; i < count; ++i) {
            const std::string name = "depth/" + seconds(time(i) + depthLater) + ".png";
            cv::Mat picture(height, width, CV_16UC1, cv::Scalar(millimetres(i) * scale / 1000));
            picture.colRange(0, width / 2) = 0;
            cv::imwrite((path() / name).string(), picture);
            list += seconds(time(i) + depthLater) + ' ' + name + '\n';
        }
        write("depth.txt", list);
    }

private:
    QTemporaryDir m_folder;
};

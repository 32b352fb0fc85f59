#pragma once

#include "device/qv/Records.h"

#include <filesystem>
#include <opencv2/core.hpp>
#include <string>

namespace sim {

/// One recorded picture as 8-bit grey. Of 16-bit grey the upper eight bits are kept, where TUM-VI has its
/// picture; colour becomes grey. Throws std::runtime_error with a text for people.
qv::FisheyeImage readPicture(const std::filesystem::path &file);
cv::Mat readGrey(const std::filesystem::path &file);

/// One recorded picture as CV_8UC3, red first. Throws as above.
cv::Mat readColor(const std::filesystem::path &file);

/// One recorded depth picture, CV_16UC1 in the recording's steps. Throws as above.
cv::Mat readDepth(const std::filesystem::path &file);

/// A picture as the contract's record, with its memory shared.
qv::FisheyeImage fisheyeImage(const cv::Mat &grey);

/// Makes the decoder's own tables, which go at the program's end in the reverse order of their making:
/// whoever may still read pictures then has to have called this before it was made itself.
void preparePictureReader();

/// Whether the bytes are a whole PNG: its signature, its chunks with right sums, its end. The decoder would
/// print lines of its own about one that isn't.
bool isWholePng(const std::string &bytes);

} // namespace sim

// OpenCV's image processing module.
#include "compare/Peer.h"

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <cmath>
#include <memory>

namespace compare {

namespace {

struct Matrices {
    Matrices(const Frames& frames)
        : first(int(frames.size.height), int(frames.size.width), CV_8UC4, frames.pixels[0].data()),
          second(first.rows, first.cols, CV_8UC4, frames.pixels[1].data())
    {
    }
    cv::Mat first, second, grey, result;
    std::vector<cv::Mat> planes;
};

cv::Mat squaresTable()
{
    cv::Mat table(1, 256, CV_8UC4);
    for (int i = 0; i < 256; ++i) {
        const auto value = uchar(i * i / 255);
        table.at<cv::Vec4b>(i) = {value, value, value, uchar(i)};
    }
    return table;
}

// Places to read from for a turn that is strongest in the middle.
cv::Mat whirlMap(const cv::Mat& picture)
{
    cv::Mat map(picture.size(), CV_32FC2);
    const float cx = float(picture.cols) / 2;
    const float cy = float(picture.rows) / 2;
    for (int y = 0; y < map.rows; ++y) {
        for (int x = 0; x < map.cols; ++x) {
            const float dx = float(x) - cx;
            const float dy = float(y) - cy;
            const float angle = 3 * std::exp(-std::hypot(dx, dy) / cy);
            map.at<cv::Vec2f>(y, x) = {cx + dx * std::cos(angle) - dy * std::sin(angle),
                cy + dx * std::sin(angle) + dy * std::cos(angle)};
        }
    }
    return map;
}

} // namespace

std::vector<Peer> openCvPeers(const Frames& frames, int threads)
{
    cv::setNumThreads(threads);
    const auto m = std::make_shared<Matrices>(frames);
    const double deviation = blurDeviation(frames.size);
    const auto table = squaresTable();
    const auto map = whirlMap(m->first);
    const auto grey = [m] {
        cv::cvtColor(m->first, m->grey, cv::COLOR_BGRA2GRAY);
        cv::cvtColor(m->grey, m->result, cv::COLOR_GRAY2BGRA);
    };
    std::vector<Peer> peers;
    const auto add = [&](const char* effect, const char* call, std::function<void()> once) {
        peers.push_back({effect, "OpenCV", call, std::move(once)});
    };
    add("am-gray-scale", "cvtColor to grey and back", grey);
    add("am-negative", "bitwise_xor",
        [m] { cv::bitwise_xor(m->first, cv::Scalar(255, 255, 255, 0), m->result); });
    add("am-solarize", "LUT", [m, table] { cv::LUT(m->first, table, m->result); });
    add("am-flip-lr", "flip", [m] { cv::flip(m->first, m->result, 1); });
    add("equalize", "equalizeHist of three planes", [m] {
        cv::split(m->first, m->planes);
        for (int i = 0; i < 3; ++i)
            cv::equalizeHist(m->planes[std::size_t(i)], m->planes[std::size_t(i)]);
        cv::merge(m->planes, m->result);
    });
    add("blur", "GaussianBlur", [m, deviation] { cv::GaussianBlur(m->first, m->result, {}, deviation); });
    add("am-sharp", "filter2D, 3 x 3", [m] {
        static const cv::Mat kernel = (cv::Mat_<float>(3, 3) << -1, -1, -1, -1, 12, -1, -1, -1, -1) / 4.0f;
        cv::filter2D(m->first, m->result, -1, kernel);
    });
    add("am-blur2", "blur, 3 x 3", [m] { cv::blur(m->first, m->result, {3, 3}); });
    add("am-mosaic", "resize by area and back", [m] {
        cv::resize(m->first, m->grey, {}, 1 / 16.0, 1 / 16.0, cv::INTER_AREA);
        cv::resize(m->grey, m->result, m->first.size(), 0, 0, cv::INTER_NEAREST);
    });
    add("am-whirl", "remap, nearest, with a map made before",
        [m, map] { cv::remap(m->first, m->result, map, {}, cv::INTER_NEAREST); });
    add("fade", "addWeighted", [m] { cv::addWeighted(m->first, 0.4, m->second, 0.6, 0, m->result); });
    return peers;
}

} // namespace compare

// Draws the sample pictures of samples/: the specimen sharp all over, once plain and once with an
// annotation trailer. make_samples <folder>

#include "simulator/specimen.h"

#include <opencv2/imgcodecs.hpp>

#include <cstdint>
#include <fstream>
#include <iostream>
#include <string>

namespace {

constexpr std::uint32_t trailerMagic = 0x001FF8D8;

void writeBigEndian(std::ostream &out, std::uint32_t number)
{
    for (int shift = 24; shift >= 0; shift -= 8)
        out.put(char(number >> shift & 0xff));
}

void appendTrailer(const std::string &path, const std::string &json)
{
    std::ofstream file(path, std::ios::binary | std::ios::app);
    writeBigEndian(file, std::uint32_t(json.size()));
    file << json;
    writeBigEndian(file, std::uint32_t(json.size()));
    writeBigEndian(file, trailerMagic);
}

/// A pad, a hole, a part of the ruler and a note, at 6 micrometres a pixel in 1600 x 900.
const char annotations[] =
    R"([{"point":[{"x":100,"y":117},{"x":150,"y":233}],"type":7},)"
    R"({"point":[{"x":242,"y":567},{"x":200,"y":525},{"x":158,"y":567}],"type":9},)"
    R"({"point":[{"x":300,"y":833},{"x":800,"y":833}],"type":1},)"
    R"({"point":[{"x":1240,"y":420},{"x":1330,"y":390}],"text":"2R2","type":15}])";

} // namespace

int main(int argc, char **argv)
{
    if (argc != 2) {
        std::cerr << "make_samples <folder>\n";
        return 2;
    }
    const std::string folder = std::string(argv[1]) + '/';
    const std::vector<int> quality{cv::IMWRITE_JPEG_QUALITY, 90};
    const bool plain = cv::imwrite(folder + "board.jpg", specimen::draw({1920, 1080}, 5), quality);
    const std::string annotated = folder + "board_annotated.jpg";
    if (!plain || !cv::imwrite(annotated, specimen::draw({1600, 900}, 6), quality)) {
        std::cerr << "make_samples: cannot write to " << argv[1] << '\n';
        return 1;
    }
    appendTrailer(annotated, annotations);
    return 0;
}

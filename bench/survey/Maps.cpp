#include "survey/Maps.h"

#include <map>

namespace Survey
{

namespace
{

Zvl::Surface NewScan(int side)
{
    Zvl::Surface scan = Bench::Map();
    scan.layers[0] = Bench::NewArray(xxq16s_type, side, side);
    const cv::Mat whole = Heights(Bench::Map().layers[0]);
    const int inside = std::min(side, Bench::kSide);
    const cv::Mat part = whole(cv::Rect(0, 0, inside, inside));
    cv::Mat cells = Heights(scan.layers[0]);
    cv::copyMakeBorder(part, cells, 0, side - inside, 0, side - inside, cv::BORDER_REFLECT);
    return scan;
}

} // namespace

const Zvl::Surface& Scan(int side)
{
    static std::map<int, Zvl::Surface> scans;
    const auto known = scans.find(side);
    return known != scans.end() ? known->second : scans.emplace(side, NewScan(side)).first->second;
}

Zvl::Surface ScanWithIntensities(int side)
{
    Zvl::Surface scan = Scan(side);
    scan.layers.push_back(Bench::NewArray(xxq8u_type, side, side));
    cv::Mat intensities = Bytes(scan.layers[1]);
    cv::RNG(1).fill(intensities, cv::RNG::UNIFORM, 0, 256);
    return scan;
}

Zo::Object<void*> WholeHeights(int side)
{
    Zo::Object<void*> array = Bench::NewArray(xxq16s_type, side, side);
    cv::Mat cells = Heights(array);
    Heights(Scan(side).layers[0]).copyTo(cells);
    cells.setTo(0, cells == Zvl::GetNull<short>());
    return array;
}

Zo::Object<void*> RandomMask(int side, std::uint64_t seed)
{
    Zo::Object<void*> mask = Bench::NewArray(xxq8u_type, side, side);
    cv::Mat cells = Bytes(mask);
    cv::RNG(seed).fill(cells, cv::RNG::UNIFORM, 0, 2);
    return mask;
}

Zo::Object<void*> ValidMask(int side)
{
    Zo::Object<void*> mask = Bench::NewArray(xxq8u_type, side, side);
    cv::Mat cells = Bytes(mask);
    cells.setTo(1);
    cells.setTo(0, Heights(Scan(side).layers[0]) == Zvl::GetNull<short>());
    return mask;
}

double Length(double cells)
{
    return cells * Bench::kScale.x;
}

qPoint64f Position(double column, double row)
{
    return {Bench::kOffset.x + Length(column), Bench::kOffset.y + Length(row)};
}

cv::Mat Heights(const Zo::Object<void*>& array)
{
    return Bench::MatOver(array, CV_16S);
}

cv::Mat Bytes(const Zo::Object<void*>& array)
{
    return Bench::MatOver(array, CV_8U);
}

} // namespace Survey

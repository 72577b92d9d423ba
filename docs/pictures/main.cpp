#include "Pictures.h"

#include <exception>
#include <filesystem>
#include <iostream>
#include <iterator>

namespace
{

struct Entry
{
    const char* name;
    Pictures::Svg (*draw)();
};

constexpr Entry kEntries[] = {
    {"mapping", Pictures::Mapping},
    {"nulls", Pictures::Nulls},
    {"box-and-mask", Pictures::BoxAndMask},
    {"frames", Pictures::Frames},
    {"ownership", Pictures::Ownership},
    {"surface-regions", Pictures::SurfaceRegions},
    {"profile-regions", Pictures::ProfileRegions},
    {"masks-and-limits", Pictures::MasksAndLimits},
    {"anchors", Pictures::Anchors},
    {"profile-filters", Pictures::ProfileFilters},
    {"surface-filters", Pictures::SurfaceFilters},
    {"gap-filling", Pictures::GapFilling},
    {"decimation", Pictures::Decimation},
    {"arithmetic", Pictures::Arithmetic},
    {"line-fits", Pictures::LineFits},
    {"circle-fits", Pictures::CircleFits},
    {"voronoi-cells", Pictures::VoronoiCells},
    {"trimmed-circle", Pictures::TrimmedCircle},
    {"sphere-and-plane", Pictures::SphereAndPlane},
    {"polynomials", Pictures::Polynomials},
    {"inpainting", Pictures::Inpainting},
    {"shares", Pictures::Shares},
};

} // namespace

int main(int argumentCount, char** arguments)
{
    if (argumentCount != 2)
    {
        std::cerr << "usage: draw_pictures FOLDER\n";
        return 2;
    }
    try
    {
        for (const Entry& entry : kEntries)
        {
            entry.draw().Write(std::filesystem::path(arguments[1]) / (std::string(entry.name) + ".svg"));
        }
        std::cout << std::size(kEntries) << " pictures in " << arguments[1] << '\n';
        return 0;
    }
    catch (const std::exception& error)
    {
        std::cerr << "error: " << error.what() << '\n';
        return 1;
    }
}

#pragma once

/** @file
 *  One fixed program of all operations over a simulated plate, and digests of what comes out of it. */

#include <ZdkVisionLib/ZdkVisionLib.h>

#include <cstdint>
#include <map>
#include <string>
#include <type_traits>
#include <vector>

namespace WholeTest
{

/** A hash over the bytes of results: FNV-1a (G. Fowler, L. C. Noll, K.-P. Vo). */
class Digest
{
public:
    Digest& Add(const void* data, std::size_t size)
    {
        const auto* bytes = static_cast<const unsigned char*>(data);
        for (std::size_t i = 0; i < size; ++i)
        {
            value = (value ^ bytes[i]) * 1099511628211U;
        }
        return *this;
    }

    template <typename T>
    Digest& AddValue(const T& item)
    {
        static_assert(std::is_arithmetic_v<T>); // records may have padding
        return Add(&item, sizeof(item));
    }

    Digest& AddArray(void* array)
    {
        const std::size_t rows = qArray2_Length(array, 0);
        const std::size_t columns = qArray2_Length(array, 1);
        AddValue(rows).AddValue(columns);
        return rows * columns == 0 ? *this
                                   : Add(qArray2_At(array, 0, 0), rows * columns * qType_Size(qArray2_Type(array)));
    }

    Digest& AddSurface(const Zvl::Surface& surface)
    {
        for (const qPoint3d64f& mapping : {surface.scale, surface.offset})
        {
            AddValue(mapping.x).AddValue(mapping.y).AddValue(mapping.z);
        }
        for (const Zo::Object<void*>& layer : surface.layers)
        {
            AddArray(layer);
        }
        return *this;
    }

    Digest& AddRegion(Zvl::ROI& roi)
    {
        const Zvl::Rect2d<int>& box = roi.GetBoundingBox();
        return AddValue(box.x).AddValue(box.y).AddValue(box.width).AddValue(box.height).AddArray(roi.GetMask());
    }

    std::uint64_t Value() const { return value; }

private:
    std::uint64_t value = 14695981039346656037U;
};

/** Digests of results by the name of the operation. */
using Digests = std::map<std::string, std::uint64_t>;

/** What the operations work on, all of it only read: a plate of 16 by 12 mm, the same plate in another place, and points. */
struct World
{
    World(std::size_t rowCount, std::size_t columnCount);

    std::size_t rows;
    std::size_t columns;
    qPoint64f scale;
    qPoint64f offset;
    Zvl::Surface plate;
    Zvl::Surface other;
    std::vector<qPoint64f> ring;
};

/** A part of the program, which adds its digests. */
using Operation = void (*)(const World& world, Digests& digests);

const std::vector<Operation>& Operations();

} // namespace WholeTest

#pragma once

/** @file
 *  What a fuzzer's bytes mean: sizes, heights, coordinates and nonsense. */

#include <ZdkVisionLib/Common/Common.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <limits>
#include <vector>

namespace Fuzz
{

/** Reads values off a stretch of bytes; behind its end all are 0. */
class Bytes
{
public:
    Bytes(const std::uint8_t* data, std::size_t size) : next(data), left(size) {}

    bool Empty() const { return left == 0; }

    std::uint8_t Byte() { return Read<std::uint8_t>(); }
    bool Flag() { return Byte() % 2 != 0; }

    /** From @p low to @p high. */
    int Int(int low, int high)
    {
        const auto span = static_cast<std::uint32_t>(high - low) + 1;
        return low + static_cast<int>(Read<std::uint16_t>() % span);
    }

    std::size_t Size(int low, int high) { return static_cast<std::size_t>(Int(low, high)); }

    /** Mostly an ordinary number, sometimes one at the limits of what there is, sometimes any bits. */
    double Double()
    {
        static constexpr double kStrange[] = {0.0,
                                              -0.0,
                                              1.0,
                                              -1.0,
                                              std::numeric_limits<double>::infinity(),
                                              -std::numeric_limits<double>::infinity(),
                                              std::numeric_limits<double>::quiet_NaN(),
                                              std::numeric_limits<double>::max(),
                                              std::numeric_limits<double>::lowest(), // the null
                                              std::numeric_limits<double>::min(),
                                              std::numeric_limits<double>::denorm_min(),
                                              2147483647.5,
                                              -2147483648.5,
                                              9223372036854775808.0,
                                              1e300,
                                              1e-300};
        const std::uint8_t kind = Byte();
        if (kind < 200)
        {
            return Read<std::int16_t>() / 64.0;
        }
        if (kind < 240)
        {
            return kStrange[kind % std::size(kStrange)];
        }
        return Read<double>();
    }

    /** A scale that is ordinary more often than Double(). */
    double Scale()
    {
        const std::uint8_t kind = Byte();
        return kind < 220 ? (1 + kind) / 64.0 : Double();
    }

    std::int16_t Height()
    {
        const std::uint8_t kind = Byte();
        return kind < 40 ? Zvl::GetNull<short>() : kind < 120 ? static_cast<std::int16_t>(kind) : Read<std::int16_t>();
    }

    template <typename T>
    T Read()
    {
        T value{};
        const std::size_t size = std::min(left, sizeof(T));
        std::memcpy(&value, next, size);
        next += size;
        left -= size;
        return value;
    }

private:
    const std::uint8_t* next;
    std::size_t left;
};

inline std::vector<std::int16_t> Heights(Bytes& bytes, std::size_t count)
{
    std::vector<std::int16_t> heights(count);
    std::generate(heights.begin(), heights.end(), [&bytes] { return bytes.Height(); });
    return heights;
}

inline Zo::Object<void*> Array(qType type, std::size_t rows, std::size_t columns)
{
    Zo::Object<void*> array;
    Zo::Test(qArray2_Construct(array.Slot(), type, rows, columns, nullptr));
    return array;
}

inline Zo::Object<void*> HeightArray(Bytes& bytes, std::size_t rows, std::size_t columns)
{
    const Zo::Object<void*> array = Array(xxq16s_type, rows, columns);
    for (std::size_t cell = 0; cell < rows * columns; ++cell)
    {
        const std::int16_t height = bytes.Height();
        Zo::Test(qArray2_SetItem(array, cell / columns, cell % columns, &height));
    }
    return array;
}

inline Zo::Object<void*> ByteArray(Bytes& bytes, std::size_t rows, std::size_t columns)
{
    const Zo::Object<void*> array = Array(xxq8u_type, rows, columns);
    for (std::size_t cell = 0; cell < rows * columns; ++cell)
    {
        const std::uint8_t value = bytes.Byte();
        Zo::Test(qArray2_SetItem(array, cell / columns, cell % columns, &value));
    }
    return array;
}

/** A small surface with any mapping, and layers that may be null, of another size or of the wrong type. */
inline Zvl::Surface AnySurface(Bytes& bytes)
{
    Zvl::Surface surface;
    surface.scale = {bytes.Scale(), bytes.Scale(), bytes.Scale()};
    surface.offset = {bytes.Double(), bytes.Double(), bytes.Double()};
    const std::size_t rows = bytes.Size(0, 9);
    const std::size_t columns = bytes.Size(0, 9);
    const std::uint8_t kind = bytes.Byte();
    if (kind < 4)
    {
        return surface;
    }
    surface.layers.push_back(kind < 8    ? Zo::Object<void*>()
                             : kind < 12 ? ByteArray(bytes, rows, columns)
                                         : HeightArray(bytes, rows, columns));
    if (kind % 2 == 0)
    {
        const bool fits = kind % 16 != 0;
        surface.layers.push_back(kind % 32 == 2 ? Zo::Object<void*>()
                                                : ByteArray(bytes, fits ? rows : rows / 2, columns));
    }
    return surface;
}

/** Calls a function that may refuse its arguments. */
template <typename Call>
void Try(Call call)
{
    try
    {
        call();
    }
    catch (const Zo::Exception&)
    {
    }
}

/** Ends the process when two results differ that must not. */
inline void Require(bool condition)
{
    if (!condition)
    {
        __builtin_trap();
    }
}

} // namespace Fuzz

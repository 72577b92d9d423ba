#include "Filter/SurfaceFilterKernel.h"

#include <ZdkVisionLib/Common/Common.h>

#include <algorithm>

namespace Zvl
{

namespace
{

/** The lines of a map in one direction. */
struct Lines
{
    std::size_t count;
    std::size_t step; ///< from one line to the next
    std::size_t length;
    std::size_t stride; ///< from one cell of a line to the next
};

/** Sum and count of the heights in a window. In 64 bits, so that no line is too long. */
class WindowSum
{
public:
    void Add(std::int16_t cell)
    {
        if (cell != GetNull<short>())
        {
            sum += cell;
            ++count;
        }
    }

    void Remove(std::int16_t cell)
    {
        if (cell != GetNull<short>())
        {
            sum -= cell;
            --count;
        }
    }

    std::int16_t Mean() const { return count > 0 ? static_cast<std::int16_t>(sum / count) : GetNull<short>(); }

private:
    std::int64_t sum = 0;
    std::int64_t count = 0;
};

void AverageLine(const std::int16_t* in, std::int16_t* out, const Lines& lines, std::uint64_t window, bool keepNulls)
{
    const std::uint64_t ahead = window / 2;
    WindowSum cells;
    for (std::size_t cell = 0; cell < std::min<std::uint64_t>(ahead, lines.length); ++cell)
    {
        cells.Add(in[cell * lines.stride]);
    }
    for (std::size_t cell = 0; cell < lines.length; ++cell)
    {
        const std::uint64_t entering = cell + ahead;
        if (entering >= window)
        {
            cells.Remove(in[(entering - window) * lines.stride]);
        }
        if (entering < lines.length)
        {
            cells.Add(in[entering * lines.stride]);
        }
        const bool staysNull = keepNulls && in[cell * lines.stride] == GetNull<short>();
        out[cell * lines.stride] = staysNull ? GetNull<short>() : cells.Mean();
    }
}

void AverageLines(const std::int16_t* in, std::int16_t* out, const Lines& lines, std::uint32_t window, bool keepNulls)
{
    for (std::size_t line = 0; line < lines.count && lines.length != 0; ++line)
    {
        AverageLine(in + line * lines.step, out + line * lines.step, lines, window, keepNulls);
    }
}

} // namespace

void AverageLineByLine(const BoxMean& mean, std::int16_t* between)
{
    const Lines rows = {mean.rows, mean.columns, mean.columns, 1};
    const Lines columns = {mean.columns, 1, mean.rows, mean.columns};
    AverageLines(mean.in, between, rows, mean.windowX, mean.keepNulls);
    AverageLines(between, mean.out, columns, mean.windowY, mean.keepNulls);
}

} // namespace Zvl

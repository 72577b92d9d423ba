#pragma once

/** @file
 *  A centred window that slides over a line. */

#include "Filter/Line.h"

namespace Zvl
{

/** Lets @p cells hold the window around each cell in turn, clipped to the line, and writes its Value(). The window
 *  changes by Add() and Remove() of one cell each, missing ones included. */
template <typename WindowCells>
void SlideWindow(const HeightLine& line, std::size_t window, WindowCells& cells)
{
    const std::size_t half = std::min(window / 2, line.size);
    const std::size_t primed = std::min(half + 1, line.size);
    const std::size_t allEntered = line.size - primed;
    std::size_t next = 0;
    const auto writeUpTo = [&](std::size_t end, auto change)
    {
        for (; next < end; ++next)
        {
            line.result[next] = cells.Value();
            change();
        }
    };
    const auto enter = [&] { cells.Add(line.source[next + primed]); };
    const auto leave = [&] { cells.Remove(line.source[next - half]); };

    std::for_each(line.source, line.source + primed, [&](std::int16_t cell) { cells.Add(cell); });
    writeUpTo(std::min(half, allEntered), enter);
    writeUpTo(half, [] {});
    writeUpTo(allEntered,
              [&]
              {
                  enter();
                  leave();
              });
    writeUpTo(line.size, leave);
}

} // namespace Zvl

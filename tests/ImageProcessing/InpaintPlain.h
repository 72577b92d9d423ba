#pragma once

/** @file
 *  The repair of images in its plainest form: a sorted list for the front, and one cell of a neighbourhood after the
 *  other. */

#include <opencv2/core.hpp>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <list>

namespace PlainInpaint
{

constexpr int kKnown = 0;
constexpr int kFront = 1;
constexpr int kHole = 2;

/** Cells in ascending order of time; an equal time goes behind its equals. */
class SortedFront
{
public:
    void Push(int i, int j, float time)
    {
        auto place = cells.end();
        while (place != cells.begin() && std::prev(place)->time > time)
        {
            --place;
        }
        cells.insert(place, {time, i, j});
    }

    bool Pop(int& i, int& j)
    {
        if (cells.empty())
        {
            return false;
        }
        i = cells.front().i;
        j = cells.front().j;
        cells.pop_front();
        return true;
    }

private:
    struct Cell
    {
        float time;
        int i;
        int j;
    };
    std::list<Cell> cells;
};

inline double Solve(const cv::Mat1b& f, const cv::Mat1f& t, int i1, int j1, int i2, int j2)
{
    const double a = t(i1, j1);
    const double b = t(i2, j2);
    if (f(i1, j1) == kHole)
    {
        return f(i2, j2) == kHole ? 1.0 + std::min(a, b) : 1.0 + b;
    }
    if (f(i2, j2) == kHole)
    {
        return 1.0 + a;
    }
    if (std::fabs(a - b) >= 1.0)
    {
        return 1.0 + std::min(a, b);
    }
    return (a + b + std::sqrt(2.0 - (a - b) * (a - b))) * 0.5;
}

inline float Arrival(const cv::Mat1b& f, const cv::Mat1f& t, int i, int j)
{
    double arrival = Solve(f, t, i + 1, j, i, j + 1);
    arrival = std::min(arrival, Solve(f, t, i - 1, j, i, j + 1));
    arrival = std::min(arrival, Solve(f, t, i + 1, j, i, j - 1));
    arrival = std::min(arrival, Solve(f, t, i - 1, j, i, j - 1));
    return static_cast<float>(arrival);
}

/** An image that is read beyond its edges as if its outermost cells went on. */
template <typename T>
class Reader
{
public:
    Reader(const cv::Mat& image, int channel) : image(image), channel(channel) {}

    float operator()(int row, int column) const
    {
        row = std::clamp(row, 0, image.rows - 1);
        column = std::clamp(column, 0, image.cols - 1);
        return static_cast<float>(image.ptr<T>(row)[column * image.channels() + channel]);
    }

private:
    const cv::Mat& image;
    int channel;
};

/** Calls `visit(n, l, nm, np, lm, lp)` for each known cell of the neighbourhood. */
template <typename Visit>
void ForEachKnown(const cv::Mat1b& f, int i, int j, int range, Visit visit)
{
    for (int n = i - range; n <= i + range; ++n)
    {
        for (int l = j - range; l <= j + range; ++l)
        {
            if (n > 0 && l > 0 && n < f.rows - 1 && l < f.cols - 1 && f(n, l) != kHole &&
                (l - j) * (l - j) + (n - i) * (n - i) <= range * range)
            {
                visit(n, l, n - 1 + (n == 1), n - 1 - (n == f.rows - 2), l - 1 + (l == 1), l - 1 - (l == f.cols - 2));
            }
        }
    }
}

template <typename T>
float TeleaValue(const cv::Mat1b& f, const cv::Mat1f& t, const cv::Mat& image, int channel, int i, int j, int range)
{
    const Reader<T> out(image, channel);
    float gradTx = 0.0F;
    if (f(i, j + 1) == kHole)
    {
        gradTx = f(i, j - 1) == kHole ? 0.0F : t(i, j) - t(i, j - 1);
    }
    else
    {
        gradTx = f(i, j - 1) == kHole ? t(i, j + 1) - t(i, j) : (t(i, j + 1) - t(i, j - 1)) * 0.5F;
    }
    float gradTy = 0.0F;
    if (f(i + 1, j) == kHole)
    {
        gradTy = f(i - 1, j) == kHole ? 0.0F : t(i, j) - t(i - 1, j);
    }
    else
    {
        gradTy = f(i - 1, j) == kHole ? t(i + 1, j) - t(i, j) : (t(i + 1, j) - t(i - 1, j)) * 0.5F;
    }
    float ia = 0.0F;
    float jx = 0.0F;
    float jy = 0.0F;
    float s = 1e-20F;
    ForEachKnown(f, i, j, range,
                 [&](int n, int l, int nm, int np, int lm, int lp)
                 {
                     const auto rx = static_cast<float>(j - l);
                     const auto ry = static_cast<float>(i - n);
                     const float squared = rx * rx + ry * ry;
                     const float dst = image.channels() == 1
                                           ? 1.0F / (squared * std::sqrt(squared))
                                           : static_cast<float>(1.0 / (double{squared} * std::sqrt(double{squared})));
                     const float lev = 1.0F / (std::fabs(t(n, l) - t(i, j)) + 1.0F);
                     float dir = rx * gradTx + ry * gradTy;
                     if (std::fabs(dir) <= 0.01F)
                     {
                         dir = 1e-06F;
                     }
                     const float w = std::fabs(dst * lev * dir);
                     float gradIx = 0.0F;
                     if (f(n, l + 1) == kHole)
                     {
                         gradIx = f(n, l - 1) == kHole ? 0.0F : out(nm, lp) - out(nm, lm - 1);
                     }
                     else
                     {
                         gradIx = f(n, l - 1) == kHole ? out(nm, lp + 1) - out(nm, lm)
                                                       : (out(nm, lp + 1) - out(nm, lm - 1)) * 2.0F;
                     }
                     float gradIy = 0.0F;
                     if (f(n + 1, l) == kHole)
                     {
                         gradIy = f(n - 1, l) == kHole ? 0.0F : out(np, lm) - out(nm - 1, lm);
                     }
                     else
                     {
                         gradIy = f(n - 1, l) == kHole ? out(np + 1, lm) - out(nm, lm)
                                                       : (out(np + 1, lm) - out(nm - 1, lm)) * 2.0F;
                     }
                     ia += w * out(nm, lm);
                     jx -= w * gradIx * rx;
                     jy -= w * gradIy * ry;
                     s += w;
                 });
    return ia / s + (jx + jy) / (std::sqrt(jx * jx + jy * jy) + 1e-20F) + 0.5F;
}

template <typename T>
double NavierStokesValue(const cv::Mat1b& f, const cv::Mat1f& /*t*/, const cv::Mat& image, int channel, int i, int j,
                         int range)
{
    const Reader<T> out(image, channel);
    float ia = 0.0F;
    float s = 1e-20F;
    ForEachKnown(f, i, j, range,
                 [&](int n, int l, int nm, int np, int lm, int lp)
                 {
                     const auto rx = static_cast<float>(l - j);
                     const auto ry = static_cast<float>(n - i);
                     const float squared = rx * rx + ry * ry;
                     const float dst = 1.0F / (squared * squared + 1.0F);
                     float gradIx = 0.0F;
                     if (f(n + 1, l) == kHole)
                     {
                         gradIx = f(n - 1, l) == kHole ? 0.0F : std::fabs(out(np, lm) - out(nm - 1, lm)) * 2.0F;
                     }
                     else
                     {
                         gradIx = f(n - 1, l) == kHole ? std::fabs(out(np + 1, lm) - out(np, lm)) * 2.0F
                                                       : std::fabs(out(np + 1, lm) - out(np, lm)) +
                                                             std::fabs(out(np, lm) - out(nm - 1, lm));
                     }
                     float gradIy = 0.0F;
                     if (f(n, l + 1) == kHole)
                     {
                         gradIy = f(n, l - 1) == kHole ? 0.0F : std::fabs(out(nm, lm) - out(nm, lm - 1)) * 2.0F;
                     }
                     else
                     {
                         gradIy = f(n, l - 1) == kHole ? std::fabs(out(nm, lp + 1) - out(nm, lm)) * 2.0F
                                                       : std::fabs(out(nm, lp + 1) - out(nm, lm)) +
                                                             std::fabs(out(nm, lm) - out(nm, lm - 1));
                     }
                     gradIx = -gradIx;
                     float dir = rx * gradIx + ry * gradIy;
                     const float steepness = gradIx * gradIx + gradIy * gradIy;
                     dir = std::fabs(dir) > 0.01F ? std::fabs(dir / std::sqrt(squared * steepness)) : 1e-06F;
                     const float w = dst * dir;
                     ia += w * out(nm, lm);
                     s += w;
                 });
    return double{ia} / double{s};
}

/** Rounded to nearest, ties to even, and clamped; floats as they are. */
template <typename T>
T Stored(double value)
{
    if (std::is_same_v<T, float>)
    {
        return static_cast<T>(value);
    }
    return cv::saturate_cast<T>(value);
}

/** Marches over the holes of @p f, calling `repair(i, j)` at each. */
template <typename Repair>
void March(cv::Mat1b& f, cv::Mat1f& t, SortedFront& front, Repair repair)
{
    int ii = 0;
    int jj = 0;
    while (front.Pop(ii, jj))
    {
        f(ii, jj) = kKnown;
        const int rows[] = {ii - 1, ii, ii + 1, ii};
        const int columns[] = {jj, jj - 1, jj, jj + 1};
        for (int q = 0; q < 4; ++q)
        {
            const int i = rows[q];
            const int j = columns[q];
            if (i > 0 && j > 0 && i <= t.rows - 1 && j <= t.cols - 1 && f(i, j) == kHole)
            {
                t(i, j) = Arrival(f, t, i, j);
                repair(i, j);
                f(i, j) = kFront;
                front.Push(i, j, t(i, j));
            }
        }
    }
}

template <typename T>
cv::Mat RepairOf(const cv::Mat& source, const cv::Mat& mask, int range, bool telea)
{
    cv::Mat image = source.clone();
    const int rows = source.rows + 2;
    const int columns = source.cols + 2;
    const auto isHole = [&](int i, int j)
    { return i > 0 && j > 0 && i < rows - 1 && j < columns - 1 && mask.at<std::uint8_t>(i - 1, j - 1) != 0; };
    const auto isWithin = [&](int i, int j, int reach)
    {
        for (int n = i - reach; n <= i + reach; ++n)
        {
            for (int l = j - reach; l <= j + reach; ++l)
            {
                if (isHole(n, l))
                {
                    return true;
                }
            }
        }
        return false;
    };
    cv::Mat1b f(rows, columns, std::uint8_t{kKnown});
    cv::Mat1b ring(rows, columns, std::uint8_t{kKnown});
    cv::Mat1f t(rows, columns, 1000000.0F);
    SortedFront front;
    SortedFront outer;
    for (int i = 0; i < rows; ++i)
    {
        for (int j = 0; j < columns; ++j)
        {
            const bool isInside = i > 0 && j > 0 && i < rows - 1 && j < columns - 1;
            const bool touches = isHole(i - 1, j) || isHole(i + 1, j) || isHole(i, j - 1) || isHole(i, j + 1);
            if (isHole(i, j))
            {
                f(i, j) = kHole;
            }
            else if (isInside && touches)
            {
                f(i, j) = kFront;
                t(i, j) = 0.0F;
                front.Push(i, j, 0.0F);
                outer.Push(i, j, 0.0F);
            }
            else if (isInside && telea && isWithin(i, j, range))
            {
                ring(i, j) = kHole;
            }
        }
    }
    if (telea)
    {
        cv::Mat1b passed(rows, columns, std::uint8_t{0});
        for (int i = 0; i < rows; ++i)
        {
            for (int j = 0; j < columns; ++j)
            {
                passed(i, j) = f(i, j) == kFront ? 1 : 0;
            }
        }
        March(ring, t, outer, [&](int i, int j) { passed(i, j) = 1; });
        for (int i = 0; i < rows; ++i)
        {
            for (int j = 0; j < columns; ++j)
            {
                t(i, j) = passed(i, j) != 0 ? -t(i, j) : t(i, j);
            }
        }
    }
    March(f, t, front,
          [&](int i, int j)
          {
              for (int channel = 0; channel < image.channels(); ++channel)
              {
                  const double value = telea ? double{TeleaValue<T>(f, t, image, channel, i, j, range)}
                                             : NavierStokesValue<T>(f, t, image, channel, i, j, range);
                  image.ptr<T>(i - 1)[(j - 1) * image.channels() + channel] = Stored<T>(value);
              }
          });
    return image;
}

inline cv::Mat Repair(const cv::Mat& source, const cv::Mat& mask, int range, bool telea)
{
    switch (source.depth())
    {
    case CV_8U:
        return RepairOf<std::uint8_t>(source, mask, range, telea);
    case CV_16U:
        return RepairOf<std::uint16_t>(source, mask, range, telea);
    case CV_16S:
        return RepairOf<std::int16_t>(source, mask, range, telea);
    default:
        return RepairOf<float>(source, mask, range, telea);
    }
}

} // namespace PlainInpaint

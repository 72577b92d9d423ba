#include <ZdkVisionLib/ImageProcessing/Inpaint.h>

#include "ImageProcessing/InpaintIslands.h"
#include "ImageProcessing/InpaintValue.h"

#include <limits>
#include <new>
#include <type_traits>

namespace Zvl
{

namespace
{

constexpr char kFunction[] = "Zvl::icvInpaint";

/** What becomes of a value in a cell of type T: rounded to the nearest integer, ties to even, within the type's range. */
template <typename T, typename Value>
T ToCell(Value value)
{
    if constexpr (std::is_floating_point_v<T>)
    {
        return static_cast<T>(value);
    }
    else
    {
        using Limits = std::numeric_limits<T>;
        if (std::isnan(value))
        {
            return 0;
        }
        return static_cast<T>(std::nearbyint(std::clamp<double>(value, Limits::min(), Limits::max())));
    }
}

/** The march into the holes, which repairs each cell as the front reaches it. */
template <typename T, typename Method>
class MarchInwards
{
public:
    MarchInwards(MarchPlanes& marchPlanes, cv::Mat& image, int range, CvPriorityQueueFloat& front)
        : planes(marchPlanes), output(image), queue(front), method(range, image.channels()), patch(range)
    {
    }

    /** Marches from the cells of the queue until it is empty. */
    void operator()()
    {
        PlaneCell passed{};
        while (queue.Pop(&passed.i, &passed.j))
        {
            planes.f(passed.i, passed.j) = CELL_SETTLED;
            for (const PlaneCell& cell : NeighboursOf(passed)) // the border is no hole, which ends the march there
            {
                if (planes.f(cell.i, cell.j) == CELL_HOLE)
                {
                    const float time = ArrivalAt(planes.f, planes.t, cell);
                    planes.t(cell.i, cell.j) = time;
                    Repair(cell);
                    planes.f(cell.i, cell.j) = CELL_FRONT;
                    queue.Push(cell.i, cell.j, time); // there is room for all holes
                }
            }
        }
    }

private:
    void Repair(const PlaneCell& cell)
    {
        const int channels = output.channels();
        T* repaired = output.ptr<T>(cell.i - 1) + static_cast<std::ptrdiff_t>(cell.j - 1) * channels;
        for (int channel = 0; channel < channels; ++channel)
        {
            patch.Fill<T>(output, channel, cell.i - 1, cell.j - 1);
            repaired[channel] = ToCell<T>(method.ValueAt(planes, patch, cell));
        }
    }

    MarchPlanes& planes;
    cv::Mat& output;
    CvPriorityQueueFloat& queue;
    Method method;
    Patch patch;
};

[[noreturn]] void Fail(int status, const char* message, int line)
{
    cv::error(status, message, kFunction, __FILE__, line);
}

/** What the marches need, whatever the type of the image. */
struct Task
{
    MarchPlanes& planes;
    const InpaintIslands& islands;
    CvPriorityQueueFloat& Heap;
    CvPriorityQueueFloat& Out; ///< of the march outwards
    int range;
    cv::Mat& output;
};

/** Begins a march at @p cells, which must find room in @p queue. */
void Begin(std::span<const PlaneCell> cells, cv::Mat_<float>& t, CvPriorityQueueFloat& queue)
{
    for (const PlaneCell& cell : cells)
    {
        t(cell.i, cell.j) = 0.0F;
        queue.Push(cell.i, cell.j, 0.0F);
    }
}

template <typename T, typename Method>
void RepairCells(const Task& task)
{
    MarchInwards<T, Method> marchInwards(task.planes, task.output, task.range, task.Heap);
    task.islands.ForEach(
        [&](std::span<const PlaneCell> cells)
        {
            if constexpr (Method::kTimesSurroundings)
            {
                Begin(cells, task.planes.t, task.Out);
                MarchOutwards(task.planes.t, task.Out);
            }
            Begin(cells, task.planes.t, task.Heap);
            marchInwards();
        });
}

template <typename Method>
void RepairBy(const Task& task, const char* otherDepth)
{
    switch (task.output.depth())
    {
    case CV_8U:
        return RepairCells<std::uint8_t, Method>(task);
    case CV_16U:
        return RepairCells<std::uint16_t, Method>(task);
    case CV_16S:
        return RepairCells<std::int16_t, Method>(task);
    case CV_32F:
        return RepairCells<float, Method>(task);
    default:
        Fail(cv::Error::StsBadArg, otherDepth, __LINE__);
    }
}

/** @p range rounded to the nearest integer, ties to even, and limited to 1 to 100; 1 for what is not a number. */
int RangeOf(double range)
{
    return std::isnan(range) ? 1 : static_cast<int>(std::nearbyint(std::clamp(range, 1.0, 100.0)));
}

bool IsRepairable(int type)
{
    return type == CV_8UC1 || type == CV_16UC1 || type == CV_16SC1 || type == CV_32FC1 || type == CV_8UC3;
}

void CheckImages(const cv::Mat& input, const cv::Mat& inputMask, const cv::Mat& output)
{
    if (input.size() != inputMask.size() || input.size() != output.size())
    {
        Fail(cv::Error::StsUnmatchedSizes, "All the input and output images must have the same size", __LINE__);
    }
    if (!IsRepairable(input.type()) || output.type() != input.type())
    {
        Fail(cv::Error::StsUnsupportedFormat,
             "8-bit, 16-bit unsigned or 32-bit float 1-channel and 8-bit 3-channel input/output images are supported",
             __LINE__);
    }
    if (inputMask.type() != CV_8UC1)
    {
        Fail(cv::Error::StsUnsupportedFormat, "The mask must be 8-bit 1-channel image", __LINE__);
    }
    constexpr int longest = std::numeric_limits<int>::max() - 2 - static_cast<int>(kRunSlack);
    constexpr std::int64_t mostCells = std::numeric_limits<std::uint32_t>::max();
    if (input.rows > longest || input.cols > longest ||
        (std::int64_t{input.rows} + 2) * (std::int64_t{input.cols} + 2) > mostCells)
    {
        Fail(cv::Error::StsOutOfRange, "The image has too many cells", __LINE__);
    }
}

void icvInpaint(const cv::Mat& input, const cv::Mat& inputMask, cv::Mat& output, double inputRange, int flags)
{
    const int range = RangeOf(inputRange);
    CheckImages(input, inputMask, output);
    if (input.empty())
    {
        return;
    }
    MarchPlanes planes = {StatesOf(inputMask), {}}; // before the output, which may be the mask, is written
    input.copyTo(output);
    CvPriorityQueueFloat Heap;
    if (!Heap.Init(planes.f))
    {
        return;
    }

    // Holes matter to each other within the range and a step to a gradient, and in Telea's method where both time the same
    // surroundings.
    const InpaintIslands islands(planes.f, flags == CV_INPAINT_TELEA ? range : range / 2 + 1);
    CvPriorityQueueFloat Out;
    const Task task = {planes, islands, Heap, Out, range, output};
    switch (flags)
    {
    case CV_INPAINT_TELEA:
        planes.t = TimesAround(planes.f, range, Out);
        if (!planes.t.empty())
        {
            RepairBy<TeleaMethod>(task, "Unsupportedformat of the input image");
        }
        return;
    case CV_INPAINT_NS:
        planes.t = TimesInside(planes.f);
        return RepairBy<NavierStokesMethod>(task, "Unsupported format of the input image");
    default:
        Fail(cv::Error::StsBadArg, "The flags argument must be one of CV_INPAINT_TELEA or CV_INPAINT_NS", __LINE__);
    }
}

/** OpenCV looks at this in debug builds only. */
void CheckDimensions(const cv::Mat& m)
{
    if (m.dims > 2)
    {
        cv::error(cv::Error::StsAssert, "m.dims <= 2", "Zvl::Inpaint", __FILE__, __LINE__);
    }
}

/** Whether @p a and @p b have memory in common, but not cell by cell. */
bool OverlapInPart(const cv::Mat& a, const cv::Mat& b)
{
    const auto begin = [](const cv::Mat& m) { return reinterpret_cast<std::uintptr_t>(m.data); };
    const auto end = [&](const cv::Mat& m)
    {
        const auto rowsBefore = static_cast<std::size_t>(m.rows - 1);
        return begin(m) + rowsBefore * m.step[0] + static_cast<std::size_t>(m.cols) * m.elemSize();
    };
    if (a.empty() || b.empty() || (begin(a) == begin(b) && a.step[0] == b.step[0]))
    {
        return false;
    }
    return begin(a) < end(b) && begin(b) < end(a);
}

} // namespace

void Inpaint(cv::Mat& source, cv::Mat& mask, cv::Mat& destination, double range, int flags)
{
    CheckDimensions(source);
    CheckDimensions(mask);
    try
    {
        // Headers of their own keep the cells when the destination, which may be one of the two, is made anew.
        cv::Mat input_hdr = source;
        const cv::Mat mask_hdr = mask; // NOLINT(performance-unnecessary-copy-initialization)
        destination.create(input_hdr.size(), input_hdr.type());
        cv::Mat output_hdr = destination;
        if (OverlapInPart(input_hdr, output_hdr))
        {
            input_hdr = input_hdr.clone();
        }
        icvInpaint(input_hdr, mask_hdr, output_hdr, range, flags);
    }
    catch (const std::bad_alloc&)
    {
        cv::error(cv::Error::StsNoMem, "Memory is exhausted", kFunction, __FILE__, __LINE__);
    }
}

} // namespace Zvl

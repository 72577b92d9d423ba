#include "Whole/FaultTable.h"

#include <ZdkVisionLib/Common/Mat.h>
#include <ZdkVisionLib/ImageProcessing/Inpaint.h>
#include <ZdkVisionLib/platform/ZoVision.h>

#include <opencv2/core.hpp>

namespace WholeTest
{

using namespace Zvl;

namespace
{

const Region3d<double> kWhole = {0.0, 0.0, 5.0, 4.0, 0.0, -10.0, 20.0};

Zo::Object<void*> MakeMessage()
{
    Zo::Object<void*> message;
    const qPoint3d64f scale = {1.0, 1.0, 1.0};
    Zo::Test(ZvSurfaceMsg_Construct(message.Slot(), 4, 5, 1, nullptr));
    Zo::Test(ZvSurfaceMsg_SetScale(message, &scale));
    return message;
}

void ReadMappings(Trial& trial)
{
    const Zo::Object<void*> message = MakeMessage();
    const zvlMat full(message, 0, &kWhole, 0, 0);
    trial.Call(
        [&]
        {
            zvlMat mat;
            mat.SetDestinationParameters(full);
            mat.SetDestinationParameters({1.0, 1.0, 1.0}, {2.0, 2.0, 2.0});
            EXPECT_EQ(full.GetSize(), cv::Size(5, 4));
            EXPECT_EQ(zvlMat::GetSmallestSize(mat, full), cv::Size(0, 0));
            EXPECT_EQ(full.GetMat().size(), cv::Size(5, 4));
            Region3d<double> common;
            zvlMat::ComputeOverlappingRegion(&kWhole, &kWhole, &common);
            zvlMat::ComputeContainerRegion(&kWhole, &kWhole, &common);
        });
}

/** Without memory there are no cells, and nothing is thrown; the item's offset is a call that is checked. */
void FromMessage(Trial& trial)
{
    const Zo::Object<void*> message = MakeMessage();
    cv::Size size(-1, -1);
    const bool done = trial.Call([&] { size = zvlMat(message, 0, &kWhole, 0, 0).GetSize(); });
    EXPECT_EQ(size, !done ? cv::Size(-1, -1) : trial.Met() ? cv::Size(0, 0) : cv::Size(5, 4));
}

void RegionOfMessage(Trial& trial)
{
    const Zo::Object<void*> message = MakeMessage();
    Region3d<double> region = {1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0};
    const bool done = trial.Call([&] { zvlMat::GetRegionFromMsg(message, 0, &region); });
    EXPECT_EQ(region.width, done ? 5.0 : 3.0);
}

void CopyCells(Trial& trial)
{
    const Zo::Object<void*> message = MakeMessage();
    const zvlMat full(message, 0, &kWhole, 0, 0);
    zvlMat copy;
    EXPECT_TRUE(trial.Call([&] { copy = zvlMat(full); }));
    EXPECT_EQ(copy.GetSize(), trial.Met() ? cv::Size(0, 0) : cv::Size(5, 4));
    EXPECT_EQ(copy.GetScale().x, 1.0);
    EXPECT_EQ(full.GetSize(), cv::Size(5, 4));
}

void MakeDestination(Trial& trial)
{
    zvlMat mat;
    EXPECT_TRUE(trial.Call([&] { mat.GetDestinationMat({7, 6}); }));
    EXPECT_EQ(mat.GetSize(), trial.Met() ? cv::Size(0, 0) : cv::Size(7, 6));
}

void HeightsOfCells(Trial& trial)
{
    const Zo::Object<void*> message = MakeMessage();
    const zvlMat full(message, 0, &kWhole, 0, 0);
    Zo::Object<void*> heights;
    EXPECT_TRUE(trial.Call([&] { heights.Reset(full.GetqArray2Ofq16s()); }));
    EXPECT_EQ(heights.Get() == nullptr, trial.Met());
}

/** OpenCV takes its cells from elsewhere; what fails here is the working memory. */
void Repair(Trial& trial, int flags)
{
    // Threads of OpenCV's own make what each of them keeps at moments that nobody knows.
    static const bool onThisThread = (cv::setNumThreads(1), true);
    EXPECT_TRUE(onThisThread);
    cv::Mat source(12, 14, CV_8UC1, cv::Scalar(7));
    cv::Mat mask(12, 14, CV_8UC1, cv::Scalar(0));
    mask(cv::Rect(3, 3, 5, 4)) = cv::Scalar(1);
    mask(cv::Rect(10, 7, 2, 2)) = cv::Scalar(1);
    source(cv::Rect(3, 3, 5, 4)) = cv::Scalar(200);
    const cv::Mat before = source.clone();
    cv::Mat repaired;
    const bool done = trial.Call([&] { Inpaint(source, mask, repaired, 3.0, flags); });
    EXPECT_EQ(cv::norm(source, before), 0.0);
    EXPECT_TRUE(repaired.empty() || repaired.size() == source.size());
    EXPECT_TRUE(!done || trial.Met() || repaired.at<std::uint8_t>(5, 5) != 200);
}

} // namespace

std::vector<Entry> FaultsOfImages()
{
    constexpr unsigned kMemory = kDefaultAllocator | kOperations | kAbsorbs;
    return {
        {{"zvlMat::zvlMat()", "zvlMat::SetDestinationParameters(zvlMat const&)",
          "zvlMat::SetDestinationParameters(qPoint3d64f const&, qPoint3d64f const&)", "zvlMat::GetSize() const",
          "zvlMat::GetSmallestSize(zvlMat const&, zvlMat const&)", "zvlMat::GetMat() const",
          "zvlMat::GetMat(cv::Size_<int>) const",
          "zvlMat::ComputeOverlappingRegion(Region3d<double> const*, Region3d<double> const*, Region3d<double>*)",
          "zvlMat::ComputeContainerRegion(Region3d<double> const*, Region3d<double> const*, Region3d<double>*)",
          "zvlMat::RegionClipXY(Region3d<double> const*, Region3d<double>*)",
          "zvlMat::RegionMergeXY(Region3d<double> const*, Region3d<double>*)"},
         kNothing,
         {},
         ReadMappings},
        {{"zvlMat::zvlMat(void*, int, Region3d<double> const*, int, int)"},
         kMemory,
         {"Zvl::GetSurfaceItemOffset"},
         FromMessage},
        {{"zvlMat::GetRegionFromMsg(void*, int, Region3d<double>*)"},
         kOperations,
         {"Zvl::GetSurfaceItemOffset"},
         RegionOfMessage},
        {{"zvlMat::zvlMat(zvlMat const&)", "zvlMat::operator=(zvlMat)"}, kMemory, {}, CopyCells},
        {{"zvlMat::GetDestinationMat(cv::Size_<int>)"}, kMemory, {}, MakeDestination},
        {{"zvlMat::GetqArray2Ofq16s() const"}, kMemory, {}, HeightsOfCells},
        {{"Inpaint(cv::Mat&, cv::Mat&, cv::Mat&, double, int)"},
         kNew,
         {},
         [](Trial& trial) { Repair(trial, CV_INPAINT_NS); }},
        {{"Inpaint(cv::Mat&, cv::Mat&, cv::Mat&, double, int)"},
         kNew,
         {},
         [](Trial& trial) { Repair(trial, CV_INPAINT_TELEA); }},
    };
}

} // namespace WholeTest

#include "Cells.h"
#include "Pictures.h"

#include "snippets/Scan.h"

#include <ZdkVisionLib/ImageProcessing/Inpaint.h>

namespace Pictures
{

Svg Inpainting()
{
    constexpr std::size_t kAcross = 44;
    constexpr std::size_t kDown = 32;
    const Zvl::Surface scan = MakeScan(
        [](double x, double y)
        {
            const bool isScratch = std::abs(y - 0.5 * x - 0.4) < 0.2;
            const bool isSpot = std::hypot(x - 1.1, y - 2.3) < 0.5;
            return isScratch || isSpot ? std::nan("") : (x > 2.2 ? 1.6 : 0.4) + 0.1 * std::sin(6.0 * y);
        },
        kDown, kAcross);
    cv::Mat heights(static_cast<int>(kDown), static_cast<int>(kAcross), CV_16SC1, qArray2_At(scan.layers[0], 0, 0));
    cv::Mat missing = heights == Zvl::GetNull<short>();
    cv::Mat damaged = heights.clone();
    damaged.setTo(cv::mean(heights, ~missing), missing);

    Svg svg(760, 240);
    const auto draw = [&](double x, const std::string& title, const cv::Mat& source)
    {
        Zo::Object<void*> array;
        Zo::Test(qArray2_Construct(array.Slot(), xxq16s_type, kDown, kAcross, nullptr));
        source.copyTo(cv::Mat(source.size(), CV_16SC1, qArray2_At(array, 0, 0)));
        Cells(svg, {x, 45}, 5.2, kDown, kAcross).Heights(array, {0.0, 2000.0});
        svg.Text({x, 35}, title, "text strong");
    };
    draw(15, "A step with dropouts", heights);
    cv::Mat repaired;
    Zvl::Inpaint(damaged, missing, repaired, 5.0, Zvl::CV_INPAINT_TELEA);
    draw(265, "Telea", repaired);
    Zvl::Inpaint(damaged, missing, repaired, 5.0, Zvl::CV_INPAINT_NS);
    draw(515, "Along the isophotes", repaired);
    return svg;
}

} // namespace Pictures

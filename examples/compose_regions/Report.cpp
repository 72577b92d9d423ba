#include "compose_regions/Report.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>
#include <utility>

namespace ComposeRegions
{
namespace
{

using Examples::MapPicture;
using Examples::ResultTable;
using Examples::Symbol;

const cv::Scalar kStale = Examples::Colours::kRejected; // where the regions would be without the anchor
const cv::Scalar kData = Examples::Colours::kKept;

void Outline(const std::shared_ptr<Zvl::ROI>& region, const cv::Scalar& colour, MapPicture* picture)
{
    picture->OutlineMask(region->GetBoundingBox(), region->GetMask(), colour);
}

MapPicture StartPicture(const Scene& scene, const Zvl::Surface& scan, const std::string& title)
{
    return {scan, scene.level, scene.colours, scene.title + ": " + title};
}

cv::Mat DrawBefore(const Scene& scene)
{
    MapPicture picture = StartPicture(scene, scene.reference, "before, the reference scan");
    Outline(scene.shapes, Examples::Colours::kRegion, &picture);
    Outline(scene.data, kData, &picture);
    for (const qPoint64f& feature : scene.referenceFeatures)
    {
        picture.Circle(feature, 0.0, Examples::Colours::kFit);
    }
    picture.AddLegend(Symbol::Patch, Examples::Colours::kMissing, "no height");
    picture.AddLegend(Symbol::Line, Examples::Colours::kRegion, "union of the shapes, as drawn");
    picture.AddLegend(Symbol::Line, kData, "reference surface: cells of this scan");
    picture.AddLegend(Symbol::Line, Examples::Colours::kFit, "matched feature");
    return picture.Compose();
}

cv::Mat DrawAfter(const Scene& scene, const Inspection& inspection, const ResultTable& table)
{
    MapPicture picture = StartPicture(scene, scene.next, "after, the next scan");
    Outline(scene.shapes, kStale, &picture);
    Outline(inspection.shapes, Examples::Colours::kRegion, &picture);
    Outline(scene.data->ApplyAnchor(inspection.anchor), kData, &picture);
    for (std::size_t index = 0; index < scene.nextFeatures.size(); ++index)
    {
        picture.Line(scene.referenceFeatures[index], scene.nextFeatures[index], Examples::Colours::kFit);
        picture.Circle(scene.nextFeatures[index], 0.0, Examples::Colours::kFit);
    }
    picture.AddLegend(Symbol::Line, Examples::Colours::kRegion, "shapes, moved by the displacement");
    picture.AddLegend(Symbol::Line, kStale, "shapes, had they not been moved");
    picture.AddLegend(Symbol::Line, kData, "reference surface: data stay in place");
    picture.AddLegend(Symbol::Line, Examples::Colours::kFit, "feature, and the way that it went");
    picture.AddText("");
    picture.AddResults(table);
    return picture.Compose();
}

cv::Mat DrawMasked(const Scene& scene, const Inspection& inspection)
{
    MapPicture picture = StartPicture(scene, inspection.masked, "what the union leaves of the next scan");
    picture.AddLegend(Symbol::Patch, Examples::Colours::kMissing, "no height, or masked");
    return picture.Compose();
}

cv::Mat Stack(std::vector<cv::Mat> pictures)
{
    int width = 0;
    for (const cv::Mat& picture : pictures)
    {
        width = std::max(width, picture.cols);
    }
    for (cv::Mat& picture : pictures)
    {
        cv::copyMakeBorder(picture, picture, 0, 0, 0, width - picture.cols, cv::BORDER_CONSTANT,
                           Examples::Colours::kBackground);
    }
    cv::Mat stacked;
    cv::vconcat(pictures, stacked);
    return stacked;
}

void AddDisplacement(const Scene& scene, const Inspection& inspection, ResultTable* table)
{
    const Scene::Truth& truth = scene.truth;
    const qPoint64f found = MoveOfPart(scene, inspection.anchor);
    const qPoint64f expected = MoveOfPart(scene, truth.displacement);
    table->Add({.feature = "displacement x",
                .unit = "mm",
                .measured = found.x,
                .expected = {{expected.x, truth.lengthTolerance}},
                .milliseconds = scene.searchMilliseconds});
    table->Add({.feature = "displacement y",
                .unit = "mm",
                .measured = found.y,
                .expected = {{expected.y, truth.lengthTolerance}}});
    table->Add({.feature = "displacement angle",
                .unit = "deg",
                .measured = inspection.anchor.angle,
                .expected = {{truth.displacement.angle, truth.angleTolerance}}});
    table->Add({.feature = "features, mismatch",
                .unit = "mm",
                .measured = inspection.mismatch,
                .expected = {{0.0, truth.lengthTolerance}}});
}

} // namespace

ResultTable Tabulate(const Scene& scene, const Inspection& inspection)
{
    ResultTable table;
    AddDisplacement(scene, inspection, &table);
    table.Add({.feature = "shapes, area",
               .unit = "mm2",
               .measured = inspection.area,
               .expected = scene.truth.area,
               .milliseconds = inspection.milliseconds});
    table.Add({.feature = "height, reference scan", .unit = "mm", .measured = inspection.referenceHeight.mean});
    table.Add({.feature = "  spread", .unit = "mm", .measured = inspection.referenceHeight.deviation});
    table.Add({.feature = "height, not moved", .unit = "mm", .measured = inspection.drawnHeight.mean});
    table.Add({.feature = "  spread", .unit = "mm", .measured = inspection.drawnHeight.deviation});
    table.Add({.feature = "height, moved",
               .unit = "mm",
               .measured = inspection.movedHeight.mean,
               .expected = scene.truth.shapesHeight});
    table.Add({.feature = "  spread", .unit = "mm", .measured = inspection.movedHeight.deviation});
    table.Add({.feature = "height, reference surface",
               .unit = "mm",
               .measured = inspection.dataHeight.mean,
               .expected = scene.truth.dataHeight});
    return table;
}

cv::Mat DrawPicture(const Scene& scene, const Inspection& inspection, const ResultTable& table)
{
    return Stack({DrawBefore(scene), DrawAfter(scene, inspection, table), DrawMasked(scene, inspection)});
}

} // namespace ComposeRegions

#pragma once

#include "support/Drawing.h"
#include "support/FalseColours.h"
#include "support/Panel.h"

#include <ZdkVisionLib/ZdkVisionLib.h>

#include <opencv2/core.hpp>

#include <string>
#include <vector>

namespace Examples
{

/** How a map is shown. */
struct MapStyle
{
    Palette palette = Palette::Heights;
    cv::Size room{1000, 800}; ///< the map is zoomed to fit into this, in pixels
};

/** A height map in false colours with axes in world units, overlays, and a panel of text beside it. Colours show the
 *  height over a reference plane, so that a tilt does not hide what matters. */
class MapPicture
{
public:
    MapPicture(const Zvl::Surface& surface, const qPlane3d64f& reference, const HeightRange& range,
               const std::string& title, const MapStyle& style = {});

    /** Draws the border of a mask. */
    void OutlineMask(const Zvl::Rect2d<int>& box, void* mask, const cv::Scalar& colour);

    /** Draws points as dots of @p size pixels. */
    void Dots(const std::vector<qPoint64f>& points, const cv::Scalar& colour, double size);
    void Circle(const qPoint64f& center, double radius, const cv::Scalar& colour);
    void Line(const qPoint64f& from, const qPoint64f& to, const cv::Scalar& colour);

    void AddLegend(Symbol symbol, const cv::Scalar& colour, const std::string& text);

    /** Adds a line of up to three columns: a name and two numbers. */
    void AddText(const std::string& name, const std::string& number = {}, const std::string& remark = {});

    /** Adds a line for each result: its name, the measured value, and the deviation where the nominal value is known. */
    void AddResults(const ResultTable& table);

    /** Puts a magnified view of the square of half-width @p reach around @p center under the legend. */
    void AddMagnifier(const qPoint64f& center, double reach, const std::string& caption);

    /** The finished picture: title, map with axes, colour bar, and, if there are any, legend and text. */
    cv::Mat Compose() const;

private:
    cv::Point2d Pixel(const qPoint64f& world) const;
    int PanelHeight() const;
    void DrawAxes(cv::Mat& canvas) const;
    void DrawColourBar(cv::Mat& canvas) const;
    void DrawPanel(cv::Mat& canvas) const;
    void DrawMagnifier(cv::Mat& canvas, int top) const;

    qPoint3d64f scale;
    qPoint3d64f offset;
    HeightRange range;
    std::string title;
    Palette palette;
    double zoomX;
    double zoomY;
    cv::Mat map; ///< finer than it is shown, so that the magnifier has something to show
    Panel panel;
    cv::Rect magnified;
    std::string magnifierCaption;
};

} // namespace Examples

#pragma once

#include "support/ResultTable.h"

#include <opencv2/core.hpp>

#include <string>
#include <vector>

namespace Examples
{

/** How an entry of the legend is shown. */
enum class Symbol
{
    Line,
    Dot,
    Patch
};

/** The legend and the text beside a picture, line by line. */
class Panel
{
public:
    static constexpr int kWidth = 470;
    static constexpr int kLineHeight = 22;

    void AddLegend(Symbol symbol, const cv::Scalar& colour, const std::string& text);

    /** Adds a line of up to three columns: a name and two numbers. */
    void AddText(const std::string& name, const std::string& number = {}, const std::string& remark = {});

    /** Adds a line for each result: its name, the measured value, and the deviation where the nominal value is known. */
    void AddResults(const ResultTable& table);

    int Height() const { return static_cast<int>(entries.size()) * kLineHeight; }

    /** Draws the panel with its upper left corner in @p corner. */
    void Draw(cv::Mat& canvas, const cv::Point& corner) const;

private:
    struct Entry
    {
        bool isLegend;
        Symbol symbol;
        cv::Scalar colour;
        std::string text;
        std::string number;
        std::string remark;
    };

    static void DrawSymbol(cv::Mat& canvas, const Entry& entry, const cv::Point& middle);

    std::vector<Entry> entries;
};

} // namespace Examples

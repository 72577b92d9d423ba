#include "support/Conclusion.h"

#include "support/PngFile.h"

#include <iostream>

namespace Examples
{

bool Conclude(const ResultTable& table, const std::string& remark, const cv::Mat& picture, const std::string& path,
              Progress& progress)
{
    progress.End();
    table.Print(std::cout);
    if (!remark.empty())
    {
        std::cout << remark << '\n';
    }
    const bool isFine = table.PrintVerdict(std::cout);
    WritePng(path, picture);
    std::cout << "picture: " << path << '\n';
    return isFine;
}

} // namespace Examples

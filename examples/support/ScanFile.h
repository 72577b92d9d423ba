#pragma once

#include <ZdkVisionLib/ZdkVisionLib.h>

#include <optional>
#include <string>

namespace Examples
{

/** The file of scale and offset that belongs to a PNG or TIFF: the one given, or that of the same name beside it. */
std::string MappingPath(const std::string& path, const std::optional<std::string>& given);

/** Whether files of this extension hold counts alone, and scale and offset stand in a file of their own. */
bool NeedsMapping(const std::string& path);

/** @throws InputError when no kind of scan has the extension of @p path */
void RequireScanFile(const std::string& path);

/** Reads a scan of the kind that its extension tells.
 *  @param mapping where scale and offset of a PNG or TIFF are, if not beside it
 *  @throws InputError when the file cannot be used */
Zvl::Surface ReadScan(const std::string& path, const std::optional<std::string>& mapping);

/** Writes the heights of a scan to a file of the kind that its extension tells; intensities are left out. Scale and offset
 *  go beside a PNG or TIFF.
 *  @throws InputError when a file cannot be written */
void WriteScan(const std::string& path, const Zvl::Surface& scan);

} // namespace Examples

#pragma once

/** @file
 *  The members of a composed region. */

#include <ZdkVisionLib/Common/Common.h>

#include <memory>
#include <vector>

namespace Zvl
{

/** Appends @p region to @p members, or, of one that says that it is composed and is of class @p Composed, the members that it
 *  has at this moment: compositions do not nest. The composition may be the owner of @p members. */
template <typename Composed, typename Region>
void AppendRegion(std::vector<std::shared_ptr<Region>>& members, const std::shared_ptr<Region>& region)
{
    const auto* composed = dynamic_cast<const Composed*>(region.get());
    if (composed == nullptr || region->GetShapeType() != MaskTypeComposed)
    {
        members.push_back(region);
        return;
    }
    const std::vector<std::shared_ptr<Region>> added(composed->Begin(), composed->End());
    members.insert(members.end(), added.begin(), added.end());
}

} // namespace Zvl

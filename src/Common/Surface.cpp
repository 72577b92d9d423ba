#include <ZdkVisionLib/Common/Common.h>

namespace Zvl
{

Surface::Surface()
    : scale{GetNull<double>(), GetNull<double>(), GetNull<double>()},
      offset{GetNull<double>(), GetNull<double>(), GetNull<double>()}
{
}

} // namespace Zvl

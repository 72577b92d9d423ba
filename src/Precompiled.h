#pragma once

/** @file
 *  What most sources include, read once where the library is built to be tested alone: with a sanitizer or the second
 *  compiler. Elsewhere each source shows that it includes what it uses. */

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <functional>
#include <limits>
#include <memory>
#include <numeric>
#include <utility>
#include <vector>

#pragma once

/** @file
 *  What most tests include, read once where all of them are built for a single run: with a sanitizer or the second
 *  compiler. Elsewhere each test shows that it includes what it uses. */

#include <ZdkVisionLib/ZdkVisionLib.h>

#include <gtest/gtest.h>
#include <hwy/highway.h>
#include <opencv2/core.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <limits>
#include <memory>
#include <numeric>
#include <random>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

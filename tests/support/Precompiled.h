#pragma once

/** @file
 *  What most tests include, read once in most builds (`ZDK_PRECOMPILED`). In the debug build each test shows that it
 *  includes what it uses. */

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

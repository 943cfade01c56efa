#pragma once

/// All measures of this library.
#include <ORLIX/Measures/Compare.hpp>
#include <ORLIX/Measures/Describe.hpp>
#include <ORLIX/Measures/Regions.hpp>
#include <ORLIX/Measures/Threshold.hpp>

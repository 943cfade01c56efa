#pragma once

/// Marks what a library exports; everything else is hidden by the compiler flags.
#define ORLIX_API __attribute__((visibility("default")))

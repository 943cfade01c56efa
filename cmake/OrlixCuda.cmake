# Finds a CUDA compiler, and never installs one. What is built with it loads and works without a GPU or driver as well.
set(ORLIX_CUDA "AUTO" CACHE STRING "GPU measures: AUTO builds them where there is a CUDA compiler; ON, OFF")
set_property(CACHE ORLIX_CUDA PROPERTY STRINGS AUTO ON OFF)

set(ORLIX_HAS_CUDA OFF)
if(ORLIX_CUDA STREQUAL "OFF")
    return()
endif()
if(NOT CMAKE_CUDA_COMPILER)
    unset(CMAKE_CUDA_COMPILER CACHE) # there was none, but there may be one now
    find_program(ORLIX_NVCC nvcc HINTS /usr/local/cuda/bin)
    if(ORLIX_NVCC AND NOT DEFINED ENV{CUDACXX})
        set(ENV{CUDACXX} ${ORLIX_NVCC})
    endif()
endif()
if(NOT DEFINED CMAKE_CUDA_ARCHITECTURES)
    set(CMAKE_CUDA_ARCHITECTURES 75-real 80-real 90) # the last one serves later ones as well
endif()
include(CheckLanguage)
check_language(CUDA)
if(CMAKE_CUDA_COMPILER)
    enable_language(CUDA)
    find_package(CUDAToolkit REQUIRED)
endif()
set(oldest 12.0) # for C++20
if(CMAKE_CUDA_COMPILER AND CMAKE_CUDA_COMPILER_VERSION VERSION_GREATER_EQUAL oldest AND TARGET CUDA::cudart_static)
    if(NOT CMAKE_CUDA20_STANDARD_COMPILE_OPTION) # CMake 3.25 does not know it of every nvcc
        set(CMAKE_CUDA20_STANDARD_COMPILE_OPTION "-std=c++20")
        set(CMAKE_CUDA20_EXTENSION_COMPILE_OPTION "-std=c++20")
    endif()
    set(CMAKE_CUDA_STANDARD 20)
    set(CMAKE_CUDA_STANDARD_REQUIRED ON)
    set(ORLIX_HAS_CUDA ON)
elseif(ORLIX_CUDA STREQUAL "ON")
    message(FATAL_ERROR "ORLIX_CUDA is ON, but there is no CUDA ${oldest} or later with its static runtime: "
        "put nvcc on the PATH, or set CUDACXX")
endif()

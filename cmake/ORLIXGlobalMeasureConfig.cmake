include(CMakeFindDependencyMacro)
find_dependency(ORLIXFramework)
include(${CMAKE_CURRENT_LIST_DIR}/ORLIXGlobalMeasureTargets.cmake)

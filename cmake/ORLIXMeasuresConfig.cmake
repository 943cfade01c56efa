include(CMakeFindDependencyMacro)
find_dependency(ORLIXFramework 4.1)
include(${CMAKE_CURRENT_LIST_DIR}/ORLIXMeasuresTargets.cmake)

include(${CMAKE_CURRENT_LIST_DIR}/symfold-targets.cmake)

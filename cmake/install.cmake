# Installs the libraries, the public headers under include/symfold/ and the package that find_package(symfold CONFIG) reads.
include(CMakePackageConfigHelpers)

install(TARGETS symfold_detector symfold_host EXPORT symfold-targets)
if(TARGET symfold_cli)
  install(TARGETS symfold_cli EXPORT symfold-targets)
  install(TARGETS check_certificate)
endif()
include(cmake/public_headers.cmake)
foreach(header ${symfold_public_headers})
  cmake_path(GET header PARENT_PATH room)
  install(FILES ${PROJECT_SOURCE_DIR}/${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/symfold/${room})
endforeach()

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/symfold)
install(EXPORT symfold-targets NAMESPACE symfold:: DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/symfold-config-version.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_SOURCE_DIR}/cmake/symfold-config.cmake
              ${PROJECT_BINARY_DIR}/symfold-config-version.cmake
        DESTINATION ${package_dir})

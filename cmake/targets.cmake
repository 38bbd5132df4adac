# How every target of this project is made: its alias, its include root, its language level and its warnings.

function(symfold_set_compile_options target)
  target_compile_features(${target} PUBLIC cxx_std_20)
  set_target_properties(${target} PROPERTIES CXX_EXTENSIONS OFF)
  if(PROJECT_IS_TOP_LEVEL)
    # g++ 12 sees overlapping copies in "literal" + std::string (GCC bug 105651).
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror
      $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
  endif()
endfunction()

# symfold_add_library(NAME): the library symfold::NAME, whose rooms add their sources with target_sources.
function(symfold_add_library name)
  add_library(symfold_${name})
  add_library(symfold::${name} ALIAS symfold_${name})
  set_target_properties(symfold_${name} PROPERTIES EXPORT_NAME ${name} POSITION_INDEPENDENT_CODE ON)
  target_include_directories(symfold_${name} PUBLIC
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/symfold>)
  symfold_set_compile_options(symfold_${name})
endfunction()

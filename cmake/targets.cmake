# How every target of this project is made: its alias, its include root, its language level, its warnings and its
# hardening.

# Guards on the stack and, in optimised builds, checked copies (feature_test_macros(7)). Sanitizers intercept the
# functions that checked copies replace, so with them there are none; nor if the flags given set a level of their own.
# Programs get a relocation table that is read-only once they run.
function(symfold_harden target)
  if(NOT SYMFOLD_HARDENING OR APPLE OR NOT CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
    return()
  endif()
  target_compile_options(${target} PRIVATE -fstack-protector-strong)
  foreach(configuration Release RelWithDebInfo MinSizeRel)
    string(TOUPPER ${configuration} suffix)
    if(NOT "${CMAKE_CXX_FLAGS} ${CMAKE_CXX_FLAGS_${suffix}}" MATCHES "-fsanitize|_FORTIFY_SOURCE|-O0")
      target_compile_options(${target} PRIVATE
        $<$<CONFIG:${configuration}>:-U_FORTIFY_SOURCE> $<$<CONFIG:${configuration}>:-D_FORTIFY_SOURCE=2>)
    endif()
  endforeach()
  target_link_options(${target} PRIVATE -Wl,-z,relro,-z,now)
endfunction()

function(symfold_set_compile_options target)
  target_compile_features(${target} PUBLIC cxx_std_20)
  set_target_properties(${target} PROPERTIES CXX_EXTENSIONS OFF)
  if(PROJECT_IS_TOP_LEVEL)
    # g++ 12 sees overlapping copies in "literal" + std::string (GCC bug 105651).
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror
      $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
  endif()
  symfold_harden(${target})
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

# SPDX-License-Identifier: Apache-2.0
#
# What every target of this project is compiled with.

option(MOSSBANK_ASSERTIONS "Keep Q_ASSERT and the standard library's checks" OFF)
option(MOSSBANK_SANITIZE "Address and undefined-behaviour sanitizers" OFF)

add_library(mossbank_options INTERFACE)
add_library(Mossbank::Options ALIAS mossbank_options)
target_compile_features(mossbank_options INTERFACE cxx_std_20)
target_include_directories(mossbank_options INTERFACE "${PROJECT_SOURCE_DIR}")
target_compile_options(mossbank_options INTERFACE
  $<$<COMPILE_LANGUAGE:CXX>:-Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror>)
target_compile_definitions(mossbank_options INTERFACE
  QT_NO_KEYWORDS QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_FOREACH
  QT_DISABLE_DEPRECATED_BEFORE=0x060400)
if(MOSSBANK_ASSERTIONS)
  target_compile_definitions(mossbank_options INTERFACE QT_FORCE_ASSERTS _GLIBCXX_ASSERTIONS)
endif()
if(MOSSBANK_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=undefined
                      -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()

set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_AUTOMOC ON)
find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
  set(CMAKE_C_COMPILER_LAUNCHER "${CCACHE_PROGRAM}")
  set(CMAKE_CXX_COMPILER_LAUNCHER "${CCACHE_PROGRAM}")
endif()

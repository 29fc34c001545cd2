# SPDX-License-Identifier: Apache-2.0
#
# Mossbank::Sqlite, the SQLite that the programs use. Words of deleted screenshots leave the
# full-text index in place only with the `secure-delete` option that FTS5 has had since 3.42; an
# older system library is passed over for the source that tools/setup has brought.
#
# Mossbank::SystemSqlite, the system's own where it is older: the tests run against it as well.

find_package(PkgConfig REQUIRED)
pkg_check_modules(SystemSqlite REQUIRED IMPORTED_TARGET sqlite3)
set(MOSSBANK_SQLITE_SOURCE "${PROJECT_SOURCE_DIR}/.deps/sqlite"
    CACHE PATH "Folder of sqlite3.c and sqlite3.h, used where the system's SQLite is before 3.42")

if(SystemSqlite_VERSION VERSION_GREATER_EQUAL 3.42)
  add_library(MossbankSqlite INTERFACE)
  target_link_libraries(MossbankSqlite INTERFACE PkgConfig::SystemSqlite)
else()
  if(NOT EXISTS "${MOSSBANK_SQLITE_SOURCE}/sqlite3.c")
    message(FATAL_ERROR
      "SQLite ${SystemSqlite_VERSION} is too old and there is no source of a later one: run tools/setup.")
  endif()
  add_library(MossbankSqlite STATIC "${MOSSBANK_SQLITE_SOURCE}/sqlite3.c")
  target_include_directories(MossbankSqlite SYSTEM PUBLIC "${MOSSBANK_SQLITE_SOURCE}")
  target_compile_definitions(MossbankSqlite PRIVATE
    SQLITE_ENABLE_FTS5 SQLITE_THREADSAFE=1 SQLITE_DQS=0 SQLITE_OMIT_LOAD_EXTENSION
    SQLITE_OMIT_DEPRECATED SQLITE_OMIT_SHARED_CACHE)
  # Optimised in every preset: nobody debugs it here, and the tests write thousands of rows.
  target_compile_options(MossbankSqlite PRIVATE -O2 -w)
  target_link_libraries(MossbankSqlite PUBLIC m ${CMAKE_DL_LIBS} Threads::Threads)
  add_library(MossbankSystemSqlite INTERFACE)
  target_link_libraries(MossbankSystemSqlite INTERFACE PkgConfig::SystemSqlite)
  add_library(Mossbank::SystemSqlite ALIAS MossbankSystemSqlite)
endif()
add_library(Mossbank::Sqlite ALIAS MossbankSqlite)

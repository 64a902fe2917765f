# Embeds the files of assets/: each becomes a read-only exported object named like the file.
#
# qpx_embed_assets(TARGET NAMES) writes into generated/ of the build tree, when the project is configured,
#   include/qpx/assets.h           public: an array of known length for each file
#   src/toolkit/asset_constants.h  the same as named constants for the library's own code
#   assets.S                       the bytes, for any ELF target
# adds them to the target and returns the names in the variable NAMES. A file that is added, removed or
# changed configures the project again.
set(QPX_GENERATED_DIR ${PROJECT_BINARY_DIR}/generated)
set(QPX_ASSETS_HEADER ${QPX_GENERATED_DIR}/include/qpx/assets.h)

# Writes only what differs, so that an unchanged list compiles nothing again.
function(qpx_write_if_different path text)
  file(CONFIGURE OUTPUT ${path} CONTENT "${text}" @ONLY)
endfunction()

function(qpx_embed_assets target names_out)
  file(GLOB textures CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/assets/textures/*.png)
  file(GLOB tables CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/assets/tables/*.bin)
  set(names "")
  set(declarations "")
  set(constants "")
  set(objects "")
  foreach(kind textures tables)
    set(${kind}_names "")
    foreach(file IN LISTS ${kind})
      cmake_path(GET file STEM LAST_ONLY name)
      if(NOT name MATCHES "^[A-Za-z_][A-Za-z_0-9]*$")
        message(FATAL_ERROR "${file}: its name is to be a symbol")
      endif()
      file(SIZE ${file} size)
      string(APPEND declarations "QPX_API extern const uint8_t ${name}[${size}];\n")
      string(APPEND constants "inline constexpr Asset ${name} = {\"${name}\", ::${name}, sizeof(::${name})};\n")
      string(APPEND objects "OBJECT ${name} \"${file}\"\n")
      list(APPEND ${kind}_names ${name})
    endforeach()
    list(LENGTH ${kind}_names ${kind}_count)
    list(APPEND names ${${kind}_names})
    list(JOIN ${kind}_names ", " ${kind}_list)
  endforeach()
  string(REGEX REPLACE "OBJECT ([^ ]+) ([^\n]+)\n" [[
  .section .rodata.\1, "a", %progbits
  .balign 64
  .globl \1
  .type \1, %object
\1:
  .incbin \2
  .size \1, . - \1
]] objects "${objects}")

  qpx_write_if_different(${QPX_ASSETS_HEADER} "/* Textures (PNG files) and raw tables that the library carries; sizeof gives their lengths. Generated. */
#ifndef QPX_ASSETS_H_
#define QPX_ASSETS_H_

#include <stdint.h>

#include <qpx/export.h>

QPX_BEGIN_DECLS

${declarations}
QPX_END_DECLS

#endif /* QPX_ASSETS_H_ */
")
  qpx_write_if_different(${QPX_GENERATED_DIR}/src/toolkit/asset_constants.h "// Generated from the files of assets/.
#pragma once

#include <qpx/assets.h>

#include <array>

#include \"toolkit/textures.h\"

namespace qpx::assets {

${constants}
inline constexpr std::array<Asset, ${textures_count}> kTextures = {${textures_list}};
inline constexpr std::array<Asset, ${tables_count}> kTables = {${tables_list}};

}  // namespace qpx::assets
")
  set(assembler ${QPX_GENERATED_DIR}/assets.S)
  qpx_write_if_different(${assembler} "// Generated from the files of assets/.
${objects}
  .section .note.GNU-stack, \"\", %progbits
")

  # The headers hold the lengths, the object the bytes.
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${textures} ${tables})
  set_source_files_properties(${assembler} PROPERTIES OBJECT_DEPENDS "${textures};${tables}"
    COMPILE_OPTIONS "$<$<COMPILE_LANG_AND_ID:ASM,Clang>:-Wno-unused-command-line-argument>")
  target_sources(${target} PRIVATE ${assembler})
  target_include_directories(${target} PUBLIC ${QPX_GENERATED_DIR}/src ${QPX_GENERATED_DIR}/include)
  set(${names_out} ${names} PARENT_SCOPE)
endfunction()

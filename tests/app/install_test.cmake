# Installs the build into a folder of its own and looks at what lies there.
# Run with: cmake -D BUILD=... -D TARGET=... -D PLUGINS="a;b" -P install_test.cmake
file(REMOVE_RECURSE "${TARGET}")
execute_process(
    COMMAND "${CMAKE_COMMAND}" --install "${BUILD}" --prefix "${TARGET}"
    OUTPUT_QUIET
    COMMAND_ERROR_IS_FATAL ANY
)

set(contents "${TARGET}/Prismo.app/Contents")
foreach(path IN ITEMS
    "${contents}/MacOS/Prismo"
    "${contents}/MacOS/quillrip"
    "${contents}/plugins/imageformats/libqico.so"
    "${contents}/plugins/platforms/libqxcb.so"
    "${contents}/plugins/platforms/libqoffscreen.so"
    "${contents}/plugins/xcbglintegrations/libqxcb-glx-integration.so"
    "${TARGET}/share/applications/Prismo.desktop"
    "${TARGET}/share/icons/hicolor/scalable/apps/prismo.svg"
    "${TARGET}/share/metainfo/example.prismo.Prismo.metainfo.xml"
    "${TARGET}/share/mime/packages/prismo.xml"
)
    if(NOT EXISTS "${path}")
        message(SEND_ERROR "missing: ${path}")
    endif()
endforeach()

# The same tree as the one that the build stages.
file(GLOB_RECURSE staged RELATIVE "${BUILD}/dist" LIST_DIRECTORIES false "${BUILD}/dist/*")
list(FILTER staged EXCLUDE REGEX "tessaryinfo\\.ini$")
foreach(path IN LISTS staged)
    if(NOT EXISTS "${TARGET}/${path}")
        message(SEND_ERROR "staged, but not installed: ${path}")
    endif()
endforeach()

# Nothing in it leads back to the build.
file(GLOB_RECURSE installed LIST_DIRECTORIES true "${TARGET}/*")
foreach(path IN LISTS installed)
    if(IS_SYMLINK "${path}")
        message(SEND_ERROR "a link: ${path}")
    endif()
endforeach()
foreach(program IN ITEMS Prismo quillrip)
    file(READ_ELF "${contents}/MacOS/${program}" RPATH rpath RUNPATH runpath)
    if(rpath OR runpath)
        message(SEND_ERROR "${program} searches its libraries in ${rpath}${runpath}")
    endif()
endforeach()
file(READ "${TARGET}/share/applications/Prismo.desktop" entry)
if(NOT entry MATCHES "Exec=\"${contents}/MacOS/Prismo\"")
    message(SEND_ERROR "the desktop entry starts something else")
endif()

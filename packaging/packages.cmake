# What cpack makes: Debian packages of quillrip and of the window, and an archive that runs from any folder.
#
# The packages have layouts of their own, so their components are left out of `cmake --install`, whose tree is the bundle.
set(PRISMO_LIBRARY_DIR "/usr/lib/prismo")
set(package_folder "${CMAKE_BINARY_DIR}/packages")
file(MAKE_DIRECTORY "${package_folder}")

# compressed_file(SOURCE DESTINATION COMPONENT): installs SOURCE packed, as Debian wants its documents.
function(compressed_file source destination component)
    get_filename_component(name "${source}" NAME)
    set(packed "${package_folder}/${component}/${name}.gz")
    file(MAKE_DIRECTORY "${package_folder}/${component}")
    add_custom_command(
        OUTPUT "${packed}"
        COMMAND gzip -9nc "${source}" > "${packed}"
        DEPENDS "${source}" ${ARGN}
        VERBATIM
    )
    add_custom_target("${component}_${name}_packed" ALL DEPENDS "${packed}")
    install(FILES "${packed}" DESTINATION "${destination}" COMPONENT "${component}" EXCLUDE_FROM_ALL)
endfunction()

# Copyright and changelog, without which nothing is a Debian package.
function(debian_documents package)
    set(PACKAGE "${package}")
    configure_file("${CMAKE_SOURCE_DIR}/packaging/debian/changelog.in" "${package_folder}/${package}/changelog" @ONLY)
    compressed_file("${package_folder}/${package}/changelog" "share/doc/${package}" "${package}")
    install(FILES "${CMAKE_SOURCE_DIR}/packaging/debian/copyright" DESTINATION "share/doc/${package}"
        COMPONENT "${package}" EXCLUDE_FROM_ALL)
endfunction()

debian_documents(quillrip)
install(TARGETS quillrip RUNTIME DESTINATION bin COMPONENT quillrip EXCLUDE_FROM_ALL)
compressed_file("${CMAKE_BINARY_DIR}/man/quillrip.1" share/man/man1 quillrip quillrip_manual)
install(FILES packaging/completion/quillrip.bash DESTINATION share/bash-completion/completions RENAME quillrip
    COMPONENT quillrip EXCLUDE_FROM_ALL)
install(FILES packaging/completion/_quillrip DESTINATION share/zsh/vendor-completions
    COMPONENT quillrip EXCLUDE_FROM_ALL)
install(FILES packaging/prismo-mime.xml DESTINATION share/mime/packages RENAME quillrip.xml
    COMPONENT quillrip EXCLUDE_FROM_ALL)
install(DIRECTORY packaging/archives DESTINATION share/doc/quillrip/examples
    USE_SOURCE_PERMISSIONS COMPONENT quillrip EXCLUDE_FROM_ALL)
set(packages quillrip)

if(PRISMO_WINDOW)
    list(APPEND packages prismo)
    debian_documents(prismo)
    # The bundle's places, with links to what other packages bring: quillrip, and the toolkit's plug-ins, which have to be
    # those of the installed toolkit.
    set(bundle "lib/prismo/${PRISMO_BUNDLE_DIR}")
    install(TARGETS Prismo RUNTIME DESTINATION "${bundle}/MacOS" COMPONENT prismo EXCLUDE_FROM_ALL)
    file(MAKE_DIRECTORY "${package_folder}/links" "${package_folder}/prismo")
    file(CREATE_LINK ../../../../../bin/quillrip "${package_folder}/links/quillrip" SYMBOLIC)
    install(FILES "${package_folder}/links/quillrip" DESTINATION "${bundle}/MacOS" COMPONENT prismo EXCLUDE_FROM_ALL)
    file(CREATE_LINK "../../../${CMAKE_LIBRARY_ARCHITECTURE}/qt6/plugins" "${package_folder}/links/plugins" SYMBOLIC)
    install(FILES "${package_folder}/links/plugins" DESTINATION "${bundle}" COMPONENT prismo EXCLUDE_FROM_ALL)

    configure_file(packaging/prismo.in "${package_folder}/prismo/prismo" @ONLY)
    install(PROGRAMS "${package_folder}/prismo/prismo" DESTINATION bin COMPONENT prismo EXCLUDE_FROM_ALL)
    configure_file(packaging/man/prismo.1.in "${package_folder}/prismo/prismo.1" @ONLY)
    compressed_file("${package_folder}/prismo/prismo.1" share/man/man1 prismo)
    set(PRISMO_COMMAND prismo)
    configure_file(packaging/Prismo.desktop.in "${package_folder}/prismo/Prismo.desktop" @ONLY)
    install(FILES "${package_folder}/prismo/Prismo.desktop" DESTINATION share/applications
        COMPONENT prismo EXCLUDE_FROM_ALL)
    install(FILES packaging/example.prismo.Prismo.metainfo.xml DESTINATION share/metainfo
        COMPONENT prismo EXCLUDE_FROM_ALL)
    install(FILES resources/svg/Main.svg DESTINATION share/icons/hicolor/scalable/apps RENAME prismo.svg
        COMPONENT prismo EXCLUDE_FROM_ALL)

    # On top of the bundle: the libraries, and both programs within reach.
    install(CODE "
        execute_process(
            COMMAND \"${CMAKE_SOURCE_DIR}/packaging/gather_libraries\" \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/Prismo.app\"
            COMMAND_ERROR_IS_FATAL ANY
        )
        foreach(program Prismo quillrip)
            file(CREATE_LINK \"${PRISMO_BUNDLE_DIR}/MacOS/\${program}\"
                \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/\${program}\" SYMBOLIC)
        endforeach()
    " COMPONENT portable EXCLUDE_FROM_ALL)
    install(FILES packaging/portable-qt.conf DESTINATION "${PRISMO_BUNDLE_DIR}/MacOS" RENAME qt.conf
        COMPONENT portable EXCLUDE_FROM_ALL)
    install(FILES packaging/portable-readme.txt DESTINATION . RENAME README.txt COMPONENT portable EXCLUDE_FROM_ALL)
    install(FILES LICENSE DESTINATION . COMPONENT portable EXCLUDE_FROM_ALL)
endif()

set(CPACK_PACKAGE_CONTACT "The Prismo developers <support@prismo.example>")
set(CPACK_PACKAGE_HOMEPAGE_URL "https://prismo.example/")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "turn print jobs into images")
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PROJECT_CONFIG_FILE "${CMAKE_SOURCE_DIR}/packaging/cpack_generators.cmake")
set(CPACK_GENERATOR DEB)
if(PRISMO_WINDOW)
    list(APPEND CPACK_GENERATOR TGZ)
endif()
set(CPACK_COMPONENTS_ALL ${packages})

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_QUILLRIP_PACKAGE_NAME quillrip)
set(CPACK_DEBIAN_QUILLRIP_PACKAGE_SECTION text)
set(CPACK_COMPONENT_QUILLRIP_DESCRIPTION "quillrip reads print jobs in PCL 5, PCL XL, HP-GL/2, EMF spool files and
metafiles of Windows, and plain text, and writes an image of every page as
BMP, PNG, JPEG, PCX or TIFF, or as a fax.

PostScript and PDF jobs are drawn where Ghostscript is installed, XPS where
MuPDF is.")
# The fonts that stand for a printer's own, in the packages that the widths and shapes were checked with.
set(CPACK_DEBIAN_QUILLRIP_PACKAGE_DEPENDS "fonts-urw-base35, fonts-liberation2 | fonts-liberation, fonts-dejavu-core, \
fonts-crosextra-carlito, fonts-crosextra-caladea, fonts-symbola, fonts-tlwg-waree-ttf, fonts-ebgaramond, \
fonts-linuxlibertine, fonts-lohit-deva, fonts-lohit-beng-bengali, fonts-lohit-guru, fonts-lohit-gujr, fonts-lohit-orya, \
fonts-lohit-taml, fonts-lohit-telu, fonts-lohit-knda, fonts-lohit-mlym")
set(CPACK_DEBIAN_QUILLRIP_PACKAGE_SUGGESTS "ghostscript, mupdf-tools, fonts-noto-core")
set(CPACK_DEBIAN_PRISMO_PACKAGE_NAME prismo)
set(CPACK_DEBIAN_PRISMO_PACKAGE_SECTION graphics)
set(CPACK_COMPONENT_PRISMO_DESCRIPTION "Prismo is a window that lists the files that printer drivers wrote (PCL 5,
PCL XL, HP-GL/2, EMF spool files of Windows) and converts them, one after the
other, into BMP, PNG, JPEG, PCX or TIFF images, or faxes. It drives quillrip,
which does the same from the command line.")
set(CPACK_DEBIAN_PRISMO_PACKAGE_DEPENDS "quillrip (= ${PROJECT_VERSION})")
# The desktop's own file dialogs, and a window without X.
set(CPACK_DEBIAN_PRISMO_PACKAGE_RECOMMENDS
    "qt6-xdgdesktopportal-platformtheme, qt6-gtk-platformtheme, qt6-wayland")
include(CPack)

# The fonts that the built-in faces are drawn with, copied beside the application bundle: PRISMO_DIST_DIR/fonts in the
# build tree, <prefix>/fonts after installation. They stay separate files with their packages' licence texts.
#
# A missing package is no error: the backend also looks in the system's font folders, and says what it misses.

set(staged_fonts_urw-base35
    C059-BdIta C059-Bold C059-Italic C059-Roman
    D050000L
    NimbusMonoPS-Bold NimbusMonoPS-BoldItalic NimbusMonoPS-Italic NimbusMonoPS-Regular
    NimbusRoman-Bold NimbusRoman-BoldItalic NimbusRoman-Italic NimbusRoman-Regular
    NimbusSans-Bold NimbusSans-BoldItalic NimbusSans-Italic NimbusSans-Regular
    NimbusSansNarrow-Bold NimbusSansNarrow-BoldOblique NimbusSansNarrow-Oblique NimbusSansNarrow-Regular
    P052-Bold P052-BoldItalic P052-Italic P052-Roman
    StandardSymbolsPS
    URWBookman-Demi URWBookman-DemiItalic URWBookman-Light URWBookman-LightItalic
    URWGothic-Book URWGothic-BookOblique URWGothic-Demi URWGothic-DemiOblique
    Z003-MediumItalic
)
set(staged_fonts_liberation2
    LiberationMono-Bold LiberationMono-Italic LiberationMono-Regular
    LiberationSans-Bold LiberationSans-BoldItalic LiberationSans-Italic LiberationSans-Regular
    LiberationSerif-Bold LiberationSerif-BoldItalic LiberationSerif-Italic LiberationSerif-Regular
)
set(staged_fonts_crosextra-carlito Carlito-Bold Carlito-BoldItalic Carlito-Italic Carlito-Regular)
set(staged_fonts_crosextra-caladea Caladea-Bold Caladea-BoldItalic Caladea-Italic Caladea-Regular)
set(staged_fonts_dejavu-core DejaVuSans DejaVuSans-Bold DejaVuSansMono)
set(staged_fonts_symbola Symbola_hint)
set(staged_fonts_tlwg-waree-ttf Waree Waree-Bold)
set(staged_fonts_lohit-deva Lohit-Devanagari)
set(staged_fonts_lohit-beng-bengali Lohit-Bengali)
set(staged_fonts_lohit-guru Lohit-Gurmukhi)
set(staged_fonts_lohit-gujr Lohit-Gujarati)
set(staged_fonts_lohit-orya Lohit-Odia)
set(staged_fonts_lohit-taml Lohit-Tamil)
set(staged_fonts_lohit-telu Lohit-Telugu)
set(staged_fonts_lohit-knda Lohit-Kannada)
set(staged_fonts_lohit-mlym Lohit-Malayalam)
set(staged_fonts_ebgaramond EBGaramond12-Italic EBGaramond12-Regular)
set(staged_fonts_linuxlibertine LinBiolinum_R LinBiolinum_RB LinBiolinum_RI)

set(staged_packages urw-base35 liberation2 crosextra-carlito crosextra-caladea dejavu-core symbola tlwg-waree-ttf
    lohit-deva lohit-beng-bengali lohit-guru lohit-gujr lohit-orya lohit-taml lohit-telu lohit-knda lohit-mlym
    ebgaramond linuxlibertine)

# First match wins.
set(font_folders
    /usr/share/fonts/opentype/urw-base35
    /usr/share/fonts/truetype/liberation2
    /usr/share/fonts/truetype/liberation
    /usr/share/fonts/truetype/crosextra
    /usr/share/fonts/truetype/dejavu
    /usr/share/fonts/truetype/ancient-scripts
    /usr/share/fonts/truetype/tlwg
    /usr/share/fonts/truetype/lohit-devanagari
    /usr/share/fonts/truetype/lohit-bengali
    /usr/share/fonts/truetype/lohit-punjabi
    /usr/share/fonts/truetype/lohit-gujarati
    /usr/share/fonts/truetype/lohit-oriya
    /usr/share/fonts/truetype/lohit-tamil
    /usr/share/fonts/truetype/lohit-telugu
    /usr/share/fonts/truetype/lohit-kannada
    /usr/share/fonts/truetype/lohit-malayalam
    /usr/share/fonts/opentype/ebgaramond
    /usr/share/fonts/opentype/linux-libertine
)

set(staged_font_sources)
set(staged_font_copies)
set(missing_packages)
foreach(package IN LISTS staged_packages)
    foreach(stem IN LISTS staged_fonts_${package})
        set(source "")
        foreach(folder IN LISTS font_folders)
            foreach(extension otf ttf)
                if(NOT source AND EXISTS "${folder}/${stem}.${extension}")
                    set(source "${folder}/${stem}.${extension}")
                endif()
            endforeach()
        endforeach()
        if(source)
            list(APPEND staged_font_sources "${source}")
        else()
            list(APPEND missing_packages "fonts-${package}")
        endif()
    endforeach()
endforeach()

foreach(source IN LISTS staged_font_sources)
    get_filename_component(name "${source}" NAME)
    set(copy "${PRISMO_DIST_DIR}/fonts/${name}")
    add_custom_command(
        OUTPUT "${copy}"
        COMMAND "${CMAKE_COMMAND}" -E copy "${source}" "${copy}"
        DEPENDS "${source}"
        VERBATIM
    )
    list(APPEND staged_font_copies "${copy}")
    install(FILES "${source}" DESTINATION fonts COMPONENT bundle)
endforeach()

foreach(package IN LISTS staged_packages)
    set(licence "/usr/share/doc/fonts-${package}/copyright")
    if(EXISTS "${licence}")
        set(copy "${PRISMO_DIST_DIR}/fonts/licences/fonts-${package}.txt")
        add_custom_command(
            OUTPUT "${copy}"
            COMMAND "${CMAKE_COMMAND}" -E copy "${licence}" "${copy}"
            DEPENDS "${licence}"
            VERBATIM
        )
        list(APPEND staged_font_copies "${copy}")
        install(FILES "${licence}" DESTINATION fonts/licences RENAME "fonts-${package}.txt" COMPONENT bundle)
    endif()
endforeach()

if(missing_packages)
    list(REMOVE_DUPLICATES missing_packages)
    list(JOIN missing_packages ", " missing_text)
    message(WARNING "Fonts are missing; text will be drawn with what the system has. Install: ${missing_text}")
endif()

add_custom_target(prismo_fonts ALL DEPENDS ${staged_font_copies})
